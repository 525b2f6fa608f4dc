// SPDX-License-Identifier: MIT

#include "clv/PrefilledBitmap.h"

#include <cmath>

PrefilledBitmap::PrefilledBitmap(
	BRect bounds, color_space space, const void* data, bool acceptsViews, bool contiguous) :
	BBitmap(bounds, space, acceptsViews, contiguous)
{
	const int32 width = static_cast<int32>(std::lround(bounds.right - bounds.left));
	const int32 bytesPerRow = (width + 3) / 4 * 4;
	const int32 rows = static_cast<int32>(std::lround(bounds.bottom - bounds.top)) + 1;
	SetBits(data, bytesPerRow * rows, 0, space);
}

// Transparent, outline and fill.
#define T 0xff
#define B 0x00
#define F 0x12

// clang-format off
const uint8 CLVRightArrowData[132] = {
	T, T, T, B, T, T, T, T, T, T, T, T,
	T, T, T, B, B, T, T, T, T, T, T, T,
	T, T, T, B, F, B, T, T, T, T, T, T,
	T, T, T, B, F, F, B, T, T, T, T, T,
	T, T, T, B, F, F, F, B, T, T, T, T,
	T, T, T, B, F, F, F, F, B, T, T, T,
	T, T, T, B, F, F, F, B, T, T, T, T,
	T, T, T, B, F, F, B, T, T, T, T, T,
	T, T, T, B, F, B, T, T, T, T, T, T,
	T, T, T, B, B, T, T, T, T, T, T, T,
	T, T, T, B, T, T, T, T, T, T, T, T,
};

const uint8 CLVDownArrowData[132] = {
	T, T, T, T, T, T, T, T, T, T, T, T,
	T, T, T, T, T, T, T, T, T, T, T, T,
	T, T, T, T, T, T, T, T, T, T, T, T,
	B, B, B, B, B, B, B, B, B, B, B, T,
	T, B, F, F, F, F, F, F, F, B, T, T,
	T, T, B, F, F, F, F, F, B, T, T, T,
	T, T, T, B, F, F, F, B, T, T, T, T,
	T, T, T, T, B, F, B, T, T, T, T, T,
	T, T, T, T, T, B, T, T, T, T, T, T,
	T, T, T, T, T, T, T, T, T, T, T, T,
	T, T, T, T, T, T, T, T, T, T, T, T,
};
// clang-format on
