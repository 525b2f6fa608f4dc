// SPDX-License-Identifier: MIT

// ScrollBarLayout: where the arrows and the thumb of a scroll bar lie, in pixels along the bar.

#pragma once

#include <support/SupportDefs.h>

namespace BPrivate {

enum class ScrollBarPart { kNone, kLessArrow, kMoreArrow, kTroughBefore, kTroughBehind, kThumb };

class ScrollBarLayout {
public:
	// Pixels along and across the bar; the range may be empty (max <= min): then there is no thumb.
	ScrollBarLayout(
		int32 length, int32 breadth, double min, double max, double proportion, double value);

	bool operator==(const ScrollBarLayout&) const = default;

	// Arrows are squares of ArrowLength() at both ends, shorter in a bar that is too short.
	int32 ArrowLength() const { return fArrow; }
	int32 TroughLength() const { return fTrough; }
	bool HasThumb() const { return fThumb > 0; }
	int32 ThumbStart() const { return fThumbStart; }
	int32 ThumbLength() const { return fThumb; }

	ScrollBarPart PartAt(double along) const;
	// The value at which the thumb would start there, within the range.
	double ValueForThumbStart(double along) const;

private:
	int32 fLength;
	int32 fArrow;
	int32 fTrough;
	int32 fThumb = 0;
	int32 fThumbStart = 0;
	double fMin;
	double fMax;
};

} // namespace BPrivate
