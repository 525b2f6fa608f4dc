// SPDX-License-Identifier: MIT

// Regions are sets of whole pixels; here rectangles are rounded onto them and back.

#include <interface/Region.h>

#include <algorithm>
#include <cmath>

using BPrivate::RoundToPixel;
using BPrivate::ToPixels;
using BPrivate::ToRect;

int32
BPrivate::RoundToPixel(double value)
{
	// Far beyond every screen, and far enough from the limits for widths not to overflow.
	constexpr double kFar = 1 << 29;
	return static_cast<int32>(std::floor(std::clamp(value, -kFar, kFar) + 0.5));
}

desktop::PixelRect
BPrivate::ToPixels(const BRect& rect)
{
	if (!rect.IsValid())
		return {};
	return {RoundToPixel(rect.left), RoundToPixel(rect.top), RoundToPixel(rect.right),
		RoundToPixel(rect.bottom)};
}

BRect
BPrivate::ToRect(const desktop::PixelRect& rect)
{
	if (rect.IsEmpty())
		return BRect();
	return BRect(static_cast<float>(rect.left), static_cast<float>(rect.top),
		static_cast<float>(rect.right), static_cast<float>(rect.bottom));
}

BRegion::BRegion(BRect rect) : fPixels(ToPixels(rect)) {}

void
BRegion::Set(BRect rect)
{
	fPixels = desktop::PixelRegion(ToPixels(rect));
}

void
BRegion::Include(BRect rect)
{
	fPixels.Include(ToPixels(rect));
}

void
BRegion::Exclude(BRect rect)
{
	fPixels.Exclude(ToPixels(rect));
}

void
BRegion::IntersectWith(BRect rect)
{
	fPixels.IntersectWith(ToPixels(rect));
}

bool
BRegion::Contains(BPoint point) const
{
	return fPixels.Contains(RoundToPixel(point.x), RoundToPixel(point.y));
}

bool
BRegion::Intersects(BRect rect) const
{
	return rect.IsValid() && fPixels.Intersects(ToPixels(rect));
}

BRect
BRegion::Frame() const
{
	return ToRect(fPixels.Bounds());
}

BRect
BRegion::RectAt(int32 index) const
{
	return ToRect(fPixels.RectAt(index));
}
