// SPDX-License-Identifier: MIT

// Pixel regions, kept in place as Qt's regions.

#include <desktop/Pixels.h>

#include "PixelRegionAccess.h"

#include <new>

namespace desktop {

namespace {

QRegion&
Of(PixelRegion& region)
{
	return PixelRegionAccess::Of(region);
}

const QRegion&
Of(const PixelRegion& region)
{
	return PixelRegionAccess::Of(region);
}

} // namespace

PixelRegion::PixelRegion()
{
	static_assert(sizeof(QRegion) == sizeof(fData) && alignof(QRegion) <= alignof(void*));
	new (fData) QRegion();
}

PixelRegion::PixelRegion(const PixelRect& rect)
{
	new (fData) QRegion(ToQt(rect));
}

PixelRegion::PixelRegion(const PixelRegion& other)
{
	new (fData) QRegion(Of(other));
}

PixelRegion::PixelRegion(PixelRegion&& other) noexcept
{
	new (fData) QRegion();
	Of(*this).swap(Of(other));
}

PixelRegion::~PixelRegion()
{
	Of(*this).~QRegion();
}

PixelRegion&
PixelRegion::operator=(const PixelRegion& other)
{
	Of(*this) = Of(other);
	return *this;
}

PixelRegion&
PixelRegion::operator=(PixelRegion&& other) noexcept
{
	Of(*this).swap(Of(other));
	return *this;
}

bool
PixelRegion::IsEmpty() const
{
	return Of(*this).isEmpty();
}

PixelRect
PixelRegion::Bounds() const
{
	return FromQt(Of(*this).boundingRect());
}

int32
PixelRegion::CountRects() const
{
	return Of(*this).rectCount();
}

PixelRect
PixelRegion::RectAt(int32 index) const
{
	const QRegion& region = Of(*this);
	if (index < 0 || index >= region.rectCount())
		return {};
	return FromQt(region.begin()[index]);
}

bool
PixelRegion::Contains(int32 x, int32 y) const
{
	return Of(*this).contains(QPoint(x, y));
}

bool
PixelRegion::Intersects(const PixelRect& rect) const
{
	return !rect.IsEmpty() && Of(*this).intersects(ToQt(rect));
}

bool
PixelRegion::operator==(const PixelRegion& other) const
{
	return Of(*this) == Of(other);
}

void
PixelRegion::Include(const PixelRect& rect)
{
	Of(*this) += ToQt(rect);
}

void
PixelRegion::Include(const PixelRegion& other)
{
	Of(*this) += Of(other);
}

void
PixelRegion::Exclude(const PixelRect& rect)
{
	if (!rect.IsEmpty())
		Of(*this) -= ToQt(rect);
}

void
PixelRegion::Exclude(const PixelRegion& other)
{
	Of(*this) -= Of(other);
}

void
PixelRegion::IntersectWith(const PixelRect& rect)
{
	Of(*this) &= ToQt(rect);
}

void
PixelRegion::IntersectWith(const PixelRegion& other)
{
	Of(*this) &= Of(other);
}

void
PixelRegion::OffsetBy(int32 dx, int32 dy)
{
	Of(*this).translate(dx, dy);
}

void
PixelRegion::MakeEmpty()
{
	Of(*this) = QRegion();
}

} // namespace desktop
