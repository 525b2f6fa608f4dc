// SPDX-License-Identifier: MIT

// The sort keys of a column list, and sorting by them.

#include "clv/CLVColumnLabelView.h"
#include "clv/ColumnListView.h"
#include "clv/ExchangeOrder.h"
#include "clv/ViewLock.h"

#include <algorithm>

static bool
IsSortable(const CLVColumn* column)
{
	return (column->Flags() & CLV_COLUMN_SORTABLE) != 0;
}

void
ColumnListView::SetSortKey(int32 index)
{
	ViewLock lock(this);
	CLVColumn* column = ColumnAt(index);
	if (column != nullptr &&
		(!IsSortable(column) || (!fSortKeys.empty() && fSortKeys.front() == column)))
		return;
	DropSortKeys();
	if (column != nullptr)
		ColumnListView::AddSortKey(index);
}

void
ColumnListView::AddSortKey(int32 index)
{
	ViewLock lock(this);
	CLVColumn* column = ColumnAt(index);
	if (column == nullptr || !IsSortable(column) || IsSortKey(column))
		return;
	// It may still be a key of a list that it was removed from.
	if (column->fKeyOf != nullptr)
		column->fKeyOf->DropSortKey(column);
	fSortKeys.push_back(column);
	column->fKeyOf = this;
	if (column->SortMode() == CLV_SORT_NONE)
		SetSortMode(index, CLV_SORT_ASCENDING); // sorts
	else
		SortItems();
	InvalidateLabel(column);
}

void
ColumnListView::SetSortMode(int32 index, CLVSortMode mode)
{
	ViewLock lock(this);
	CLVColumn* column = ColumnAt(index);
	if (column == nullptr || !IsSortable(column) || column->fSortMode == mode)
		return;
	column->fSortMode = mode;
	if (mode == CLV_SORT_NONE)
		DropSortKey(column);
	SortItems();
	InvalidateLabel(column);
}

// Reversing a descending key switches it off: the header's third click means "unsorted".
void
ColumnListView::ReverseSortMode(int32 index)
{
	ViewLock lock(this);
	const CLVColumn* column = ColumnAt(index);
	if (column == nullptr)
		return;
	switch (column->SortMode()) {
		case CLV_SORT_ASCENDING:
			SetSortMode(index, CLV_SORT_DESCENDING);
			break;
		case CLV_SORT_DESCENDING:
			SetSortMode(index, CLV_SORT_NONE);
			break;
		case CLV_SORT_NONE:
			SetSortMode(index, CLV_SORT_ASCENDING);
			break;
	}
}

int32
ColumnListView::Sorting(int32* keys, CLVSortMode* modes) const
{
	ViewLock lock(const_cast<ColumnListView*>(this));
	for (size_t i = 0; i < fSortKeys.size(); i++) {
		keys[i] = IndexOfColumn(fSortKeys[i]);
		modes[i] = fSortKeys[i]->SortMode();
	}
	return static_cast<int32>(fSortKeys.size());
}

void
ColumnListView::SetSorting(int32 count, int32* keys, CLVSortMode* modes)
{
	ViewLock lock(this);
	DropSortKeys();
	for (int32 i = 0; i < count; i++) {
		if (i == 0)
			SetSortKey(keys[i]);
		else
			AddSortKey(keys[i]);
		SetSortMode(keys[i], modes[i]);
	}
}

bool
ColumnListView::IsSortKey(const CLVColumn* column) const
{
	return std::find(fSortKeys.begin(), fSortKeys.end(), column) != fSortKeys.end();
}

void
ColumnListView::DropSortKey(CLVColumn* column)
{
	if (std::erase(fSortKeys, column) > 0)
		column->fKeyOf = nullptr;
}

void
ColumnListView::DropSortKeys()
{
	for (CLVColumn* column : fSortKeys) {
		InvalidateLabel(column);
		column->fKeyOf = nullptr;
	}
	fSortKeys.clear();
}

void
ColumnListView::InvalidateLabel(const CLVColumn* column)
{
	if (!column->IsShown())
		return;
	const BRect bounds = fLabelView->Bounds();
	fLabelView->Invalidate(BRect(column->Begin(), bounds.top, column->End(), bounds.bottom));
}

int
ColumnListView::CompareByKeys(const CLVListItem* a, const CLVListItem* b) const
{
	for (const auto& [column, descending] : fComparedColumns) {
		const int result = fSortFunction(a, b, column);
		if (result != 0)
			return descending ? -result : result;
	}
	return 0;
}

