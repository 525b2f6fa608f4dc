// SPDX-License-Identifier: MIT

#include "clv/CLVColumn.h"

#include "clv/ColumnListView.h"
#include "clv/ViewLock.h"

#include <algorithm>

static constexpr float kLeastWidth = 4;
static constexpr float kExpanderWidth = 20;

static constexpr uint32 kExpanderKeeps = 0xaa; // not movable, at start, hidden, with right
static constexpr uint32 kExpanderAlways =
	CLV_COLUMN_EXPANDER | CLV_COLUMN_NOT_RESIZABLE | CLV_COLUMN_MERGE_LABEL_RIGHT;

CLVColumn::CLVColumn(const char* label, float width, uint32 flags, float minWidth) :
	fHasLabel(label != nullptr && (flags & CLV_COLUMN_EXPANDER) == 0), fFlags(flags)
{
	if ((flags & CLV_COLUMN_EXPANDER) != 0) {
		width = minWidth = kExpanderWidth;
		fFlags = (flags & kExpanderKeeps) | kExpanderAlways;
	}
	if (fHasLabel)
		fLabel = label;
	fMinWidth = std::max(minWidth, kLeastWidth);
	fWidth = std::max(width, fMinWidth);
}

CLVColumn::~CLVColumn()
{
	if (fParent != nullptr)
		fParent->RemoveColumn(this);
	if (fKeyOf != nullptr) {
		ViewLock lock(fKeyOf);
		fKeyOf->DropSortKey(this);
	}
}

void
CLVColumn::SetWidth(float width)
{
	width = std::max(width, fMinWidth);
	ColumnListView* parent = fParent;
	if (parent == nullptr) {
		fWidth = width;
		return;
	}
	int32 index;
	{
		ViewLock lock(parent);
		if (width == fWidth)
			return;
		const float delta = width - fWidth;
		fWidth = width;
		if (IsShown())
			parent->ColumnResized(*this, delta);
		index = parent->IndexOfColumn(this);
	}
	parent->ColumnWidthChanged(index, width);
}

void
CLVColumn::SetShown(bool shown)
{
	if (fParent != nullptr) {
		ViewLock lock(fParent);
		if (shown != IsShown()) {
			const float oldBegin = fBegin;
			fFlags ^= CLV_COLUMN_HIDDEN;
			fParent->ColumnShown(*this, oldBegin);
		}
	} else if (shown != IsShown())
		fFlags ^= CLV_COLUMN_HIDDEN;
}

void
CLVColumn::SetSortMode(CLVSortMode mode)
{
	if (fParent != nullptr) {
		ViewLock lock(fParent);
		fParent->SetSortMode(fParent->IndexOfColumn(this), mode);
	} else
		fSortMode = mode;
}

float
CLVColumn::LayOut(const std::vector<CLVColumn*>& displayOrder)
{
	float edge = -1;
	float dataWidth = 0;
	bool push = false;
	for (CLVColumn* column : displayOrder) {
		column->fPushed = push;
		if (!column->IsShown())
			continue;
		column->fBegin = edge + 1;
		column->fEnd = column->fBegin + column->fWidth;
		edge = dataWidth = column->fEnd;
		if ((column->fFlags & CLV_COLUMN_PASS_PUSH) == 0)
			push = false;
		if ((column->fFlags & CLV_COLUMN_EXPANDER) != 0)
			push = true;
	}
	return dataWidth;
}
