// SPDX-License-Identifier: MIT

#include <interface/MenuTracker.h>

#include <interface/InterfaceDefs.h>

#include <algorithm>
#include <cmath>

namespace BPrivate {

// A hand is not still while it clicks; pixels.
static constexpr float kClickDistance = 4;
// A pointer on its way to a submenu crosses other rows.
static constexpr bigtime_t kSubmenuDelay = 200000;
static constexpr bigtime_t kScrollInterval = 40000;
static constexpr bigtime_t kTypingPause = 1000000;
static constexpr int32 kWheelRows = 3;

int32
MenuPane::VisibleRows() const
{
	const int32 room = frame.IntegerHeight() + 1 - 2 * kMenuEdge;
	return room >= rows->Height() ? rows->Height() : room - 2 * kMenuScrollStrip;
}

int32
MenuPane::RowsTop() const
{
	return Scrolls() ? kMenuEdge + kMenuScrollStrip : kMenuEdge;
}

// Inside the screen, and as high as that at most.
static BRect
Fit(BPoint leftTop, const MenuRows& rows, BRect screen)
{
	const float width = static_cast<float>(rows.Width() - 1);
	const float height = static_cast<float>(rows.Height() + 2 * kMenuEdge - 1);
	BRect frame(0, 0, std::min(width, screen.Width()), std::min(height, screen.Height()));
	frame.OffsetTo(std::clamp(std::floor(leftTop.x), screen.left, screen.right - frame.Width()),
		std::clamp(std::floor(leftTop.y), screen.top, screen.bottom - frame.Height()));
	return frame;
}

BRect
PlaceMenu(BPoint where, const MenuRows& rows, BRect screen)
{
	return Fit(where, rows, screen);
}

BRect
PlaceSubmenu(BRect row, const MenuRows& rows, BRect screen)
{
	BPoint leftTop(row.right - 1, row.top - kMenuEdge);
	if (leftTop.x + static_cast<float>(rows.Width()) > screen.right)
		leftTop.x = row.left + 2 - static_cast<float>(rows.Width());
	return Fit(leftTop, rows, screen);
}

MenuTracker::MenuTracker(Host& host, std::shared_ptr<const MenuRows> rows, const Start& start) :
	fHost(host), fStart(start), fPointer(start.pointer), fHeld(start.held)
{
	const BRect frame = PlaceMenu(start.where, *rows, start.screen);
	fPanes.push_back({std::move(rows), frame});
}

// The deepest one under the point, or -1.
int32
MenuTracker::_PaneAt(BPoint where) const
{
	for (int32 level = _LastLevel(); level >= 0; level--) {
		// A point of the pointer lies in a pixel, whose edge the frame names.
		if (fPanes[level].frame.Contains(BPoint(std::floor(where.x), std::floor(where.y))))
			return level;
	}
	return -1;
}

int32
MenuTracker::_RowAt(int32 level, BPoint where) const
{
	const MenuPane& pane = fPanes[level];
	const int32 y = static_cast<int32>(std::floor(where.y - pane.frame.top)) - pane.RowsTop();
	return y < 0 || y >= pane.VisibleRows() ? -1 : pane.rows->RowAt(y + pane.scrolled);
}

void
MenuTracker::_Highlight(int32 level, int32 row)
{
	MenuPane& pane = fPanes[level];
	if (row >= 0 && !pane.rows->At(row).CanBeChosen())
		row = -1;
	if (pane.highlight == row)
		return;
	pane.highlight = row;
	fHost.PaneChanged(level, pane);
}

void
MenuTracker::_CloseAbove(int32 level)
{
	while (_LastLevel() > level) {
		fPanes.pop_back();
		_Last().openRow = -1;
		fHost.PaneClosed(_LastLevel() + 1);
	}
	fScrollAt = B_INFINITE_TIMEOUT;
}

void
MenuTracker::_OpenSubmenu(int32 level, int32 row)
{
	if (fPanes[level].openRow == row)
		return;
	_CloseAbove(level);
	MenuPane& pane = fPanes[level];
	_Highlight(level, row);
	pane.openRow = row;
	const MenuRow& opened = pane.rows->At(row);
	BRect place = pane.frame;
	place.top += static_cast<float>(pane.RowsTop() + opened.top - pane.scrolled);
	const BRect frame = PlaceSubmenu(place, *opened.submenu, fStart.screen);
	fPanes.push_back({opened.submenu, frame});
	fHost.PaneOpened(_LastLevel(), _Last());
}

void
MenuTracker::_Choose(int32 level, int32 row)
{
	const MenuRow& chosen = fPanes[level].rows->At(row);
	if (chosen.submenu) {
		_OpenSubmenu(level, row);
		return;
	}
	fChoice = chosen.item;
	fOver = true;
}

void
MenuTracker::_PointAt(BPoint where, bigtime_t when)
{
	const int32 level = _PaneAt(where);
	_UpdateScrolling(level, where, when);
	if (level < 0) {
		_Highlight(_LastLevel(), -1);
		return;
	}
	// Back in a submenu: the rows crossed on the way count for nothing.
	for (int32 parent = 0; parent < level; parent++)
		_Highlight(parent, fPanes[parent].openRow);
	fSwitchAt = B_INFINITE_TIMEOUT;
	_Highlight(level, _RowAt(level, where));
	for (int32 deeper = level + 1; deeper <= _LastLevel(); deeper++)
		_Highlight(deeper, fPanes[deeper].openRow);
	const MenuPane& pane = fPanes[level];
	const bool opens = pane.highlight >= 0 && pane.rows->At(pane.highlight).submenu != nullptr;
	if (pane.highlight != pane.openRow && (opens || pane.openRow >= 0)) {
		fSwitchLevel = level;
		fSwitchAt = when + kSubmenuDelay;
	}
}

void
MenuTracker::_Switch()
{
	fSwitchAt = B_INFINITE_TIMEOUT;
	if (fSwitchLevel > _LastLevel())
		return;
	const MenuPane& pane = fPanes[fSwitchLevel];
	if (pane.highlight >= 0 && pane.rows->At(pane.highlight).submenu)
		_OpenSubmenu(fSwitchLevel, pane.highlight);
	else
		_CloseAbove(fSwitchLevel);
}

void
MenuTracker::MouseMoved(BPoint where, bigtime_t when)
{
	// Told again where it is, as when a window appears below it, the pointer means nothing.
	if (where == fPointer)
		return;
	fPointer = where;
	fStrayed = fStrayed || std::abs(where.x - fStart.pointer.x) > kClickDistance ||
		std::abs(where.y - fStart.pointer.y) > kClickDistance;
	_PointAt(where, when);
}

void
MenuTracker::MouseDown(BPoint where)
{
	if (fHeld)
		return; // one more button
	const int32 level = _PaneAt(where);
	if (level < 0) {
		Cancel();
		return;
	}
	fHeld = true;
	fStrayed = true; // the release chooses
	const int32 row = _RowAt(level, where);
	_Highlight(level, row);
	if (fPanes[level].highlight >= 0 && fPanes[level].rows->At(row).submenu)
		_OpenSubmenu(level, row);
}

void
MenuTracker::MouseUp(BPoint where, uint32 buttonsLeft, bigtime_t when)
{
	if (buttonsLeft != 0 || !fHeld)
		return;
	MouseMoved(where, when);
	fHeld = false;
	bigtime_t clickSpeed = 0;
	get_click_speed(&clickSpeed);
	if (!fStrayed && (fStart.stays || when - fStart.when <= clickSpeed))
		return;
	const int32 level = _PaneAt(where);
	const int32 row = level >= 0 ? _RowAt(level, where) : -1;
	// Who holds the button to see the menu, and then lets it go, has not chosen what came to lie
	// under the pointer.
	if (row >= 0 && fStrayed && fPanes[level].rows->At(row).CanBeChosen())
		_Choose(level, row);
	else if (level < 0 && !fStart.clickToOpen.Contains(where))
		Cancel();
}

void
MenuTracker::Wheel(float notches)
{
	const int32 level = _PaneAt(fPointer);
	if (level < 0 || !fPanes[level].Scrolls())
		return;
	const float rows = notches * kWheelRows;
	if (_ScrollBy(level, static_cast<int32>(rows * fPanes[level].rows->At(0).height)))
		_Highlight(level, _RowAt(level, fPointer));
}

// False when there is no further to go.
bool
MenuTracker::_ScrollBy(int32 level, int32 pixels)
{
	MenuPane& pane = fPanes[level];
	const int32 furthest = std::max(0, pane.rows->Height() - pane.VisibleRows());
	const int32 to = std::clamp(pane.scrolled + pixels, 0, furthest);
	if (to == pane.scrolled)
		return false;
	_CloseAbove(level); // its submenu would hang at a wrong place
	pane.scrolled = to;
	fHost.PaneChanged(level, pane);
	return true;
}

void
MenuTracker::_ShowHighlight(int32 level)
{
	const MenuPane& pane = fPanes[level];
	if (pane.highlight < 0)
		return;
	const MenuRow& row = pane.rows->At(pane.highlight);
	const int32 below = row.top + row.height - pane.VisibleRows() - pane.scrolled;
	const int32 above = row.top - pane.scrolled;
	if (below > 0)
		_ScrollBy(level, below);
	else if (above < 0)
		_ScrollBy(level, above);
}

// Rows move while the pointer rests on the strip above or below them.
void
MenuTracker::_UpdateScrolling(int32 level, BPoint where, bigtime_t when)
{
	int32 direction = 0;
	if (level >= 0 && fPanes[level].Scrolls()) {
		const BRect frame = fPanes[level].frame;
		if (where.y < frame.top + kMenuEdge + kMenuScrollStrip)
			direction = -1;
		else if (where.y >= frame.bottom + 1 - kMenuEdge - kMenuScrollStrip)
			direction = 1;
	}
	if (direction == 0)
		fScrollAt = B_INFINITE_TIMEOUT;
	else if (fScrollAt == B_INFINITE_TIMEOUT || direction != fScrollDirection)
		fScrollAt = when;
	fScrollLevel = level;
	fScrollDirection = direction;
}

void
MenuTracker::Tick(bigtime_t now)
{
	if (now >= fSwitchAt)
		_Switch();
	if (now < fScrollAt)
		return;
	const int32 height = fPanes[fScrollLevel].rows->At(0).height;
	const bool moved = _ScrollBy(fScrollLevel, fScrollDirection * height);
	fScrollAt = moved ? now + kScrollInterval : B_INFINITE_TIMEOUT;
}

void
MenuTracker::_StepTo(int32 row)
{
	_Highlight(_LastLevel(), row);
	_ShowHighlight(_LastLevel());
}

void
MenuTracker::Key(const std::string& bytes, bigtime_t when)
{
	if (bytes.empty())
		return;
	// Keys are for the deepest submenu, at the place that the mouse has left.
	if (fSwitchAt != B_INFINITE_TIMEOUT)
		_Switch();
	const MenuPane& pane = _Last();
	const int32 at = pane.highlight;
	switch (bytes.size() == 1 ? bytes[0] : char{B_INSERT}) {
		case B_UP_ARROW:
			_StepTo(pane.rows->Step(at, -1));
			break;
		case B_DOWN_ARROW:
			_StepTo(pane.rows->Step(at, 1));
			break;
		case B_HOME:
		case B_PAGE_UP:
			_StepTo(pane.rows->Step(-1, 1));
			break;
		case B_END:
		case B_PAGE_DOWN:
			_StepTo(pane.rows->Step(-1, -1));
			break;
		case B_LEFT_ARROW:
			if (_LastLevel() > 0)
				_CloseAbove(_LastLevel() - 1);
			break;
		case B_RIGHT_ARROW:
			if (at >= 0 && pane.rows->At(at).submenu) {
				_OpenSubmenu(_LastLevel(), at);
				_StepTo(_Last().rows->Step(-1, 1));
			}
			break;
		case B_ENTER:
		case B_SPACE:
			if (at >= 0 && pane.rows->At(at).submenu)
				Key({B_RIGHT_ARROW}, when);
			else if (at >= 0)
				_Choose(_LastLevel(), at);
			break;
		case B_ESCAPE:
			if (_LastLevel() > 0)
				_CloseAbove(_LastLevel() - 1);
			else
				Cancel();
			break;
		default:
			if (static_cast<unsigned char>(bytes[0]) > B_SPACE && bytes[0] != B_DELETE)
				_TypeLetter(bytes, when);
	}
}

// Jumps to the row that begins with what was typed without a pause; the same letter again and
// again goes through all rows that begin with it.
void
MenuTracker::_TypeLetter(const std::string& bytes, bigtime_t when)
{
	const bool again = fTyped == bytes;
	if (when - fTypedAt > kTypingPause || again)
		fTyped.clear();
	fTypedAt = when;
	const bool continues = !fTyped.empty();
	fTyped += bytes;
	const MenuPane& pane = _Last();
	const int32 row = pane.rows->Find(fTyped, continues ? pane.highlight : pane.highlight + 1);
	if (row >= 0)
		_StepTo(row);
}

} // namespace BPrivate
