// SPDX-License-Identifier: MIT

#include "panes/ItemListView.h"

#include "panes/ItemListItem.h"
#include "panes/ReadRows.h"

#include <support/List.h>

ItemListView::ItemListView(BRect frame, BScrollView** container) :
	FileListView(frame, container, "itemlist", B_MULTIPLE_SELECTION_LIST, false)
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

int8
ItemListView::GetPane()
{
	return 'I';
}

ItemListItem*
ItemListView::RowAt(int32 index) const
{
	return static_cast<ItemListItem*>(ItemAt(index));
}
