// SPDX-License-Identifier: MIT

#include <interface/Menu.h>

#include <algorithm>

BMenu::BMenu(const char* name, menu_layout layout) :
	fName(name != nullptr ? name : ""), fLayout(layout)
{}

BMenu::~BMenu()
{
	while (!fItems.empty())
		delete RemoveItem(CountItems() - 1);
}

bool
BMenu::AddItem(BMenuItem* item)
{
	return AddItem(item, CountItems());
}

bool
BMenu::AddItem(BMenuItem* item, int32 index)
{
	if (item == nullptr || item->fMenu != nullptr || index < 0 || index > CountItems())
		return false;
	fItems.insert(fItems.begin() + index, item);
	item->fMenu = this;
	if (item->IsMarked() && fRadioMode)
		_Unmark(item);
	return true;
}

bool
BMenu::AddItem(BMenu* submenu)
{
	return AddItem(submenu, CountItems());
}

bool
BMenu::AddItem(BMenu* submenu, int32 index)
{
	if (submenu == nullptr || submenu->fSuperitem != nullptr || index < 0 || index > CountItems())
		return false;
	return AddItem(new BMenuItem(submenu), index);
}

bool
BMenu::AddSeparatorItem()
{
	return AddItem(new BSeparatorItem);
}

bool
BMenu::RemoveItem(BMenuItem* item)
{
	return RemoveItem(IndexOf(item)) != nullptr;
}

BMenuItem*
BMenu::RemoveItem(int32 index)
{
	BMenuItem* item = ItemAt(index);
	if (item != nullptr) {
		fItems.erase(fItems.begin() + index);
		item->fMenu = nullptr;
	}
	return item;
}

BMenuItem*
BMenu::ItemAt(int32 index) const
{
	return index >= 0 && index < CountItems() ? fItems[index] : nullptr;
}

BMenu*
BMenu::SubmenuAt(int32 index) const
{
	const BMenuItem* item = ItemAt(index);
	return item != nullptr ? item->Submenu() : nullptr;
}

int32
BMenu::IndexOf(const BMenuItem* item) const
{
	auto found = std::find(fItems.begin(), fItems.end(), item);
	return found != fItems.end() ? static_cast<int32>(found - fItems.begin()) : -1;
}

template <typename Wanted>
BMenuItem*
BMenu::_Find(const Wanted& wanted) const
{
	for (BMenuItem* item : fItems) {
		if (wanted(*item))
			return item;
		if (item->Submenu() != nullptr) {
			if (BMenuItem* below = item->Submenu()->_Find(wanted))
				return below;
		}
	}
	return nullptr;
}

BMenuItem*
BMenu::FindItem(const char* label) const
{
	if (label == nullptr)
		return nullptr;
	return _Find([label](const BMenuItem& item) { return item.fLabel == label; });
}

BMenuItem*
BMenu::FindItem(uint32 command) const
{
	return _Find([command](const BMenuItem& item) {
		return item.Message() != nullptr && item.Command() == command;
	});
}

BMenuItem*
BMenu::FindMarked() const
{
	auto found = std::find_if(
		fItems.begin(), fItems.end(), [](const BMenuItem* item) { return item->IsMarked(); });
	return found != fItems.end() ? *found : nullptr;
}

void
BMenu::SetRadioMode(bool on)
{
	fRadioMode = on;
	if (!on)
		fLabelFromMarked = false;
}

void
BMenu::SetLabelFromMarked(bool on)
{
	fLabelFromMarked = on;
	SetRadioMode(on);
}

status_t
BMenu::SetTargetForItems(const BHandler* target)
{
	return SetTargetForItems(BMessenger(target));
}

status_t
BMenu::SetTargetForItems(const BMessenger& target)
{
	for (BMenuItem* item : fItems)
		item->SetTarget(target);
	return target.IsValid() ? B_OK : B_BAD_VALUE;
}

void
BMenu::_Unmark(const BMenuItem* except)
{
	for (BMenuItem* item : fItems) {
		if (item != except)
			item->fMarked = false;
	}
}
