// SPDX-License-Identifier: MIT

// The mouse watcher: a thread that tells a view what the mouse does after a press, until all
// buttons are released, so that MouseDown() can return at once.
//
// It sends MW_MOUSE_MOVED while the pointer is elsewhere than at the start, MW_MOUSE_DOWN when
// other buttons are held than at the start, MW_MOUSE_UP as its last message; each with "where"
// (view coordinates), "buttons" and "modifiers". The start is never moved: a pointer held still
// elsewhere is told of every 50 ms. A view that is gone ends the thread silently.

#pragma once

#include <interface/View.h>
#include <kernel/OS.h>

// The thread's id, or a negative status code when there is none. Never waits; any thread that
// holds the lock of the view's window.
thread_id StartMouseWatcher(BView* target);

// What one look at the mouse tells, told apart from the first one.
class MouseWatch {
public:
	// The code to send, 0 for none. Without buttons it is the last one.
	uint32 Look(BPoint where, uint32 buttons);

private:
	bool fStarted = false;
	BPoint fStartPoint;
	uint32 fStartButtons = 0;
};

// The looks are that far apart, in microseconds.
constexpr bigtime_t kMouseWatchInterval = 50000;

// Reads the mouse in a messenger's target, a view, holding its lock only for that. False when the
// view is gone.
bool LookAtMouse(const class BMessenger& target, BPoint* where, uint32* buttons);

// Makes, prepares and starts a watcher's thread. It gets the target's messenger, which is its own
// to delete. `start` bytes, if any, wait for its receive_data() under the code 400.
thread_id StartWatcherThread(BView* target, thread_func watch, const char* name,
	const void* start = nullptr, size_t length = 0);
