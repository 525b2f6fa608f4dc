// SPDX-License-Identifier: MIT

// The outline of a column list against the plainest model: a vector of rows with their levels.

#include "tests/clv/TestList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

struct Model {
	std::vector<TestRow*> rows;

	size_t EndOf(size_t index) const
	{
		size_t end = index + 1;
		while (end < rows.size() && rows[end]->OutlineLevel() > rows[index]->OutlineLevel())
			end++;
		return end;
	}
	TestRow* ParentOf(size_t index) const
	{
		for (size_t i = index; i-- > 0;) {
			if (rows[i]->OutlineLevel() < rows[index]->OutlineLevel())
				return rows[i];
		}
		return nullptr;
	}
	std::vector<TestRow*> Visible() const
	{
		struct Above {
			uint32 level;
			bool showsRows;
		};
		std::vector<TestRow*> visible;
		std::vector<Above> above; // of the present row, the outermost first
		for (TestRow* row : rows) {
			while (!above.empty() && above.back().level >= row->OutlineLevel())
				above.pop_back();
			const bool shown = above.empty() || above.back().showsRows;
			if (shown)
				visible.push_back(row);
			above.push_back({row->OutlineLevel(), shown && row->IsExpanded()});
		}
		return visible;
	}

	// Rows begin..end, all below the same row, each with its own rows, by exchange. Where rows of a
	// lower level follow, as they may when levels were given with gaps, these are sorted apart.
	void Sort(size_t begin, size_t end, int32 column)
	{
		std::vector<std::vector<TestRow*>> blocks;
		size_t next = begin;
		while (next < end && rows[next]->OutlineLevel() == rows[begin]->OutlineLevel()) {
			const size_t blockEnd = EndOf(next);
			if (blockEnd > next + 1)
				Sort(next + 1, blockEnd, column);
			blocks.emplace_back(rows.begin() + static_cast<ptrdiff_t>(next),
				rows.begin() + static_cast<ptrdiff_t>(blockEnd));
			next = blockEnd;
		}
		if (next < end)
			Sort(next, end, column);
		for (size_t i = 0; i < blocks.size(); i++) {
			for (size_t j = i + 1; j < blocks.size(); j++) {
				if (CompareKeys(blocks[i][0], blocks[j][0], column) == 1)
					std::swap(blocks[i], blocks[j]);
			}
		}
		for (const std::vector<TestRow*>& block : blocks) {
			std::copy(block.begin(), block.end(), rows.begin() + static_cast<ptrdiff_t>(begin));
			begin += block.size();
		}
	}
};

void
ExpectSame(TestList& list, const Model& model)
{
	ASSERT_EQ(list.FullListCountItems(), static_cast<int32>(model.rows.size()));
	for (size_t i = 0; i < model.rows.size(); i++) {
		ASSERT_EQ(list.FullListItemAt(static_cast<int32>(i)), model.rows[i]);
		ASSERT_EQ(list.FullListIndexOf(model.rows[i]), static_cast<int32>(i));
	}
	const std::vector<TestRow*> visible = model.Visible();
	ASSERT_EQ(list.CountItems(), static_cast<int32>(visible.size()));
	for (size_t i = 0; i < visible.size(); i++) {
		ASSERT_EQ(list.ItemAt(static_cast<int32>(i)), visible[i]);
		ASSERT_EQ(list.IndexOf(visible[i]), static_cast<int32>(i));
	}
}

