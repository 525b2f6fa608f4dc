// SPDX-License-Identifier: MIT

#include <interface/Bitmap.h>
#include <interface/Region.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

uint8
IndexOf(uint32 color)
{
	BBitmap bitmap(BRect(0, 0, 0, 0), B_CMAP8);
	bitmap.SetBits(&color, 4, 0, B_RGBA32);
	return *static_cast<uint8*>(bitmap.Bits());
}

int32
Distance(uint32 a, uint32 b)
{
	int32 sum = 0;
	for (int shift = 0; shift < 24; shift += 8) {
		const int32 d = int32(a >> shift & 0xff) - int32(b >> shift & 0xff);
		sum += d * d;
	}
	return sum;
}

// The colour of one palette entry, by conversion.
uint32
PaletteColor(uint8 index)
{
	BBitmap bitmap(BRect(0, 0, 0, 0), B_RGBA32);
	const uint8 row[4] = {index, 0, 0, 0};
	bitmap.SetBits(row, 1, 0, B_CMAP8);
	uint32 color;
	memcpy(&color, bitmap.Bits(), 4);
	return color;
}

} // namespace

TEST(Bitmap, RowsArePaddedToFourBytes)
{
	EXPECT_EQ(BBitmap(BRect(0, 0, 10, 3), B_CMAP8).BytesPerRow(), 12);
	EXPECT_EQ(BBitmap(BRect(0, 0, 15, 15), B_CMAP8).BytesPerRow(), 16);
	EXPECT_EQ(BBitmap(BRect(0, 0, 32, 0), B_GRAY1).BitsLength(), 8);
	EXPECT_EQ(BBitmap(BRect(0, 0, 2, 1), B_RGB32).BitsLength(), 24);
	EXPECT_FALSE(BBitmap(BRect(), B_CMAP8).IsValid());
}

TEST(Bitmap, TheNearestColourOfThePaletteIsTaken)
{
	uint32 palette[256];
	for (int i = 0; i < 256; i++)
		palette[i] = PaletteColor(static_cast<uint8>(i));
	for (uint32 i = 0; i < 2000; i++) {
		const uint32 color = 0xff000000 | (i * 2654435761u >> 8);
		int32 best = INT32_MAX;
		for (int entry = 0; entry < 255; entry++)
			best = std::min(best, Distance(color, palette[entry]));
		EXPECT_EQ(Distance(color, palette[IndexOf(color)]), best) << std::hex << color;
	}
}

TEST(Bitmap, BitsThatDoNotFitAreCutOff)
{
	BBitmap bitmap(BRect(0, 0, 3, 1), B_CMAP8);
	const uint8 data[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
	bitmap.SetBits(data, 10, 6, B_CMAP8);
	const uint8 expected[] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 1, 2};
	EXPECT_EQ(memcmp(bitmap.Bits(), expected, 8), 0);
	bitmap.SetBits(data, 10, 8, B_CMAP8);
	EXPECT_EQ(memcmp(bitmap.Bits(), expected, 8), 0);
	// A converted row begins where the offset falls in a bitmap of the other space.
	BBitmap deep(BRect(0, 0, 3, 1), B_RGBA32);
	deep.SetBits(data, 10, 5, B_CMAP8);
	uint32 pixels[8];
	memcpy(pixels, deep.Bits(), 32);
	EXPECT_EQ(pixels[4], 0u);
	EXPECT_EQ(pixels[5], PaletteColor(1));
	EXPECT_EQ(pixels[7], PaletteColor(3));
}

TEST(Region, EdgesRoundHalfUpSoThatNeighboursMeet)
{
	BRegion left(BRect(0, 0, 7.5f, 4));
	BRegion right(BRect(8.5f, 0, 12, 4));
	EXPECT_EQ(left.Frame(), BRect(0, 0, 8, 4));
	EXPECT_EQ(right.Frame(), BRect(9, 0, 12, 4));
	left.Include(&right);
	EXPECT_EQ(left.CountRects(), 1);
	EXPECT_EQ(BRegion(BRect(-0.5f, -1.5f, 0, 0)).Frame(), BRect(0, -1, 0, 0));
}

TEST(Region, RectanglesThatAreNotValidChangeNothing)
{
	BRegion region(BRect(0, 0, 9, 9));
	region.Include(BRect(20, 20, 19, 25));
	region.Exclude(BRect(5, 5, 4, 9));
	EXPECT_EQ(region.Frame(), BRect(0, 0, 9, 9));
	region.IntersectWith(BRect());
	EXPECT_FALSE(region.Frame().IsValid());
}
