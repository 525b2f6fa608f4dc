// SPDX-License-Identifier: MIT

// BList against a plain vector, and what the vector cannot say.

#include <support/List.h>

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <vector>

using Model = std::vector<void*>;

static void*
Item(std::intptr_t number)
{
	return reinterpret_cast<void*>(number);
}

static Model
Contents(const BList& list)
{
	void** items = static_cast<void**>(list.Items());
	return Model(items, items + list.CountItems());
}

static int
CompareItems(const void* a, const void* b)
{
	auto first = reinterpret_cast<std::intptr_t>(*static_cast<void* const*>(a));
	auto second = reinterpret_cast<std::intptr_t>(*static_cast<void* const*>(b));
	return first < second ? -1 : first > second;
}

namespace {

// A list and the vector that it should be.
class ListStorm {
public:
	explicit ListStorm(unsigned seed) : fRandom(seed) {}

	// Does one random step to both; they must agree about its success.
	void Step()
	{
		const int32 count = fList.CountItems();
		const int32 at = Below(count + 4) - 2, other = Below(count + 2) - 1;
		const bool inside = at >= 0 && at < count;
		const bool both = inside && other >= 0 && other < count;
		const auto place = fModel.begin() + (inside ? at : 0);
		void* const item = Item(Below(50));
		switch (Below(9)) {
			case 0:
				Insert(at, {item}, fList.AddItem(item, at));
				break;
			case 1:
				EXPECT_EQ(inside ? fModel[at] : nullptr, fList.RemoveItem(at));
				if (inside)
					fModel.erase(place);
				break;
			case 2: {
				auto found = std::find(fModel.begin(), fModel.end(), item);
				EXPECT_EQ(found != fModel.end(), fList.RemoveItem(item));
				if (found != fModel.end())
					fModel.erase(found);
				break;
			}
			case 3: {
				const int32 some = Below(6) - 1;
				EXPECT_EQ(inside && some >= 0, fList.RemoveItems(at, some));
				if (inside && some >= 0)
					fModel.erase(place, place + std::min<int32>(some, count - at));
				break;
			}
			case 4: {
				BList added(3);
				for (int32 i = Below(5); i > 0; i--)
					added.AddItem(Item(Below(50)));
				Insert(at, Contents(added), fList.AddList(&added, at));
				break;
			}
			case 5: // its own items
				if (count < 100)
					Insert(at, Model(fModel), fList.AddList(&fList, at));
				break;
			case 6:
				EXPECT_EQ(both, fList.SwapItems(at, other));
				if (both)
					std::swap(fModel[at], fModel[other]);
				break;
			case 7:
				EXPECT_EQ(both, fList.MoveItem(at, other));
				if (both) {
					void* const moved = fModel[at];
					fModel.erase(place);
					fModel.insert(fModel.begin() + other, moved);
				}
				break;
			default:
				if (count > 200) {
					fList.MakeEmpty();
					fModel.clear();
				} else if (Below(20) == 0) {
					fList.SortItems(CompareItems);
					std::sort(fModel.begin(), fModel.end());
				}
		}
	}

	void Check() const
	{
		ASSERT_EQ(fModel, Contents(fList));
		EXPECT_EQ(fModel.empty() ? nullptr : fModel.front(), fList.FirstItem());
		EXPECT_EQ(fModel.empty() ? nullptr : fModel.back(), fList.LastItem());
		auto found = std::find(fModel.begin(), fModel.end(), Item(5));
		EXPECT_EQ(found == fModel.end() ? -1 : found - fModel.begin(), fList.IndexOf(Item(5)));
	}

private:
	int32 Below(int32 limit)
	{
		return static_cast<int32>(fRandom() % static_cast<unsigned>(limit));
	}
	void Insert(int32 at, const Model& added, bool done)
	{
		const bool valid = at >= 0 && at <= static_cast<int32>(fModel.size());
		EXPECT_EQ(valid, done);
		if (valid)
			fModel.insert(fModel.begin() + at, added.begin(), added.end());
	}

	std::minstd_rand fRandom;
	BList fList{7};
	Model fModel;
};

} // namespace

TEST(List, BehavesAsAVector)
{
	for (unsigned seed = 1; seed <= 10; seed++) {
		SCOPED_TRACE(testing::Message() << "seed " << seed);
		ListStorm storm(seed);
		for (int step = 0; step < 2000 && !testing::Test::HasFailure(); step++) {
			storm.Step();
			storm.Check();
		}
	}
}

TEST(List, WalksStopWhereTheCallbackSaysSo)
{
	BList list;
	for (int i = 1; i <= 5; i++)
		list.AddItem(Item(i));
	Model seen;
	const auto untilThree = [](void* item, void* into) {
		static_cast<Model*>(into)->push_back(item);
		return item == Item(3);
	};
	list.DoForEach(untilThree, &seen);
	EXPECT_EQ((Model{Item(1), Item(2), Item(3)}), seen);
}

TEST(List, CopiesAreIndependent)
{
	BList list;
	list.AddItem(Item(1));
	BList copy(list);
	copy.AddItem(Item(2), 0);
	list = copy;
	copy.MakeEmpty();
	EXPECT_EQ((Model{Item(2), Item(1)}), Contents(list));
}

// A list that moves its items at each of these steps takes many seconds; this one 100 ms.
TEST(List, BothEndsAreCheap)
{
	BList list;
	constexpr int32 kItems = 300'000;
	auto start = std::chrono::steady_clock::now();
	for (int32 i = 0; i < kItems; i++)
		list.AddItem(Item(i), i % 2 == 0 ? 0 : list.CountItems());
	for (int32 i = 0; i < kItems; i++)
		list.AddItem(list.RemoveItem(0));
	for (int32 i = 0; i < kItems; i++)
		list.AddItem(list.RemoveItem(kItems - 1), 0);
	EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
	EXPECT_EQ(kItems, list.CountItems());
	EXPECT_EQ(Item(kItems - 2), list.FirstItem());
	EXPECT_EQ(Item(kItems - 1), list.LastItem());
}
