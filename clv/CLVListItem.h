// SPDX-License-Identifier: MIT

// CLVListItem: a row of a column list, which draws itself cell by cell and may have rows below it.
//
// Whoever made a row deletes it, after it left its list. Belongs to the list's window: its lock.
// Small on purpose: lists have a million of them.

#pragma once

#include <interface/InterfaceDefs.h>
#include <interface/ListItem.h>

class BMessage;
class CLVColumn;
class ColumnListView;

class CLVListItem : public BListItem {
public:
	// `superItem`: may have rows below it and shows an arrow. Least height in pixels.
	explicit CLVListItem(
		uint32 level = 0, bool superItem = false, bool expanded = false, float minHeight = 0);

	bool IsSuperItem() const { return fSuperItem; }
	void SetSuperItem(bool superItem) { fSuperItem = superItem; }
	// 0 for the outermost rows. To be set before the row is added: its list shows and hides rows
	// by the level that they came with.
	void SetOutlineLevel(uint32 level);

	// Draws one cell. Column -1 is the area right of the last column. `complete`: the cell is not
	// erased yet.
	virtual void DrawItemColumn(
		BView* owner, BRect columnRect, int32 columnIndex, bool complete) = 0;
	// The pointer enters, leaves or moves within the row; with what is being dragged, or null.
	virtual void MouseOver(
		ColumnListView* owner, BPoint where, uint32 transit, const BMessage* drag);

	// BListItem. The owner is always a ColumnListView.
	void DrawItem(BView* owner, BRect itemRect, bool complete = false) override;
	void Update(BView* owner, const BFont* font) override;

private:
	friend class ColumnListView;
	friend class OutlineList;
	struct RowDrawing;

	void DrawExpanderCell(const RowDrawing& drawing, const CLVColumn& column, BRect cell);
	// The expander column's cell and arrow alone, at once, in a row with this frame.
	void RedrawExpander(ColumnListView* list, BRect itemRect);

	const float fMinHeight;
	// Where the arrow was drawn last, in the list; holds no point while there is none.
	BRect fExpanderButtonRect;

	// The list's notes. They mean something only while the row is in that list.
	void* fBlock = nullptr;           // of its OutlineList; null: in no list so far
	ColumnListView* fOwner = nullptr; // during a sort
	int32 fSortedIndex = 0;           // during a sort of an outline
	bool fSuperItem;
	bool fVisible = false; // all rows above it are expanded
};
