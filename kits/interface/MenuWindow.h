// SPDX-License-Identifier: MIT

// The windows of an open menu: one for each pane. The first one has the input of them all.

#pragma once

#include <interface/MenuSession.h>
#include <interface/MenuTracker.h>
#include <interface/Window.h>

namespace BPrivate {

class MenuView;

// Shows a pane and changes nothing by itself. Heap only; ends by kMsgCloseMenu.
class MenuWindow : public BWindow {
public:
	// Asks `master` to close when the desktop closes this window.
	MenuWindow(const char* title, const MenuPane& pane, const BMessenger& master);

	// Any thread: for a window of another thread.
	static void Update(const BMessenger& window, const MenuPane& pane);

	// BWindow
	bool QuitRequested() override;
	void MessageReceived(BMessage* message) override;

protected:
	// An alert may have taken the input of all other windows; a menu keeps its own.
	BHandler* _Retarget(BMessage*, BHandler* target) override { return target; }
	void _Update(const MenuPane& pane);

private:
	MenuView* fView; // the window's
	BMessenger fMaster;
};

// The window of the menu itself: follows the user, and opens and closes the submenus' windows.
class MenuMasterWindow : public MenuWindow, private MenuTracker::Host {
public:
	MenuMasterWindow(const char* title, std::shared_ptr<const MenuRows> rows,
		const MenuTracker::Start& start, const std::shared_ptr<MenuSession>& session);

	// Shows it. Afterwards it may be gone at any time.
	void Open();

	// BWindow
	bool QuitRequested() override;
	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;

protected:
	~MenuMasterWindow() override; // tells the session
	bigtime_t _NextWakeUp() override;
	void _AfterMessage() override;

private:
	bool _Track(BMessage* message);

	// MenuTracker::Host
	void PaneOpened(int32 level, const MenuPane& pane) override;
	void PaneClosed(int32 level) override;
	void PaneChanged(int32 level, const MenuPane& pane) override;

	const std::shared_ptr<MenuSession> fSession;
	MenuTracker fTracker;
	std::vector<BMessenger> fSubmenus;      // the windows of levels 1, 2, ...
	std::vector<thread_id> fSubmenuThreads; // of these, and of those closed meanwhile
};

} // namespace BPrivate
