// SPDX-License-Identifier: MIT

// ColumnListView: a list whose rows (CLVListItem) are drawn in columns (CLVColumn) below a header
// of labels, sorted by some of them; the rows may form an outline.
//
// It makes the scroll view that it lives in: that is what is added to a window, and deleting
// either deletes both.
// Owners: the list deletes its columns, never its rows; a row is taken out before it is deleted,
//   unless the list goes first.
// Thread: what changes columns, all of sorting, Expand() and Collapse() lock the window themselves;
//   all else, asking for columns included, needs its lock.
// Cost, for n rows: adding, removing and looking up O(n / 500) at most, besides moving an array of
//   pointers; showing and hiding k rows O(k). Indices are those of all rows, those of an outline
//   that are hidden included ("full"), unless they are said to be of visible rows.

#pragma once

#include "clv/CLVColumn.h"
#include "clv/CLVListItem.h"
#include "clv/OutlineList.h"
#include "clv/PrefilledBitmap.h"

#include <interface/ListView.h>

class CLVColumnLabelView;
class CLVContainerView;
class ScrollViewCorner;

// -1, 0 or 1 as `a` comes before, with or behind `b` in ascending order of that column, which is -1
// for a key that RemoveColumns() has left behind. Other positive answers move nothing in an
// outline; contradictions make sorting it slow.
typedef int (*CLVSortFunction)(const CLVListItem* a, const CLVListItem* b, int32 column);

class ColumnListView : public BListView {
public:
	ColumnListView(BRect frame, BScrollView** container, const char* name, uint32 resizingMode,
		uint32 flags, list_view_type type, bool hierarchical, bool horizontal, bool vertical,
		border_style border, const BFont* labelFont);
	~ColumnListView() override;

	// Layout
	float ColumnLabelHeight() const;
	void AddScrollViewCorner();
	void ColumnsChanged(); // redraws header and list; ends a gesture on the header
	void UpdateColumnSizesDataRectSizeScrollBars();
	void UpdateScrollBars();
	float DataRectWidth() const { return fDataRectWidth; }

	// Columns, numbered in the order in which they were added. A column that is added is owned.
	// False, and nothing changed, for columns that do not fit; so does a second expander column.
	virtual bool AddColumn(CLVColumn* column);
	virtual bool AddColumnList(BList* columns);
	virtual bool RemoveColumn(CLVColumn* column);              // the caller's from now on
	virtual bool RemoveColumns(CLVColumn* first, int32 count); // not up to the last column
	int32 CountColumns() const { return static_cast<int32>(fColumns.size()); }
	int32 IndexOfColumn(const CLVColumn* column) const;
	int32 IndexOfColumn(BPoint point) const; // counts widths from the left, of hidden ones too
	CLVColumn* ColumnAt(int32 index) const;
	int32* DisplayOrder() const; // CountColumns() numbers, from the left; delete[] it
	// A bad or repeated number ends it with false, with the order as far as it came.
	virtual bool SetDisplayOrder(const int32* order);
	// For subclasses.
	virtual void ColumnWidthChanged(int32 column, float newWidth);
	virtual void DisplayOrderChanged(const int32* order);

	// Sorting
	void SetSortFunction(CLVSortFunction function) { fSortFunction = function; }
	virtual void SetSortKey(int32 column); // the only one; none below 0
	virtual void AddSortKey(int32 column);
	virtual void SetSortMode(int32 column, CLVSortMode mode);
	void ReverseSortMode(int32 column);                   // ascending, descending, none
	int32 Sorting(int32* keys, CLVSortMode* modes) const; // how many, the first one first
	void SetSorting(int32 count, int32* keys, CLVSortMode* modes);
	void SortItems();

	// Rows
	virtual bool AddUnder(CLVListItem* item, CLVListItem* superItem); // behind all rows there
	virtual bool AddItem(CLVListItem* item, int32 index);
	virtual bool AddItem(CLVListItem* item);
	// Many at once are added as quickly as one. What comes before one that does not fit stays.
	bool AddList(BList* items) override;
	bool AddList(BList* items, int32 index) override;
	virtual bool RemoveItem(CLVListItem* item); // with all rows below it, as the next two
	BListItem* RemoveItem(int32 index) override;
	bool RemoveItems(int32 index, int32 count) override;
	// Rows anywhere in the list, with all below them; as quickly as one when there is no outline.
	// Those that are not here are passed over.
	void RemoveRows(const std::vector<CLVListItem*>& items);
	void MakeEmpty() override;
	virtual void Expand(CLVListItem* item);
	virtual void Collapse(CLVListItem* item);
	bool IsExpanded(int32 index) const;
	using BListView::IndexOf;
	int32 IndexOf(CLVListItem* item) const; // among the visible rows

