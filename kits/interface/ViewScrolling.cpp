// SPDX-License-Identifier: MIT

// Scrolling and moving pixels about within a view.

#include <interface/View.h>

#include <interface/ScrollBar.h>
#include <interface/Window.h>

#include "kits/interface/WindowSurface.h"

#include <algorithm>
#include <cmath>

using desktop::PixelRect;
using desktop::PixelRegion;

namespace {

float
Limited(float value, BScrollBar* bar)
{
	if (bar == nullptr)
		return value;
	float low = 0, high = 0;
	bar->GetRange(&low, &high);
	return std::max(std::min(value, high), low);
}

} // namespace

void
BView::ScrollTo(BPoint leftTop)
{
	double x = Limited(leftTop.x, fHorizontalBar);
	double y = Limited(leftTop.y, fVerticalBar);
	if (x == fOriginX && y == fOriginY)
		return;
	double dx = fOriginX - x;
	double dy = fOriginY - y;
	if (fWindow != nullptr && fWindow->fSurface->Canvas() != nullptr) {
		fOriginX = x;
		fOriginY = y;
		fWindow->fSurface->ForgetClip();
		_ScrollPixels(dx, dy);
		fWindow->_WakeLoop();
	} else {
		fOriginX = x;
		fOriginY = y;
	}
	if (fHorizontalBar != nullptr)
		fHorizontalBar->SetValue(static_cast<float>(x));
	if (fVerticalBar != nullptr)
		fVerticalBar->SetValue(static_cast<float>(y));
}

void
BView::ScrollBy(float dx, float dy)
{
	ScrollTo(BPoint(static_cast<float>(fOriginX + dx), static_cast<float>(fOriginY + dy)));
}

// Called with the new offset in force. Only a shift by whole pixels keeps what is there: by a
// fraction, rows may round to other pixels.
void
BView::_ScrollPixels(double dx, double dy)
{
	BPrivate::WindowSurface& surface = *fWindow->fSurface;
	const PixelRegion visible = _VisibleRegion();
	if (!fChildren.empty()) {
		surface.LayoutChanged();
		surface.AddDamage(visible);
		return;
	}
	PixelRect box = visible.Bounds();
	bool whole = dx == std::floor(dx) && dy == std::floor(dy);
	bool near = std::abs(dx) < box.Width() && std::abs(dy) < box.Height();
	if (!whole || !near || surface.IsUpdating()) {
		surface.AddDamage(visible);
		return;
	}
	_ShiftPixels(visible, static_cast<int32>(dx), static_cast<int32>(dy));
}

// Fills `dest`, a part of the drawable region, with the pixels that lie (dx, dy) before it. What
// comes from a place that is hidden or damaged becomes damage.
void
BView::_ShiftPixels(const PixelRegion& dest, int32 dx, int32 dy)
{
	BPrivate::WindowSurface& surface = *fWindow->fSurface;
	PixelRegion good;
	if (surface.Canvas()->MovesExactly(dx, dy))
		good = _DrawableRegion();
	good.Exclude(surface.Damage());
	good.OffsetBy(dx, dy);
	good.IntersectWith(dest);

	PixelRegion bad = dest;
	bad.Exclude(good);

	PixelRect box = good.Bounds();
	if (good.CountRects() == 1)
		surface.Canvas()->MovePixels(box.Offset(-dx, -dy), dx, dy);
	else if (!good.IsEmpty()) {
		// The bands of a region are moved in an order in which none is overwritten before it has
		// been read: against the direction of the shift.
		std::vector<PixelRect> rects;
		for (int32 i = 0; i < good.CountRects(); i++)
			rects.push_back(good.RectAt(i));
		std::stable_sort(rects.begin(), rects.end(), [&](const PixelRect& a, const PixelRect& b) {
			if (a.top != b.top)
				return dy > 0 ? a.top > b.top : a.top < b.top;
			return dx > 0 ? a.left > b.left : a.left < b.left;
		});
		for (const PixelRect& rect : rects)
			surface.Canvas()->MovePixels(rect.Offset(-dx, -dy), dx, dy);
	}
	surface.AddDrawn(good);
	surface.AddDamage(bad);
}

void
BView::CopyBits(BRect source, BRect dest)
{
	if (fWindow == nullptr || fWindow->fSurface->Canvas() == nullptr || !source.IsValid() ||
		!dest.IsValid())
		return;
	if (source.Width() != dest.Width() || source.Height() != dest.Height()) {
		Invalidate(dest);
		return;
	}
	double x = 0, y = 0;
	_Offset(&x, &y);
	auto pixel = [](double value) { return BPrivate::RoundToPixel(value); };
	PixelRect from{pixel(source.left + x), pixel(source.top + y), pixel(source.right + x),
		pixel(source.bottom + y)};
	PixelRect to{
		pixel(dest.left + x), pixel(dest.top + y), pixel(dest.right + x), pixel(dest.bottom + y)};
	PixelRegion reached(to);
	reached.IntersectWith(_DrawableRegion());
	if (fState.clip)
		reached.IntersectWith(_ClipNow());
	_ShiftPixels(reached, to.left - from.left, to.top - from.top);
	fWindow->_WakeLoop();
}

BScrollBar*
BView::ScrollBar(orientation direction) const
{
	return direction == B_HORIZONTAL ? fHorizontalBar : fVerticalBar;
}

// True when a bar of this view took the wheel; else it climbs to a view that has one.
bool
BView::_WheelMoved(BMessage* message)
{
	float dx = 0, dy = 0;
	message->FindFloat("be:wheel_delta_x", &dx);
	message->FindFloat("be:wheel_delta_y", &dy);
	if (fHorizontalBar == nullptr && fVerticalBar == nullptr)
		return false;
	float x = fHorizontalBar != nullptr ? fHorizontalBar->_WheelDistance(dx) : 0;
	float y = fVerticalBar != nullptr ? fVerticalBar->_WheelDistance(dy) : 0;
	if (x != 0 || y != 0)
		ScrollBy(x, y);
	return true;
}
