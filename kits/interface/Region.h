// SPDX-License-Identifier: MIT

// BRegion: a set of whole pixels, built from rectangles whose edges are rounded to the nearest
// pixel, half up.

#pragma once

#include <desktop/Pixels.h>
#include <interface/Rect.h>

class BRegion {
public:
	BRegion() = default;
	explicit BRegion(BRect rect);

	void Set(BRect rect);
	void MakeEmpty() { fPixels.MakeEmpty(); }

	// A rectangle that is not valid adds and removes nothing.
	void Include(BRect rect);
	void Include(const BRegion* region) { fPixels.Include(region->fPixels); }
	void Exclude(BRect rect);
	void Exclude(const BRegion* region) { fPixels.Exclude(region->fPixels); }
	void IntersectWith(BRect rect);
	void IntersectWith(const BRegion* region) { fPixels.IntersectWith(region->fPixels); }
	void OffsetBy(int32 dx, int32 dy) { fPixels.OffsetBy(dx, dy); }

	bool Contains(BPoint point) const;
	bool Intersects(BRect rect) const;
	BRect Frame() const; // the bounding box, not valid when empty
	int32 CountRects() const { return fPixels.CountRects(); }
	BRect RectAt(int32 index) const; // not valid when out of range
	bool operator==(const BRegion& other) const { return fPixels == other.fPixels; }

	// For the kit's own drawing.
	desktop::PixelRegion& Pixels() { return fPixels; }
	const desktop::PixelRegion& Pixels() const { return fPixels; }

private:
	desktop::PixelRegion fPixels;
};

namespace BPrivate {

// Rounds the edges as above; empty for a rectangle that is not valid.
desktop::PixelRect ToPixels(const BRect& rect);
BRect ToRect(const desktop::PixelRect& rect);

// The nearest whole number, half up.
int32 RoundToPixel(double value);

} // namespace BPrivate
