// SPDX-License-Identifier: MIT

#include "clv/ScrollViewCorner.h"

static constexpr float kSize = 14;

ScrollViewCorner::ScrollViewCorner(float left, float top) :
	BView(BRect(left, top, left + kSize, top + kSize), nullptr, B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM,
		B_WILL_DRAW)
{
	SetHighColor(152, 152, 152);
	SetViewColor(127, 127, 127);
}

void
ScrollViewCorner::Draw(BRect updateRect)
{
	if (updateRect.bottom >= kSize)
		StrokeLine(BPoint(0, kSize), BPoint(kSize, kSize));
	if (updateRect.right >= kSize)
		StrokeLine(BPoint(kSize, 0), BPoint(kSize, kSize));
}