	CLVListItem* FullListItemAt(int32 index) const { return fRows.ItemAt(index); }
	int32 FullListIndexOf(const CLVListItem* item) const { return fRows.IndexOf(item); }
	int32 FullListIndexOf(BPoint point) const;
	CLVListItem* FullListFirstItem() const { return fRows.ItemAt(0); }
	CLVListItem* FullListLastItem() const { return fRows.ItemAt(fRows.CountItems() - 1); }
	bool FullListHasItem(const CLVListItem* item) const { return fRows.HasItem(item); }
	int32 FullListCountItems() const { return fRows.CountItems(); }
	bool FullListIsEmpty() const { return fRows.CountItems() == 0; }
	int32 FullListCurrentSelection(int32 n = 0) const;
	// Stop where the callback returns true.
	void FullListDoForEach(bool (*visit)(CLVListItem*));
	void FullListDoForEach(bool (*visit)(CLVListItem*, void*), void* argument);
	const BListItem** Items() const; // good until the next change

	// The outline. `directOnly`: rows one level below the item, not those below them.
	CLVListItem* Superitem(const CLVListItem* item) const;
	int32 FullListNumberOfSubitems(const CLVListItem* item) const;   // of all levels
	int32 CountItemsUnder(CLVListItem* item, bool directOnly) const; // -1 if it is not here
	CLVListItem* ItemUnderAt(CLVListItem* item, bool directOnly, int32 index) const; // from 1
	// Returns the first result that is not null.
	CLVListItem* EachItemUnder(CLVListItem* item, bool directOnly,
		CLVListItem* (*visit)(CLVListItem*, void*), void* argument);

	// BView
	void AttachedToWindow() override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void FrameResized(float width, float height) override;
	void ScrollTo(BPoint where) override;
	using BListView::ScrollTo;

protected:
	// After rows were added, removed, shown, hidden or sorted, and when columns have moved.
	virtual void RowsChanged();

private:
	friend class CLVColumn;
	friend class CLVColumnLabelView;
	friend class CLVListItem;

	// Callers that know only a BListView; the rows must be CLVListItems all the same.
	bool AddItem(BListItem* item) override;
	bool AddItem(BListItem* item, int32 index) override;
	bool RemoveItem(BListItem* item) override;

	CLVContainerView* CreateContainer(
		bool horizontal, bool vertical, border_style border, uint32 resizingMode, uint32 flags);
	void Changed(); // sizes, scroll bars and drag groups
	void ColumnResized(const CLVColumn& column, float delta);
	void ColumnShown(const CLVColumn& column, float oldBegin);
	void InvalidateFrom(float left);
	void FindExpanderColumn();
	void SetDisplayColumns(std::vector<CLVColumn*> order);
	void DropSortKey(CLVColumn* column);
	void DropSortKeys();
	bool IsSortKey(const CLVColumn* column) const;
	void InvalidateLabel(const CLVColumn* column);

	bool AddRows(const BList& items, int32 index);
	bool FitsAt(const CLVListItem& item, int32 index, bool* visible) const;
	void TakeOverRowsBehind(int32 index, int32 end);
	void ShowOrHideUnder(int32 index);
	template <typename Visit>
	CLVListItem* VisitUnder(const CLVListItem* item, bool directOnly, Visit visit) const;

	int CompareByKeys(const CLVListItem* a, const CLVListItem* b) const;
	void SortOutline();
	void SortListArray(std::vector<CLVListItem*>& items) const;
	static int PlainBListSortFunc(const void* a, const void* b);
	static int HierarchicalBListSortFunc(const void* a, const void* b);

	CLVColumnLabelView* fLabelView; // the container's child
	CLVContainerView* fContainer = nullptr;
	ScrollViewCorner* fCorner = nullptr; // the container's child
	const bool fHierarchical;
	std::vector<CLVColumn*> fColumns; // owned
	std::vector<CLVColumn*> fDisplayOrder;
	float fDataWidth = 0;
	float fDataHeight = 0;
	float fDataRectWidth = 0;
	float fDataRectHeight = 0;
	std::vector<CLVColumn*> fSortKeys; // each knows by fKeyOf that it is here
	PrefilledBitmap fRightArrow;
	PrefilledBitmap fDownArrow;
	OutlineList fRows;                      // of an outline all, else the same as the visible ones
	int32 fExpanderColumn = -1;             // the shown one
	CLVListItem* fItemUnderMouse = nullptr; // null, too, since that one was taken out
	CLVSortFunction fSortFunction = nullptr;
	// Made for one sort: column and direction of each key.
	std::vector<std::pair<int32, bool>> fComparedColumns;
};
