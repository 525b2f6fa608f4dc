// SPDX-License-Identifier: MIT

// The context menus of both lists, as their user sees them.

#pragma once

#include <interface/MenuRows.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <string>
#include <vector>

// Opens a menu at a place of the window, in the way of those who have one button or two.
inline InjectedUser
OpenMenu(ListenedWindow& window, const char* menu, BPoint where, bool withCommand = false)
{
	InjectedUser& user = window.User();
	if (withCommand)
		user.Click(where.x, where.y, B_PRIMARY_MOUSE_BUTTON, B_COMMAND_KEY);
	else
		user.Click(where.x, where.y, B_SECONDARY_MOUSE_BUTTON);
	InjectedUser seen(menu);
	EXPECT_TRUE(WaitUntil([&] { return seen.Snapshot().width > 0; }));
	user.Move(1, 1); // without the key
	return seen;
}

// ... and walks so many of the rows down that can be chosen; after none it closes the menu.
inline void
Choose(
	ListenedWindow& window, const char* menu, BPoint where, int32 steps, bool withCommand = false)
{
	InjectedUser seen = OpenMenu(window, menu, where, withCommand);
	for (int32 i = 0; i < steps; i++)
		seen.Key(std::string(1, B_DOWN_ARROW));
	seen.KeyDown(std::string(1, steps > 0 ? B_ENTER : B_ESCAPE));
	window.Settle();
}

// What can be chosen there: the rows that are not grey. `labels` are those of all rows from the
// top, "" is a line.
inline std::vector<std::string>
CanBeChosen(
	ListenedWindow& window, const char* menu, BPoint where, const std::vector<std::string>& labels)
{
	InjectedUser seen = OpenMenu(window, menu, where);
	const InjectedUser::Picture picture = seen.Snapshot();
	const int32 line = 8, lines = static_cast<int32>(std::count(labels.begin(), labels.end(), ""));
	const int32 rows = static_cast<int32>(labels.size()) - lines;
	const int32 height = (picture.height - 2 * BPrivate::kMenuEdge - lines * line) / rows;
	std::vector<std::string> found;
	int32 top = BPrivate::kMenuEdge;
	for (const std::string& label : labels) {
		bool isDark = false;
		for (int32 y = top; !label.empty() && y < top + height; y++) {
			for (int32 x = BPrivate::kMenuLabelLeft; x < picture.width - 4; x++)
				isDark |= (picture.At(x, y) & 0xff) < 0x70;
		}
		if (isDark)
			found.push_back(label);
		top += label.empty() ? line : height;
	}
	seen.KeyDown(std::string(1, B_ESCAPE));
	window.Settle();
	return found;
}
