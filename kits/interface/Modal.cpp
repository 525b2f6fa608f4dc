// SPDX-License-Identifier: MIT

#include <interface/Modal.h>

#include <algorithm>
#include <deque>
#include <mutex>
#include <vector>

namespace {

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
