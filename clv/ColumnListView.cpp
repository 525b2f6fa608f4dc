// SPDX-License-Identifier: MIT

// A column list's layout: its container and header, its extent and scroll bars.

#include "clv/ColumnListView.h"

#include "clv/CLVColumnLabelView.h"
#include "clv/CLVContainerView.h"
#include "clv/ScrollViewCorner.h"
#include "clv/ViewLock.h"

#include <interface/ScrollBar.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>

static constexpr float kLabelMargin = 4; // above and below the text together
static constexpr float kCornerSize = 14;
static constexpr float kHorizontalStep = 20;

static const BRect kArrowBounds(0, 0, kCLVArrowSize - 1, kCLVArrowSize - 1);

ColumnListView::ColumnListView(BRect frame, BScrollView** container, const char* name,
	uint32 resizingMode, uint32 flags, list_view_type type, bool hierarchical, bool horizontal,
	bool vertical, border_style border, const BFont* labelFont) :
	BListView(frame, name, type, B_FOLLOW_ALL_SIDES, flags),
	fHierarchical(hierarchical),
	fRightArrow(kArrowBounds, B_CMAP8, CLVRightArrowData),
	fDownArrow(kArrowBounds, B_CMAP8, CLVDownArrowData)
{
	font_height height;
	labelFont->GetHeight(&height);
	const float labelHeight = std::ceil(height.ascent) + std::ceil(height.descent) + kLabelMargin;
	fLabelView = new CLVColumnLabelView(
		BRect(frame.left, frame.top, frame.right, frame.top + labelHeight), this, labelFont);
	fContainer = CreateContainer(horizontal, vertical, border, resizingMode, flags);
	*container = fContainer;
	Changed();
}

// The header takes the list's place at the top; the list moves down and shrinks.
CLVContainerView*
ColumnListView::CreateContainer(
	bool horizontal, bool vertical, border_style border, uint32 resizingMode, uint32 flags)
{
	CLVContainerView* container =
		new CLVContainerView(this, resizingMode, flags, horizontal, vertical, border);
	const BPoint corner = Frame().LeftTop();
	const float labelHeight = fLabelView->Frame().Height();
	ResizeTo(Frame().Width(), Frame().Height() - labelHeight - 1);
	MoveTo(corner.x, corner.y + labelHeight + 1);
	fLabelView->MoveTo(corner);
	container->AddChild(fLabelView);
	container->RemoveChild(this);
	container->AddChild(this);
	return container;
}

ColumnListView::~ColumnListView()
{
	DropSortKeys();
	for (CLVColumn* column : fColumns) {
		column->fParent = nullptr;
		delete column;
	}
	if (!fContainer->IsBeingDestroyed()) {
		RemoveSelf();
		delete fContainer;
	}
}

float
ColumnListView::ColumnLabelHeight() const
{
	return fLabelView->Frame().Height();
}

void
ColumnListView::AddScrollViewCorner()
{
	const BPoint corner = fContainer->Bounds().RightBottom();
	fCorner = new ScrollViewCorner(corner.x - kCornerSize, corner.y - kCornerSize);
	fContainer->AddChild(fCorner);
	UpdateScrollBars();
}

void
ColumnListView::ColumnsChanged()
{
	fLabelView->ForgetPress();
	Changed();
	fLabelView->Invalidate();
	Invalidate();
}

void
ColumnListView::Changed()
{
	UpdateColumnSizesDataRectSizeScrollBars();
	fLabelView->UpdateDragGroups();
}

void
ColumnListView::UpdateColumnSizesDataRectSizeScrollBars()
{
	fDataWidth = CLVColumn::LayOut(fDisplayOrder);
	RowsChanged();
}

void
ColumnListView::RowsChanged()
{
	fDataHeight = IsEmpty() ? 0 : ItemFrame(CountItems() - 1).bottom;
	UpdateScrollBars();
}

// How far to scroll back when the data ends before the view does.
static float
PullBack(float data, float end, float start)
{
	return data < end && start > 0 ? std::min(end - data, start) : 0;
}

static float
Proportion(float view, float data)
{
	return data > 0 ? view / data : 1;
}

