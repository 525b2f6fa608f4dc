// SPDX-License-Identifier: MIT

#include "panes/ItemListView.h"

#include "panes/ItemListItem.h"
#include "panes/ReadRows.h"

#include <support/List.h>

ItemListView::ItemListView(BRect frame, BScrollView** container) :
	ColumnListView(frame, container, "itemlist", B_FOLLOW_ALL_SIDES,
		B_WILL_DRAW | B_PULSE_NEEDED | B_FRAME_EVENTS | B_NAVIGABLE, B_MULTIPLE_SELECTION_LIST,
		false, true, true, B_FANCY_BORDER, be_plain_font)
{}

ItemListView::~ItemListView()
{
	DeleteRows();
}

void
ItemListView::DeleteRows()
{
	ItemRows rows;
	rows.reserve(static_cast<size_t>(CountItems()));
	for (int32 i = 0; i < CountItems(); i++)
		rows.emplace_back(RowAt(i));
	MakeEmpty();
}

void
ItemListView::Display(BDirectory& folder)
{
	DeleteRows();
	ScrollTo(BPoint(0, 0));
	ItemRows rows = ReadRows(folder);
	BList items(static_cast<int32>(rows.size()));
	for (std::unique_ptr<ItemListItem>& row : rows)
		items.AddItem(static_cast<CLVListItem*>(row.release()));
	AddList(&items);
	SortItems();
}

void
ItemListView::SelectAll()
{
	Select(0, CountItems() - 1);
}

ItemListItem*
ItemListView::RowAt(int32 index) const
{
	return static_cast<ItemListItem*>(ItemAt(index));
}
