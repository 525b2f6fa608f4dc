// SPDX-License-Identifier: MIT

// ItemListView: the list of the contents pane, which shows the entries of one folder.
//
// It deletes its rows, all of them ItemListItems. Rows are found by reference and by inode, in the
// same time however many there are. Changes are collected and shown together: a burst of them
// costs hardly more than one.

#pragma once

#include "panes/FileListView.h"
#include "panes/RowIndex.h"

#include <deque>
#include <memory>
#include <unordered_set>
#include <vector>

class BDirectory;
class ItemListItem;

class ItemListView : public FileListView {
public:
	ItemListView(BRect frame, BScrollView** container);
	~ItemListView() override;

	// Replaces the rows by those of the folder's entries, sorted. Borrows the reference.
	void Display(entry_ref* ref, BDirectory& folder);

	// All that follow wait for ApplyChanges(). What has no row is passed over, what has one
	// already is read again.
	void AddFileItem(entry_ref* ref);
	void RemoveFileItem(entry_ref* ref);
	void RemoveFileItem(int64 inode); // nothing when several entries share it
	void UpdateFileItem(entry_ref* ref);
	void UpdateFileItem(int64 inode, entry_ref* ref); // null: all that share it, where they are
	// The entry has another name now.
	void RenameFileItem(entry_ref* from, entry_ref* to);
	bool HasFileItem(const entry_ref& ref) { return Index().Find(ref) != nullptr; }
	bool HasINode(int64 inode) { return Index().FindAll(inode).size() == 1; } // of one row
	bool ApplyChanges(); // false when only removals were shown: what was sorted still is

	ItemListItem* RowAt(int32 index) const; // null when out of range

	// FileListView
	entry_ref* GetParentRef(FileListItem* item) override;
	int8 GetPane() override;
	void EntryRenamed(entry_ref& from, entry_ref& to) override { RenameFileItem(&from, &to); }

private:
	void DeleteRows();
	RowIndex& Index();
	void Reread(ItemListItem* row, const entry_ref* ref);
	void TakeOut(ItemListItem* row);
	void DrawUpdated();

	RowIndex fIndex;         // of the rows that are or will be shown
	bool fIsIndexed = false; // it is made for the first change of a folder
	std::vector<std::unique_ptr<ItemListItem>> fComing; // not in the list yet
	std::vector<CLVListItem*> fGoing;                   // still in the list
	std::unordered_set<const CLVListItem*> fUpdated;    // that are or will be in the list
	entry_ref fShown;                                   // of the rows
	// Somebody may still have a pointer to a row that has just left.
	std::deque<std::unique_ptr<ItemListItem>> fAside;
};
