// SPDX-License-Identifier: MIT

#include <interface/RowLayout.h>

#include <gtest/gtest.h>

#include <random>

using BPrivate::RowLayout;

namespace {

// Everything that can be asked, against plain sums.
void
ExpectSame(const RowLayout& layout, const std::vector<float>& model, std::mt19937& random)
{
	ASSERT_EQ(layout.CountRows(), static_cast<int32>(model.size()));
	std::vector<double> tops{0};
	for (float height : model)
		tops.push_back(tops.back() + double(height) + 1);
	ASSERT_EQ(layout.TotalHeight(), tops.back());
	ASSERT_EQ(layout.RowAt(-0.5), -1);
	ASSERT_EQ(layout.RowAt(tops.back()), -1);
	for (int i = 0; i < 20 && !model.empty(); i++) {
		size_t row = random() % model.size();
		ASSERT_EQ(layout.TopOf(static_cast<int32>(row)), tops[row]);
		ASSERT_EQ(layout.HeightOf(static_cast<int32>(row)), model[row]);
		ASSERT_EQ(layout.RowAt(tops[row]), static_cast<int32>(row));
		ASSERT_EQ(layout.RowAt(tops[row + 1] - 0.25), static_cast<int32>(row));
	}
}

// Often all the same, as most lists have them.
std::vector<float>
RandomHeights(std::mt19937& random, size_t count)
{
	std::vector<float> heights(count, 18);
	for (float& height : heights) {
		if (count % 2 == 0)
			break;
		height = static_cast<float>(random() % 160) / 4;
	}
	return heights;
}

} // namespace

TEST(RowLayout, RandomChangesAgreeWithPlainSums)
{
	std::mt19937 random(20);
	RowLayout layout;
	std::vector<float> model;
	for (int step = 0; step < 2000; step++) {
		if (step % 70 == 0) {
			layout.MakeEmpty();
			model.clear();
		}
		int32 row = static_cast<int32>(random() % (model.size() + 1));
		int32 rest = static_cast<int32>(model.size()) - row;
		switch (random() % 4) {
			case 0: {
				std::vector<float> added =
					RandomHeights(random, random() % (step % 50 == 0 ? 5000 : 4));
				layout.Insert(row, added);
				model.insert(model.begin() + row, added.begin(), added.end());
				break;
			}
			case 1: {
				int32 count = std::min<int32>(rest, random() % (step % 50 == 1 ? 4000 : 4));
				layout.Remove(row, count);
				model.erase(model.begin() + row, model.begin() + row + count);
				break;
			}
			case 2:
				if (rest > 0) {
					float height =
						static_cast<float>(random() % 4 == 0 ? random() % 100 : 18 + random() % 2);
					EXPECT_EQ(layout.SetHeight(row, height), model[row] != height);
					model[row] = height;
				}
				break;
			case 3:
				layout.Insert(static_cast<int32>(model.size()), {18});
				model.push_back(18);
				break;
		}
		ASSERT_NO_FATAL_FAILURE(ExpectSame(layout, model, random)) << "step " << step;
	}
}
