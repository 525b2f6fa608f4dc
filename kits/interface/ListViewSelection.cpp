// SPDX-License-Identifier: MIT

// The selection of a list, and the messages that tell of it.

#include <interface/ListView.h>

#include <algorithm>

// Selects or deselects these rows, cut to those that there are; true when that changed any.
bool
BListView::MarkRows(int32 from, int32 to, bool selected)
{
	from = std::max(from, 0);
	to = std::min(to, CountItems() - 1);
	if (from > to)
		return false;
	const int32 count = fSelection.CountIn(from, to);
	if (selected ? count == to - from + 1 : count == 0)
		return false;
	if (selected) {
		for (int32 row = from; row <= to; row++)
			ItemAt(row)->Select();
		fSelection.Add(from, to);
		InvalidateRows(from, to);
		return true;
	}
	const std::vector<BPrivate::RowSet::Range> ranges = fSelection.RangesIn(from, to);
	fSelection.Remove(from, to);
	for (const BPrivate::RowSet::Range& range : ranges) {
		for (int32 row = range.first; row <= range.last; row++)
			ItemAt(row)->Deselect();
		InvalidateRows(range.first, range.last);
	}
	return true;
}

void
BListView::InvalidateRows(int32 from, int32 to)
{
	int32 first, last;
	if (Window() == nullptr || !VisibleRows(&first, &last))
		return;
	for (int32 row = std::max(from, first); row <= std::min(to, last); row++)
		InvalidateItem(row);
}

void
BListView::TellSelection()
{
	SelectionChanged();
	if (fSelectionMessage)
		Invoke(fSelectionMessage.get());
}

void
BListView::SelectionChanged()
{}

void
BListView::Select(int32 index, bool extend)
{
	Select(index, index, extend);
}

void
BListView::Select(int32 from, int32 to, bool extend)
{
	if (!IsRange(from, to))
		return;
	if (fType == B_SINGLE_SELECTION_LIST) {
		extend = false;
		to = from;
	}
	fAnchor = from;
	fCursor = to;
	bool changed = false;
	if (!extend) {
		changed |= MarkRows(0, from - 1, false);
		changed |= MarkRows(to + 1, CountItems() - 1, false);
	}
	changed |= MarkRows(from, to, true);
	if (changed)
		TellSelection();
}

void
BListView::Deselect(int32 index)
{
	if (IsRange(index, index) && MarkRows(index, index, false))
		TellSelection();
}

void
BListView::DeselectAll()
{
	if (MarkRows(0, CountItems() - 1, false))
		TellSelection();
}

void
BListView::DeselectExcept(int32 from, int32 to)
{
	if (!IsRange(from, to))
		return;
	bool changed = MarkRows(0, from - 1, false);
	changed |= MarkRows(to + 1, CountItems() - 1, false);
	if (changed)
		TellSelection();
}

void
BListView::SetSelectionMessage(BMessage* message)
{
	if (message != fSelectionMessage.get())
		fSelectionMessage.reset(message);
}

status_t
BListView::Invoke(BMessage* message)
{
	if (message == nullptr)
		message = Message();
	if (message == nullptr)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddInt64("when", system_time());
	copy.AddPointer("source", this);
	if (message != Message() || fSelection.Count() == 1) {
		int32 row;
		for (int32 n = 0; (row = fSelection.Nth(n)) >= 0; n++)
			copy.AddInt32("index", row);
	}
	return BInvoker::Invoke(&copy);
}
