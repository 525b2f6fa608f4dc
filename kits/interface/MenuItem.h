// SPDX-License-Identifier: MIT

// BMenuItem: a row of a menu, with the message that it sends; BSeparatorItem: a line between rows.
//
// Owners: a menu deletes its items, an item its message and its submenu. Thread: as BMenu.

#pragma once

#include <app/Invoker.h>

#include <memory>
#include <string>

class BMenu;

class BMenuItem : public BInvoker {
public:
	// The shortcut is shown only, with Command and `modifiers` (B_*_KEY bits).
	BMenuItem(const char* label, BMessage* message, char shortcut = 0, uint32 modifiers = 0);
	// Opens the submenu, whose name is the label. Such an item cannot be chosen itself.
	explicit BMenuItem(BMenu* submenu, BMessage* message = nullptr);
	~BMenuItem() override; // leaves its menu, if it is still in one

	void SetLabel(const char* label);
	const char* Label() const { return fLabel.c_str(); }
	virtual void SetEnabled(bool enabled);
	bool IsEnabled() const { return fEnabled; }
	// Shows a check mark. In a menu in radio mode every other item loses its own.
	virtual void SetMarked(bool marked);
	bool IsMarked() const { return fMarked; }
	void SetShortcut(char shortcut, uint32 modifiers);
	char Shortcut(uint32* modifiers = nullptr) const;

	BMenu* Menu() const { return fMenu; } // null while in none
	BMenu* Submenu() const { return fSubmenu.get(); }

	// Adds "when" (int64), "source" (pointer to the item) and "index" (int32) to a copy.
	status_t Invoke(BMessage* message = nullptr) override;

private:
	friend class BMenu;

	std::string fLabel;
	bool fEnabled = true;
	bool fMarked = false;
	char fShortcut = 0;
	uint32 fShortcutModifiers = 0;
	BMenu* fMenu = nullptr; // borrowed
	std::unique_ptr<BMenu> fSubmenu;
};

class BSeparatorItem : public BMenuItem {
public:
	BSeparatorItem();

	void SetEnabled(bool enabled) override; // stays disabled
	void SetMarked(bool marked) override;   // stays unmarked
};
