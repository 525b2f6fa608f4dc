// SPDX-License-Identifier: MIT

#include <interface/MenuWindow.h>

#include <app/AppDefs.h>
#include <desktop/GuiThread.h>
#include <interface/MenuView.h>

namespace BPrivate {

namespace {

constexpr uint32 kMsgUpdatePane = '_MNU';
constexpr uint32 kMsgOpened = '_MNO';

} // namespace

MenuWindow::MenuWindow(const char* title, const MenuPane& pane, const BMessenger& master) :
	BWindow(pane.frame, title, kPopUpWindow, B_NOT_RESIZABLE),
	fView(new MenuView(pane)),
	fMaster(master)
{
	AddChild(fView);
}

void
MenuWindow::Update(const BMessenger& window, const MenuPane& pane)
{
	BMessage message(kMsgUpdatePane);
	message.AddInt32("highlight", pane.highlight);
	message.AddInt32("scrolled", pane.scrolled);
	window.SendMessage(&message);
}

void
MenuWindow::_Update(const MenuPane& pane)
{
	fView->SetPane(pane);
}

bool
MenuWindow::QuitRequested()
{
	fMaster.SendMessage(kMsgCloseMenu);
	return false;
}

void
MenuWindow::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMsgUpdatePane: {
			MenuPane pane = fView->Pane();
			if (message->FindInt32("highlight", &pane.highlight) == B_OK &&
				message->FindInt32("scrolled", &pane.scrolled) == B_OK)
				fView->SetPane(pane);
			break;
		}
		case kMsgCloseMenu:
			Quit();
			break;
		default:
			BWindow::MessageReceived(message);
	}
}

MenuMasterWindow::MenuMasterWindow(const char* title, std::shared_ptr<const MenuRows> rows,
	const MenuTracker::Start& start, const std::shared_ptr<MenuSession>& session) :
	MenuWindow(title, MenuPane{rows, PlaceMenu(start.where, *rows, start.screen)}, BMessenger()),
	fSession(session),
	fTracker(*this, rows, start)
{}

MenuMasterWindow::~MenuMasterWindow()
{
	for (const BMessenger& submenu : fSubmenus)
		submenu.SendMessage(kMsgCloseMenu);
	// One that comes onto the screen late would lie below the next menu, and take it along when it
	// closes.
	for (const thread_id thread : fSubmenuThreads) {
		status_t result;
		while (wait_for_thread(thread, &result) == B_INTERRUPTED) {
		}
	}
	fSession->Finish(fTracker.Choice());
}

void
MenuMasterWindow::Open()
{
	fSession->SetWindow(BMessenger(this));
	PostMessage(kMsgOpened); // after it was shown
	Show();
}

bool
MenuMasterWindow::QuitRequested()
{
	return true;
}

void
MenuMasterWindow::MessageReceived(BMessage* message)
{
	if (message->what != kMsgOpened) {
		MenuWindow::MessageReceived(message);
		return;
	}
	if (!desktop::CallGui([] {}))
		Quit(); // without a desktop nobody can choose
	// From now on the menu hears of releases, but not of one just before.
	if (desktop::CurrentInput().buttons == 0)
		fTracker.ButtonsAreUp();
}

void
MenuMasterWindow::DispatchMessage(BMessage* message, BHandler* target)
{
	if (!_Track(message))
		BWindow::DispatchMessage(message, target);
	else if (fTracker.IsOver())
		Quit();
}

// True when the message was for the tracker.
bool
MenuMasterWindow::_Track(BMessage* message)
{
	BPoint where;
	int32 buttons = 0;
	bigtime_t when = 0;
	message->FindPoint("where", &where);
	message->FindInt32("buttons", &buttons);
	message->FindInt64("when", &when);
	where = ConvertToScreen(where);
	switch (message->what) {
		case B_MOUSE_MOVED:
			fTracker.MouseMoved(where, when);
			return true;
		case B_MOUSE_DOWN:
			fTracker.MouseDown(where);
			return true;
		case B_MOUSE_UP:
			fTracker.MouseUp(where, static_cast<uint32>(buttons), when);
			return true;
		case B_MOUSE_WHEEL_CHANGED: {
			float notches = 0;
			message->FindFloat("be:wheel_delta_y", &notches);
			fTracker.Wheel(notches);
			return true;
		}
		case B_KEY_DOWN: {
			const char* bytes = "";
			int32 held = 0;
			message->FindString("bytes", &bytes);
			message->FindInt32("modifiers", &held);
			if ((held & (B_COMMAND_KEY | B_CONTROL_KEY)) == 0)
				fTracker.Key(bytes, when);
			return true;
		}
	}
	return false;
}

bigtime_t
MenuMasterWindow::_NextWakeUp()
{
	return std::min(BWindow::_NextWakeUp(), fTracker.NextTick());
}

void
MenuMasterWindow::_AfterMessage()
{
	const bigtime_t now = system_time();
	if (now >= fTracker.NextTick())
		fTracker.Tick(now);
	BWindow::_AfterMessage();
}

void
MenuMasterWindow::PaneOpened(int32, const MenuPane& pane)
{
	auto* window = new MenuWindow("submenu", pane, BMessenger(this));
	fSubmenus.push_back(BMessenger(window));
	window->Show();
	fSubmenuThreads.push_back(window->Thread());
}

void
MenuMasterWindow::PaneClosed(int32)
{
	fSubmenus.back().SendMessage(kMsgCloseMenu);
	fSubmenus.pop_back();
}

void
MenuMasterWindow::PaneChanged(int32 level, const MenuPane& pane)
{
	if (level == 0)
		_Update(pane);
	else
		Update(fSubmenus[level - 1], pane);
}

} // namespace BPrivate
