// SPDX-License-Identifier: MIT

// BRect: a rectangle in pixels whose right and bottom edges belong to it: Width() is right - left
// and covers one pixel column more.

#pragma once

#include <interface/Point.h>

#include <cmath>

class BRect {
public:
	BRect() = default; // (0, 0, -1, -1), not valid
	BRect(float l, float t, float r, float b) : left(l), top(t), right(r), bottom(b) {}
	BRect(BPoint leftTop, BPoint rightBottom) :
		left(leftTop.x), top(leftTop.y), right(rightBottom.x), bottom(rightBottom.y)
	{}

	bool IsValid() const { return right >= left && bottom >= top; }
	float Width() const { return right - left; }
	float Height() const { return bottom - top; }
	int32 IntegerWidth() const { return static_cast<int32>(std::ceil(right - left)); }
	int32 IntegerHeight() const { return static_cast<int32>(std::ceil(bottom - top)); }

	void Set(float l, float t, float r, float b) { *this = BRect(l, t, r, b); }
	BPoint LeftTop() const { return BPoint(left, top); }
	BPoint RightTop() const { return BPoint(right, top); }
	BPoint LeftBottom() const { return BPoint(left, bottom); }
	BPoint RightBottom() const { return BPoint(right, bottom); }
	void SetLeftTop(BPoint p) { left = p.x, top = p.y; }
	void SetRightTop(BPoint p) { right = p.x, top = p.y; }
	void SetLeftBottom(BPoint p) { left = p.x, bottom = p.y; }
	void SetRightBottom(BPoint p) { right = p.x, bottom = p.y; }

	void InsetBy(BPoint d) { InsetBy(d.x, d.y); }
	void InsetBy(float dx, float dy) { left += dx, right -= dx, top += dy, bottom -= dy; }
	void OffsetBy(BPoint d) { OffsetBy(d.x, d.y); }
	void OffsetBy(float dx, float dy) { left += dx, right += dx, top += dy, bottom += dy; }
	void OffsetTo(BPoint p) { OffsetTo(p.x, p.y); }
	void OffsetTo(float x, float y) { *this = BRect(x, y, x + Width(), y + Height()); }
	BRect OffsetByCopy(float dx, float dy) const
	{
		return BRect(left + dx, top + dy, right + dx, bottom + dy);
	}
	BRect OffsetByCopy(BPoint d) const { return OffsetByCopy(d.x, d.y); }
	BRect InsetByCopy(float dx, float dy) const
	{
		return BRect(left + dx, top + dy, right - dx, bottom - dy);
	}

	bool Contains(BPoint p) const
	{
		return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom;
	}
	bool Contains(BRect r) const
	{
		return r.left >= left && r.right <= right && r.top >= top && r.bottom <= bottom;
	}
	// A shared edge counts; a rectangle that is not valid meets nothing.
	bool Intersects(BRect r) const
	{
		return IsValid() && r.IsValid() && r.left <= right && r.right >= left && r.top <= bottom &&
			r.bottom >= top;
	}

	BRect operator&(BRect r) const
	{
		return BRect(std::max(left, r.left), std::max(top, r.top), std::min(right, r.right),
			std::min(bottom, r.bottom));
	}
	BRect operator|(BRect r) const
	{
		return BRect(std::min(left, r.left), std::min(top, r.top), std::max(right, r.right),
			std::max(bottom, r.bottom));
	}
	bool operator==(BRect r) const
	{
		return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
	}
	bool operator!=(BRect r) const { return !(*this == r); }

	// One line to standard output: "BRect(left, top, right, bottom)".
	void PrintToStream() const;

	float left = 0;
	float top = 0;
	float right = -1;
	float bottom = -1;
};

inline void
BPoint::ConstrainTo(BRect rect)
{
	x = std::max(std::min(x, rect.right), rect.left);
	y = std::max(std::min(y, rect.bottom), rect.top);
}
