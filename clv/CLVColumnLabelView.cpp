// SPDX-License-Identifier: MIT

// The header of a column list: how it looks.

#include "clv/CLVColumnLabelView.h"

#include "clv/ColumnListView.h"

#include <algorithm>
#include <cmath>

static constexpr rgb_color kLight = {255, 255, 255, 255};
static constexpr rgb_color kDark = {152, 152, 152, 255};
static constexpr rgb_color kRed = {229, 0, 0, 255};
static constexpr float kTextIndent = 9;
static constexpr float kUnderlineIndent = 8;
static constexpr float kTextTop = 2;
static constexpr float kUnderlineDrop = 2; // below the baseline

static float
AscentOf(const BFont* font)
{
	font_height height;
	font->GetHeight(&height);
	return std::ceil(height.ascent);
}

// The strip right of the columns is drawn to the view's edge, so a resize redraws all.
CLVColumnLabelView::CLVColumnLabelView(BRect frame, ColumnListView* parent, const BFont* font) :
	BView(
		frame, nullptr, B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE),
	fParent(parent),
	fAscent(AscentOf(font))
{
	SetFont(font);
	SetViewColor(216, 216, 216);
	SetLowColor(216, 216, 216);
	SetHighColor(0, 0, 0);
}

void
CLVColumnLabelView::Draw(BRect)
{
	DrawCells();
	SetDrawingMode(B_OP_OVER);
	for (const CLVColumn* column : fParent->fDisplayOrder) {
		if (column->IsShown() && column->Label() != nullptr)
			DrawLabel(*column);
	}
	SetDrawingMode(B_OP_COPY);
	if (fDragging) {
		const BRect bounds = Bounds();
		BeginLineArray(2);
		for (const float x : {fOutlineLeft, fOutlineRight})
			AddLine(BPoint(x, bounds.top), BPoint(x, bounds.bottom), kRed);
		EndLineArray();
	}
}

void
CLVColumnLabelView::DrawCells()
{
	const BRect bounds = Bounds();
	const auto addCell = [&](float left, float right, bool leftEdge, bool rightEdge,
							 rgb_color rightColor) {
		AddLine(BPoint(left, bounds.top), BPoint(right, bounds.top), kLight);
		if (leftEdge)
			AddLine(BPoint(left, bounds.top), BPoint(left, bounds.bottom), kLight);
		AddLine(BPoint(left, bounds.bottom), BPoint(right, bounds.bottom), kDark);
		if (rightEdge)
			AddLine(BPoint(right, bounds.top), BPoint(right, bounds.bottom), rightColor);
	};
	const std::vector<CLVColumn*>& columns = fParent->fDisplayOrder;
	const auto last = std::find_if(columns.rbegin(), columns.rend(),
		[](const CLVColumn* column) { return column->IsShown(); });
	BeginLineArray(4 * (static_cast<int32>(columns.size()) + 1));
	bool merged = false; // with the cell before
	float end = -1;
	for (const CLVColumn* column : columns) {
		if (!column->IsShown())
			continue;
		const bool merges =
			(column->Flags() & CLV_COLUMN_MERGE_LABEL_RIGHT) != 0 && column != *last;
		const bool resized = fResizing && column == fClickedColumn;
		end = column->End();
		addCell(column->Begin(), end, !merged, !merges || resized, resized ? kRed : kDark);
		merged = merges;
	}
	if (bounds.right > end)
		addCell(end + 1, bounds.right, true, true, kDark);
	EndLineArray();
}

void
CLVColumnLabelView::DrawLabel(const CLVColumn& column)
{
	const BRect bounds = Bounds();
	// A long label leaves the separator as it is.
	BRegion cell(BRect(column.Begin(), bounds.top, column.End() - 1, bounds.bottom));
	ConstrainClippingRegion(&cell);
	const float baseline = bounds.top + kTextTop + fAscent;
	if (&column == fClickedColumn && !fResizing)
		SetHighColor(kRed);
	DrawString(column.Label(), BPoint(column.Begin() + kTextIndent, baseline));
	SetHighColor(0, 0, 0);
	if (fParent->IsSortKey(&column) && column.SortMode() != CLV_SORT_NONE) {
		const float left = column.Begin() + kUnderlineIndent;
		const float y = baseline + kUnderlineDrop;
		StrokeLine(BPoint(left, y), BPoint(left + StringWidth(column.Label()), y));
	}
	ConstrainClippingRegion(nullptr);
}
