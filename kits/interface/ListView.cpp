// SPDX-License-Identifier: MIT

// The rows of a list: adding, removing, sorting, where they lie and how they are drawn.

#include <interface/ListView.h>

#include <interface/ScrollBar.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>
#include <limits>

// The nearest float that is not above, or not below.
static float
FloatBefore(double value)
{
	const float near = static_cast<float>(value);
	return double(near) <= value ? near
								 : std::nextafter(near, -std::numeric_limits<float>::infinity());
}

static float
FloatBehind(double value)
{
	return -FloatBefore(-value);
}

BListView::BListView(
	BRect frame, const char* name, list_view_type type, uint32 resizingMode, uint32 flags) :
	BView(frame, name, resizingMode, flags), fType(type)
{}

BListView::~BListView() = default;

bool
BListView::AddItem(BListItem* item)
{
	return BListView::AddItem(item, CountItems());
}

bool
BListView::AddItem(BListItem* item, int32 index)
{
	BList one(1);
	return item != nullptr && one.AddItem(item) && InsertRows(one, index);
}

bool
BListView::AddList(BList* items)
{
	return BListView::AddList(items, CountItems());
}

bool
BListView::AddList(BList* items, int32 index)
{
	return items != nullptr && InsertRows(*items, index);
}

bool
BListView::InsertRows(const BList& items, int32 index)
{
	const int32 count = items.CountItems();
	if (index < 0 || index > CountItems() || !fItems.AddList(&items, index))
		return false;
	BFont font;
	GetFont(&font);
	std::vector<float> heights;
	heights.reserve(static_cast<size_t>(count));
	fSelection.RowsInserted(index, count);
	for (int32 row = index; row < index + count; row++) {
		BListItem* item = ItemAt(row);
		if (Window() != nullptr)
			item->Update(this, &font);
		heights.push_back(item->Height());
		if (item->IsSelected() && (fType == B_MULTIPLE_SELECTION_LIST || fSelection.Count() == 0))
			fSelection.Add(row, row);
		else
			item->Deselect();
	}
	MoveMarks([](int32 row, int32 at, int32 added) { return row < at ? row : row + added; }, index,
		count);
	const double oldTotal = fLayout.TotalHeight();
	fLayout.Insert(index, heights);
	LayoutChanged(index, oldTotal);
	return true;
}

// Carries the rows that presses and keys remember through a change; -1 stays -1.
void
BListView::MoveMarks(int32 (*move)(int32, int32, int32), int32 index, int32 count)
{
	for (int32* mark : {&fAnchor, &fCursor, &fLastClick, &fPress.row}) {
		if (*mark >= 0)
			*mark = move(*mark, index, count);
	}
	if (fPress.row < 0)
		fPress = Press();
}

bool
BListView::RemoveItem(BListItem* item)
{
	return BListView::RemoveItem(IndexOf(item)) != nullptr;
}

BListItem*
BListView::RemoveItem(int32 index)
{
	BListItem* item = ItemAt(index);
	return BListView::RemoveItems(index, 1) ? item : nullptr;
}

bool
BListView::RemoveItems(int32 index, int32 count)
{
	if (count <= 0 || index < 0 || index >= CountItems())
		return false;
	count = std::min(count, CountItems() - index);
	if (MarkRows(index, index + count - 1, false))
		TellSelection();
	// The hook just called may have removed rows itself.
	count = std::min(count, CountItems() - index);
	if (count > 0)
		TakeRowsOut(index, count);
	return true;
}

bool
BListView::RemoveRows(const std::vector<int32>& rows)
{
	const int32 before = CountItems();
	if (rows.empty() || rows.front() < 0 || rows.back() >= before)
		return false;
	bool changed = false;
	for (int32 row : rows)
		changed |= MarkRows(row, row, false);
	if (changed)
		TellSelection();
	if (CountItems() != before) // by the hook just called
		return false;
	const double oldTotal = fLayout.TotalHeight();
	void** items = static_cast<void**>(fItems.Items());
	int32 kept = rows.front();
	for (size_t i = 0; i < rows.size(); i++) {
		const int32 end = i + 1 < rows.size() ? rows[i + 1] : before;
		std::copy(items + rows[i] + 1, items + end, items + kept);
		kept += end - rows[i] - 1;
	}
	fItems.RemoveItems(kept, before - kept);
	for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
		fSelection.RowsRemoved(*row, 1);
		MoveMarks(
			[](int32 mark, int32 at, int32) {
				return mark < at ? mark : mark == at ? -1 : mark - 1;
			},
			*row, 1);
		fLayout.Remove(*row, 1);
	}
	LayoutChanged(rows.front(), oldTotal);
	return true;
}

void
BListView::MakeEmpty()
{
	if (MarkRows(0, CountItems() - 1, false))
		TellSelection();
	if (!IsEmpty())
		TakeRowsOut(0, CountItems());
}

