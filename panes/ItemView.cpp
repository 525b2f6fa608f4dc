// SPDX-License-Identifier: MIT

#include "panes/ItemView.h"

#include "app/Messages.h"
#include "panes/ItemListItem.h"
#include "panes/ItemListView.h"

#include <interface/ScrollView.h>
#include <interface/Window.h>

ItemView::ItemView(BRect frame, entry_ref* folder) :
	BView(frame, "item", B_FOLLOW_ALL_SIDES, B_WILL_DRAW | B_NAVIGABLE), fFolder(*folder)
{}

// The list would delete its columns, which are ours.
ItemView::~ItemView()
{
	for (const std::unique_ptr<CLVColumn>& column : fColumns) {
		if (column != nullptr)
			fList->RemoveColumn(column.get());
	}
}

BRect
ItemView::SubBounds() const
{
	BRect bounds = Bounds();
	bounds.right -= B_V_SCROLL_BAR_WIDTH;
	bounds.bottom -= B_H_SCROLL_BAR_HEIGHT;
	return bounds;
}

void
ItemView::AttachedToWindow()
{
	fList = new ItemListView(SubBounds(), &fScrollView);
	fList->SetSortFunction(ItemListItem::CompareFiles);
	for (int32 i = 0; i < kItemColumns; i++) {
		fColumns[i] = std::make_unique<CLVColumn>(
			gColumnNames[i], gColumnWidths[i], gColumnFlags[i], kLeastColumnWidth);
		fList->AddColumn(fColumns[i].get());
	}
	fList->SetSortKey(kNameColumn); // only a column that is there can be the key
	AddChild(fScrollView);
	fList->SetInvocationMessage(new BMessage(kMSG_ItemInvocation));
	fList->SetTarget(this);
	fList->MakeFocus(true);
	SetFolder(nullptr, true);
}

void
ItemView::SetFolder(entry_ref* ref, bool force)
{
	if (ref != nullptr) {
		if (*ref == fFolder && !force)
			return;
		fFolder = *ref;
	}
	if (fDirectory.SetTo(&fFolder) != B_OK)
		return;
	fList->Display(fDirectory);
	Invalidate();
}

void
ItemView::Refresh()
{
	SetFolder(nullptr, true);
}

void
ItemView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_SetFolder: {
			entry_ref folder;
			if (message->FindRef(kName_Folder, &folder) == B_OK)
				SetFolder(&folder, false);
			break;
		}
		case kMSG_ItemInvocation:
			Invoked(*message);
			break;
		case kMSG_Refresh:
			Refresh();
			break;
		case B_PASTE:
			// Ends here: the window sends it back to whoever lets it climb.
			break;
		case B_SELECT_ALL:
			fList->SelectAll();
			break;
		default:
			BView::MessageReceived(message);
	}
}

// A message without an index means all selected rows.
void
ItemView::Invoked(const BMessage& message)
{
	int32 index;
	if (message.FindInt32("index", &index) == B_OK) {
		ItemInvoked(index, 0, 1);
		return;
	}
	int32 count = 0;
	while (fList->CurrentSelection(count) >= 0)
		count++;
	for (int32 i = 0; i < count; i++)
		ItemInvoked(fList->CurrentSelection(i), i, count);
}

// The other panes hear of a folder through the window.
void
ItemView::ItemInvoked(int32 index, int32, int32 count)
{
	const ItemListItem* row = fList->RowAt(index);
	if (row == nullptr || !row->IsFolder() || count != 1)
		return;
	BMessage change(kMSG_ChangeFolder);
	change.AddPointer("source", this);
	change.AddRef(kName_Folder, row->GetRef());
	Window()->PostMessage(&change);
}
