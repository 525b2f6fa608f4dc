// SPDX-License-Identifier: MIT

// The rows of a column list and their outline.

#include "clv/ColumnListView.h"
#include "clv/ViewLock.h"

#include <algorithm>

bool
ColumnListView::AddItem(CLVListItem* item)
{
	return AddItem(item, fRows.CountItems());
}

bool
ColumnListView::AddItem(CLVListItem* item, int32 index)
{
	if (item == nullptr || index < 0 || index > fRows.CountItems() || fRows.HasItem(item))
		return false;
	if (fHierarchical) {
		if (!AddItemPrivate(item, index))
			return false;
	} else {
		if (!BListView::AddItem(item, index))
			return false;
		fRows.Insert(index, item, true);
	}
	RowsChanged();
	return true;
}

bool
ColumnListView::AddItemPrivate(CLVListItem* item, int32 index)
{
	bool visible = true;
	if (item->OutlineLevel() > 0) {
		const CLVListItem* parent = fRows.ItemAt(fRows.LastBelowLevel(index, item->OutlineLevel()));
		if (parent == nullptr)
			return false;
		visible = parent->fVisible && parent->BListItem::IsExpanded();
	}
	if (!fRows.Insert(index, item, visible))
		return false;
	if (visible && !BListView::AddItem(item, fRows.CountVisibleBefore(index))) {
		fRows.Remove(index, 1);
		return false;
	}
	// Put before rows of deeper levels it takes these over.
	if (fRows.EndOfSubtree(index) > index + 1)
		ShowOrHideUnder(index);
	return true;
}

bool
ColumnListView::AddItem(BListItem* item)
{
	return AddItem(dynamic_cast<CLVListItem*>(item));
}

bool
ColumnListView::AddItem(BListItem* item, int32 index)
{
	return AddItem(dynamic_cast<CLVListItem*>(item), index);
}

bool
ColumnListView::AddUnder(CLVListItem* item, CLVListItem* superItem)
{
	if (!fHierarchical || !fRows.HasItem(superItem) || item == nullptr || fRows.HasItem(item))
		return false;
	item->SetOutlineLevel(superItem->OutlineLevel() + 1);
	return AddItem(item, fRows.EndOfSubtree(fRows.IndexOf(superItem)));
}

bool
ColumnListView::AddList(BList* items)
{
	return AddList(items, fRows.CountItems());
}

bool
ColumnListView::AddList(BList* items, int32 index)
{
	for (int32 i = 0; i < items->CountItems(); i++) {
		if (!AddItem(static_cast<CLVListItem*>(items->ItemAt(i)), index + i))
			return false;
	}
	return true;
}

bool
ColumnListView::RemoveItem(CLVListItem* item)
{
	return RemoveItem(fRows.IndexOf(item)) != nullptr;
}

bool
ColumnListView::RemoveItem(BListItem* item)
{
	// Compared by its address only.
	return RemoveItem(static_cast<CLVListItem*>(item));
}

BListItem*
ColumnListView::RemoveItem(int32 index)
{
	CLVListItem* item = fRows.ItemAt(index);
	return item != nullptr && RemoveItems(index, 1) ? item : nullptr;
}

bool
ColumnListView::RemoveItems(int32 index, int32 count)
{
	if (index < 0 || index >= fRows.CountItems() || count <= 0)
		return false;
	count = std::min(count, fRows.CountItems() - index);
	if (fHierarchical) {
		uint32 lowest = UINT32_MAX;
		for (int32 i = index; i < index + count; i++)
			lowest = std::min(lowest, fRows.ItemAt(i)->OutlineLevel());
		count = fRows.FirstUpToLevel(index + count, lowest) - index;
	}
	const int32 firstVisible = fRows.CountVisibleBefore(index);
	const int32 visible = fRows.CountVisibleBefore(index + count) - firstVisible;
	if (visible > 0 && !BListView::RemoveItems(firstVisible, visible))
		return false;
	fRows.Remove(index, count);
	RowsChanged();
	return true;
}

void
ColumnListView::MakeEmpty()
{
	BListView::MakeEmpty();
	fRows.MakeEmpty();
	RowsChanged();
}

void
ColumnListView::Expand(CLVListItem* item)
{
	ViewLock lock(this);
	item->SetSuperItem(true);
	if (item->BListItem::IsExpanded())
		return;
	item->SetExpanded(true);
	if (!fHierarchical || !fRows.HasItem(item) || !item->fVisible)
		return;
	const int32 index = fRows.IndexOf(item);
	item->RedrawExpander(this, ItemFrame(fRows.CountVisibleBefore(index)));
	ShowOrHideUnder(index);
	RowsChanged();
}

void
ColumnListView::Collapse(CLVListItem* item)
{
	ViewLock lock(this);
	item->SetSuperItem(true);
	if (!item->BListItem::IsExpanded())
		return;
	item->SetExpanded(false);
	if (!fHierarchical || !fRows.HasItem(item) || !item->fVisible)
		return;
	const int32 index = fRows.IndexOf(item);
	item->RedrawExpander(this, ItemFrame(fRows.CountVisibleBefore(index)));
	ShowOrHideUnder(index);
	RowsChanged();
}