void
BListView::TakeRowsOut(int32 index, int32 count)
{
	const double oldTotal = fLayout.TotalHeight();
	if (count == CountItems())
		fItems.MakeEmpty();
	else
		fItems.RemoveItems(index, count);
	fSelection.RowsRemoved(index, count);
	MoveMarks(
		[](int32 row, int32 at, int32 gone) {
			return row < at ? row : row < at + gone ? -1 : row - gone;
		},
		index, count);
	fLayout.Remove(index, count);
	LayoutChanged(index, oldTotal);
}

BListItem*
BListView::ItemAt(int32 index) const
{
	return static_cast<BListItem*>(fItems.ItemAt(index));
}

int32
BListView::IndexOf(BListItem* item) const
{
	// Rows are mostly asked for in order, or one several times. Only addresses are compared.
	for (int32 row = fIndexHint - 1; row <= fIndexHint + 1; row++) {
		if (item != nullptr && fItems.ItemAt(row) == item)
			return fIndexHint = row;
	}
	int32 row = item != nullptr ? fItems.IndexOf(item) : -1;
	if (row >= 0)
		fIndexHint = row;
	return row;
}

const BListItem**
BListView::Items() const
{
	return static_cast<const BListItem**>(fItems.Items());
}

void
BListView::DoForEach(bool (*visit)(BListItem*))
{
	for (int32 row = 0; row < CountItems(); row++) {
		if (visit(ItemAt(row)))
			return;
	}
}

void
BListView::DoForEach(bool (*visit)(BListItem*, void*), void* argument)
{
	for (int32 row = 0; row < CountItems(); row++) {
		if (visit(ItemAt(row), argument))
			return;
	}
}

// Merging compares no element with itself and never leaves the arrays, whatever the answers.
static void
MergeSort(void** items, void** room, size_t count, int (*compare)(const void*, const void*))
{
	if (count < 2)
		return;
	const size_t half = count / 2;
	MergeSort(items, room, half, compare);
	MergeSort(items + half, room, count - half, compare);
	// Most lists are sorted again after a few rows changed.
	if (compare(items + half, items + half - 1) >= 0)
		return;
	std::copy(items, items + half, room);
	void** left = room;
	void** const leftEnd = room + half;
	void** right = items + half;
	void** const end = items + count;
	while (left < leftEnd && right < end)
		*items++ = compare(right, left) < 0 ? *right++ : *left++;
	std::copy(left, leftEnd, items);
}

void
BListView::SortItems(int (*compare)(const void*, const void*))
{
	const int32 count = CountItems();
	if (count < 2 || compare == nullptr)
		return;
	int32* marks[] = {&fAnchor, &fCursor, &fLastClick, &fPress.row};
	const BListItem* marked[] = {
		ItemAt(fAnchor), ItemAt(fCursor), ItemAt(fLastClick), ItemAt(fPress.row)};
	std::vector<void*> room(static_cast<size_t>(count) / 2 + 1);
	MergeSort(
		static_cast<void**>(fItems.Items()), room.data(), static_cast<size_t>(count), compare);

	const double oldTotal = fLayout.TotalHeight();
	fSelection.MakeEmpty();
	std::vector<float> heights;
	heights.reserve(static_cast<size_t>(count));
	for (int32 row = 0; row < count; row++) {
		const BListItem* item = ItemAt(row);
		heights.push_back(item->Height());
		if (item->IsSelected())
			fSelection.Add(row, row);
		for (size_t i = 0; i < std::size(marks); i++) {
			if (item == marked[i])
				*marks[i] = row;
		}
	}
	fLayout.MakeEmpty();
	fLayout.Insert(0, heights);
	LayoutChanged(0, oldTotal);
}

// After heights from `firstRow` on, or rows there, became others.
void
BListView::LayoutChanged(int32 firstRow, double oldTotal)
{
	if (Window() == nullptr)
		return;
	BRect bounds = Bounds();
	float top = std::floor(FloatBefore(fLayout.TopOf(firstRow)));
	float end = std::ceil(FloatBehind(std::max(oldTotal, fLayout.TotalHeight())));
	BRect changed(
		bounds.left, std::max(top, bounds.top), bounds.right, std::min(end, bounds.bottom));
	if (changed.IsValid())
		Invalidate(changed);
	UpdateScrollBar();
}

void
BListView::UpdateScrollBar()
{
	BScrollBar* bar = ScrollBar(B_VERTICAL);
	if (bar == nullptr)
		return;
	// The last row's bottom edge: a list that just fits does not scroll.
	const double total = std::max(fLayout.TotalHeight() - 1, 0.0);
	const double height = Bounds().Height();
	const float firstRow = IsEmpty() ? 1 : fLayout.HeightOf(0) + 1;
	bar->SetProportion(static_cast<float>(total > height ? std::max(height, 0.0) / total : 1.0));
	bar->SetSteps(firstRow, static_cast<float>(std::max(height, double(firstRow))));
	bar->SetRange(0, static_cast<float>(std::max(total - height, 0.0)));
}

// Frames are floats: far down they lie on a coarser grid than the layout, and the mouse with them.
float
BListView::RowTop(int32 index) const
{
	return static_cast<float>(fLayout.TopOf(index));
}

