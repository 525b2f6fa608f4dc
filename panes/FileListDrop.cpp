// SPDX-License-Identifier: MIT

// Files that are dragged out of a list, and dropped on it or pasted.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "support/dprint.h"
#include "xfer/FileXFer.h"

#include <app/Looper.h>

namespace {

constexpr uint32 kDebugLevel = 8;

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

// Where nothing else takes a drop the folder that is shown does; null without one.
const entry_ref*
FileListView::DropFolderAt(BPoint where) const
{
	const FileListItem* row = RowAt(where);
	return row != nullptr && row->IsFolder() ? row->GetRef() : fParentRef;
}

void
FileListView::NoteDrag(BPoint where, bool isOver, const BMessage* move)
{
	const entry_ref* folder = isOver ? DropFolderAt(where) : nullptr;
	bigtime_t when = system_time();
	if (move != nullptr)
		move->FindInt64("when", &when);
	if (folder != nullptr)
		fDropAim.MovedOver(ConvertToScreen(where), when, *folder);
	else
		fDropAim.Left();
}

void
FileListView::Draw(BRect updateRect)
{
	ColumnListView::Draw(updateRect);
	fDropAim.Painted();
}

void
FileListView::ScrollTo(BPoint where)
{
	const BPoint before = Bounds().LeftTop();
	ColumnListView::ScrollTo(where);
	if (Bounds().LeftTop() != before)
		RowsMoved();
}

// Something is painted in any case, which tells that the rows are seen where they are now.
void
FileListView::RowsMoved()
{
	fDropAim.RowsMoved();
	const BPoint corner = Bounds().LeftTop();
	Invalidate(BRect(corner, corner));
}

void
FileListView::RefsAdded(BMessage* message)
{
	const bool isUnderWay = !fPendingFiles.IsEmpty();
	if (message->what == B_PASTE) {
		if (fParentRef == nullptr)
			return;
		Debug.StdOut(kDebugLevel, "B_PASTE(1)\n");
		fPendingFiles.AddPaste(*message, *fParentRef);
	} else if (message->WasDropped()) {
		const entry_ref* folder = DropFolderAt(ConvertFromScreen(message->DropPoint()));
		if (folder != nullptr && fDropAim.IsMeant(*folder))
			fPendingFiles.AddDrop(*message, *folder, *this);
	}
	if (!isUnderWay)
		GoOnTransferring();
}

void
FileListView::GoOnTransferring()
{
	while (fPendingFiles.BeginSome(this) &&
		Looper()->PostMessage(kMSG_GoOnTransferring, this) != B_OK) {
	}
}
