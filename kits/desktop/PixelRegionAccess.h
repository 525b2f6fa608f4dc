// SPDX-License-Identifier: MIT

// Regions and rectangles as Qt sees them. Internal to this folder.

#pragma once

#include <desktop/Pixels.h>

#include <QRegion>

namespace desktop {

struct PixelRegionAccess {
	static QRegion& Of(PixelRegion& region) { return *reinterpret_cast<QRegion*>(region.fData); }
	static const QRegion& Of(const PixelRegion& region)
	{
		return *reinterpret_cast<const QRegion*>(region.fData);
	}
};

// An empty rectangle becomes Qt's empty one.
inline QRect
ToQt(const PixelRect& rect)
{
	if (rect.IsEmpty())
		return QRect();
	return QRect(QPoint(rect.left, rect.top), QPoint(rect.right, rect.bottom));
}

inline PixelRect
FromQt(const QRect& rect)
{
	return {rect.left(), rect.top(), rect.right(), rect.bottom()};
}

} // namespace desktop