int32
BListView::RowAt(double y) const
{
	int32 row = fLayout.RowAt(y);
	if (row < 0)
		return -1;
	while (row + 1 < CountItems() && RowTop(row + 1) <= y)
		row++;
	while (row > 0 && RowTop(row) > y)
		row--;
	return row;
}

int32
BListView::IndexOf(BPoint point) const
{
	return RowAt(point.y);
}

BRect
BListView::ItemFrame(int32 index)
{
	if (index < 0 || index >= CountItems())
		return BRect();
	double top = fLayout.TopOf(index);
	return BRect(0, RowTop(index), Bounds().Width(),
		static_cast<float>(top + double(fLayout.HeightOf(index))));
}

void
BListView::InvalidateItem(int32 index)
{
	if (index < 0 || index >= CountItems())
		return;
	const double oldTotal = fLayout.TotalHeight();
	if (fLayout.SetHeight(index, ItemAt(index)->Height()))
		LayoutChanged(index, oldTotal);
	BRect bounds = Bounds();
	const double top = fLayout.TopOf(index);
	Invalidate(BRect(bounds.left, FloatBefore(top), bounds.right,
		FloatBehind(top + double(fLayout.HeightOf(index)))));
}

// The rows that the bounds touch; false when there are none.
bool
BListView::VisibleRows(int32* first, int32* last)
{
	BRect bounds = Bounds();
	if (IsEmpty() || !bounds.IsValid() || bounds.bottom < 0 || bounds.top >= fLayout.TotalHeight())
		return false;
	*first = std::max(RowAt(bounds.top), 0);
	*last = RowAt(bounds.bottom);
	if (*last < 0)
		*last = CountItems() - 1;
	return true;
}

void
BListView::ScrollToRow(int32 index)
{
	BRect frame = ItemFrame(index);
	BRect bounds = Bounds();
	if (!frame.IsValid())
		return;
	float top = bounds.top;
	// A row higher than the view shows its beginning.
	if (frame.top < bounds.top || frame.Height() > bounds.Height())
		top = frame.top;
	else if (frame.bottom > bounds.bottom)
		top += std::ceil(frame.bottom - bounds.bottom);
	if (top != bounds.top)
		ScrollTo(BPoint(bounds.left, top));
}

void
BListView::ScrollToSelection()
{
	ScrollToRow(CurrentSelection());
}

void
BListView::UpdateRowHeights()
{
	BFont font;
	GetFont(&font);
	std::vector<float> heights;
	heights.reserve(static_cast<size_t>(CountItems()));
	for (int32 row = 0; row < CountItems(); row++) {
		ItemAt(row)->Update(this, &font);
		heights.push_back(ItemAt(row)->Height());
	}
	fLayout.MakeEmpty();
	fLayout.Insert(0, heights);
}

void
BListView::AttachedToWindow()
{
	BView::AttachedToWindow();
	if (!HasTarget())
		SetTarget(Window());
	UpdateRowHeights();
	UpdateScrollBar();
}

void
BListView::DetachedFromWindow()
{
	fPress = Press();
	HighlightBorder(false);
	BView::DetachedFromWindow();
}

void
BListView::FrameResized(float width, float height)
{
	BView::FrameResized(width, height);
	UpdateScrollBar();
}

void
BListView::TargetedByScrollView(BScrollView* scrollView)
{
	BView::TargetedByScrollView(scrollView);
	UpdateScrollBar();
}

// Far down a list the floats of rectangles lie whole pixels apart. Rows are drawn as if the list
// began near them, in coordinates that are exact.
void
BListView::Draw(BRect updateRect)
{
	constexpr double kExact = 1 << 22;
	struct NearOrigin {
		explicit NearOrigin(BListView& view) :
			list(view), base(view.fOriginY > kExact ? std::floor(view.fOriginY) : 0)
		{
			list.fOriginY -= base;
		}
		~NearOrigin() { list.fOriginY += base; }
		BListView& list;
		const double base;
	} origin(*this);

	// Rows far apart may be damaged and none between them. Where the list lies at a fraction, edges
	// round by up to half a pixel more; whole ones must not reach the next row.
	constexpr float kRounding = 0.49f;
	BRegion reached;
	GetClippingRegion(&reached);
	if (origin.base > 0)
		updateRect = reached.Frame();
	const double start = double(updateRect.top) + origin.base;
	if (start >= fLayout.TotalHeight())
		return;
	int32 row = std::max(fLayout.RowAt(start), 0);
	double top = fLayout.TopOf(row) - origin.base;
	for (; row < CountItems() && top <= double(updateRect.bottom); row++) {
		const double bottom = top + double(fLayout.HeightOf(row));
		const BRect frame(0, static_cast<float>(top), Bounds().Width(), static_cast<float>(bottom));
		if (reached.Intersects(frame.InsetByCopy(0, -kRounding)))
			ItemAt(row)->DrawItem(this, frame, false);
		top = bottom + 1;
	}
}
