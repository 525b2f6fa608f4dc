// SPDX-License-Identifier: MIT

#include "panes/NameList.h"

#include <interface/ScrollView.h>
#include <storage/Directory.h>
#include <support/List.h>

NameList::NameList(BRect frame, const char* name, list_view_type type) :
	BListView(frame, name, type, B_FOLLOW_ALL_SIDES)
{}

NameList::~NameList()
{
	DeleteRows();
}

void
NameList::DeleteRows()
{
	BList rows;
	for (int32 i = 0; i < CountItems(); i++)
		rows.AddItem(ItemAt(i));
	MakeEmpty();
	for (int32 i = 0; i < rows.CountItems(); i++)
		delete static_cast<NameItem*>(rows.ItemAt(i));
}

void
NameList::ShowFolder(const entry_ref& folder, bool foldersOnly)
{
	DeleteRows();
	BDirectory directory(&folder);
	BList rows;
	entry_ref ref;
	while (directory.GetNextRef(&ref) == B_OK) {
		if (!foldersOnly || BEntry(&ref).IsDirectory())
			rows.AddItem(new NameItem(ref));
	}
	AddList(&rows);
	ScrollTo(BPoint(0, 0));
}

const NameItem*
NameList::RowAt(int32 index) const
{
	return static_cast<const NameItem*>(ItemAt(index));
}

BView*
NameList::InScrollView(BRect bounds, NameList** list, const char* name, list_view_type type)
{
	constexpr float kBorder = 2;
	bounds.InsetBy(kBorder, kBorder);
	bounds.right -= B_V_SCROLL_BAR_WIDTH;
	*list = new NameList(bounds, name, type);
	return new BScrollView(nullptr, *list, B_FOLLOW_ALL_SIDES, 0, false, true, B_FANCY_BORDER);
}
