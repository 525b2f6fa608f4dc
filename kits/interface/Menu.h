// SPDX-License-Identifier: MIT

// BMenu: a list of items, for pop-up menus and their submenus.
//
// Thread: whoever owns the menu, one at a time, and nobody while the menu is open.

#pragma once

#include <interface/MenuItem.h>

#include <vector>

enum menu_layout { B_ITEMS_IN_ROW = 0, B_ITEMS_IN_COLUMN = 1 };

class BMenu {
public:
	// Items are always shown in a column.
	explicit BMenu(const char* name, menu_layout layout = B_ITEMS_IN_COLUMN);
	virtual ~BMenu(); // deletes the items
	BMenu(const BMenu&) = delete;
	BMenu& operator=(const BMenu&) = delete;

	const char* Name() const { return fName.c_str(); }
	menu_layout Layout() const { return fLayout; }

	// The item is owned from now on. False, and nothing done, when it is in a menu already or the
	// index is none.
	virtual bool AddItem(BMenuItem* item);
	virtual bool AddItem(BMenuItem* item, int32 index);
	bool AddItem(BMenu* submenu); // with an item of its own
	bool AddItem(BMenu* submenu, int32 index);
	bool AddSeparatorItem();
	// Given back, not deleted.
	bool RemoveItem(BMenuItem* item);
	BMenuItem* RemoveItem(int32 index);

	int32 CountItems() const { return static_cast<int32>(fItems.size()); }
	BMenuItem* ItemAt(int32 index) const; // null for a bad index
	BMenu* SubmenuAt(int32 index) const;
	int32 IndexOf(const BMenuItem* item) const; // -1: not here
	// The first one, in submenus too; or null.
	BMenuItem* FindItem(const char* label) const;
	BMenuItem* FindItem(uint32 command) const;
	BMenuItem* FindMarked() const;                      // in this menu only
	BMenuItem* Superitem() const { return fSuperitem; } // opens this menu; or null

	// The item chosen last is marked, and no other.
	virtual void SetRadioMode(bool on);
	bool IsRadioMode() const { return fRadioMode; }
	// Turns the radio mode on or off as well.
	void SetLabelFromMarked(bool on);
	bool IsLabelFromMarked() const { return fLabelFromMarked; }

	// Every item that is in the menu now, without submenus.
	status_t SetTargetForItems(const BHandler* target);
	status_t SetTargetForItems(const BMessenger& target);

private:
	friend class BMenuItem;

	template <typename Wanted>
	BMenuItem* _Find(const Wanted& wanted) const;
	void _Unmark(const BMenuItem* except);

	std::string fName;
	menu_layout fLayout;
	std::vector<BMenuItem*> fItems;  // owned
	BMenuItem* fSuperitem = nullptr; // borrowed: it owns us
	bool fRadioMode = false;
	bool fLabelFromMarked = false;
};