void
ExpectSameQueries(TestList& list, const Model& model, size_t index)
{
	TestRow* row = model.rows[index];
	EXPECT_EQ(list.Items()[index], row);
	EXPECT_EQ(list.Superitem(row), model.ParentOf(index));
	const int32 below = static_cast<int32>(model.EndOf(index) - index) - 1;
	EXPECT_EQ(list.FullListNumberOfSubitems(row), below);
	EXPECT_EQ(list.CountItemsUnder(row, false), below);
	EXPECT_EQ(list.ItemUnderAt(row, false, 0), nullptr);
	EXPECT_EQ(list.ItemUnderAt(row, false, 1), below > 0 ? model.rows[index + 1] : nullptr);
	EXPECT_EQ(list.ItemUnderAt(row, false, below + 1), nullptr);
	std::vector<CLVListItem*> direct;
	for (size_t i = index + 1; i < model.EndOf(index); i++) {
		if (model.rows[i]->OutlineLevel() == row->OutlineLevel() + 1)
			direct.push_back(model.rows[i]);
	}
	EXPECT_EQ(list.CountItemsUnder(row, true), static_cast<int32>(direct.size()));
	std::vector<CLVListItem*> visited;
	list.EachItemUnder(
		row, true,
		[](CLVListItem* item, void* to) -> CLVListItem* {
			static_cast<std::vector<CLVListItem*>*>(to)->push_back(item);
			return nullptr;
		},
		&visited);
	EXPECT_EQ(visited, direct);
	if (!direct.empty()) {
		EXPECT_EQ(list.ItemUnderAt(row, true, static_cast<int32>(direct.size())), direct.back());
		EXPECT_EQ(list.EachItemUnder(
					  row, true, [](CLVListItem* item, void*) { return item; }, nullptr),
			direct.front());
	}
}

void
RunSteps(unsigned seed, int steps, unsigned mostAtOnce)
{
	std::mt19937 random(seed);
	LooseList list(true);
	list->SetSortFunction(CompareKeys);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	Model model;
	const auto newRow = [&](uint32 level) {
		TestRow* row =
			list->NewRow(static_cast<int>(random() % 5), static_cast<int>(random() % 1000), level);
		row->SetExpanded(random() % 2 == 0);
		return row;
	};
	for (int step = 0; step < steps; step++) {
		const size_t count = model.rows.size();
		const size_t index = count > 0 ? random() % count : 0;
		const auto at = model.rows.begin() + static_cast<ptrdiff_t>(index);
		const unsigned action = random() % 10;
		if (count == 0 || action == 0) {
			TestRow* row = newRow(0);
			ASSERT_TRUE(list->AddItem(row));
			model.rows.push_back(row);
		} else if (action < 5) {
			TestRow* parent = *at;
			for (unsigned i = 1 + random() % mostAtOnce; i > 0; i--) {
				TestRow* row = newRow(77);
				ASSERT_TRUE(list->AddUnder(row, parent));
				model.rows.insert(
					model.rows.begin() + static_cast<ptrdiff_t>(model.EndOf(index)), row);
			}
		} else if (action == 5) { // may take over the rows behind it
			TestRow* row = newRow(static_cast<uint32>(random() % 4));
			const bool fits = row->OutlineLevel() == 0 || index > 0;
			ASSERT_EQ(list->AddItem(row, static_cast<int32>(index)), fits);
			if (fits)
				model.rows.insert(at, row);
		} else if (action == 9 && step % 4 != 0) { // of all levels, at once
			BList added;
			size_t fitting = 0;
			for (unsigned i = 1 + random() % (2 * mostAtOnce); i > 0; i--) {
				TestRow* row = newRow(static_cast<uint32>(random() % 4));
				added.AddItem(static_cast<BListItem*>(row));
				if (fitting + 1 < static_cast<size_t>(added.CountItems()))
					continue; // behind one that does not fit
				model.rows.insert(
					model.rows.begin() + static_cast<ptrdiff_t>(index + fitting), row);
				if (row->OutlineLevel() == 0 || model.ParentOf(index + fitting) != nullptr)
					fitting++;
				else
					model.rows.erase(model.rows.begin() + static_cast<ptrdiff_t>(index + fitting));
			}
			ASSERT_EQ(list->AddList(&added, static_cast<int32>(index)),
				fitting == static_cast<size_t>(added.CountItems()));
		} else if (action == 6) {
			const size_t asked = 1 + random() % (random() % 8 == 0 ? 5 * mostAtOnce : 4);
			size_t end = std::min(index + asked, count);
			uint32 lowest = UINT32_MAX;
			for (size_t i = index; i < end; i++)
				lowest = std::min(lowest, model.rows[i]->OutlineLevel());
			while (end < count && model.rows[end]->OutlineLevel() > lowest)
				end++;
			ASSERT_TRUE(list->RemoveItems(static_cast<int32>(index), static_cast<int32>(asked)));
			model.rows.erase(at, model.rows.begin() + static_cast<ptrdiff_t>(end));
		} else if (action == 7) {
			list->Expand(*at);
			EXPECT_TRUE((*at)->IsSuperItem() && (*at)->IsExpanded());
		} else if (action == 8) {
			list->Collapse(*at);
			EXPECT_FALSE(list->IsExpanded(static_cast<int32>(index)));
		} else if (step % 4 == 0) {
			const int32 column = static_cast<int32>(random() % 2);
			list->SetSortKey(-1);
			list->SetSortKey(column);
			model.Sort(0, count, column);
		}
		ExpectSame(*list.list, model);
		if (testing::Test::HasFatalFailure())
			FAIL() << "seed " << seed << ", step " << step << ", action " << action;
		if (!model.rows.empty())
			ExpectSameQueries(*list.list, model, random() % model.rows.size());
	}
}

} // namespace

