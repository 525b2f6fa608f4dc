// SPDX-License-Identifier: MIT

#include "app/ResizeBar.h"

#include "app/Messages.h"
#include "clv/MouseWatcher.h"

#include <app/Application.h>

// A double arrow to the left and right.
static const unsigned char kResizeHPointer[] = {16, 1, 5, 8,
	// image
	0x08, 0x20, 0x18, 0x30, 0x3f, 0xf8, 0x7f, 0xfc, 0xff, 0xfe, 0x7f, 0xfc, 0x3f, 0xf8, 0x18, 0x30,
	0x08, 0x20, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
	// mask: the same
	0x08, 0x20, 0x18, 0x30, 0x3f, 0xf8, 0x7f, 0xfc, 0xff, 0xfe, 0x7f, 0xfc, 0x3f, 0xf8, 0x18, 0x30,
	0x08, 0x20, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};

ResizeBar::ResizeBar(
	BRect frame, const char* name, uint32 resizingMode, uint32 flags, orientation direction) :
	BView(frame, name, resizingMode, flags | B_WILL_DRAW | B_FRAME_EVENTS), fOrientation(direction)
{}

void
ResizeBar::AttachedToWindow()
{
	SetHighColor(108, 108, 108);
	SetLowColor(216, 216, 216);
}

void
ResizeBar::Draw(BRect update)
{
	FillRect(update, B_SOLID_LOW);
	StrokeRect(Bounds(), B_SOLID_HIGH);
}

void
ResizeBar::MouseDown(BPoint)
{
	be_app->SetCursor(kResizeHPointer);
	if (StartMouseWatcher(this) >= 0)
		fWatchers++;
}

void
ResizeBar::MouseMoved(BPoint, uint32 transit, const BMessage*)
{
	if (transit == B_ENTERED_VIEW)
		be_app->SetCursor(kResizeHPointer);
	else if (transit == B_EXITED_VIEW && fWatchers == 0) // else only the cursor shows the drag
		be_app->SetCursor(B_HAND_CURSOR);
}

void
ResizeBar::FrameMoved(BPoint newPosition)
{
	BRect edges = Frame();
	edges.OffsetTo(newPosition);
	ResizeEdges(edges);
}

void
ResizeBar::FrameResized(float, float)
{
	Invalidate();
}

void
ResizeBar::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case MW_MOUSE_DOWN:
		case MW_MOUSE_MOVED:
			break;
		case MW_MOUSE_UP:
			LetGo(*message);
			break;
		case kMSG_ResizeEdges:
			ResizeEdges(Frame());
			break;
		default:
			BView::MessageReceived(message);
	}
}

// Of several watchers, whose presses came quickly one after the other, the last one counts: the
// place that each tells of is relative to the bar as it lay when they looked.
void
ResizeBar::LetGo(const BMessage& message)
{
	if (fWatchers > 1) {
		fWatchers--;
		return;
	}
	fWatchers = 0;
	be_app->SetCursor(B_HAND_CURSOR);
	BPoint where;
	if (message.FindPoint("where", &where) != B_OK)
		return;
	ConvertToParent(&where);
	const float x = where.x - Frame().Width() / 2;
	MoveTo(x, Frame().top);
	BRect edges = Frame();
	edges.OffsetTo(x, edges.top);
	ResizeEdges(edges);
}

void
ResizeBar::ResizeEdges(const BRect& edges)
{
	if (!LockLooper())
		return;
	const bool vertical = fOrientation == B_VERTICAL;
	if (fFirst != nullptr) {
		BRect frame = fFirst->Frame();
		if (vertical)
			frame.right = edges.left - 1;
		else
			frame.bottom = edges.top - 1;
		fFirst->ResizeTo(frame.Width(), frame.Height());
	}
	if (fSecond != nullptr && vertical) {
		BRect frame = fSecond->Frame();
		frame.left = edges.right + 1;
		fSecond->MoveTo(frame.LeftTop());
		fSecond->ResizeTo(frame.Width() + 0.5f, frame.Height());
	} else if (fSecond != nullptr && fFirst != nullptr) {
		// Below a horizontal bar lies a view as wide and as far down as the first one.
		BRect frame = fFirst->Frame();
		frame.top = edges.bottom + 1;
		fSecond->MoveTo(frame.LeftTop());
		fSecond->ResizeTo(frame.Width(), frame.Height());
	}
	UnlockLooper();
}
