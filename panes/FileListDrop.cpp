// SPDX-License-Identifier: MIT

// Files that are dragged out of a list, and dropped on it or pasted.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "support/dprint.h"
#include "xfer/FileXFer.h"

#include <app/Clipboard.h>

static constexpr uint32 kDebugLevel = 8;

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
	if (fRowsMoved && row != fDropRow)
		return false;
	const entry_ref* ref = row != nullptr ? row->GetRef() : fParentRef;
	if (ref == nullptr)
		return false;
	*folder = *ref;
	return true;
}

void
FileListView::RefsAdded(BMessage* message)
{
	BMessage clipboard;
	entry_ref folder;
	if (message->what == B_PASTE) {
		if (fParentRef == nullptr)
			return;
		Debug.StdOut(kDebugLevel, "B_PASTE(1)\n");
		if (be_clipboard->Lock()) {
			clipboard = *be_clipboard->Data();
			message = &clipboard;
			be_clipboard->Unlock();
		}
		folder = *fParentRef;
	} else if (!message->WasDropped() || !FindDropFolder(*message, &folder))
		return;
	entry_ref ref;
	for (int32 i = 0; message->FindRef(kName_Refs, i, &ref) == B_OK; i++) {
		const bool begun = NFileXFer::HandleFileMessage(message, &ref, &folder, this);
		Debug.StdOut(kDebugLevel, "HFM (%d)\n", begun);
	}
	if (message == &clipboard)
		NFileXFer::ForgetCut(clipboard);
}
