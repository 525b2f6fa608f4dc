// SPDX-License-Identifier: MIT

#include "panes/ItemView.h"

#include "app/Messages.h"
#include "panes/NameList.h"

#include <interface/Window.h>

ItemView::ItemView(BRect frame, entry_ref* folder) :
	BView(frame, "items", B_FOLLOW_ALL_SIDES, 0), fFolder(*folder)
{
	AddChild(NameList::InScrollView(Bounds(), &fList, "contents", B_MULTIPLE_SELECTION_LIST));
	fList->SetInvocationMessage(new BMessage(kMSG_ItemInvocation));
	Refresh();
}

void
ItemView::Refresh()
{
	fList->ShowFolder(fFolder, false);
}

void
ItemView::AttachedToWindow()
{
	SetViewColor(216, 216, 216);
	fList->SetTarget(this);
	fList->MakeFocus(true);
}

void
ItemView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_SetFolder:
			if (message->FindRef(kName_Folder, &fFolder) == B_OK)
				Refresh();
			break;
		case kMSG_ItemInvocation:
			ItemInvoked();
			break;
		case B_PASTE:
			// Ends here: the window sends it back to whoever lets it climb.
			break;
		case B_SELECT_ALL:
			fList->Select(0, fList->CountItems() - 1);
			break;
		default:
			BView::MessageReceived(message);
	}
}

// An invoked folder is shown; the other panes hear of it through the window.
void
ItemView::ItemInvoked()
{
	const NameItem* row = fList->RowAt(fList->CurrentSelection());
	if (row == nullptr || !BEntry(&row->Ref(), true).IsDirectory())
		return;
	BMessage change(kMSG_ChangeFolder);
	change.AddRef(kName_Folder, &row->Ref());
	change.AddPointer("source", this);
	Window()->PostMessage(&change);
}
