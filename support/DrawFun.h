// SPDX-License-Identifier: MIT

// Strings drawn into a rectangle and cut off at its edges.

#pragma once

#include <interface/InterfaceDefs.h>
#include <interface/Rect.h>

class BView;

class NDrawFunction {
public:
	// Draws in the view's font and colours; the window must be locked. `fill` first erases the line
	// behind the text with the low colour. B_ALIGN_CENTER keeps the end of a string in view that is
	// too wide, and draws others at the left. The view's clipping is gone afterwards.
	static void DrawStringClipped(BView* view, const char* text, BRect rect, bool fill,
		vertical_alignment valign, alignment align);

	// The first `length` bytes, always at the left and in the middle, on whole pixels from the
	// bottom.
	static void DrawStringClipped(BView* view, const char* text, uint32 length, BRect rect,
		bool fill, vertical_alignment valign, alignment align);
};
