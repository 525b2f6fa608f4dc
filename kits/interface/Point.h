// SPDX-License-Identifier: MIT

// BPoint: a position in pixels, y downwards.

#pragma once

#include <support/SupportDefs.h>

#include <algorithm>

class BRect;

class BPoint {
public:
	BPoint() = default;
	BPoint(float px, float py) : x(px), y(py) {}

	void Set(float px, float py)
	{
		x = px;
		y = py;
	}
	void ConstrainTo(BRect rect); // moves the point to the nearest one inside
	void PrintToStream() const;

	BPoint operator+(const BPoint& other) const { return BPoint(x + other.x, y + other.y); }
	BPoint operator-(const BPoint& other) const { return BPoint(x - other.x, y - other.y); }
	BPoint& operator+=(const BPoint& other) { return *this = *this + other; }
	BPoint& operator-=(const BPoint& other) { return *this = *this - other; }
	bool operator==(const BPoint& other) const { return x == other.x && y == other.y; }
	bool operator!=(const BPoint& other) const { return !(*this == other); }

	float x = 0;
	float y = 0;
};