void
ColumnListView::UpdateScrollBars()
{
	if (fContainer == nullptr)
		return;
	BRect bounds = Bounds();
	for (;;) {
		const float dx = PullBack(fDataWidth, bounds.right, bounds.left);
		const float dy = PullBack(fDataHeight, bounds.bottom, bounds.top);
		if (dx == 0 && dy == 0)
			break;
		const BPoint before = bounds.LeftTop();
		ScrollTo(BPoint(before.x - dx, before.y - dy));
		bounds = Bounds();
		// The bars round to whole pixels: that may undo less than one.
		if (bounds.left >= before.x && bounds.top >= before.y)
			break;
	}
	fDataRectWidth = fDataWidth < bounds.Width() ? bounds.right : fDataWidth;
	fDataRectHeight = fDataHeight < bounds.Height() ? bounds.bottom : fDataHeight;
	const float hp = Proportion(bounds.Width(), fDataRectWidth);
	const float vp = Proportion(bounds.Height(), fDataRectHeight);

	if (BScrollBar* bar = fContainer->ScrollBar(B_HORIZONTAL)) {
		const bool fits = hp >= 1 && bounds.left == 0;
		bar->SetRange(0, fits ? 0 : fDataRectWidth - bounds.Width());
		bar->SetProportion(hp);
		bar->SetSteps(kHorizontalStep, bounds.Width());
	}
	const bool fits = vp >= 1 && bounds.top == 0;
	if (BScrollBar* bar = fContainer->ScrollBar(B_VERTICAL)) {
		bar->SetRange(0, fits ? 0 : fDataRectHeight - bounds.Height());
		bar->SetProportion(vp);
	}
	if (fCorner == nullptr)
		return;
	const uint8 grey = fits ? 240 : 216;
	if (fCorner->ViewColor().red != grey) {
		fCorner->SetViewColor(grey, grey, grey);
		fCorner->Invalidate();
	}
}

void
ColumnListView::ScrollTo(BPoint where)
{
	BListView::ScrollTo(where);
	// Where it has come to: the bars limit that.
	fLabelView->ScrollTo(BPoint(Bounds().left, 0));
}

void
ColumnListView::FrameResized(float width, float height)
{
	UpdateColumnSizesDataRectSizeScrollBars();
	BFont font;
	GetFont(&font);
	for (int32 row = 0; row < CountItems(); row++) {
		BListItem* item = ItemAt(row);
		const float before = item->Height();
		item->Update(this, &font);
		if (item->Height() != before)
			InvalidateItem(row); // has the list measure it again
	}
	BListView::FrameResized(width, height);
}

void
ColumnListView::AttachedToWindow()
{
	BListView::AttachedToWindow();
	UpdateColumnSizesDataRectSizeScrollBars();
}

void
ColumnListView::MouseDown(BPoint where)
{
	CLVListItem* item = static_cast<CLVListItem*>(ItemAt(BListView::IndexOf(where)));
	if (item == nullptr || !item->IsSuperItem() || !item->fExpanderButtonRect.Contains(where))
		BListView::MouseDown(where);
	else if (item->IsExpanded())
		Collapse(item);
	else
		Expand(item);
}

void
ColumnListView::MouseMoved(BPoint where, uint32 transit, const BMessage* drag)
{
	CLVListItem* item = static_cast<CLVListItem*>(ItemAt(BListView::IndexOf(where)));
	CLVListItem* last = fItemUnderMouse;
	const bool changed = last != item;
	fItemUnderMouse = transit == B_EXITED_VIEW ? nullptr : item;
	// A pointer that left in one jump was not seen leaving its row.
	if (last != nullptr && changed && (transit == B_INSIDE_VIEW || transit == B_EXITED_VIEW))
		last->MouseOver(this, where, B_EXITED_VIEW, drag);
	if (item != nullptr) {
		const bool entered = transit == B_INSIDE_VIEW && changed;
		item->MouseOver(this, where, entered ? uint32(B_ENTERED_VIEW) : transit, drag);
	}
	BListView::MouseMoved(where, transit, drag);
}
