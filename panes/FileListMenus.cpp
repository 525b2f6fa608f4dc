// SPDX-License-Identifier: MIT

// The context menus of a list of files.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "xfer/FileXFer.h"

#include <app/Clipboard.h>
#include <interface/MenuItem.h>
#include <interface/PopUpMenu.h>
#include <interface/Window.h>
#include <storage/Entry.h>

namespace {

BMenuItem*
AddCommand(BPopUpMenu& menu, const char* label, uint32 command)
{
	BMenuItem* item = new BMenuItem(label, new BMessage(command)); // the menu's
	menu.AddItem(item);
	return item;
}

// Of a menu that waits for its choice; null for none.
const BMessage*
Choice(BPopUpMenu& menu, BPoint where)
{
	const BMenuItem* item = menu.Go(where, false, true);
	return item != nullptr ? item->Message() : nullptr;
}

} // namespace

void
TestClipboard(entry_ref* ref, BMenuItem* paste, BMenuItem* pasteLink)
{
	bool exists = false;
	if (be_clipboard->Lock()) {
		const BMessage* data = be_clipboard->Data();
		exists = data != nullptr && data->FindRef(kName_Refs, ref) == B_OK;
		be_clipboard->Unlock();
	}
	exists = exists && BEntry(ref, false).Exists();
	paste->SetEnabled(exists);
	pasteLink->SetEnabled(exists);
}

void
FileListView::BuildItemContextMenu()
{
	fItemMenu = std::make_unique<BPopUpMenu>("iContextMenu");
	AddCommand(*fItemMenu, "Open", kMSG_Open);
	fItemMenu->AddSeparatorItem();
	AddCommand(*fItemMenu, "Cut", B_CUT);
	AddCommand(*fItemMenu, "Copy", B_COPY);
	fItemPaste = AddCommand(*fItemMenu, "Paste", B_PASTE);
	fItemPasteLink = AddCommand(*fItemMenu, "Paste Link", kMSG_CreateLink);
	fItemMenu->AddSeparatorItem();
	AddCommand(*fItemMenu, "Rename", kMSG_Rename);
	AddCommand(*fItemMenu, "Delete", kMSG_Delete);
	AddCommand(*fItemMenu, "Refresh", kMSG_Refresh);
}

void
FileListView::BuildEmptyContextMenu()
{
	fEmptyMenu = std::make_unique<BPopUpMenu>("eContextMenu");
	fEmptyPaste = AddCommand(*fEmptyMenu, "Paste", B_PASTE);
	fEmptyPasteLink = AddCommand(*fEmptyMenu, "Paste Link", kMSG_CreateLink);
	fEmptyMenu->AddSeparatorItem();
	AddCommand(*fEmptyMenu, "Refresh", kMSG_Refresh);
	AddCommand(*fEmptyMenu, "About", B_ABOUT_REQUESTED);
}

void
FileListView::SetupItemContextMenu(FileListItem* item, entry_ref* ref)
{
	if (item->IsFolder()) {
		TestClipboard(ref, fItemPaste, fItemPasteLink);
		return;
	}
	fItemPaste->SetEnabled(false);
	fItemPasteLink->SetEnabled(false);
}

void
FileListView::SetupEmptyContextMenu(entry_ref* ref)
{
	TestClipboard(ref, fEmptyPaste, fEmptyPasteLink);
}

void
FileListView::PopupMenu(BPoint where)
{
	if (fItemMenu == nullptr)
		BuildItemContextMenu();
	if (fEmptyMenu == nullptr)
		BuildEmptyContextMenu();
	const BPoint onScreen = ConvertToScreen(where);
	if (FileListItem* row = RowAt(where))
		PopupItemMenu(row, onScreen);
	else if (BListView::IndexOf(where) < 0)
		PopupEmptyMenu(onScreen);
}

void
FileListView::PopupItemMenu(FileListItem* row, BPoint where)
{
	entry_ref clipboardRef;
	SetupItemContextMenu(row, &clipboardRef);
	const BMessage* chosen = Choice(*fItemMenu, where);
	if (chosen == nullptr || !FullListHasItem(row))
		return;
	switch (chosen->what) {
		case kMSG_Open:
			InvokeItem(IndexOf(row));
			break;
		case B_CUT:
		case B_COPY:
			NFileXFer::CutCopy(static_cast<int32>(chosen->what), row->GetRef());
			break;
		case kMSG_Rename:
			StartRename(row);
			break;
		case kMSG_Delete:
			if (NFileXFer::DeleteFile(row->GetRef(), !fInTrash))
				RefreshFolder(nullptr);
			break;
		case kMSG_Refresh:
			RefreshFolder(nullptr);
			break;
		case B_PASTE:
		case kMSG_CreateLink:
			PasteFromMenu(*chosen, clipboardRef, row);
			break;
	}
}

void
FileListView::PopupEmptyMenu(BPoint where)
{
	entry_ref clipboardRef;
	SetupEmptyContextMenu(&clipboardRef);
	const BMessage* chosen = Choice(*fEmptyMenu, where);
	if (chosen == nullptr)
		return;
	switch (chosen->what) {
		case B_PASTE:
		case kMSG_CreateLink:
			PasteFromMenu(*chosen, clipboardRef, nullptr);
			break;
		case kMSG_Refresh:
			RefreshFolder(nullptr);
			break;
		case B_ABOUT_REQUESTED:
			Looper()->PostMessage(B_ABOUT_REQUESTED);
			break;
	}
}

void
FileListView::PasteFromMenu(const BMessage& chosen, const entry_ref& source, FileListItem* row)
{
	const entry_ref* folder = GetParentRef(row);
	if (folder != nullptr && NFileXFer::HandleFileMessage(&chosen, &source, folder, this))
		RefreshFolder(nullptr);
}
