// SPDX-License-Identifier: MIT

// What the mouse and the keys do to a list.

#include <interface/ListView.h>

#include <interface/ScrollView.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>

// The pointer may shake that far during a click.
static constexpr float kDragDistance = 2;

static int32
InputField(const BView* view, const char* name, int32 otherwise)
{
	BMessage* message = view->Window() != nullptr ? view->Window()->CurrentMessage() : nullptr;
	int32 value = otherwise;
	if (message != nullptr)
		message->FindInt32(name, &value);
	return value;
}

static bool
IsAway(BPoint a, BPoint b)
{
	return std::abs(a.x - b.x) > kDragDistance || std::abs(a.y - b.y) > kDragDistance;
}

void
BListView::MouseDown(BPoint where)
{
	const int32 buttons = InputField(this, "buttons", B_PRIMARY_MOUSE_BUTTON);
	if ((buttons & B_PRIMARY_MOUSE_BUTTON) == 0)
		return;
	// A second button during a press changes nothing.
	if (fPress.active && buttons != B_PRIMARY_MOUSE_BUTTON)
		return;
	const int32 clicks = InputField(this, "clicks", 1);
	const uint32 held = static_cast<uint32>(InputField(this, "modifiers", 0));

	// The view that loses the focus may change the rows, so the row is looked up afterwards.
	if (!IsFocus())
		MakeFocus();
	SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
	fPress = Press();
	const int32 row = IndexOf(where);
	if (row >= 0 && clicks == 2 && row == fLastClick && IsItemSelected(row)) {
		fLastClick = -1;
		Invoke();
		return;
	}
	fLastClick = row;
	if (row < 0) {
		DeselectAll();
		return;
	}
	fPress.active = true;
	fPress.row = row;
	fPress.where = where;
	fPress.wasSelected = IsItemSelected(row);
	PressRow(row, held);
}

void
BListView::PressRow(int32 row, uint32 held)
{
	const bool multiple = fType == B_MULTIPLE_SELECTION_LIST;
	if (multiple && (held & B_SHIFT_KEY) != 0) {
		ExtendTo(row);
	} else if (multiple && (held & (B_OPTION_KEY | B_CONTROL_KEY)) != 0) {
		if (fPress.wasSelected)
			fPress.deferred = Deferred::kToggleOff;
		else
			Select(row, true);
	} else if (multiple && fPress.wasSelected) {
		fPress.deferred = Deferred::kSelectAlone;
		fAnchor = fCursor = row;
	} else
		Select(row);
}

// Selects the rows from the anchor to this one, and no others.
void
BListView::ExtendTo(int32 row)
{
	int32 anchor = fAnchor;
	if (anchor < 0 || anchor >= CountItems())
		anchor = fSelection.Count() > 0 ? CurrentSelection() : row;
	Select(std::min(anchor, row), std::max(anchor, row));
	// A hook may have removed rows meanwhile; then their marks are gone already.
	if (std::max(anchor, row) < CountItems()) {
		fAnchor = anchor;
		fCursor = row;
	}
}

void
BListView::MouseUp(BPoint where)
{
	if (!fPress.active || (InputField(this, "buttons", 0) & B_PRIMARY_MOUSE_BUTTON) != 0)
		return;
	const Press press = fPress;
	fPress = Press();
	if (IsAway(where, press.where))
		return;
	if (press.deferred == Deferred::kSelectAlone)
		Select(press.row);
	else if (press.deferred == Deferred::kToggleOff) {
		fAnchor = fCursor = press.row;
		Deselect(press.row);
	}
}

void
BListView::MouseMoved(BPoint where, uint32, const BMessage* drag)
{
	if (!fPress.active)
		return;
	if (drag != nullptr) {
		// What is being dragged stays selected, wherever it is let go.
		fPress.deferred = Deferred::kNothing;
		return;
	}
	const int32 buttons = InputField(this, "buttons", B_PRIMARY_MOUSE_BUTTON);
	if (fPress.dragAsked || (buttons & B_PRIMARY_MOUSE_BUTTON) == 0 || !IsAway(where, fPress.where))
		return;
	fPress.dragAsked = true;
	InitiateDrag(fPress.where, fPress.row, fPress.wasSelected);
}

bool
BListView::InitiateDrag(BPoint, int32, bool)
{
	return false;
}

int32
BListView::CursorRow() const
{
	return fCursor >= 0 && fCursor < CountItems() && fSelection.Count() > 0 ? fCursor
																			: CurrentSelection();
}

void
BListView::MoveCursor(int32 row, bool extend)
{
	if (IsEmpty())
		return;
	row = std::clamp(row, 0, CountItems() - 1);
	if (extend && fType == B_MULTIPLE_SELECTION_LIST)
		ExtendTo(row);
	else
		Select(row);
	ScrollToRow(row);
}

// One page on, and at least one row.
int32
BListView::PageTarget(int32 row, bool down)
{
	BRect frame = ItemFrame(row);
	float page = std::max(Bounds().Height(), 0.0f);
	if (down) {
		int32 target = RowAt(double(frame.top) + double(page));
		return target < 0 ? CountItems() - 1 : std::max(target, row + 1);
	}
	return std::min(std::max(RowAt(double(frame.top) - double(page)), 0), row - 1);
}

void
BListView::KeyDown(const char* bytes, int32 numBytes)
{
	const char key = numBytes == 1 ? bytes[0] : '\0';
	const bool extend = (InputField(this, "modifiers", 0) & B_SHIFT_KEY) != 0;
	const int32 row = CursorRow();
	switch (key) {
		case B_UP_ARROW:
			MoveCursor(row < 0 ? CountItems() - 1 : row - 1, extend);
			break;
		case B_DOWN_ARROW:
			MoveCursor(row + 1, extend);
			break;
		case B_HOME:
			MoveCursor(0, extend);
			break;
		case B_END:
			MoveCursor(CountItems() - 1, extend);
			break;
		case B_PAGE_UP:
		case B_PAGE_DOWN:
			MoveCursor(row < 0 ? 0 : PageTarget(row, key == B_PAGE_DOWN), extend);
			break;
		case B_ENTER:
		case B_SPACE:
			if (fSelection.Count() > 0)
				Invoke();
			break;
		default:
			BView::KeyDown(bytes, numBytes);
	}
}

void
BListView::MakeFocus(bool focus)
{
	BView::MakeFocus(focus);
	HighlightBorder(IsFocus() && Window()->IsActive());
}

void
BListView::WindowActivated(bool active)
{
	BView::WindowActivated(active);
	HighlightBorder(active && IsFocus());
}

// The scroll view may have been put around the list, or taken away, at any time: look for it.
void
BListView::HighlightBorder(bool highlighted)
{
	for (BView* parent = Parent(); parent != nullptr; parent = parent->Parent()) {
		BScrollView* scrollView = dynamic_cast<BScrollView*>(parent);
		if (scrollView != nullptr && scrollView->Target() == this)
			scrollView->SetBorderHighlighted(highlighted);
	}
}
