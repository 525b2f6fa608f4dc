// SPDX-License-Identifier: MIT

// What the user does with an open menu: which submenus are open, which row is highlighted, what is
// chosen. Knows no windows; those follow what it tells them. One thread.

#pragma once

#include <interface/MenuRows.h>
#include <kernel/OS.h>

namespace BPrivate {

// The menu or an open submenu of it.
struct MenuPane {
	bool Scrolls() const { return VisibleRows() < rows->Height(); }
	int32 VisibleRows() const; // pixels of height that rows have
	int32 RowsTop() const;     // of the place where rows are, from the top of the frame

	std::shared_ptr<const MenuRows> rows;
	BRect frame; // on the screen
	int32 highlight = -1;
	int32 openRow = -1; // whose submenu is the next pane
	int32 scrolled = 0; // pixels of rows above what is seen
};

// Height of the strips above and below the rows of a menu that is too long for the screen.
constexpr int32 kMenuScrollStrip = 14;

class MenuTracker {
public:
	class Host {
	public:
		virtual ~Host() = default;
		virtual void PaneOpened(int32 level, const MenuPane& pane) = 0; // a submenu
		virtual void PaneClosed(int32 level) = 0;
		virtual void PaneChanged(int32 level, const MenuPane& pane) = 0; // highlight or scrolling
	};

	struct Start {
		BPoint where; // where the left top corner is wanted
		BRect screen; // of which the menu keeps inside
		BPoint pointer;
		bool held;         // a button is down
		bool stays;        // a late release beside it, where the press was, leaves it open
		BRect clickToOpen; // so does one in here; may be invalid
		bigtime_t when;
	};

	MenuTracker(Host& host, std::shared_ptr<const MenuRows> rows, const Start& start);

	const MenuPane& Pane(int32 level) const { return fPanes[level]; }
	bool IsOver() const { return fOver; }
	BMenuItem* Choice() const { return fChoice; } // null: none, or not over

	// Places are on the screen.
	void MouseMoved(BPoint where, bigtime_t when);
	void MouseDown(BPoint where);
	void MouseUp(BPoint where, uint32 buttonsLeft, bigtime_t when);
	void Wheel(float notches);
	void Key(const std::string& bytes, bigtime_t when);
	void ButtonsAreUp() { fHeld = false; } // the release was before we could see it
	void Cancel() { fOver = true; }

	// When Tick() is due: a submenu waits to be opened or closed, or rows scroll.
	bigtime_t NextTick() const { return std::min(fSwitchAt, fScrollAt); }
	void Tick(bigtime_t now);

private:
	int32 _PaneAt(BPoint where) const;
	int32 _RowAt(int32 level, BPoint where) const;
	MenuPane& _Last() { return fPanes.back(); }
	int32 _LastLevel() const { return static_cast<int32>(fPanes.size()) - 1; }

	void _PointAt(BPoint where, bigtime_t when);
	void _Highlight(int32 level, int32 row);
	void _OpenSubmenu(int32 level, int32 row);
	void _CloseAbove(int32 level);
	void _Choose(int32 level, int32 row);
	void _Switch();
	bool _ScrollBy(int32 level, int32 pixels);
	void _ShowHighlight(int32 level);
	void _UpdateScrolling(int32 level, BPoint where, bigtime_t when);
	void _StepTo(int32 row);
	void _TypeLetter(const std::string& bytes, bigtime_t when);

	Host& fHost;
	std::vector<MenuPane> fPanes; // at least one
	const Start fStart;
	BPoint fPointer;
	bool fHeld;
	bool fStrayed = false; // from where the button went down
	bool fOver = false;
	BMenuItem* fChoice = nullptr;
	bigtime_t fSwitchAt = B_INFINITE_TIMEOUT; // the submenu follows the highlight of fSwitchLevel
	int32 fSwitchLevel = 0;
	bigtime_t fScrollAt = B_INFINITE_TIMEOUT;
	int32 fScrollLevel = 0;
	int32 fScrollDirection = 0;
	std::string fTyped;
	bigtime_t fTypedAt = 0;
};

// Where a menu of this size goes: right below `where`, or pushed back into the screen.
BRect PlaceMenu(BPoint where, const MenuRows& rows, BRect screen);
// Right of the row of its parent, or left where there is no room.
BRect PlaceSubmenu(BRect row, const MenuRows& rows, BRect screen);

} // namespace BPrivate
