// SPDX-License-Identifier: MIT

// What an open menu shows: its items as they were when it opened, and where they lie.
//
// Never changed once made, so that the threads of several windows can look at it. Heights are
// counts of pixels, from the top of the first row.

#pragma once

#include <interface/Rect.h>

#include <memory>
#include <string>
#include <vector>

class BMenu;
class BMenuItem;

namespace BPrivate {

struct MenuRow {
	bool CanBeChosen() const { return enabled && !separator; }

	std::string label;
	std::string shortcut; // as it is shown
	bool enabled;
	bool marked;
	bool separator;
	BMenuItem* item; // the menu's
	std::shared_ptr<const class MenuRows> submenu;
	int32 top;
	int32 height;
};

class MenuRows {
public:
	explicit MenuRows(const BMenu& menu); // in the thread that owns it

	int32 Count() const { return static_cast<int32>(fRows.size()); }
	const MenuRow& At(int32 index) const { return fRows[index]; }
	int32 Width() const { return fWidth; }
	int32 Height() const;
	int32 ShortcutWidth() const { return fShortcutWidth; }
	bool HasSubmenus() const { return fHasSubmenus; }

	int32 RowAt(int32 y) const; // -1: none
	// The nearest row that can be chosen: after (direction 1) or before (-1) `from`, round the
	// end, from the start when that is -1. -1: there is none.
	int32 Step(int32 from, int32 direction) const;
	// The next row that can be chosen and begins so, in upper or lower case: `from` itself, then
	// those after it, round the end. -1: none.
	int32 Find(const std::string& beginning, int32 from) const;

private:
	std::vector<MenuRow> fRows;
	int32 fWidth = 0;
	int32 fShortcutWidth = 0;
	bool fHasSubmenus = false;
};

// How the parts of a row lie, in pixels from the menu's left edge.
constexpr int32 kMenuEdge = 2;
constexpr int32 kMenuMarkLeft = 7;
constexpr int32 kMenuLabelLeft = 22;
constexpr int32 kMenuMarkSize = 10;

} // namespace BPrivate
