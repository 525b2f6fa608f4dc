// SPDX-License-Identifier: MIT

// Files that are dragged out of a list, and dropped on it or pasted.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "support/dprint.h"
#include "xfer/FileXFer.h"

#include <app/Clipboard.h>
#include <app/Looper.h>

namespace {

constexpr uint32 kDebugLevel = 8;
constexpr bigtime_t kSlice = 20000;

} // namespace

// A row that is not selected goes alone, else all that are.
void
FileListView::DragItem(FileListItem* row, const BMessage& message)
{
	NFileXFer::RefDragMessage drag;
	int32 buttons = 0;
	message.FindInt32(kName_DragButtons, &buttons);
	drag.SetButtons(buttons);
	drag.SetPane(GetPane());
	const auto add = [&](int32 index) {
		if (const FileListItem* dragged = RowAt(index)) {
			drag.AddEntryRef(dragged->GetRef());
			drag.AddRect(ItemFrame(index));
		}
	};
	if (!row->IsSelected())
		add(IndexOf(row));
	else {
		int32 index;
		for (int32 i = 0; (index = CurrentSelection(i)) >= 0; i++)
			add(index);
	}
	drag.Post(this);
}

// The folder that a drop means is the one that lit up. When the rows have moved since, and another
// one lies under the pointer, it means none: false.
bool
FileListView::FindDropFolder(const BMessage& message, entry_ref* folder)
{
	const FileListItem* row = RowAt(ConvertFromScreen(message.DropPoint()));
	if (row != nullptr && !row->IsFolder())
		row = nullptr;
	const entry_ref* ref = row != nullptr ? row->GetRef() : fParentRef;
	if (ref == nullptr || (fIsDragOver && fRowsMoved && *ref != fDropFolder))
		return false;
	*folder = *ref;
	return true;
}

// The keys that are held at the drop decide for all files, though later ones are begun after them.
void
FileListView::RefsAdded(BMessage* message)
{
	Transfer transfer;
	if (message->what == B_PASTE) {
		if (fParentRef == nullptr)
			return;
		Debug.StdOut(kDebugLevel, "B_PASTE(1)\n");
		transfer.message = *message;
		if (be_clipboard->Lock()) {
			transfer.message = *be_clipboard->Data();
			transfer.isPaste = true;
			be_clipboard->Unlock();
			if (!transfer.message.HasBool("Cut") && !transfer.message.HasBool("Copy"))
				return; // nothing that was meant to be pasted
		}
		transfer.folder = *fParentRef;
	} else {
		if (!message->WasDropped() || !FindDropFolder(*message, &transfer.folder))
			return;
		transfer.message = *message;
		// So do the buttons, which a drag from elsewhere has not, and which are known only now.
		int32 buttonsBefore;
		if (transfer.message.FindInt32(kName_DragButtons, &buttonsBefore) != B_OK) {
			BPoint where;
			uint32 buttons = 0;
			GetMouse(&where, &buttons);
			transfer.message.RemoveName(kName_DragButtons);
			transfer.message.AddInt32(kName_DragButtons, static_cast<int32>(buttons));
		}
		transfer.message.RemoveName("modifiers");
		transfer.message.AddInt32("modifiers", static_cast<int32>(modifiers()));
	}
	fTransfers.push_back(std::move(transfer));
	if (fTransfers.size() == 1)
		GoOnTransferring();
}

void
FileListView::GoOnTransferring()
{
	const bigtime_t end = system_time() + kSlice;
	while (!fTransfers.empty()) {
		Transfer& transfer = fTransfers.front();
		entry_ref ref;
		if (transfer.message.FindRef(kName_Refs, transfer.next, &ref) != B_OK) {
			if (transfer.isPaste && transfer.isBegun)
				NFileXFer::ForgetCut(transfer.message);
			fTransfers.pop_front();
			continue;
		}
		transfer.next++;
		const bool begun =
			NFileXFer::HandleFileMessage(&transfer.message, &ref, &transfer.folder, this);
		transfer.isBegun = transfer.isBegun || begun;
		Debug.StdOut(kDebugLevel, "HFM (%d)\n", begun);
		if (system_time() > end && Looper()->PostMessage(kMSG_GoOnTransferring, this) == B_OK)
			return;
	}
}
