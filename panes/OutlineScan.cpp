// SPDX-License-Identifier: MIT

// How the tree finds sub-folders, in the window's thread and in the background.

#include "panes/OutlineView.h"

#include "panes/FileListView.h"
#include "panes/FolderItem.h"
#include "support/dprint.h"

#include <interface/Window.h>
#include <support/List.h>

#include <algorithm>

namespace {

constexpr uint32 kDebugLevel = 10;
constexpr size_t kSlice = 256; // rows that are added under one lock; well below a millisecond

// False when the window is gone.
class WindowLock {
public:
	explicit WindowLock(BWindow* window) : fWindow(window->Lock() ? window : nullptr) {}
	~WindowLock()
	{
		if (fWindow != nullptr)
			fWindow->Unlock();
	}
	WindowLock(const WindowLock&) = delete;
	WindowLock& operator=(const WindowLock&) = delete;
	explicit operator bool() const { return fWindow != nullptr; }

private:
	BWindow* fWindow;
};

} // namespace

// In the window's thread: at once and as a whole.
int32
OutlineView::AddFolders(FolderItem* item)
{
	Debug.StdOut(kDebugLevel, "AddFolders: %p\n", static_cast<void*>(item));
	Debug.StdOut(kDebugLevel, "Folder: %s\n", item->Name());
	Debug.StdOut(kDebugLevel, "SuperItem: %d\n", item->IsSuperItem());
	if (item == fFilling.parent)
		AddSlice(fFilling, SIZE_MAX);
	if (item->Count() != -1)
		return 0;
	Filling filling{item, ReadFolders(*item->GetRef(), item->OutlineLevel() + 1, fStopping)};
	AddSlice(filling, SIZE_MAX);
	fList->InvalidateItem(fList->IndexOf(item)); // for its arrow
	return item->Count();
}

// The rows appear behind those that the folder has; the last slice makes it a scanned one.
bool
OutlineView::AddSlice(Filling& filling, size_t most)
{
	const size_t count = std::min(most, filling.rows.size() - filling.added);
	BList slice(static_cast<int32>(count));
	for (size_t i = 0; i < count; i++)
		slice.AddItem(static_cast<BListItem*>(filling.rows[filling.added + i].get()));
	const int32 place = fList->FullListIndexOf(filling.parent) + 1 +
		fList->FullListNumberOfSubitems(filling.parent);
	if (fList->AddList(&slice, place)) {
		for (size_t i = 0; i < count; i++)
			filling.rows[filling.added + i].release();
	}
	filling.added += count;
	if (filling.added < filling.rows.size())
		return true;
	filling.parent->SetCount(static_cast<int32>(filling.rows.size()));
	if (!filling.rows.empty())
		fList->Collapse(filling.parent);
	filling = Filling();
	return false;
}

bool
OutlineView::AwaitsScan(const FolderItem* item) const
{
	return fList->FullListHasItem(item) && item->Count() == -1 && item != fFilling.parent;
}

void
OutlineView::Enqueue(FolderItem* item)
{
	std::lock_guard lock(fQueueLock);
	fQueue.Add(item);
}

FolderItem*
OutlineView::TakeQueued()
{
	std::lock_guard lock(fQueueLock);
	return fQueue.Empty() ? nullptr : static_cast<FolderItem*>(fQueue.Next());
}

void
OutlineView::WakeScanner()
{
	std::lock_guard lock(fQueueLock);
	if (fScanner >= 0 && !fQueue.Empty())
		resume_thread(fScanner);
}

int32
OutlineView::AddFolders_threaded(void* view)
{
	static_cast<OutlineView*>(view)->ScanQueued();
	return B_OK;
}

// Ended by kill_thread, in a wait.
void
OutlineView::ScanQueued()
{
	for (;;) {
		int32 total = 0;
		while (FolderItem* item = TakeQueued())
			total += AddFoldersBehindTheScenes(item);
		if (total != 0) {
			const WindowLock lock(fScannedWindow);
			if (!lock)
				return;
			fList->Invalidate(); // for the arrows
		}
		suspend_thread(find_thread(nullptr));
	}
}

// In the scanner. Whenever the lock was free the item may have been scanned by others or be gone;
// and another row may be where it was, which is as good when it is that of the same folder.
int32
OutlineView::AddFoldersBehindTheScenes(FolderItem* item)
{
	entry_ref folder;
	uint32 level;
	{
		const WindowLock lock(fScannedWindow);
		if (!lock || !AwaitsScan(item))
			return 0;
		folder = *item->GetRef();
		level = item->OutlineLevel() + 1;
	}
	FolderItems found = ReadFolders(folder, level, fStopping); // rows too many go after the lock
	const int32 count = static_cast<int32>(found.size());
	bool more = true;
	for (bool first = true; more; first = false) {
		const WindowLock lock(fScannedWindow);
		if (!lock)
			return 0;
		if (first) {
			if (!AwaitsScan(item) || *item->GetRef() != folder || item->OutlineLevel() + 1 != level)
				return 0;
			fFilling = {item, std::move(found)};
		}
		more = fFilling.parent != nullptr && AddSlice(fFilling, kSlice);
	}
	return count;
}
