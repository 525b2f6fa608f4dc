// SPDX-License-Identifier: MIT

#include <interface/MenuRows.h>

#include <interface/Font.h>
#include <interface/InterfaceDefs.h>
#include <interface/Menu.h>

#include <algorithm>
#include <cmath>

static constexpr int32 kRowSpace = 4; // above and below the text together
static constexpr int32 kSeparatorHeight = 8;
static constexpr int32 kRightMargin = 16;
static constexpr int32 kShortcutGap = 24;
static constexpr int32 kArrowWidth = 12;

static std::string
ShortcutText(const BMenuItem& item)
{
	uint32 modifiers = 0;
	const char key = item.Shortcut(&modifiers);
	if (key == 0)
		return "";
	std::string text = "Alt+";
	if ((modifiers & B_CONTROL_KEY) != 0)
		text += "Ctrl+";
	if ((modifiers & B_OPTION_KEY) != 0)
		text += "Super+";
	if ((modifiers & B_SHIFT_KEY) != 0)
		text += "Shift+";
	text += key >= 'a' && key <= 'z' ? static_cast<char>(key - 'a' + 'A') : key;
	return text;
}

static int32
TextWidth(const std::string& text)
{
	return static_cast<int32>(std::ceil(be_plain_font->StringWidth(text.c_str())));
}

BPrivate::MenuRows::MenuRows(const BMenu& menu)
{
	font_height font;
	be_plain_font->GetHeight(&font);
	const int32 height = static_cast<int32>(std::ceil(font.ascent + font.descent)) + kRowSpace;
	int32 top = 0, labelWidth = 0;
	for (int32 i = 0; i < menu.CountItems(); i++) {
		BMenuItem* item = menu.ItemAt(i);
		const bool separator = dynamic_cast<BSeparatorItem*>(item) != nullptr;
		MenuRow row{item->Label(), ShortcutText(*item), item->IsEnabled(), item->IsMarked(),
			separator, item, nullptr, top, separator ? kSeparatorHeight : height};
		if (item->Submenu() != nullptr) {
			row.submenu = std::make_shared<MenuRows>(*item->Submenu());
			row.enabled = row.enabled && row.submenu->Count() > 0;
			fHasSubmenus = true;
		}
		labelWidth = std::max(labelWidth, TextWidth(row.label));
		if (!row.shortcut.empty())
			fShortcutWidth = std::max(fShortcutWidth, TextWidth(row.shortcut));
		top += row.height;
		fRows.push_back(std::move(row));
	}
	fWidth = kMenuLabelLeft + labelWidth + kRightMargin + kMenuEdge;
	if (fShortcutWidth > 0)
		fWidth += kShortcutGap + fShortcutWidth;
	if (fHasSubmenus)
		fWidth += kArrowWidth;
}

int32
BPrivate::MenuRows::Height() const
{
	return fRows.empty() ? 0 : fRows.back().top + fRows.back().height;
}

int32
BPrivate::MenuRows::RowAt(int32 y) const
{
	if (y < 0 || y >= Height())
		return -1;
	auto after = std::upper_bound(fRows.begin(), fRows.end(), y,
		[](int32 place, const MenuRow& row) { return place < row.top; });
	return static_cast<int32>(after - fRows.begin()) - 1;
}

int32
BPrivate::MenuRows::Step(int32 from, int32 direction) const
{
	const int32 count = Count();
	int32 row = from < 0 && direction < 0 ? count : from;
	for (int32 i = 0; i < count; i++) {
		row = (row + direction + count) % count;
		if (At(row).CanBeChosen())
			return row;
	}
	return -1;
}

int32
BPrivate::MenuRows::Find(const std::string& beginning, int32 from) const
{
	// Case is known of ASCII letters only; the others are compared as they are.
	auto isSame = [](char a, char b) {
		auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
		return lower(a) == lower(b);
	};
	for (int32 i = 0; i < Count(); i++) {
		const int32 row = (std::max(from, 0) + i) % Count();
		const std::string& label = At(row).label;
		if (At(row).CanBeChosen() && label.size() >= beginning.size() &&
			std::equal(beginning.begin(), beginning.end(), label.begin(), isSame))
			return row;
	}
	return -1;
}
