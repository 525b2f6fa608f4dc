// SPDX-License-Identifier: MIT

// Whole-pixel geometry shared by the interface kit and the desktop: rectangles and regions in
// logical pixels of a window.

#pragma once

#include <support/SupportDefs.h>

#include <memory>

namespace desktop {

// Columns left to right and rows top to bottom, both inclusive; empty when right < left or
// bottom < top.
struct PixelRect {
	bool IsEmpty() const { return right < left || bottom < top; }
	int32 Width() const { return right - left + 1; } // number of columns
	int32 Height() const { return bottom - top + 1; }
	PixelRect Offset(int32 dx, int32 dy) const
	{
		return {left + dx, top + dy, right + dx, bottom + dy};
	}
	bool Contains(int32 x, int32 y) const
	{
		return x >= left && x <= right && y >= top && y <= bottom;
	}
	bool operator==(const PixelRect& o) const = default;

	int32 left = 0;
	int32 top = 0;
	int32 right = -1;
	int32 bottom = -1;
};

// A set of pixels. A value: copies are cheap (shared until written to) and independent. Different
// objects may be used in different threads at once.
class PixelRegion {
public:
	PixelRegion();
	PixelRegion(const PixelRect& rect);
	PixelRegion(const PixelRegion& other);
	PixelRegion(PixelRegion&& other) noexcept;
	~PixelRegion();
	PixelRegion& operator=(const PixelRegion& other);
	PixelRegion& operator=(PixelRegion&& other) noexcept;

	bool IsEmpty() const;
	PixelRect Bounds() const;
	int32 CountRects() const;
	PixelRect RectAt(int32 index) const; // bands from top to bottom; empty when out of range

	bool Contains(int32 x, int32 y) const;
	bool Intersects(const PixelRect& rect) const;
	bool operator==(const PixelRegion& other) const;

	void Include(const PixelRect& rect);
	void Include(const PixelRegion& other);
	void Exclude(const PixelRect& rect);
	void Exclude(const PixelRegion& other);
	void IntersectWith(const PixelRect& rect);
	void IntersectWith(const PixelRegion& other);
	void OffsetBy(int32 dx, int32 dy);
	void MakeEmpty();

private:
	friend struct PixelRegionAccess;
	alignas(void*) unsigned char fData[sizeof(void*)]; // a QRegion
};

} // namespace desktop
