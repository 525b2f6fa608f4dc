// SPDX-License-Identifier: MIT

#include <interface/PopUpMenu.h>

namespace BPrivate {
class MenuSession {};
} // namespace BPrivate

BPopUpMenu::BPopUpMenu(const char* name, bool radioMode, bool labelFromMarked, menu_layout layout) :
	BMenu(name, layout)
{
	SetRadioMode(radioMode);
	if (labelFromMarked)
		SetLabelFromMarked(true);
}

BPopUpMenu::~BPopUpMenu()
{
	_Close();
}

BMenuItem*
BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, bool async)
{
	return Go(where, deliversMessage, openAnyway, BRect(), async);
}

BMenuItem*
BPopUpMenu::Go(BPoint, bool, bool, BRect, bool)
{
	return nullptr;
}

void
BPopUpMenu::_Close()
{}
