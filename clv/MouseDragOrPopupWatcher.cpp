// SPDX-License-Identifier: MIT

#include "clv/MouseDragOrPopupWatcher.h"

#include "app/Messages.h"
#include "clv/MouseWatcher.h"

#include <app/Messenger.h>
#include <interface/InterfaceDefs.h>

#include <cmath>
#include <memory>

// The pointer may shake that far.
static constexpr float kSlack = 1;

namespace {

struct StartData {
	int32 length;
	int32 data;
};
static_assert(sizeof(StartData) == 8);

} // namespace

bigtime_t
MouseHoldTime(int32 length, bigtime_t clickSpeed)
{
	switch (length) {
		case MW_HALF_CLICK:
			return clickSpeed / 2;
		case MW_ONE_CLICK:
			return clickSpeed;
		case MW_FOUR_CLICKS:
			return clickSpeed * 4;
		case MW_EIGHT_CLICKS:
			return clickSpeed * 8;
		default:
			return clickSpeed * 2;
	}
}

uint32
DragOrPopup::Look(BPoint where, uint32 buttons, bigtime_t now)
{
	if (!fStarted) {
		fStarted = true;
		fStartPoint = where;
		fStartButtons = buttons;
		fStartTime = now;
	}
	if (buttons == 0 || buttons != fStartButtons)
		return MW_MOUSE_CLICK;
	if (std::abs(where.x - fStartPoint.x) > kSlack || std::abs(where.y - fStartPoint.y) > kSlack)
		return MW_MOUSE_DRAG;
	return now >= fStartTime + fHoldTime ? uint32(MW_MOUSE_POPUP) : 0;
}

static int32
WatchForDragOrPopup(void* argument)
{
	const std::unique_ptr<BMessenger> target(static_cast<BMessenger*>(argument));
	BMessage message;
	message.AddPoint("where", BPoint(0, 0));
	message.AddInt32("buttons", 0);
	message.AddInt32("modifiers", 0);
	thread_id sender;
	StartData start = {MW_TWO_CLICKS, 0};
	receive_data(&sender, &start, sizeof(start));
	bigtime_t clickSpeed = 0;
	if (get_click_speed(&clickSpeed) != B_OK)
		return B_OK;
	DragOrPopup watch(MouseHoldTime(start.length, clickSpeed));
	BPoint where;
	uint32 buttons = 0;
	while (LookAtMouse(*target, &where, &buttons)) {
		message.what = watch.Look(where, buttons, system_time());
		if (message.what != 0) {
			message.ReplacePoint("where", watch.PressPoint());
			message.ReplaceInt32("buttons", static_cast<int32>(buttons));
			message.ReplaceInt32("modifiers", static_cast<int32>(modifiers()));
			message.AddInt32("data", start.data);
			target->SendMessage(&message);
			break;
		}
		snooze(kMouseWatchInterval);
	}
	return B_OK;
}

thread_id
StartMouseDragOrPopupWatcher(BView* target, int32 data, mouse_watch_length length)
{
	const StartData start = {static_cast<int32>(length), data};
	return StartWatcherThread(
		target, WatchForDragOrPopup, "MouseDragOrPopupWatcher", &start, sizeof(start));
}