int
ColumnListView::PlainBListSortFunc(const void* a, const void* b)
{
	const auto item = [](const void* slot) {
		return static_cast<const CLVListItem*>(*static_cast<BListItem* const*>(slot));
	};
	return item(a)->fOwner->CompareByKeys(item(a), item(b));
}

int
ColumnListView::HierarchicalBListSortFunc(const void* a, const void* b)
{
	const auto index = [](const void* slot) {
		return static_cast<const CLVListItem*>(*static_cast<BListItem* const*>(slot))->fSortedIndex;
	};
	return index(a) < index(b) ? -1 : 1;
}

void
ColumnListView::SortItems()
{
	ViewLock lock(this);
	if (fRows.CountItems() == 0 || fSortFunction == nullptr || fSortKeys.empty())
		return;
	fComparedColumns.clear();
	for (const CLVColumn* key : fSortKeys)
		fComparedColumns.emplace_back(IndexOfColumn(key), key->SortMode() == CLV_SORT_DESCENDING);
	if (fHierarchical) {
		SortOutline();
		RowsChanged();
		return;
	}
	std::vector<CLVListItem*> items = fRows.Copy();
	for (CLVListItem* item : items)
		item->fOwner = this;
	BListView::SortItems(PlainBListSortFunc);
	for (int32 i = 0; i < CountItems(); i++)
		items[static_cast<size_t>(i)] = static_cast<CLVListItem*>(ItemAt(i));
	fRows.Reorder(items);
	RowsChanged();
}

namespace {

// The rows of an outline on one level, in their new order, while those below them are put out.
struct Siblings {
	std::vector<int32> rows;
	size_t next = 0;
};

} // namespace

// Sorts the rows of each level below the same row among themselves; what lies below a row goes
// with it. No recursion: an outline may be deeper than a stack.
void
ColumnListView::SortOutline()
{
	const std::vector<CLVListItem*> items = fRows.Copy();
	const int32 count = static_cast<int32>(items.size());
	const auto item = [&](int32 row) { return items[static_cast<size_t>(row)]; };

	// The row behind each one and all that is below it.
	std::vector<int32> behind(items.size());
	std::vector<int32> open;
	for (int32 row = count - 1; row >= 0; row--) {
		while (!open.empty() && item(open.back())->OutlineLevel() > item(row)->OutlineLevel())
			open.pop_back();
		behind[static_cast<size_t>(row)] = open.empty() ? count : open.back();
		open.push_back(row);
	}

	std::vector<Siblings> levels;
	const auto enter = [&](int32 row, int32 end) {
		Siblings siblings;
		// Rows that were given levels with gaps make several runs; none may get lost.
		while (row < end) {
			const size_t begin = siblings.rows.size();
			const uint32 level = item(row)->OutlineLevel();
			std::vector<CLVListItem*> run;
			for (; row < end && item(row)->OutlineLevel() == level;
				 row = behind[static_cast<size_t>(row)]) {
				siblings.rows.push_back(row);
				item(row)->fSortedIndex = row;
				run.push_back(item(row));
			}
			SortListArray(run);
			for (size_t i = 0; i < run.size(); i++)
				siblings.rows[begin + i] = run[i]->fSortedIndex;
		}
		levels.push_back(std::move(siblings));
	};
	std::vector<CLVListItem*> sorted;
	sorted.reserve(items.size());
	enter(0, count);
	while (!levels.empty()) {
		Siblings& siblings = levels.back();
		if (siblings.next == siblings.rows.size()) {
			levels.pop_back();
			continue;
		}
		const int32 row = siblings.rows[siblings.next++];
		sorted.push_back(item(row));
		if (behind[static_cast<size_t>(row)] > row + 1)
			enter(row + 1, behind[static_cast<size_t>(row)]);
	}

	for (int32 i = 0; i < count; i++) {
		sorted[static_cast<size_t>(i)]->fOwner = this;
		sorted[static_cast<size_t>(i)]->fSortedIndex = i;
	}
	fRows.Reorder(sorted);
	BListView::SortItems(HierarchicalBListSortFunc);
}

// As an exchange sort leaves them, which decides how equal rows follow each other.
void
ColumnListView::SortListArray(std::vector<CLVListItem*>& items) const
{
	const std::vector<CLVListItem*> before = items;
	const auto compare = [&](int32 a, int32 b) {
		return CompareByKeys(before[static_cast<size_t>(a)], before[static_cast<size_t>(b)]);
	};
	const std::vector<int32> order = ExchangeOrder(static_cast<int32>(items.size()), compare);
	for (size_t i = 0; i < items.size(); i++)
		items[i] = before[static_cast<size_t>(order[i])];
}
