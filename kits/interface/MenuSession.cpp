// SPDX-License-Identifier: MIT

#include <interface/MenuSession.h>

#include <condition_variable>

namespace {

struct Registry {
	std::mutex lock;
	std::condition_variable ended;
	BPrivate::MenuSession* session = nullptr; // under way
};

// Never destroyed: menus may close while the process ends.
Registry&
TheRegistry()
{
	static Registry* sRegistry = new Registry;
	return *sRegistry;
}

} // namespace

BPrivate::MenuSession::MenuSession(const BWindow* owner) :
	fDone(create_sem(0, "menu")), fOwner(owner)
{
	Registry& registry = TheRegistry();
	std::unique_lock lock(registry.lock);
	while (registry.session != nullptr) {
		registry.session->Close();
		registry.ended.wait(lock);
	}
	registry.session = this;
}

BPrivate::MenuSession::~MenuSession()
{
	Unregister();
	delete_sem(fDone);
}

void
BPrivate::MenuSession::Unregister()
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	if (registry.session != this)
		return;
	registry.session = nullptr;
	registry.ended.notify_all();
}

void
BPrivate::MenuSession::SetWindow(const BMessenger& window)
{
	std::lock_guard lock(fLock);
	fWindow = window;
	if (fClosed)
		fWindow.SendMessage(kMsgCloseMenu);
}

void
BPrivate::MenuSession::Close()
{
	std::lock_guard lock(fLock);
	fClosed = true;
	fWindow.SendMessage(kMsgCloseMenu);
}

void
BPrivate::MenuSession::Finish(BMenuItem* choice)
{
	fChoice = choice;
	if (choice != nullptr && whenChosen)
		whenChosen(choice);
	Unregister();
	release_sem(fDone);
	if (wakeWaiter)
		wakeWaiter();
}

void
BPrivate::CloseOpenMenu()
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	if (registry.session != nullptr)
		registry.session->Close();
}

void
BPrivate::CloseMenuOf(const BWindow* owner)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	if (registry.session != nullptr && registry.session->Owner() == owner)
		registry.session->Close();
}
