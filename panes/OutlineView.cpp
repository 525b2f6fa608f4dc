// SPDX-License-Identifier: MIT

#include "panes/OutlineView.h"

#include "app/Messages.h"
#include "panes/NameList.h"

#include <interface/Window.h>

OutlineView::OutlineView(BRect frame, entry_ref* root) :
	BView(frame, "outline", B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, 0)
{
	AddChild(NameList::InScrollView(Bounds(), &fList, "folders", B_SINGLE_SELECTION_LIST));
	fList->SetSelectionMessage(new BMessage(kMSG_OutlineSelection));
	fList->ShowFolder(*root, true);
}

void
OutlineView::SetRoot(entry_ref* ref)
{
	fList->ShowFolder(*ref, true);
}

void
OutlineView::AttachedToWindow()
{
	SetViewColor(216, 216, 216);
	fList->SetTarget(this);
}

void
OutlineView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_OutlineSelection:
			FolderSelected();
			break;
		case kMSG_SetFolder: {
			entry_ref folder;
			if (message->FindRef(kName_Folder, &folder) == B_OK)
				SelectFolder(folder);
			break;
		}
		default:
			BView::MessageReceived(message);
	}
}

void
OutlineView::FolderSelected()
{
	const NameItem* row = fList->RowAt(fList->CurrentSelection());
	if (row == nullptr || row->Ref() == fShown)
		return;
	fShown = row->Ref();
	BMessage change(kMSG_ChangeFolder);
	change.AddRef(kName_Folder, &row->Ref());
	change.AddPointer("source", this);
	Window()->PostMessage(&change);
}

// Another pane shows the folder already: the message that the selection sends is not passed on.
void
OutlineView::SelectFolder(const entry_ref& folder)
{
	fShown = folder;
	for (int32 i = 0; i < fList->CountItems(); i++) {
		if (fList->RowAt(i)->Ref() == folder) {
			fList->Select(i);
			fList->ScrollToSelection();
			return;
		}
	}
	fList->DeselectAll();
}
