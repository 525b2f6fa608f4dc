// SPDX-License-Identifier: MIT

#include <interface/MenuItem.h>

#include <interface/Menu.h>
#include <kernel/OS.h>

BMenuItem::BMenuItem(const char* label, BMessage* message, char shortcut, uint32 modifiers) :
	BInvoker(message, static_cast<const BHandler*>(nullptr)),
	fLabel(label != nullptr ? label : ""),
	fShortcut(shortcut),
	fShortcutModifiers(modifiers)
{}

BMenuItem::BMenuItem(BMenu* submenu, BMessage* message) : BMenuItem(submenu->Name(), message)
{
	fSubmenu.reset(submenu);
	submenu->fSuperitem = this;
}

BMenuItem::~BMenuItem()
{
	if (fMenu != nullptr)
		fMenu->RemoveItem(this);
}

void
BMenuItem::SetLabel(const char* label)
{
	fLabel = label != nullptr ? label : "";
}

void
BMenuItem::SetEnabled(bool enabled)
{
	fEnabled = enabled;
}

void
BMenuItem::SetMarked(bool marked)
{
	fMarked = marked;
	if (marked && fMenu != nullptr && fMenu->IsRadioMode())
		fMenu->_Unmark(this);
}

void
BMenuItem::SetShortcut(char shortcut, uint32 modifiers)
{
	fShortcut = shortcut;
	fShortcutModifiers = modifiers;
}

char
BMenuItem::Shortcut(uint32* modifiers) const
{
	if (modifiers != nullptr)
		*modifiers = fShortcutModifiers;
	return fShortcut;
}

status_t
BMenuItem::Invoke(BMessage* message)
{
	if (message == nullptr)
		message = Message();
	if (message == nullptr)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddInt64("when", system_time());
	copy.AddPointer("source", this);
	copy.AddInt32("index", fMenu != nullptr ? fMenu->IndexOf(this) : -1);
	return BInvoker::Invoke(&copy);
}

BSeparatorItem::BSeparatorItem() : BMenuItem("", nullptr)
{
	BMenuItem::SetEnabled(false);
}

void
BSeparatorItem::SetEnabled(bool)
{}

void
BSeparatorItem::SetMarked(bool)
{}
