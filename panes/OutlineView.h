// SPDX-License-Identifier: MIT

// The left pane: the folders below the root as an outline. Selecting one asks the window to show
// it.
//
// The first row is the root's, outermost and open. A folder's sub-folders are looked for once: when
// its row is drawn for the first time, is selected, or lies on the way to a folder that is shown.

#pragma once

#include <interface/View.h>
#include <storage/EntryRef.h>

class BScrollView;
class ColumnListView;
class FolderItem;

class OutlineView : public BView {
public:
	OutlineView(BRect frame, entry_ref* root);
	~OutlineView() override; // deletes the rows

	void SetRoot(entry_ref* ref); // all rows are made anew, and the first one is selected
	// Opens the outline down to a folder and selects it; one outside the root selects none.
	void SetFolder(const entry_ref& folder);

	// BView
	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	FolderItem* RowAt(int32 index) const; // among all rows
	void AddRoot(const entry_ref& root);
	void DeleteRows();
	void AddFolders(FolderItem* item);
	void FolderDrawn(const BMessage& request);
	void FolderSelected(const BMessage& message);
	FolderItem* FindFolder(const entry_ref& folder) const;
	FolderItem* DisplayFolder(const entry_ref& folder);
	void ExpandItem(FolderItem* item);

	ColumnListView* fList = nullptr;    // a child of the next one
	BScrollView* fScrollView = nullptr; // a child; the list has made it
	entry_ref fRoot;
	entry_ref fShown; // the folder that the other panes show
};
