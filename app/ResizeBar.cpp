// SPDX-License-Identifier: MIT

#include "app/ResizeBar.h"

ResizeBar::ResizeBar(
	BRect frame, const char* name, uint32 resizingMode, uint32 flags, orientation direction) :
	BView(frame, name, resizingMode, flags | B_WILL_DRAW | B_FRAME_EVENTS), fOrientation(direction)
{}

void
ResizeBar::AttachedToWindow()
{
	SetHighColor(108, 108, 108);
	SetLowColor(216, 216, 216);
}

void
ResizeBar::Draw(BRect update)
{
	FillRect(update, B_SOLID_LOW);
	StrokeRect(Bounds(), B_SOLID_HIGH);
}

void
ResizeBar::FrameResized(float, float)
{
	Invalidate();
}
