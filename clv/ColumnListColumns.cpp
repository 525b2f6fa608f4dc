// SPDX-License-Identifier: MIT

// The columns of a column list: adding, removing, their order and their widths.

#include "clv/CLVColumnLabelView.h"
#include "clv/ColumnListView.h"
#include "clv/ViewLock.h"

#include <interface/Window.h>

#include <algorithm>
#include <cmath>

static bool
IsExpander(const CLVColumn* column)
{
	return (column->Flags() & CLV_COLUMN_EXPANDER) != 0;
}

bool
ColumnListView::AddColumn(CLVColumn* column)
{
	BList one(1);
	return one.AddItem(column) && ColumnListView::AddColumnList(&one);
}

bool
ColumnListView::AddColumnList(BList* list)
{
	ViewLock lock(this);
	std::vector<CLVColumn*> added;
	for (int32 i = 0; i < list->CountItems(); i++) {
		CLVColumn* column = static_cast<CLVColumn*>(list->ItemAt(i));
		if (column == nullptr || column->fParent != nullptr ||
			std::find(added.begin(), added.end(), column) != added.end())
			return false;
		added.push_back(column);
	}
	const auto expanders = std::count_if(added.begin(), added.end(), IsExpander) +
		std::count_if(fColumns.begin(), fColumns.end(), IsExpander);
	if (expanders > (fHierarchical ? 1 : 0))
		return false;
	for (CLVColumn* column : added)
		column->fParent = this;
	fDisplayOrder.insert(fDisplayOrder.end(), added.begin(), added.end());
	fColumns.insert(fColumns.end(), added.begin(), added.end());
	FindExpanderColumn();
	ColumnsChanged();
	return true;
}

bool
ColumnListView::RemoveColumn(CLVColumn* column)
{
	ViewLock lock(this);
	if (IndexOfColumn(column) < 0)
		return false;
	DropSortKey(column);
	std::erase(fDisplayOrder, column);
	std::erase(fColumns, column);
	column->fParent = nullptr;
	FindExpanderColumn();
	ColumnsChanged();
	return true;
}

// Never reaches the last column, and of the removed ones only the first stops being a sort key:
// callers rely on both.
bool
ColumnListView::RemoveColumns(CLVColumn* first, int32 count)
{
	ViewLock lock(this);
	const int32 index = IndexOfColumn(first);
	if (index < 0 || count < 0 || count >= CountColumns() - index)
		return false;
	if (count > 0)
		DropSortKey(first);
	const auto begin = fColumns.begin() + index;
	for (auto i = begin; i != begin + count; ++i) {
		std::erase(fDisplayOrder, *i);
		(*i)->fParent = nullptr;
	}
	fColumns.erase(begin, begin + count);
	FindExpanderColumn();
	ColumnsChanged();
	return true;
}

void
ColumnListView::FindExpanderColumn()
{
	fExpanderColumn = -1;
	for (size_t i = 0; i < fColumns.size(); i++) {
		if (IsExpander(fColumns[i]) && fColumns[i]->IsShown())
			fExpanderColumn = static_cast<int32>(i);
	}
}

int32
ColumnListView::IndexOfColumn(const CLVColumn* column) const
{
	auto found = std::find(fColumns.begin(), fColumns.end(), column);
	return found == fColumns.end() ? -1 : static_cast<int32>(found - fColumns.begin());
}

int32
ColumnListView::IndexOfColumn(BPoint point) const
{
	float x = point.x;
	for (const CLVColumn* column : fDisplayOrder) {
		x -= column->Width();
		if (x < 0)
			return IndexOfColumn(column);
	}
	return -1;
}

CLVColumn*
ColumnListView::ColumnAt(int32 index) const
{
	return index >= 0 && index < CountColumns() ? fColumns[static_cast<size_t>(index)] : nullptr;
}

int32*
ColumnListView::DisplayOrder() const
{
	// As long as all columns even if a bad SetDisplayOrder() has left fewer; those are -1.
	int32* order = new int32[fColumns.size()];
	std::fill_n(order, fColumns.size(), -1);
	for (size_t i = 0; i < fDisplayOrder.size(); i++)
		order[i] = IndexOfColumn(fDisplayOrder[i]);
	return order;
}

bool
ColumnListView::SetDisplayOrder(const int32* order)
{
	bool complete = true;
	{
		ViewLock lock(this);
		fDisplayOrder.clear();
		for (int32 i = 0; i < CountColumns() && complete; i++) {
			CLVColumn* column = ColumnAt(order[i]);
			complete = column != nullptr &&
				std::find(fDisplayOrder.begin(), fDisplayOrder.end(), column) ==
					fDisplayOrder.end();
			if (complete)
				fDisplayOrder.push_back(column);
		}
		// Of an order that was broken off too: the header must not go on with the old one.
		ColumnsChanged();
	}
	if (complete)
		DisplayOrderChanged(order);
	return complete;
}

// The header has moved columns.
void
ColumnListView::SetDisplayColumns(std::vector<CLVColumn*> order)
{
	fDisplayOrder = std::move(order);
	Changed();
	const std::unique_ptr<int32[]> numbers(DisplayOrder());
	DisplayOrderChanged(numbers.get());
}

void
ColumnListView::ColumnWidthChanged(int32, float)
{}

void
ColumnListView::DisplayOrderChanged(const int32*)
{}

void
ColumnListView::InvalidateFrom(float left)
{
	BRect bounds = Bounds();
	Invalidate(BRect(left, bounds.top, bounds.right, bounds.bottom));
	bounds = fLabelView->Bounds();
	fLabelView->Invalidate(BRect(left, bounds.top, bounds.right, bounds.bottom));
}

// Moves what lies right of a column that became wider by `delta`, so that only the column itself
// and what is uncovered has to be drawn. `oldEnd` is from before. `edge`: so many pixels at the
// view's right edge belong to that and do not move.
static void
ShiftRightOf(BView* view, float begin, float oldEnd, float delta, float edge)
{
	const BRect bounds = view->Bounds();
	const BRect changed(begin, bounds.top, bounds.right, bounds.bottom);
	BRect movable = bounds;
	movable.right -= edge;
	BRect from = movable;
	from.left = std::max(bounds.left, oldEnd + 1);
	const BRect to = from.OffsetByCopy(delta, 0) & movable;
	from = to.OffsetByCopy(-delta, 0);
	// Columns may lie between pixels; then they round to other ones.
	if (!to.IsValid() || delta != std::floor(delta) || oldEnd != std::floor(oldEnd)) {
		view->Invalidate(changed);
		return;
	}
	view->CopyBits(from, to);
	view->Invalidate(BRect(changed.left, changed.top, to.left - 1, changed.bottom));
	view->Invalidate(BRect(to.right + 1, changed.top, changed.right, changed.bottom));
}

void
ColumnListView::ColumnResized(const CLVColumn& column, float delta)
{
	if (Window() != nullptr) {
		// With the columns' old places, before anything is moved.
		Window()->UpdateIfNeeded();
		ShiftRightOf(fLabelView, column.Begin(), column.End(), delta, 1);
		// The arrows of an outline reach over the columns behind theirs, which a copy would tear.
		if (column.IsPushed() || IsExpander(&column))
			Invalidate(BRect(column.Begin(), Bounds().top, Bounds().right, Bounds().bottom));
		else
			ShiftRightOf(this, column.Begin(), column.End(), delta, 0);
	}
	Changed();
}

void
ColumnListView::ColumnShown(const CLVColumn& column, float oldBegin)
{
	FindExpanderColumn();
	Changed();
	InvalidateFrom(column.IsShown() ? column.Begin() : oldBegin);
}
