// SPDX-License-Identifier: MIT

// BPopUpMenu: a menu that opens at a place of the screen and waits for a choice.

#pragma once

#include <interface/Menu.h>
#include <interface/Rect.h>

#include <memory>

namespace BPrivate {
class MenuSession;
}

class BPopUpMenu : public BMenu {
public:
	// Label-from-marked turns the radio mode on, whatever `radioMode` says.
	explicit BPopUpMenu(const char* name, bool radioMode = true, bool labelFromMarked = true,
		menu_layout layout = B_ITEMS_IN_COLUMN);
	~BPopUpMenu() override; // closes an asynchronous menu first

	// Opens with the left top corner at the point of the screen, pushed back where it would leave
	// the screen. Any thread.
	//
	// Waits, and returns the item chosen, which stays the menu's, or null. The thread of a window
	// keeps its lock meanwhile: the window repaints but handles nothing; being asked to quit closes
	// the menu. `async` returns null at once, and the menu must be left alone until it has closed.
	// The item's message is sent only when `deliversMessage`.
	//
	// Without `openAnyway` nothing is opened unless a mouse button is down or the message being
	// handled is a press. A menu opened with the button down takes the release over an item as the
	// choice, and elsewhere as none; but a click, or a release in `clickToOpen` (on the screen),
	// leaves it open for another click. With `openAnyway` so does a late release at the same place.
	BMenuItem* Go(
		BPoint where, bool deliversMessage = false, bool openAnyway = false, bool async = false);
	BMenuItem* Go(
		BPoint where, bool deliversMessage, bool openAnyway, BRect clickToOpen, bool async = false);

private:
	void _Close();

	std::shared_ptr<BPrivate::MenuSession> fSession; // of the last asynchronous Go()
};
