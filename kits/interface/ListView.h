// SPDX-License-Identifier: MIT

// BListView: rows below each other, which can be selected, invoked and dragged.
//
// Owners: the list does not own its rows, but its two messages. Lock: as for any view.
// Cost: an event looks at the visible rows only. Adding and removing in the middle moves an array
//   of pointers; many rows at once go in and out as quickly as one.

#pragma once

#include <app/Invoker.h>
#include <interface/ListItem.h>
#include <interface/RowLayout.h>
#include <interface/RowSet.h>
#include <interface/View.h>
#include <support/List.h>

enum list_view_type { B_SINGLE_SELECTION_LIST = 0, B_MULTIPLE_SELECTION_LIST = 1 };

class BListView : public BView, public BInvoker {
public:
	BListView(BRect frame, const char* name, list_view_type type = B_SINGLE_SELECTION_LIST,
		uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
		uint32 flags = B_WILL_DRAW | B_NAVIGABLE | B_FRAME_EVENTS);
	~BListView() override;

	// Rows. False or null, and nothing done, for an index that does not fit. A selected row is
	// deselected before it is removed.
	virtual bool AddItem(BListItem* item);
	virtual bool AddItem(BListItem* item, int32 index);
	virtual bool AddList(BList* items);
	virtual bool AddList(BList* items, int32 index);
	virtual bool RemoveItem(BListItem* item);
	virtual BListItem* RemoveItem(int32 index);
	virtual bool RemoveItems(int32 index, int32 count);
	virtual void MakeEmpty();

	BListItem* ItemAt(int32 index) const;
	int32 IndexOf(BListItem* item) const; // -1 when it is not here; the pointer may be stale
	int32 IndexOf(BPoint point) const;    // looks at y only; -1 above and below the rows
	BListItem* FirstItem() const { return ItemAt(0); }
	BListItem* LastItem() const { return ItemAt(CountItems() - 1); }
	bool HasItem(BListItem* item) const { return IndexOf(item) >= 0; }
	int32 CountItems() const { return fItems.CountItems(); }
	bool IsEmpty() const { return fItems.IsEmpty(); }
	const BListItem** Items() const; // good until the next change
	// Stop where the callback returns true.
	void DoForEach(bool (*visit)(BListItem*));
	void DoForEach(bool (*visit)(BListItem*, void*), void* argument);
	// The callback gets the addresses of two item pointers. Keeps the order of equal rows, and
	// stays harmless when comparisons contradict each other.
	void SortItems(int (*compare)(const void*, const void*));

	BRect ItemFrame(int32 index); // not valid for a bad index
	void InvalidateItem(int32 index);
	void ScrollToSelection();

	// Selection. Bad indices are ignored. What changes nothing tells nobody; every change calls
	// SelectionChanged() and sends the selection message once.
	void Select(int32 index, bool extend = false);
	void Select(int32 from, int32 to, bool extend = false);
	void Deselect(int32 index);
	void DeselectAll();
	void DeselectExcept(int32 from, int32 to);
	bool IsItemSelected(int32 index) const { return fSelection.Contains(index); }
	int32 CurrentSelection(int32 n = 0) const { return fSelection.Nth(n); } // ascending, or -1
	virtual void SelectionChanged();

	// Messages; owned from now on.
	virtual void SetSelectionMessage(BMessage* message);
	uint32 SelectionCommand() const { return fSelectionMessage ? fSelectionMessage->what : 0; }
	virtual void SetInvocationMessage(BMessage* message) { SetMessage(message); }
	BMessage* InvocationMessage() const { return Message(); }
	uint32 InvocationCommand() const { return Command(); }
	// Adds "when", "source" and the selected rows as "index"; the invocation message has no
	// "index" when several rows are selected: it is then meant for all of them.
	status_t Invoke(BMessage* message = nullptr) override;

	// A press on that row has moved with the button held: time for DragMessage(). Called once a
	// press. True when a drag was begun.
	virtual bool InitiateDrag(BPoint where, int32 index, bool wasSelected);

	// BView
	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void FrameResized(float width, float height) override;
	void Draw(BRect updateRect) override;
	void MouseDown(BPoint where) override;
	void MouseUp(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void KeyDown(const char* bytes, int32 numBytes) override;
	void MakeFocus(bool focus = true) override;
	void WindowActivated(bool active) override;
	void ScrollTo(BPoint where) override { BView::ScrollTo(where); }
	using BView::ScrollTo;
	void TargetedByScrollView(BScrollView* scrollView) override;

protected:
	// Of different places in the list, in ascending order, as quickly as one. False, and nothing
	// done, for an index that does not fit.
	bool RemoveRows(const std::vector<int32>& rows);

private:
	// What the release without a drag will do to the row under a press.
	enum class Deferred { kNothing, kSelectAlone, kToggleOff };
	struct Press {
		bool active = false;
		int32 row = -1;
		BPoint where;
		bool wasSelected = false;
		bool dragAsked = false;
		Deferred deferred = Deferred::kNothing;
	};

	// Rows and layout
	bool InsertRows(const BList& items, int32 index);
	void TakeRowsOut(int32 index, int32 count);
	void MoveMarks(int32 (*move)(int32 row, int32 index, int32 count), int32 index, int32 count);
	void UpdateRowHeights();
	void LayoutChanged(int32 firstRow, double oldTotal);
	void UpdateScrollBar();
	bool VisibleRows(int32* first, int32* last);
	float RowTop(int32 index) const;
	int32 RowAt(double y) const;
	void ScrollToRow(int32 index);

	// Selection
	bool MarkRows(int32 from, int32 to, bool selected);
	void InvalidateRows(int32 from, int32 to);
	void TellSelection();
	bool IsRange(int32 from, int32 to) const
	{
		return from >= 0 && from <= to && to < CountItems();
	}

	// Input
	void PressRow(int32 row, uint32 held);
	void ExtendTo(int32 row);
	void MoveCursor(int32 row, bool extend);
	int32 CursorRow() const;
	int32 PageTarget(int32 row, bool down);
	void HighlightBorder(bool highlighted);

	list_view_type fType;
	BList fItems;
	BPrivate::RowLayout fLayout;
	BPrivate::RowSet fSelection; // agrees with the rows' own flags
	std::unique_ptr<BMessage> fSelectionMessage;
	int32 fAnchor = -1;    // where extending starts
	int32 fCursor = -1;    // where the keys go on
	int32 fLastClick = -1; // the row of the last press, for double clicks
	Press fPress;
	mutable int32 fIndexHint = 0; // near the row that was asked for last
};
