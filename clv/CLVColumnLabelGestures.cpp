// SPDX-License-Identifier: MIT

// The header of a column list: what the mouse does to it.

#include "clv/CLVColumnLabelView.h"

#include "app/Messages.h"
#include "clv/ColumnListView.h"
#include "clv/MouseWatcher.h"

#include <app/AppDefs.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>

static constexpr float kEdgeWidth = 2;    // of an edge, to both sides
static constexpr float kDragDistance = 2; // the pointer may shake that far during a click

void
CLVColumnLabelView::UpdateDragGroups()
{
	fGroups = MakeDragGroups(fParent->fDisplayOrder);
	if (fClickedColumn == nullptr)
		return;
	// Columns may change in the middle of a gesture.
	SetSnapMinMax();
	if (fClickedGroup < 0 || !fClickedColumn->IsShown())
		ForgetPress();
}

void
CLVColumnLabelView::SetSnapMinMax()
{
	const std::vector<CLVColumn*>& columns = fParent->fDisplayOrder;
	auto found = std::find(columns.begin(), columns.end(), fClickedColumn);
	fClickedGroup = found == columns.end()
		? -1
		: DragGroupAt(fGroups, static_cast<int32>(found - columns.begin()));
	fSnap = FindDragSnap(fGroups, fClickedGroup);
}

void
CLVColumnLabelView::ShiftDragGroup(int32 newIndex)
{
	fParent->SetDisplayColumns(
		ShiftedDisplayOrder(fParent->fDisplayOrder, fGroups, fClickedGroup, newIndex));
}

void
CLVColumnLabelView::ForgetPress()
{
	if (fClickedColumn != nullptr)
		Invalidate();
	fClickedColumn = nullptr;
	fDragging = fResizing = false;
}

void
CLVColumnLabelView::DetachedFromWindow()
{
	ForgetPress();
	fWatching = false; // its watcher has lost the view
	BView::DetachedFromWindow();
}

// Those of the press itself: after a quick click none is held any more.
static int32
ButtonsOfPress(const BView* view)
{
	const BMessage* message = view->Window()->CurrentMessage();
	int32 buttons = 0;
	if (message != nullptr && message->what == B_MOUSE_DOWN &&
		message->FindInt32("buttons", &buttons) == B_OK)
		return buttons;
	BPoint where;
	uint32 held = 0;
	view->GetMouse(&where, &held);
	return static_cast<int32>(held);
}

void
CLVColumnLabelView::MouseDown(BPoint where)
{
	if (ButtonsOfPress(this) != B_PRIMARY_MOUSE_BUTTON)
		return;
	ForgetPress();
	CLVColumn* before = nullptr;
	for (CLVColumn* column : fParent->fDisplayOrder) {
		if (!column->IsShown())
			continue;
		// Up to the next one's begin: the header itself may lie between pixels.
		if (where.x >= column->Begin() && where.x < column->End() + 1) {
			if (where.x <= column->Begin() + kEdgeWidth)
				BeginGesture(before, where, true);
			else
				BeginGesture(column, where, where.x >= column->End() - kEdgeWidth);
			return;
		}
		before = column;
	}
}

void
CLVColumnLabelView::BeginGesture(CLVColumn* column, BPoint where, bool resizing)
{
	if (column == nullptr || (resizing && (column->Flags() & CLV_COLUMN_NOT_RESIZABLE) != 0))
		return;
	fClickedColumn = column;
	fResizing = resizing;
	fPressPoint = fPreviousPoint = where;
	SetSnapMinMax();
	fDragOffset = where.x - ClickedGroup().left;
	fResizeOffset = where.x - column->End();
	if (resizing)
		Invalidate();
	else
		InvalidateSpan(column->Begin(), column->End());
	// The watcher of a quick earlier press may not have told of its release yet: it goes on with
	// this press. A second one beside it would end a later gesture by its own late release.
	fWatcherIsOlder = fWatching;
	if (!fWatching)
		fWatching = StartMouseWatcher(this) >= 0;
	if (!fWatching)
		ForgetPress();
}

