// SPDX-License-Identifier: MIT

#include <desktop/Pixels.h>

#include <bitset>
#include <gtest/gtest.h>
#include <random>

using namespace desktop;

namespace {

constexpr int32 kSide = 24;
using Bitmap = std::bitset<kSide * kSide>;

Bitmap
ToBitmap(const PixelRegion& region)
{
	Bitmap bits;
	for (int32 i = 0; i < region.CountRects(); i++) {
		const PixelRect rect = region.RectAt(i);
		for (int32 y = rect.top; y <= rect.bottom; y++) {
			for (int32 x = rect.left; x <= rect.right; x++) {
				EXPECT_FALSE(bits[size_t(y * kSide + x)]) << "rectangles overlap";
				bits.set(size_t(y * kSide + x));
			}
		}
	}
	return bits;
}

Bitmap
ToBitmap(const PixelRect& rect)
{
	Bitmap bits;
	for (int32 y = rect.top; y <= rect.bottom; y++) {
		for (int32 x = rect.left; x <= rect.right; x++)
			bits.set(size_t(y * kSide + x));
	}
	return bits;
}

PixelRect
RandomRect(std::mt19937& random)
{
	const auto pick = [&random] { return int32(random() % kSide); };
	return {pick(), pick(), pick(), pick()}; // may be empty
}

} // namespace

TEST(PixelRegion, AgreesWithABitmapAfterAnySteps)
{
	std::mt19937 random(7);
	PixelRegion region;
	Bitmap model;
	for (int step = 0; step < 4000; step++) {
		const PixelRect rect = RandomRect(random);
		PixelRegion two(rect);
		const PixelRect second = RandomRect(random);
		two.Include(second);
		const Bitmap both = ToBitmap(rect) | ToBitmap(second);
		switch (random() % 8) {
			case 0:
				region.Include(rect);
				model |= ToBitmap(rect);
				break;
			case 1:
				region.Exclude(rect);
				model &= ~ToBitmap(rect);
				break;
			case 2:
				region.Include(two);
				model |= both;
				break;
			case 3:
				region.Exclude(two);
				model &= ~both;
				break;
			case 4:
				region.IntersectWith(two);
				model &= both;
				break;
			case 5:
				region.IntersectWith(rect);
				model &= ToBitmap(rect);
				break;
			case 6:
				two = region;
				two.OffsetBy(5, -3);
				ASSERT_EQ(two.IsEmpty(), model.none());
				two.OffsetBy(-5, 3);
				ASSERT_EQ(two, region);
				break;
			default:
				two = region;
				two.Exclude(rect); // the copy only
				break;
		}
		ASSERT_EQ(ToBitmap(region), model) << "step " << step;
		ASSERT_EQ(region.IsEmpty(), model.none());
		ASSERT_EQ(region.Intersects(rect), (model & ToBitmap(rect)).any());
		const int32 x = int32(random() % kSide);
		const int32 y = int32(random() % kSide);
		ASSERT_EQ(region.Contains(x, y), model[size_t(y * kSide + x)]);
	}
}
