// SPDX-License-Identifier: MIT

#include <interface/RowSet.h>

#include <gtest/gtest.h>

#include <random>

TEST(RowSet, RandomChangesAgreeWithAFlagPerRow)
{
	std::mt19937 random(21);
	BPrivate::RowSet set;
	std::vector<bool> model(60);
	for (int step = 0; step < 20000; step++) {
		int32 size = static_cast<int32>(model.size());
		int32 row = static_cast<int32>(random() % (model.size() + 1));
		int32 last = std::min<int32>(row + static_cast<int32>(random() % 6), size - 1);
		switch (random() % 4) {
			case 0:
				set.Add(row, last);
				std::fill(model.begin() + row, model.begin() + std::max(last + 1, row), true);
				break;
			case 1:
				set.Remove(row, last);
				std::fill(model.begin() + row, model.begin() + std::max(last + 1, row), false);
				break;
			case 2:
				if (size < 100) {
					set.RowsInserted(row, 3);
					model.insert(model.begin() + row, 3, false);
				}
				break;
			case 3:
				set.RowsRemoved(row, last + 1 - row);
				model.erase(model.begin() + row, model.begin() + std::max(last + 1, row));
				break;
		}
		size = static_cast<int32>(model.size());
		std::vector<int32> expected, found;
		for (int32 i = 0; i < size; i++) {
			ASSERT_EQ(set.Contains(i), model[i]) << "row " << i << ", step " << step;
			if (model[i])
				expected.push_back(i);
		}
		for (int32 i = 0, k; (k = set.Nth(i)) >= 0; i++)
			found.push_back(k);
		ASSERT_EQ(found, expected);
		ASSERT_EQ(set.Count(), static_cast<int32>(expected.size()));
		int32 inside = 0;
		for (const BPrivate::RowSet::Range& range : set.RangesIn(row, row + 10))
			inside += range.last - range.first + 1;
		ASSERT_EQ(inside, std::count_if(expected.begin(), expected.end(), [row](int32 i) {
			return i >= row && i <= row + 10;
		}));
		ASSERT_EQ(inside, set.CountIn(row, row + 10));
	}
}
