// SPDX-License-Identifier: MIT

#include <interface/Modal.h>

#include <app/AppDefs.h>
#include <app/Application.h>
#include <desktop/GuiThread.h>
#include <interface/Window.h>

#include "kits/app/LooperCore.h"
#include "kits/interface/Dragged.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <vector>

namespace {

// What changes within this time is painted together; microseconds.
constexpr bigtime_t kServeInterval = 10000;

struct Alert {
	const BWindow* window; // an address only
	BMessenger messenger;
	bool queues;
};

struct Registry {
	std::mutex lock;
	std::vector<Alert> open; // the newest last
	std::deque<Alert> waiting;
};

// Never destroyed: threads may ask while the process ends.
Registry&
TheRegistry()
{
	static Registry* sRegistry = new Registry;
	return *sRegistry;
}

// With the lock held.
void
Open(Registry& registry, const Alert& alert)
{
	registry.open.push_back(alert);
	alert.messenger.SendMessage(BPrivate::kMsgShowAlert);
}

} // namespace

bool
BPrivate::InputBlockedBy(const BWindow* window)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	return !registry.open.empty() && registry.open.back().window != window;
}

bool
BPrivate::CloseBlockedBy(const BWindow* window)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	return !registry.open.empty() && registry.open.back().window != window &&
		std::any_of(registry.open.begin(), registry.open.end(),
			[](const Alert& alert) { return !alert.queues; });
}

void
BPrivate::ActivateAlert()
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	if (!registry.open.empty())
		registry.open.back().messenger.SendMessage(kMsgActivateAlert);
}

void
BPrivate::CloseAllAlerts()
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	for (const Alert& alert : registry.open)
		alert.messenger.SendMessage(kMsgCloseAlert);
	for (const Alert& alert : registry.waiting)
		alert.messenger.SendMessage(kMsgCloseAlert);
}

void
BPrivate::AlertReady(const BWindow* window, const BMessenger& messenger, bool queues)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	const Alert alert = {window, messenger, queues};
	desktop::SetEndHandler(CloseAllAlerts);
	if (desktop::ProgramHasEnded()) {
		alert.messenger.SendMessage(kMsgCloseAlert);
		return;
	}
	auto isQueuing = [](const Alert& other) { return other.queues; };
	if (queues && std::any_of(registry.open.begin(), registry.open.end(), isQueuing))
		registry.waiting.push_back(alert);
	else
		Open(registry, alert);
}

void
BPrivate::AlertGone(const BWindow* window)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	auto isIt = [window](const Alert& alert) { return alert.window == window; };
	registry.waiting.erase(std::remove_if(registry.waiting.begin(), registry.waiting.end(), isIt),
		registry.waiting.end());
	auto gone = std::find_if(registry.open.begin(), registry.open.end(), isIt);
	if (gone == registry.open.end())
		return;
	const bool wasQueuing = gone->queues;
	registry.open.erase(gone);
	if (wasQueuing && !registry.waiting.empty()) {
		Alert next = registry.waiting.front();
		registry.waiting.pop_front();
		Open(registry, next);
	}
}

BPrivate::ModalCall::ModalCall()
{
	const thread_id self = find_thread(nullptr);
	for (const auto& core : LooperRegistry::All()) {
		if (core->thread == self) {
			fCaller = core;
			fWindow = dynamic_cast<BWindow*>(core->Looper());
		}
	}
}

bool
BPrivate::ModalCall::HandlesPress() const
{
	const BMessage* message = fWindow != nullptr ? fWindow->CurrentMessage() : nullptr;
	return message != nullptr && message->what == B_MOUSE_DOWN;
}

void
BPrivate::ModalCall::EndCapture()
{
	if (fWindow != nullptr)
		fWindow->_EndCapture();
}

void
BPrivate::ModalCall::DropInput()
{
	auto isInput = [](const BMessage& message) {
		return message.what == B_MOUSE_DOWN || message.what == B_KEY_DOWN ||
			message.what == B_MOUSE_WHEEL_CHANGED || message.what == kMsgDrop;
	};
	while (fWindow != nullptr && fCaller->TakeFirst(isInput) != nullptr) {
	}
}

std::function<void()>
BPrivate::ModalCall::Waker() const
{
	return [caller = fCaller] {
		if (caller)
			caller->Wake();
	};
}

void
BPrivate::ModalCall::Wait(sem_id done, const std::function<void()>& askedToQuit)
{
	if (!fCaller) {
		while (acquire_sem(done) == B_INTERRUPTED) {
		}
		return;
	}
	// The view under the pointer is not told when the pointer leaves it meanwhile.
	if (fWindow != nullptr && be_app != nullptr)
		be_app->SetCursor(B_HAND_CURSOR);
	while (acquire_sem_etc(done, 1, B_RELATIVE_TIMEOUT, kServeInterval) == B_TIMED_OUT) {
		bigtime_t deadline = B_INFINITE_TIMEOUT;
		if (fWindow != nullptr && fWindow->LockWithTimeout(0) == B_OK) {
			fWindow->_ServeWhileBlocked();
			fWindow->Unlock();
		} else if (fWindow != nullptr) {
			// The hook has given the lock to somebody else, whose end nobody tells us.
			deadline = system_time() + kServeInterval;
		}
		bool asked = false;
		fCaller->Visit(
			[&](const BMessage& message) { return asked = message.what == B_QUIT_REQUESTED; });
		if (asked)
			askedToQuit();
		fCaller->WaitForChange(deadline);
	}
}
