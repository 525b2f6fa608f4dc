// SPDX-License-Identifier: MIT

// One opening of a pop-up menu, from Go() to the choice. There is one at a time, as there is one
// mouse.

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
	// Closes the menu that is open, and waits for that. `owner` (may be null): the window that
	// closes this menu when it quits; an address only.
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

	// Set before the menu runs: for an asynchronous one, and for who waits for the end.
	std::function<void(BMenuItem*)> whenChosen;
	std::function<void()> wakeWaiter;

private:
	void Unregister();

	const sem_id fDone;
	const BWindow* const fOwner;
	BMenuItem* fChoice = nullptr;
	std::mutex fLock;
	bool fClosed = false;
	BMessenger fWindow;
};

// Posted to the window of a menu.
constexpr uint32 kMsgCloseMenu = '_MNC';

// The menu that is open, if there is one, or if it is the window's. Neither waits for its end.
void CloseOpenMenu();
void CloseMenuOf(const BWindow* owner);

} // namespace BPrivate
