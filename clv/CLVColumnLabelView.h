// SPDX-License-Identifier: MIT

// CLVColumnLabelView: the header of a column list. A click on a label sorts by that column, a drag
// of a label moves its group of columns, a drag of an edge makes a column wider or narrower.
//
// Thread: the window's. A press starts a mouse watcher, whose messages carry the gesture on.

#pragma once

#include "clv/DragGroups.h"

#include <interface/View.h>

class ColumnListView;

class CLVColumnLabelView : public BView {
public:
	CLVColumnLabelView(BRect frame, ColumnListView* parent, const BFont* font);

	// After every change of columns, of their order or widths.
	void UpdateDragGroups();
	// Where the pressed label's group may go from its present place.
	void SetSnapMinMax();
	// Puts the pressed label's group before the group that has this number now.
	void ShiftDragGroup(int32 newIndex);
	void ForgetPress();

	// BView
	void Draw(BRect updateRect) override;
	void MouseDown(BPoint where) override;
	void MessageReceived(BMessage* message) override;
	void DetachedFromWindow() override;

private:
	const DragGroup& ClickedGroup() const { return fGroups[static_cast<size_t>(fClickedGroup)]; }
	void BeginGesture(CLVColumn* column, BPoint where, bool resizing);
	bool WatchAgain();
	void Watched(const BMessage& message);
	void DragLabel(BPoint where);
	void DragEdge(BPoint where);
	void MoveOutline(float left);
	void Clicked(uint32 heldKeys);
	void InvalidateSpan(float left, float right);
	void DrawCells();
	void DrawLabel(const CLVColumn& column);

	ColumnListView* const fParent;
	const float fAscent;
	std::vector<DragGroup> fGroups;

	// The gesture
	CLVColumn* fClickedColumn = nullptr; // null: none
	bool fWatching = false;              // a watcher runs that has not told of the release
	bool fWatcherIsOlder = false;        // than the present press
	bool fDragging = false;
	bool fResizing = false;
	BPoint fPressPoint;
	BPoint fPreviousPoint;
	int32 fClickedGroup = -1;
	DragSnap fSnap;
	float fDragOffset = 0;   // of the pointer in the group, at the press
	float fResizeOffset = 0; // of the pointer from the column's end, at the press
	float fOutlineLeft = -1; // where the dragged group would lie; -1 while it is not drawn
	float fOutlineRight = -1;
};
