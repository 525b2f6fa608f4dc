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

// Does one random step to the list and to the model; both must agree about its success.
class ListStorm {
public:
	explicit ListStorm(unsigned seed) : fRandom(seed) {}

	void Step()
	{
		int32 count = fList.CountItems();
		int32 at = Below(count + 4) - 2;
		bool inside = at >= 0 && at < count;
		switch (Below(11)) {
			case 0:
			case 1:
				Insert(at, at >= 0 && at <= count);
				break;
			case 2:
				Insert(Below(2) * count, true); // an end
				break;
			case 3:
				EXPECT_EQ(inside ? fModel[at] : nullptr, fList.RemoveItem(at));
				if (inside)
					fModel.erase(fModel.begin() + at);
				break;
			case 4:
				RemoveByValue();
				break;
			case 5:
				RemoveSome(at, Below(6) - 1, inside);
				break;
			case 6:
				InsertList(at, at >= 0 && at <= count);
				break;
			case 7:
				Swap(at, Below(count + 2) - 1);
				break;
			case 8:
				Move(at, Below(count + 2) - 1);
				break;
			case 9:
				if (Below(30) == 0) {
					fList.SortItems(CompareItems);
					std::sort(fModel.begin(), fModel.end());
				}
				break;
			default:
				if (count > 200 || Below(100) == 0) {
					fList.MakeEmpty();
					fModel.clear();
				}
		}
	}

	void Check() const
	{
		ASSERT_EQ(fModel, Contents(fList));
		EXPECT_EQ(fModel.empty(), fList.IsEmpty());
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

	void Insert(int32 at, bool valid)
	{
		void* item = Item(Below(50));
		EXPECT_EQ(valid, fList.AddItem(item, at));
		if (valid)
			fModel.insert(fModel.begin() + at, item);
	}

	void RemoveByValue()
	{
		void* item = Item(Below(50));
		auto found = std::find(fModel.begin(), fModel.end(), item);
		EXPECT_EQ(found != fModel.end(), fList.RemoveItem(item));
		if (found != fModel.end())
			fModel.erase(found);
	}

	void RemoveSome(int32 at, int32 count, bool inside)
	{
		bool valid = inside && count >= 0;
		EXPECT_EQ(valid, fList.RemoveItems(at, count));
		if (valid) {
			auto first = fModel.begin() + at;
			fModel.erase(first, first + std::min<std::ptrdiff_t>(count, fModel.end() - first));
		}
	}

	void InsertList(int32 at, bool valid)
	{
		BList other(3);
		for (int32 i = Below(5); i > 0; i--)
			other.AddItem(Item(Below(50)));
		bool itself = Below(4) == 0;
		Model added = itself ? fModel : Contents(other);
		EXPECT_EQ(valid, fList.AddList(itself ? &fList : &other, at));
		if (valid)
			fModel.insert(fModel.begin() + at, added.begin(), added.end());
	}

	bool Valid(int32 a, int32 b) const
	{
		auto count = static_cast<int32>(fModel.size());
		return a >= 0 && a < count && b >= 0 && b < count;
	}

	void Swap(int32 a, int32 b)
	{
		bool valid = Valid(a, b);
		EXPECT_EQ(valid, fList.SwapItems(a, b));
		if (valid)
			std::swap(fModel[a], fModel[b]);
	}

	void Move(int32 from, int32 to)
	{
		bool valid = Valid(from, to);
		EXPECT_EQ(valid, fList.MoveItem(from, to));
		if (valid) {
			void* item = fModel[from];
			fModel.erase(fModel.begin() + from);
			fModel.insert(fModel.begin() + to, item);
		}
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
	auto untilThree = [](void* item, void* into) {
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