TEST(Outline, VisibleRowsAreThoseBelowExpandedOnes)
{
	for (unsigned seed = 0; seed < 10; seed++)
		RunSteps(seed, 500, 3);
	RunSteps(10, 200, 400); // rows by the thousand
}

TEST(Outline, RowsThatAreHereOrGoneAreRefused)
{
	LooseList list(true);
	TestRow* top = list->NewRow(1);
	TestRow* child = list->NewRow(2);
	TestRow* grandchild = list->NewRow(3);
	TestRow* stranger = list->NewRow(4);
	list->AddItem(top);
	EXPECT_TRUE(list->AddUnder(child, top));
	EXPECT_TRUE(list->AddUnder(grandchild, child));
	EXPECT_FALSE(list->AddUnder(grandchild, top));
	EXPECT_FALSE(list->AddUnder(list->NewRow(6), stranger));
	EXPECT_EQ(list->CountItemsUnder(stranger, false), -1);
	list->Expand(top);
	list->Select(1);
	EXPECT_EQ(list->FullListCurrentSelection(), 1);
	EXPECT_EQ(list->FullListCurrentSelection(1), -1);
	// Rows that are gone may be asked for.
	EXPECT_TRUE(list->RemoveItem(child));
	EXPECT_EQ(list->FullListCountItems(), 1);
	list->rows.erase(list->rows.begin() + 1, list->rows.begin() + 3);
	EXPECT_FALSE(list->FullListHasItem(child));
	EXPECT_EQ(list->FullListIndexOf(grandchild), -1);
	EXPECT_FALSE(list->RemoveItem(grandchild));
}

TEST(Outline, AFlatListKnowsNoRowsBelowOthers)
{
	LooseList list(false);
	TestRow* top = list->NewRow(1);
	BList added;
	added.AddItem(static_cast<BListItem*>(top));
	added.AddItem(static_cast<BListItem*>(list->NewRow(2)));
	added.AddItem(static_cast<BListItem*>(top));
	added.AddItem(static_cast<BListItem*>(list->NewRow(3)));
	EXPECT_FALSE(list->AddList(&added)); // stops at the row that is here already
	EXPECT_FALSE(list->AddUnder(list->NewRow(), top));
	EXPECT_EQ(list->FullListNumberOfSubitems(top), 0);
	EXPECT_EQ(list->Shown(), (std::vector<int>{1, 2}));
	BListView* base = list.list;
	EXPECT_TRUE(base->AddItem(list->NewRow(9), 1)); // by who knows only a list
	EXPECT_EQ(list->FullListItemAt(1), list->rows.back().get());
	EXPECT_TRUE(base->RemoveItem(top));
	EXPECT_EQ(list->FullListIndexOf(list->rows.back().get()), 0);
}
