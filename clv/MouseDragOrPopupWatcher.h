// SPDX-License-Identifier: MIT

// The drag-or-pop-up watcher: a thread that waits after a press until it can tell what the user
// means, and sends one message that says so:
//
//	MW_MOUSE_DRAG    the pointer has moved by more than a pixel
//	MW_MOUSE_POPUP   the buttons are held long enough without that
//	MW_MOUSE_CLICK   the buttons were released or changed before either
//
// with "where" (the point of the press, view coordinates), "buttons" and "modifiers" (the present
// ones) and "data". A view that is gone ends the thread silently.

#pragma once

#include <interface/View.h>
#include <kernel/OS.h>

// How long to hold for a pop-up menu: this many times the time between the clicks of a double
// click. Any other value is taken for twice.
enum mouse_watch_length : int32 {
	MW_HALF_CLICK = 0,
	MW_ONE_CLICK = 1,
	MW_TWO_CLICKS = 2,
	MW_FOUR_CLICKS = 3,
	MW_EIGHT_CLICKS = 4,
};

// The thread's id, or a negative status code when there is none. Never waits; any thread that
// holds the lock of the view's window.
thread_id StartMouseDragOrPopupWatcher(BView* target, int32 data, mouse_watch_length length);

bigtime_t MouseHoldTime(int32 length, bigtime_t clickSpeed);

// What looks at the mouse tell, the first of which is the press.
class DragOrPopup {
public:
	explicit DragOrPopup(bigtime_t holdTime) : fHoldTime(holdTime) {}

	// The code that ends the watch, or 0.
	uint32 Look(BPoint where, uint32 buttons, bigtime_t now);
	BPoint PressPoint() const { return fStartPoint; }

private:
	const bigtime_t fHoldTime;
	bool fStarted = false;
	BPoint fStartPoint;
	uint32 fStartButtons = 0;
	bigtime_t fStartTime = 0;
};
