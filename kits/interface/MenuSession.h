// SPDX-License-Identifier: MIT

// One opening of a pop-up menu, from Go() to the choice; and the registry of those under way.

#pragma once

#include <app/Messenger.h>

#include <functional>
#include <mutex>

class BMenuItem;
class BWindow;

namespace BPrivate {

// Shared by who asked for the menu and the menu's own thread.
class MenuSession {
public:
	// `owner` (may be null): the window that closes the menu when it quits; an address only.
	explicit MenuSession(const BWindow* owner);
	~MenuSession();
	MenuSession(const MenuSession&) = delete;
	MenuSession& operator=(const MenuSession&) = delete;

	sem_id Done() const { return fDone; } // released once, by Finish()
	const BWindow* Owner() const { return fOwner; }
	BMenuItem* Choice() const { return fChoice; } // once done; null: none

	// Before the menu's window runs. A session that was closed before closes the window.
	void SetWindow(const BMessenger& window);
	// The menu closes with no choice. Does not wait; any thread.
	void Close();
	// In the menu's thread, when its windows are gone from the screen. Calls `whenChosen`.
	void Finish(BMenuItem* choice);

	// For an asynchronous menu, before it runs.
	std::function<void(BMenuItem*)> whenChosen;

private:
	const sem_id fDone;
	const BWindow* const fOwner;
	BMenuItem* fChoice = nullptr;
	std::mutex fLock;
	bool fClosed = false;
	BMessenger fWindow;
};

// Posted to the window of a menu.
constexpr uint32 kMsgCloseMenu = '_MNC';

// Neither waits for the end of the menus.
void CloseAllMenus();
void CloseMenusOf(const BWindow* owner);

} // namespace BPrivate
