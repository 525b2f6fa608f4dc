// SPDX-License-Identifier: MIT

// The right pane: the entries of the chosen folder, in columns, as they are on the disk.
//
// Thread: the window's, but for Sort_().

#pragma once

#include "clv/CLVColumn.h"
#include "panes/ItemColumns.h"

#include <interface/View.h>
#include <kernel/OS.h>
#include <storage/Directory.h>

#include <memory>

class BScrollView;
class ItemListItem;
class ItemListView;

class ItemView : public BView {
public:
	ItemView(BRect frame, entry_ref* folder);
	~ItemView() override;

	entry_ref* Folder() { return &fFolder; } // the one that is shown

	// Shows a folder and follows it from now on; null reads the present one again. `force`: also
	// when it is shown already. The rows stay when it cannot be opened.
	void SetFolder(entry_ref* ref, bool force);
	void Refresh(); // reads the folder again, whatever has taken its place
	// Opens a row, the `which`-th of `count` that are opened together: a file in its program, a
	// single folder here, several folders in the desktop's file manager.
	void ItemInvoked(int32 index, int32 which, int32 count);
	// A change in the folder; the list shows it when no more of them wait.
	void HandleNodeMonitor(BMessage* message);
	// Has the list sorted in a moment, once for all changes until then.
	void Sort();

	// BView
	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void MessageReceived(BMessage* message) override;
	void KeyDown(const char* bytes, int32 numBytes) override;

private:
	static int32 Sort_(void* target); // takes over a messenger to the view

	BRect SubBounds() const;
	void Watch();
	void Unwatch();
	void EntryMoved(const BMessage& message);
	void ShowChanges();
	void SortNow();
	void Invoked(const BMessage& message);
	void Launch(const entry_ref& ref, const char* name);
	void Rename(const BMessage& message);
	void CutCopy(uint32 command);

	ItemListView* fList = nullptr;      // a child of the next one
	BScrollView* fScrollView = nullptr; // a child; the list has made it
	std::unique_ptr<CLVColumn> fColumns[kItemColumns];
	BDirectory fDirectory;
	entry_ref fFolder;
	node_ref fWatched;
	bool fIsWatching = false;
	bool fChangesWait = false;  // kMSG_ShowChanges is on its way
	bool fIsDisordered = false; // a row came or changed since the list was sorted
	thread_id fSortThread = -1; // that sleeps until it sorts; under the window's lock
};
