// SPDX-License-Identifier: MIT

// CLVColumn: one column of a column list: its label, width, flags and sort mode.
//
// Owners: the list view that holds a column deletes it; a removed column is its remover's. Deleting
//   a column that is still held takes it out of its list.
// Thread: what changes a held column locks the list's window, so any thread may call it.

#pragma once

#include <support/SupportDefs.h>

#include <string>
#include <vector>

class ColumnListView;

enum : uint32 {
	CLV_COLUMN_SORTABLE = 0x001,
	CLV_COLUMN_NOT_MOVABLE = 0x002,
	CLV_COLUMN_NOT_RESIZABLE = 0x004,
	CLV_COLUMN_LOCK_AT_START = 0x008,
	CLV_COLUMN_LOCK_AT_END = 0x010,
	CLV_COLUMN_HIDDEN = 0x020,
	CLV_COLUMN_MERGE_LABEL_RIGHT = 0x040, // its label and the next one look like one
	CLV_COLUMN_DRAG_WITH_RIGHT = 0x080,   // moves together with the column to its right
	CLV_COLUMN_EXPANDER = 0x100,          // holds the arrows of an outline
	CLV_COLUMN_PASS_PUSH = 0x200,         // passes the outline's indent on to the next column
};

enum CLVSortMode { CLV_SORT_ASCENDING = 0, CLV_SORT_DESCENDING = 1, CLV_SORT_NONE = 2 };

class CLVColumn {
public:
	// The label is copied and may be null. Widths in pixels, at least 4. An expander column has no
	// label, is 20 pixels wide and keeps only some of the flags.
	CLVColumn(const char* label, float width, uint32 flags, float minWidth);
	virtual ~CLVColumn();
	CLVColumn(const CLVColumn&) = delete;
	CLVColumn& operator=(const CLVColumn&) = delete;

	const char* Label() const { return fHasLabel ? fLabel.c_str() : nullptr; }
	float Width() const { return fWidth; }
	float MinWidth() const { return fMinWidth; }
	uint32 Flags() const { return fFlags; }
	bool IsShown() const { return (fFlags & CLV_COLUMN_HIDDEN) == 0; }
	CLVSortMode SortMode() const { return fSortMode; }
	ColumnListView* Parent() const { return fParent; } // null while in no list

	virtual void SetWidth(float width); // raised to the least width
	void SetShown(bool shown);
	void SetSortMode(CLVSortMode mode);

	// First and last pixel column in the list; only good for a shown column of a list.
	float Begin() const { return fBegin; }
	float End() const { return fEnd; }
	// Lies right of the expander column and gets the outline's indent.
	bool IsPushed() const { return fPushed; }

	// Gives all columns, in the order in which they are displayed, their places. Returns the last
	// shown one's end, 0 without any.
	static float LayOut(const std::vector<CLVColumn*>& displayOrder);

private:
	friend class ColumnListView;

	std::string fLabel;
	bool fHasLabel;
	float fWidth;
	float fMinWidth;
	float fBegin = 0;
	float fEnd = 0;
	uint32 fFlags;
	bool fPushed = false;
	CLVSortMode fSortMode = CLV_SORT_NONE;
	ColumnListView* fParent = nullptr;
	ColumnListView* fKeyOf = nullptr; // the list that sorts by it; may outlast fParent
};
