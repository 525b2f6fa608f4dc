// SPDX-License-Identifier: MIT

#include "clv/MouseWatcher.h"

#include "app/Messages.h"

#include <app/Looper.h>
#include <app/Messenger.h>
#include <interface/InterfaceDefs.h>

#include <memory>

static constexpr int32 kStartCode = 400;

uint32
MouseWatch::Look(BPoint where, uint32 buttons)
{
	if (!fStarted) {
		fStarted = true;
		fStartPoint = where;
		fStartButtons = buttons;
	}
	if (buttons == 0)
		return MW_MOUSE_UP;
	if (buttons != fStartButtons)
		return MW_MOUSE_DOWN;
	return where != fStartPoint ? uint32(MW_MOUSE_MOVED) : 0;
}

bool
LookAtMouse(const BMessenger& target, BPoint* where, uint32* buttons)
{
	if (!target.LockTarget())
		return false;
	BLooper* looper = nullptr;
	const BView* view = dynamic_cast<BView*>(target.Target(&looper));
	if (view != nullptr)
		view->GetMouse(where, buttons, false);
	looper->Unlock();
	return view != nullptr;
}

thread_id
StartWatcherThread(
	BView* target, thread_func watch, const char* name, const void* start, size_t length)
{
	auto messenger = std::make_unique<BMessenger>(target);
	const thread_id thread = spawn_thread(watch, name, B_NORMAL_PRIORITY, messenger.get());
	if (thread < 0)
		return thread;
	if (length > 0) {
		const status_t status = send_data(thread, kStartCode, start, length);
		if (status != B_OK) {
			kill_thread(thread);
			return status;
		}
	}
	messenger.release(); // the thread's from now on
	resume_thread(thread);
	return thread;
}

static int32
WatchMouse(void* data)
{
	const std::unique_ptr<BMessenger> target(static_cast<BMessenger*>(data));
	BMessage message;
	message.AddPoint("where", BPoint(0, 0));
	message.AddInt32("buttons", 0);
	message.AddInt32("modifiers", 0);
	MouseWatch watch;
	BPoint where;
	uint32 buttons = 0;
	while (LookAtMouse(*target, &where, &buttons)) {
		message.what = watch.Look(where, buttons);
		if (message.what != 0) {
			message.ReplacePoint("where", where);
			message.ReplaceInt32("buttons", static_cast<int32>(buttons));
			message.ReplaceInt32("modifiers", static_cast<int32>(modifiers()));
			target->SendMessage(&message);
		}
		if (buttons == 0)
			break;
		snooze(kMouseWatchInterval);
	}
	return B_OK;
}

thread_id
StartMouseWatcher(BView* target)
{
	return StartWatcherThread(target, WatchMouse, "MouseWatcher");
}
