// SPDX-License-Identifier: MIT

#include <interface/ScrollBarLayout.h>

#include <algorithm>
#include <cmath>

static constexpr int32 kMinThumb = 8;

BPrivate::ScrollBarLayout::ScrollBarLayout(
	int32 length, int32 breadth, double min, double max, double proportion, double value) :
	fLength(std::max(length, 0)),
	fArrow(std::min(std::max(breadth, 0), fLength / 2)),
	fTrough(fLength - 2 * fArrow),
	fMin(min),
	fMax(max)
{
	if (max <= min || fTrough < kMinThumb)
		return;
	fThumb = std::clamp(static_cast<int32>(std::lround(proportion * fTrough)), kMinThumb, fTrough);
	double share = (std::clamp(value, min, max) - min) / (max - min);
	fThumbStart = fArrow + static_cast<int32>(std::lround(share * (fTrough - fThumb)));
}

BPrivate::ScrollBarPart
BPrivate::ScrollBarLayout::PartAt(double along) const
{
	if (along < 0 || along >= fLength)
		return ScrollBarPart::kNone;
	if (along < fArrow)
		return ScrollBarPart::kLessArrow;
	if (along >= fLength - fArrow)
		return ScrollBarPart::kMoreArrow;
	if (!HasThumb())
		return ScrollBarPart::kNone;
	if (along < fThumbStart)
		return ScrollBarPart::kTroughBefore;
	return along < fThumbStart + fThumb ? ScrollBarPart::kThumb : ScrollBarPart::kTroughBehind;
}

double
BPrivate::ScrollBarLayout::ValueForThumbStart(double along) const
{
	if (!HasThumb() || fTrough <= fThumb)
		return fMin;
	double share = std::clamp((along - fArrow) / (fTrough - fThumb), 0.0, 1.0);
	return fMin + share * (fMax - fMin);
}