void
CLVColumnLabelView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case MW_MOUSE_UP:
			fWatching = false;
			if (fClickedColumn != nullptr && fWatcherIsOlder && WatchAgain())
				break;
			[[fallthrough]];
		case MW_MOUSE_DOWN:
		case MW_MOUSE_MOVED:
			if (fClickedColumn != nullptr)
				Watched(*message);
			break;
		default:
			BView::MessageReceived(message);
	}
}

// A release from before the present press: true when that goes on.
bool
CLVColumnLabelView::WatchAgain()
{
	fWatcherIsOlder = false;
	BPoint where;
	uint32 buttons = 0;
	GetMouse(&where, &buttons, false);
	if (buttons == B_PRIMARY_MOUSE_BUTTON)
		fWatching = StartMouseWatcher(this) >= 0;
	return fWatching;
}

void
CLVColumnLabelView::Watched(const BMessage& message)
{
	BPoint where;
	int32 buttons = 0;
	int32 held = 0;
	message.FindPoint("where", &where);
	message.FindInt32("buttons", &buttons);
	message.FindInt32("modifiers", &held);
	if (buttons == B_PRIMARY_MOUSE_BUTTON) {
		if (fResizing)
			DragEdge(where);
		else
			DragLabel(where);
		fPreviousPoint = where;
		return;
	}
	if (buttons == 0 && !fDragging && !fResizing)
		Clicked(static_cast<uint32>(held));
	ForgetPress();
}

void
CLVColumnLabelView::Clicked(uint32 heldKeys)
{
	if ((fClickedColumn->Flags() & CLV_COLUMN_SORTABLE) == 0)
		return;
	const int32 index = fParent->IndexOfColumn(fClickedColumn);
	const std::vector<CLVColumn*>& keys = fParent->fSortKeys;
	if ((heldKeys & B_SHIFT_KEY) != 0) {
		if (fParent->IsSortKey(fClickedColumn))
			fParent->ReverseSortMode(index);
		else
			fParent->AddSortKey(index);
	} else if (!keys.empty() && keys.front() == fClickedColumn)
		fParent->ReverseSortMode(index);
	else
		fParent->SetSortKey(index);
}

void
CLVColumnLabelView::DragEdge(BPoint where)
{
	if (where.x == fPreviousPoint.x)
		return;
	const float width =
		std::max(where.x - fResizeOffset - fClickedColumn->Begin(), fClickedColumn->MinWidth());
	if (width != fClickedColumn->Width())
		fClickedColumn->SetWidth(width);
}

void
CLVColumnLabelView::DragLabel(BPoint where)
{
	if (!fDragging) {
		if (std::abs(where.x - fPressPoint.x) <= kDragDistance)
			return;
		if ((ClickedGroup().flags & CLV_COLUMN_NOT_MOVABLE) != 0) {
			ForgetPress();
			return;
		}
		fDragging = true;
		fOutlineLeft = fOutlineRight = -1;
	}
	if (where.x == fPreviousPoint.x)
		return;
	// Shifting calls a hook, which may end the gesture.
	const auto shift = [&](int32 newIndex) {
		const float before = ClickedGroup().left;
		ShiftDragGroup(newIndex);
		if (fClickedColumn != nullptr)
			fParent->InvalidateFrom(std::min(before, ClickedGroup().left));
	};
	while (fClickedColumn != nullptr && fSnap.previous >= 0 && where.x < fSnap.left)
		shift(fSnap.previous);
	while (fClickedColumn != nullptr && fSnap.next >= 0 && where.x > fSnap.right)
		shift(fSnap.next + 1);
	if (fClickedColumn != nullptr)
		MoveOutline(where.x - fDragOffset);
}

void
CLVColumnLabelView::MoveOutline(float left)
{
	const DragGroup& group = ClickedGroup();
	if ((left < group.left && fSnap.previous < 0) || (left > group.left && fSnap.next < 0))
		left = group.left;
	InvalidateSpan(fOutlineLeft, fOutlineRight);
	fOutlineLeft = left;
	fOutlineRight = left + group.right - group.left;
	InvalidateSpan(fOutlineLeft, fOutlineRight);
}

void
CLVColumnLabelView::InvalidateSpan(float left, float right)
{
	const BRect bounds = Bounds();
	Invalidate(BRect(left, bounds.top, right, bounds.bottom));
}