// Brings the visible rows below this one in line with what is expanded. Neighbours come and go at
// once.
void
ColumnListView::ShowOrHideUnder(int32 index)
{
	const CLVListItem* top = fRows.ItemAt(index);
	const int32 end = fRows.EndOfSubtree(index);
	int32 position = fRows.CountVisibleBefore(index + 1); // among the visible rows
	BList coming;
	int32 going = 0;
	auto flush = [&] {
		if (!coming.IsEmpty())
			BListView::AddList(&coming, position);
		position += coming.CountItems();
		coming.MakeEmpty();
		if (going > 0)
			BListView::RemoveItems(position, going);
		going = 0;
	};
	// Rows deeper than this one are hidden; null while none are.
	const CLVListItem* closed = top->fVisible && top->BListItem::IsExpanded() ? nullptr : top;
	for (int32 i = index + 1; i < end; i++) {
		CLVListItem* item = fRows.ItemAt(i);
		if (closed != nullptr && item->OutlineLevel() <= closed->OutlineLevel())
			closed = nullptr;
		const bool show = closed == nullptr;
		if (show && !item->BListItem::IsExpanded())
			closed = item;
		const bool shown = item->fVisible;
		if (shown == show) {
			if (show) {
				flush();
				position++;
			}
			continue;
		}
		if (show ? going > 0 : !coming.IsEmpty())
			flush();
		fRows.SetVisible(item, show);
		if (show)
			coming.AddItem(static_cast<BListItem*>(item));
		else
			going++;
	}
	flush();
}

bool
ColumnListView::IsExpanded(int32 index) const
{
	const CLVListItem* item = fRows.ItemAt(index);
	return item != nullptr && item->BListItem::IsExpanded();
}

int32
ColumnListView::IndexOf(CLVListItem* item) const
{
	const int32 index = fRows.IndexOf(item);
	return index >= 0 && item->fVisible ? fRows.CountVisibleBefore(index) : -1;
}

int32
ColumnListView::FullListIndexOf(BPoint point) const
{
	return fRows.IndexOf(static_cast<CLVListItem*>(ItemAt(BListView::IndexOf(point))));
}

int32
ColumnListView::FullListCurrentSelection(int32 n) const
{
	return fRows.IndexOf(static_cast<CLVListItem*>(ItemAt(CurrentSelection(n))));
}

void
ColumnListView::FullListDoForEach(bool (*visit)(CLVListItem*))
{
	for (int32 i = 0; i < fRows.CountItems(); i++) {
		if (visit(fRows.ItemAt(i)))
			return;
	}
}

void
ColumnListView::FullListDoForEach(bool (*visit)(CLVListItem*, void*), void* argument)
{
	for (int32 i = 0; i < fRows.CountItems(); i++) {
		if (visit(fRows.ItemAt(i), argument))
			return;
	}
}

const BListItem**
ColumnListView::Items() const
{
	return fHierarchical ? fRows.Array() : BListView::Items();
}

CLVListItem*
ColumnListView::Superitem(const CLVListItem* item) const
{
	const int32 index = fRows.IndexOf(item);
	return index < 0 ? nullptr : fRows.ItemAt(fRows.LastBelowLevel(index, item->OutlineLevel()));
}

int32
ColumnListView::FullListNumberOfSubitems(const CLVListItem* item) const
{
	const int32 index = fRows.IndexOf(item);
	return index < 0 || !fHierarchical ? 0 : fRows.EndOfSubtree(index) - index - 1;
}

// Walks the rows below an item until the visitor returns one.
template <typename Visit>
CLVListItem*
ColumnListView::VisitUnder(const CLVListItem* item, bool directOnly, Visit visit) const
{
	int32 index = fRows.IndexOf(item);
	if (index < 0)
		return nullptr;
	const uint32 level = item->OutlineLevel();
	CLVListItem* result = nullptr;
	while (result == nullptr) {
		CLVListItem* below = fRows.ItemAt(++index);
		if (below == nullptr || below->OutlineLevel() <= level)
			break;
		if (!directOnly || below->OutlineLevel() == level + 1)
			result = visit(below);
	}
	return result;
}

int32
ColumnListView::CountItemsUnder(CLVListItem* item, bool directOnly) const
{
	if (!fRows.HasItem(item))
		return -1;
	int32 count = 0;
	VisitUnder(item, directOnly, [&](CLVListItem*) -> CLVListItem* {
		count++;
		return nullptr;
	});
	return count;
}

CLVListItem*
ColumnListView::ItemUnderAt(CLVListItem* item, bool directOnly, int32 index) const
{
	if (index <= 0)
		return nullptr;
	return VisitUnder(
		item, directOnly, [&](CLVListItem* below) { return --index == 0 ? below : nullptr; });
}

CLVListItem*
ColumnListView::EachItemUnder(
	CLVListItem* item, bool directOnly, CLVListItem* (*visit)(CLVListItem*, void*), void* argument)
{
	return VisitUnder(item, directOnly, [&](CLVListItem* below) { return visit(below, argument); });
}
