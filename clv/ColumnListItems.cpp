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
	BList one(1);
	return one.AddItem(static_cast<BListItem*>(item)) && AddRows(one, index);
}

// Adds rows behind each other, up to the first one that does not fit; then it is false. Many go in
// as quickly as one.
bool
ColumnListView::AddRows(const BList& items, int32 index)
{
	if (index < 0 || index > fRows.CountItems())
		return items.IsEmpty();
	const int32 position = fRows.CountVisibleBefore(index);
	BList visibleOnes(items.CountItems());
	int32 end = index;
	while (end - index < items.CountItems()) {
		CLVListItem* item = static_cast<CLVListItem*>(items.ItemAt(end - index));
		bool visible = true;
		if (item == nullptr || !FitsAt(*item, end, &visible) || !fRows.Insert(end, item, visible))
			break;
		end++;
		if (visible)
			visibleOnes.AddItem(static_cast<BListItem*>(item));
	}
	if (end > index) {
		if (!visibleOnes.IsEmpty() && !BListView::AddList(&visibleOnes, position)) {
			fRows.Remove(index, end - index);
			return false;
		}
		TakeOverRowsBehind(index, end);
		RowsChanged();
	}
	return end - index == items.CountItems();
}

// Whether a row of this level may stand there, and whether it would be visible.
bool
ColumnListView::FitsAt(const CLVListItem& item, int32 index, bool* visible) const
{
	if (!fHierarchical || item.OutlineLevel() == 0)
		return true;
	const CLVListItem* parent = fRows.ItemAt(fRows.LastBelowLevel(index, item.OutlineLevel()));
	*visible = parent != nullptr && parent->fVisible && parent->BListItem::IsExpanded();
	return parent != nullptr;
}

// Rows that were put before rows of deeper levels have these below them from now on.
void
ColumnListView::TakeOverRowsBehind(int32 index, int32 end)
{
	const CLVListItem* behind = fRows.ItemAt(end);
	if (!fHierarchical || behind == nullptr)
		return;
	int32 outermost = -1;
	int32 parent = fRows.LastBelowLevel(end, behind->OutlineLevel());
	while (parent >= index) {
		outermost = parent;
		parent = fRows.LastBelowLevel(parent, fRows.ItemAt(parent)->OutlineLevel());
	}
	if (outermost >= 0)
		ShowOrHideUnder(outermost);
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
	return items != nullptr && AddRows(*items, index);
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
	if (!fRows.HasItem(fItemUnderMouse))
		fItemUnderMouse = nullptr; // it may be deleted now, and a new one have its address
	RowsChanged();
	return true;
}

void
ColumnListView::RemoveRows(const std::vector<CLVListItem*>& items)
{
	if (fHierarchical) {
		for (CLVListItem* item : items)
			RemoveItem(item);
		return;
	}
	std::vector<int32> rows;
	rows.reserve(items.size());
	for (CLVListItem* item : items) {
		if (const int32 row = fRows.IndexOf(item); row >= 0)
			rows.push_back(row);
	}
	std::sort(rows.begin(), rows.end());
	rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
	if (rows.empty() || !BListView::RemoveRows(rows))
		return;
	for (auto row = rows.rbegin(); row != rows.rend(); ++row)
		fRows.Remove(*row, 1);
	RowsChanged();
}

void
ColumnListView::MakeEmpty()
{
	BListView::MakeEmpty();
	fRows.MakeEmpty();
	fItemUnderMouse = nullptr;
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
