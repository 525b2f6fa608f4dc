// SPDX-License-Identifier: MIT

// How the contents pane follows the changes in its folder: by the node monitor's notices, which
// are shown together, and by sorting once in a while.

#include "panes/ItemView.h"

#include "app/Messages.h"
#include "panes/ItemListView.h"
#include "support/GeneralFun.h"
#include "support/UpdateCounter.h"

#include <app/Looper.h>
#include <app/Messenger.h>
#include <storage/NodeMonitor.h>

#include <cstdio>

namespace {

constexpr bigtime_t kSortDelay = 250000;

// An entry of the folder that a notice names. False without a name.
bool
FindEntry(const BMessage& notice, const char* folderField, const char* nameField, entry_ref* ref)
{
	int32 device = 0;
	int64 folder = 0;
	const char* name;
	if (notice.FindInt32("device", &device) != B_OK ||
		notice.FindInt64(folderField, &folder) != B_OK ||
		notice.FindString(nameField, &name) != B_OK)
		return false;
	*ref = entry_ref(static_cast<uint32>(device), static_cast<ino_t>(folder), name);
	return true;
}

} // namespace

void
ItemView::Watch()
{
	gUpdateTolerance = 0;
	// Of a link to a folder it is the folder that changes.
	status_t status = fDirectory.InitCheck();
	if (status == B_OK)
		status = fDirectory.GetNodeRef(&fWatched);
	if (status == B_OK)
		status = watch_node(
			&fWatched, B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR | B_WATCH_DIRECTORY, this);
	fIsWatching = status == B_OK;
	if (!fIsWatching) {
		char text[512];
		fprintf(stderr, "Warning: Cannot initate node watcher: %s\n",
			NGeneralFunction::ErrorString(text, status));
	}
}

void
ItemView::Unwatch()
{
	if (fIsWatching)
		watch_node(&fWatched, B_STOP_WATCHING, this);
	fIsWatching = false;
	fWatched = node_ref();
}

// Names tell hard links apart, and the monitor makes a name free before it uses it again. So rows
// are found by name, and by inode where a notice has no name.
void
ItemView::HandleNodeMonitor(BMessage* message)
{
	int32 opcode;
	if (message->FindInt32("opcode", &opcode) != B_OK)
		return;
	entry_ref ref;
	int64 inode = -1;
	const bool knowsInode = message->FindInt64("node", &inode) == B_OK && inode != 0;
	switch (opcode) {
		case B_ENTRY_CREATED:
			if (FindEntry(*message, "directory", "name", &ref))
				fList->AddFileItem(&ref);
			break;
		case B_ENTRY_REMOVED:
			if (FindEntry(*message, "directory", "name", &ref) && fList->HasFileItem(ref))
				fList->RemoveFileItem(&ref);
			else if (knowsInode && (ref.name == nullptr || ref.directory == fWatched.node))
				fList->RemoveFileItem(inode);
			break;
		case B_ENTRY_MOVED:
			EntryMoved(*message);
			break;
		case B_STAT_CHANGED:
		case B_ATTR_CHANGED:
			if (knowsInode)
				fList->UpdateFileItem(inode, nullptr);
			break;
		default:
			printf("NodeMonitor( %ld )\n", static_cast<long>(opcode));
			return;
	}
	if (!fChangesWait && Looper() != nullptr)
		fChangesWait = Looper()->PostMessage(kMSG_ShowChanges, this) == B_OK;
	if (!fChangesWait)
		ShowChanges();
}

void
ItemView::EntryMoved(const BMessage& message)
{
	int64 from = -1, to = -1, inode = -1;
	message.FindInt64("from directory", &from);
	message.FindInt64("to directory", &to);
	message.FindInt64("node", &inode);
	const int64 here = static_cast<int64>(fWatched.node);
	entry_ref before, after;
	const bool knowsBefore = FindEntry(message, "from directory", "from name", &before);
	const bool knowsAfter = FindEntry(message, "to directory", "name", &after);
	// The folder itself: what is dropped and pasted follows it, and a refresh finds it.
	if (inode == here && knowsBefore && knowsAfter && before == fFolder) {
		fFolder = after;
		return;
	}
	const bool hasRow = knowsBefore && fList->HasFileItem(before);
	if (from == here && to == here) {
		if (!knowsAfter)
			return;
		if (hasRow)
			fList->RenameFileItem(&before, &after);
		else if (!fList->HasFileItem(after) && fList->HasINode(inode))
			fList->UpdateFileItem(inode, &after);
		else
			fList->AddFileItem(&after);
	} else if (from == here) {
		if (hasRow)
			fList->RemoveFileItem(&before);
		else
			fList->RemoveFileItem(inode);
	} else if (to == here && knowsAfter)
		fList->AddFileItem(&after);
}

void
ItemView::ShowChanges()
{
	fChangesWait = false;
	if (fList->ApplyChanges())
		fIsDisordered = true;
}

void
ItemView::Sort()
{
	if (fSortThread >= 0)
		return;
	auto target = std::make_unique<BMessenger>(this);
	fSortThread = spawn_thread(Sort_, "Sort", B_LOW_PRIORITY, target.get());
	if (fSortThread < 0) {
		fSortThread = -1;
		SortNow();
		return;
	}
	target.release(); // the thread's from now on
	resume_thread(fSortThread);
}

// The view may go at any time until its window is locked through the messenger.
int32
ItemView::Sort_(void* argument)
{
	const std::unique_ptr<BMessenger> target(static_cast<BMessenger*>(argument));
	snooze(kSortDelay);
	if (!target->LockTarget())
		return 0;
	BLooper* looper;
	if (ItemView* view = dynamic_cast<ItemView*>(target->Target(&looper))) {
		view->fSortThread = -1;
		view->SortNow();
	}
	looper->Unlock();
	return 0;
}

// What is gone leaves the others in order.
void
ItemView::SortNow()
{
	ShowChanges();
	if (!fIsDisordered)
		return;
	fIsDisordered = false;
	fList->SortItems();
}
