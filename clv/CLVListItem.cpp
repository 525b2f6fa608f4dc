// SPDX-License-Identifier: MIT

#include "clv/CLVListItem.h"

#include "clv/CLVColumn.h"
#include "clv/ColumnListView.h"
#include "clv/OutlineList.h"

#include <interface/Region.h>

#include <algorithm>
#include <cmath>

static constexpr float kLevelIndent = 20;
static constexpr float kArrowExtent = kCLVArrowSize - 1; // last pixel minus first
static constexpr float kArrowGap = 3;                    // to the column's end

// Arrows lie on whole pixels; this rectangle holds no point.
static const BRect kNoArrow(-1, -1, -2, -2);

// What all cells of a row have in common.
struct CLVListItem::RowDrawing {
	RowDrawing(ColumnListView* owner, BRect itemRect, const CLVListItem& item, bool drawAll);

	ColumnListView* list;
	BRect row;
	float indent;
	float limit; // indented cells and the arrow end here
	bool complete;
	BRegion region;
};

CLVListItem::RowDrawing::RowDrawing(
	ColumnListView* owner, BRect itemRect, const CLVListItem& item, bool drawAll) :
	list(owner),
	row(itemRect),
	indent(kLevelIndent * static_cast<float>(item.OutlineLevel())),
	complete(drawAll)
{
	// A row's frame is as wide as the list and starts at 0, however far the list is scrolled.
	row.right += std::max(owner->Bounds().left, 0.0f);
	limit = row.right;
	const std::vector<CLVColumn*>& columns = owner->fDisplayOrder;
	for (auto column = columns.rbegin(); column != columns.rend(); ++column) {
		const bool expander = ((*column)->Flags() & CLV_COLUMN_EXPANDER) != 0;
		if ((*column)->IsShown() && (expander || (*column)->IsPushed())) {
			limit = std::min(limit, (*column)->End());
			break;
		}
	}
	if (complete)
		region.Set(row);
	else
		owner->GetClippingRegion(&region);
}

CLVListItem::CLVListItem(uint32 level, bool superItem, bool expanded, float minHeight) :
	BListItem(level, expanded),
	fMinHeight(minHeight),
	fExpanderButtonRect(kNoArrow),
	fSuperItem(superItem)
{}

void
CLVListItem::SetOutlineLevel(uint32 level)
{
	if (fBlock != nullptr && level != OutlineLevel())
		OutlineList::LevelChanged();
	BListItem::SetOutlineLevel(level);
}

void
CLVListItem::MouseOver(ColumnListView*, BPoint, uint32, const BMessage*)
{}

void
CLVListItem::Update(BView* owner, const BFont* font)
{
	BListItem::Update(owner, font);
	if (Height() < fMinHeight)
		SetHeight(fMinHeight);
	SetWidth(static_cast<ColumnListView*>(owner)->DataRectWidth());
}

void
CLVListItem::DrawItem(BView* owner, BRect itemRect, bool complete)
{
	const RowDrawing drawing(static_cast<ColumnListView*>(owner), itemRect, *this, complete);
	fExpanderButtonRect = kNoArrow;
	float end = -1;
	for (const CLVColumn* column : drawing.list->fDisplayOrder) {
		if (!column->IsShown())
			continue;
		BRect cell(column->Begin(), itemRect.top, column->End(), itemRect.bottom);
		end = column->End();
		if ((column->Flags() & CLV_COLUMN_EXPANDER) != 0) {
			DrawExpanderCell(drawing, *column, cell);
			continue;
		}
		const float shift = column->IsPushed() ? drawing.indent : 0;
		cell.OffsetBy(shift, 0);
		if (shift > 0)
			cell.right = std::min(cell.right, drawing.limit);
		if (cell.left <= cell.right && drawing.region.Intersects(cell))
			DrawItemColumn(owner, cell, drawing.list->IndexOfColumn(column), complete);
	}
	const BRect rest(end + 1, itemRect.top, owner->Bounds().right, itemRect.bottom);
	if (rest.left <= rest.right && drawing.region.Intersects(rest))
		DrawItemColumn(owner, rest, -1, complete);
}

void
CLVListItem::DrawExpanderCell(const RowDrawing& drawing, const CLVColumn& column, BRect cell)
{
	ColumnListView* list = drawing.list;
	if (drawing.region.Intersects(cell))
		DrawItemColumn(list, cell, list->IndexOfColumn(&column), drawing.complete);
	fExpanderButtonRect = kNoArrow;
	const float left = cell.right + drawing.indent - kArrowGap - kArrowExtent;
	if (!fSuperItem || left > drawing.limit)
		return;
	const float top = cell.top + std::ceil((cell.Height() - kArrowExtent) / 2);
	const float width = kArrowExtent - std::max(left + kArrowExtent - drawing.limit, 0.0f);
	fExpanderButtonRect.Set(left, top, left + width, top + kArrowExtent);
	list->SetDrawingMode(B_OP_OVER);
	list->DrawBitmap(IsExpanded() ? &list->fDownArrow : &list->fRightArrow,
		BRect(0, 0, width, kArrowExtent), fExpanderButtonRect);
	list->SetDrawingMode(B_OP_COPY);
}

void
CLVListItem::RedrawExpander(ColumnListView* list, BRect itemRect)
{
	const CLVColumn* column = list->ColumnAt(list->fExpanderColumn);
	if (column == nullptr || list->Window() == nullptr)
		return;
	const RowDrawing drawing(list, itemRect, *this, true);
	DrawExpanderCell(
		drawing, *column, BRect(column->Begin(), itemRect.top, column->End(), itemRect.bottom));
	// Deeper in the outline the arrow lies right of its cell, on nothing that would erase the old
	// one: that is left to the next update.
	list->Invalidate(fExpanderButtonRect);
}
