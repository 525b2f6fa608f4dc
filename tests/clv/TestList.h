// SPDX-License-Identifier: MIT

// A column list for tests, the rows that it shows, and what it told of them.

#pragma once

#include "clv/ColumnListView.h"

#include <interface/ScrollView.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

// Draws each cell in a colour that names its column: red 10 * (column + 2).
class TestRow : public CLVListItem {
public:
	explicit TestRow(int first = 0, int second = 0, uint32 level = 0) :
		CLVListItem(level), keys{first, second}
	{}

	void DrawItemColumn(BView* owner, BRect rect, int32 column, bool) override
	{
		owner->SetHighColor(static_cast<uint8>(10 * (column + 2)), 100, IsSelected() ? 200 : 0);
		owner->FillRect(rect);
		cells[column] = rect;
	}
	void MouseOver(ColumnListView*, BPoint, uint32 transit, const BMessage*) override
	{
		transits.push_back(transit);
	}
	void Update(BView* owner, const BFont* font) override
	{
		CLVListItem::Update(owner, font);
		SetHeight(19);
	}

	int keys[2];
	std::vector<uint32> transits;
	std::map<int32, BRect> cells; // by their columns, as drawn last
};

inline int
CompareKeys(const CLVListItem* a, const CLVListItem* b, int32 column)
{
	const int left = static_cast<const TestRow*>(a)->keys[column];
	const int right = static_cast<const TestRow*>(b)->keys[column];
	return (left > right) - (left < right);
}

class TestList : public ColumnListView {
public:
	explicit TestList(bool hierarchical, BRect frame = BRect(0, 0, 299, 199),
		list_view_type type = B_SINGLE_SELECTION_LIST) :
		ColumnListView(frame, &container, "list", B_FOLLOW_ALL_SIDES,
			B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE, type, hierarchical, true, true, B_NO_BORDER,
			be_plain_font)
	{}

	CLVColumn* NewColumn(uint32 flags = 0, float width = 50, const char* label = "label")
	{
		CLVColumn* column = new CLVColumn(label, width, flags, 10);
		if (AddColumn(column))
			return column;
		delete column;
		return nullptr;
	}
	TestRow* NewRow(int first = 0, int second = 0, uint32 level = 0)
	{
		rows.push_back(std::make_unique<TestRow>(first, second, level));
		return rows.back().get();
	}
	std::vector<int32> Order() const
	{
		const std::unique_ptr<int32[]> order(DisplayOrder());
		return std::vector<int32>(order.get(), order.get() + CountColumns());
	}
	std::vector<int32> SortKeys() const
	{
		int32 keys[8];
		CLVSortMode modes[8];
		return std::vector<int32>(keys, keys + Sorting(keys, modes));
	}
	// First keys of the visible rows.
	std::vector<int> Shown() const
	{
		std::vector<int> keys;
		for (int32 i = 0; i < CountItems(); i++)
			keys.push_back(static_cast<TestRow*>(ItemAt(i))->keys[0]);
		return keys;
	}

	void ColumnWidthChanged(int32 column, float width) override
	{
		widths.push_back({column, width});
	}
	void DisplayOrderChanged(const int32*) override { orders++; }

	BScrollView* container;
	std::vector<std::unique_ptr<TestRow>> rows; // all that were made
	std::vector<std::pair<int32, float>> widths;
	int orders = 0;
};

// Owns a list that is in no window.
struct LooseList {
	explicit LooseList(bool hierarchical) : list(new TestList(hierarchical)) {}
	~LooseList() { delete list->container; }
	TestList* operator->() { return list; }

	TestList* list;
};
