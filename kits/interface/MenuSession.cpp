// SPDX-License-Identifier: MIT

#include <interface/MenuSession.h>

#include <algorithm>
#include <vector>

namespace {

struct Registry {
	std::mutex lock;
	std::vector<BPrivate::MenuSession*> sessions;
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
	std::lock_guard lock(registry.lock);
	registry.sessions.push_back(this);
}

BPrivate::MenuSession::~MenuSession()
{
	{
		Registry& registry = TheRegistry();
		std::lock_guard lock(registry.lock);
		std::erase(registry.sessions, this);
	}
	delete_sem(fDone);
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
	release_sem(fDone);
}

void
BPrivate::CloseAllMenus()
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	for (MenuSession* session : registry.sessions)
		session->Close();
}

void
BPrivate::CloseMenusOf(const BWindow* owner)
{
	Registry& registry = TheRegistry();
	std::lock_guard lock(registry.lock);
	for (MenuSession* session : registry.sessions) {
		if (session->Owner() == owner)
			session->Close();
	}
}
