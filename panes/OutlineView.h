// SPDX-License-Identifier: MIT

// The left pane: the folders below the root as an outline. Selecting one asks the window to show
// it.
//
// The first row is the root's, outermost and open. A folder is scanned for its sub-folders once:
// when it is selected, or in the background after its row was drawn for the first time; so arrows
// are right one level ahead of what is seen. Only a refresh or a new root forgets what was found.
// Threads: the window's, and "AddFolder", which scans what is queued. That reads the disk without
//   a lock, and holds the window's for a slice of rows at a time.
// Owns its rows. Pointers to them in messages and in the queue may be those of rows that are gone:
//   only their addresses are used until the list is found to hold them.

#pragma once

#include "panes/ReadFolders.h"
#include "support/Queue.h"

#include <interface/View.h>
#include <kernel/OS.h>
#include <storage/EntryRef.h>

#include <mutex>

class BScrollView;
class CLVListItem;
class FileListItem;
class FileListView;

class OutlineView : public BView {
public:
	OutlineView(BRect frame, entry_ref* root);
	~OutlineView() override; // deletes the rows

	void SetRoot(entry_ref* ref); // all rows are made anew, and the first one is selected
	// Selects the row of a folder, or of the nearest known folder above it, and opens the way to
	// it. For one outside the root the window is asked to move the root up.
	void SetFolder(const entry_ref& folder);

	// BView
	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	// Folders that were read and whose rows are being added.
	struct Filling {
		FolderItem* parent = nullptr; // null: nothing is left to be added
		FolderItems rows;
		size_t added = 0;
	};

	// The tree
	void AddRoot();
	void DeleteRows();
	FolderItem* DisplayFolder(const entry_ref& folder);
	void ExpandItem(FolderItem* item);
	void CheckRoot(const entry_ref& folder);
	void AskForRoot(const entry_ref& root);

	// Messages
	void FolderSelected(const BMessage& message);
	void ExpandSubItems(const BMessage& message);
	void ExpandThisItem(const BMessage& message);
	void SetFolder(const BMessage& message);
	FolderItem* ItemIn(const BMessage& message) const; // null also when it is gone

	// Scanning (OutlineScan.cpp); how many were added
	int32 AddFolders(FolderItem* item);
	int32 AddFoldersBehindTheScenes(FolderItem* item);
	bool AddSlice(Filling& filling, size_t most); // true while some are left
	bool AwaitsScan(const FolderItem* item) const;
	void Enqueue(FolderItem* item);
	FolderItem* TakeQueued(); // null when the queue is empty
	void WakeScanner();
	void ScanQueued();
	static int32 AddFolders_threaded(void* view);

	FileListView* fList = nullptr;      // a child of the next one
	BScrollView* fScrollView = nullptr; // a child; the list has made it
	entry_ref fRoot;

	std::mutex fQueueLock; // for the queue; nothing is waited for while it is held
	TQueue fQueue;         // of FolderItems
	thread_id fScanner = -1;
	BWindow* fScannedWindow = nullptr; // what the scanner locks
	std::atomic<bool> fStopping = false;
	Filling fFilling; // the scanner's; guarded by the window's lock
};
