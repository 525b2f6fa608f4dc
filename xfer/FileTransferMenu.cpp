// SPDX-License-Identifier: MIT

#include "xfer/FileXFer.h"

#include "app/Messages.h"

#include <interface/PopUpMenu.h>

namespace NFileXFer {

ETransferType
FileTransferMenu(const BPoint& where)
{
	BPopUpMenu menu("File", true, true, B_ITEMS_IN_COLUMN);
	menu.AddItem(new BMenuItem("Create Link Here", new BMessage(kMSG_Link)));
	menu.AddItem(new BMenuItem("Move Here", new BMessage(kMSG_Move)));
	menu.AddItem(new BMenuItem("Copy Here", new BMessage(kMSG_Copy)));
	menu.AddSeparatorItem();
	menu.AddItem(new BMenuItem("Cancel", new BMessage(kMSG_Cancel)));
	BMenuItem* chosen = menu.Go(where, false, true, false);
	switch (chosen != nullptr ? chosen->Message()->what : kMSG_Cancel) {
		case kMSG_Link:
			return eLink;
		case kMSG_Move:
			return eMove;
		case kMSG_Copy:
			return eCopy;
		default:
			return eCancel;
	}
}

} // namespace NFileXFer
