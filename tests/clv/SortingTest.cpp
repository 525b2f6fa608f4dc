// SPDX-License-Identifier: MIT

#include "clv/ExchangeOrder.h"

#include "tests/clv/TestList.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace {

std::vector<int32>
PlainExchange(int32 count, const NumberedCompare& compare)
{
	std::vector<int32> items(static_cast<size_t>(count));
	std::iota(items.begin(), items.end(), 0);
	for (size_t i = 0; i + 1 < items.size(); i++) {
		for (size_t j = i + 1; j < items.size(); j++) {
			if (compare(items[i], items[j]) == 1)
				std::swap(items[i], items[j]);
		}
	}
	return items;
}

int
Sign(int a, int b)
{
	return (a > b) - (a < b);
}

int
CompareByFive(const CLVListItem* a, const CLVListItem* b, int32 column)
{
	return 5 * CompareKeys(a, b, column);
}

struct Keys {
	std::vector<int32> columns;
	std::vector<CLVSortMode> modes;
	bool operator==(const Keys&) const = default;
};

Keys
KeysOf(const ColumnListView* list)
{
	int32 columns[8];
	CLVSortMode modes[8];
	const int32 count = list->Sorting(columns, modes);
	return {{columns, columns + count}, {modes, modes + count}};
}

} // namespace

TEST(ExchangeOrder, IsThatOfThePlainSort)
{
	std::mt19937 random(1);
	for (int round = 0; round < 2500; round++) {
		const int32 count = static_cast<int32>(random() % 120);
		std::vector<int> keys(static_cast<size_t>(count));
		const unsigned different = random() % 2 == 0 ? 1 + random() % 4 : 100;
		for (int& key : keys)
			key = static_cast<int>(random() % different);
		const auto key = [&](int32 item) { return keys[static_cast<size_t>(item)]; };
		NumberedCompare compare;
		switch (round % 6) {
			case 0: // tells only whether it is behind
				compare = [&](int32 a, int32 b) { return key(a) > key(b) ? 1 : 0; };
				break;
			case 1: // distances: most of them swap nothing
				compare = [&](int32 a, int32 b) { return key(a) - key(b); };
				break;
			case 2: // in a circle
				compare = [&](int32 a, int32 b) { return (key(a) - key(b) + 300) % 3 - 1; };
				break;
			case 3: // in a circle in which neighbours agree
				compare = [&](int32 a, int32 b) {
					const int ahead = (key(b) - key(a) + 101) % 101;
					return different < 100 || ahead == 0 ? 0 : ahead <= 50 ? -1 : 1;
				};
				break;
			default:
				compare = [&](int32 a, int32 b) { return Sign(key(a), key(b)); };
		}
		ASSERT_EQ(ExchangeOrder(count, compare), PlainExchange(count, compare))
			<< "round " << round;
	}
}

TEST(ExchangeOrder, ComparesFarLessThanThePlainSort)
{
	constexpr int32 kCount = 10000;
	int64 compared = 0;
	ExchangeOrder(kCount, [&](int32 a, int32 b) {
		compared++;
		return Sign(a * 7919 % 1000, b * 7919 % 1000);
	});
	EXPECT_LT(compared, 20 * kCount);
}

TEST(Sorting, OnlyTheAnswerOneMovesRowsOfAnOutline)
{
	for (const bool outline : {false, true}) {
		LooseList list(outline);
		list->NewColumn(CLV_COLUMN_SORTABLE);
		for (const int key : {2, 2, 1, 3})
			list->AddItem(list->NewRow(key));
		list->SetSortKey(0);
		EXPECT_EQ(list->Shown(), (std::vector<int>{2, 2, 1, 3})); // by nothing
		list->SetSortFunction(CompareByFive);
		list->SortItems();
		EXPECT_EQ(list->Shown(),
			outline ? (std::vector<int>{2, 2, 1, 3}) : (std::vector<int>{1, 2, 2, 3}));
	}
	// And the exchange has turned the two equal ones.
	LooseList list(true);
	list->SetSortFunction(CompareKeys);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	for (const int key : {2, 2, 1})
		list->AddItem(list->NewRow(key));
	list->SetSortKey(0);
	EXPECT_EQ(list->FullListItemAt(1), list->rows[1].get());
	EXPECT_EQ(list->FullListItemAt(2), list->rows[0].get());
}

TEST(Sorting, ReversingGoesRoundInThree)
{
	LooseList list(false);
	list->SetSortFunction(CompareKeys);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	for (const int key : {2, 3, 1})
		list->AddItem(list->NewRow(key));
	list->SetSortKey(0);
	EXPECT_EQ(list->Shown(), (std::vector<int>{1, 2, 3}));
	list->ReverseSortMode(0);
	EXPECT_EQ(list->Shown(), (std::vector<int>{3, 2, 1}));
	list->ReverseSortMode(0);
	EXPECT_EQ(KeysOf(list.list), (Keys{}));
	list->ReverseSortMode(0);
	EXPECT_EQ(KeysOf(list.list), (Keys{})); // not a key again by that
}

TEST(Sorting, FurtherKeysDecideBetweenEqualRows)
{
	LooseList list(false);
	list->SetSortFunction(CompareKeys);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	list->NewColumn(CLV_COLUMN_SORTABLE);
	list->NewColumn(0);
	const auto seconds = [&] {
		std::vector<int> keys;
		for (int32 i = 0; i < list->CountItems(); i++)
			keys.push_back(static_cast<TestRow*>(list->ItemAt(i))->keys[1]);
		return keys;
	};
	for (const auto& [first, second] : {std::pair{1, 7}, {0, 5}, {1, 9}, {0, 6}, {1, 8}})
		list->AddItem(list->NewRow(first, second));
	list->SetSortKey(2); // not sortable
	list->AddSortKey(2);
	list->SetSortMode(2, CLV_SORT_ASCENDING);
	EXPECT_EQ(KeysOf(list.list), (Keys{}));
	list->SetSortKey(0);
	EXPECT_EQ(seconds(), (std::vector<int>{5, 6, 7, 9, 8})); // equal ones as they were
	list->AddSortKey(1);
	list->AddSortKey(0);
	EXPECT_EQ(seconds(), (std::vector<int>{5, 6, 7, 8, 9}));
	int32 keys[] = {0, 1};
	CLVSortMode modes[] = {CLV_SORT_DESCENDING, CLV_SORT_DESCENDING};
	list->SetSorting(2, keys, modes);
	EXPECT_EQ(seconds(), (std::vector<int>{9, 8, 7, 6, 5}));
	EXPECT_EQ(KeysOf(list.list), (Keys{{0, 1}, {CLV_SORT_DESCENDING, CLV_SORT_DESCENDING}}));
	list->ColumnAt(0)->SetSortMode(CLV_SORT_NONE);
	EXPECT_EQ(KeysOf(list.list), (Keys{{1}, {CLV_SORT_DESCENDING}}));
	list->SetSortKey(-1);
	EXPECT_EQ(KeysOf(list.list), (Keys{}));
}
