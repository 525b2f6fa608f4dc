// SPDX-License-Identifier: MIT

// PrefilledBitmap: a bitmap made of constant data; and the arrows of an outline.

#pragma once

#include <interface/Bitmap.h>

class PrefilledBitmap : public BBitmap {
public:
	// Copies the data: rows of round(width) bytes, rounded up to a multiple of 4, where the width
	// is right - left. That is the bitmap's own row for B_CMAP8 unless the width is a multiple of
	// 4 (it counts one pixel less than there are).
	PrefilledBitmap(BRect bounds, color_space space, const void* data, bool acceptsViews = false,
		bool needsContiguousMemory = false);
};

// 11 by 11 pixels in B_CMAP8, 12 bytes a row.
constexpr int32 kCLVArrowSize = 11;
extern const uint8 CLVRightArrowData[132]; // collapsed
extern const uint8 CLVDownArrowData[132];  // expanded
