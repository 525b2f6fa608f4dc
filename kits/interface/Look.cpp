// SPDX-License-Identifier: MIT

#include <interface/Look.h>

#include <interface/Bitmap.h>
#include <interface/View.h>

#include <cmath>
#include <map>
#include <mutex>
#include <tuple>
#include <vector>

void
BPrivate::DrawEdges(BView* view, BRect rect, rgb_color leftTop, rgb_color rightBottom)
{
	if (!rect.IsValid())
		return;
	view->BeginLineArray(4);
	view->AddLine(rect.LeftBottom(), rect.RightBottom(), rightBottom);
	view->AddLine(rect.RightTop(), rect.RightBottom(), rightBottom);
	view->AddLine(rect.LeftTop(), rect.RightTop(), leftTop);
	view->AddLine(rect.LeftTop(), rect.LeftBottom(), leftTop);
	view->EndLineArray();
}

static void
FillFace(BView* view, BRect rect, rgb_color face)
{
	rgb_color before = view->HighColor();
	view->SetHighColor(face);
	view->FillRect(rect);
	view->SetHighColor(before);
}

void
BPrivate::DrawRaised(BView* view, BRect rect, rgb_color face)
{
	DrawEdges(view, rect, kLightEdge, kDarkestEdge);
	DrawEdges(view, rect.InsetByCopy(1, 1), kSoftLightEdge, kDarkEdge);
	FillFace(view, rect.InsetByCopy(2, 2), face);
}

void
BPrivate::DrawPressed(BView* view, BRect rect, rgb_color face)
{
	DrawEdges(view, rect, kDarkestEdge, kLightEdge);
	DrawEdges(view, rect.InsetByCopy(1, 1), kDarkEdge, kSoftLightEdge);
	FillFace(view, rect.InsetByCopy(2, 2), face);
}

void
BPrivate::DrawSunken(BView* view, BRect rect)
{
	DrawEdges(view, rect, kDarkEdge, kLightEdge);
	DrawEdges(view, rect.InsetByCopy(1, 1), kDarkestEdge, kPanelColor);
}

namespace {

using BPrivate::ArrowDirection;

bool
IsUpright(ArrowDirection direction)
{
	return direction == ArrowDirection::kUp || direction == ArrowDirection::kDown;
}

// Fills the size, each row from the point to the base a little wider than the last.
desktop::Picture
ArrowPicture(ArrowDirection direction, rgb_color color, int32 width, int32 height)
{
	const uint32 ink = 0xff000000 | uint32(color.red) << 16 | uint32(color.green) << 8 | color.blue;
	const bool upright = IsUpright(direction);
	const bool pointFirst = direction == ArrowDirection::kUp || direction == ArrowDirection::kLeft;
	const int32 length = upright ? height : width;
	const int32 base = upright ? width : height;
	std::vector<uint32> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
	for (int32 row = 0; row < length; row++) {
		// Symmetrical: an even number in an even base, at least one in an odd one.
		int32 across = base * (row + 1) / length;
		across -= (base - across) % 2;
		const int32 along = pointFirst ? row : length - 1 - row;
		for (int32 i = (base - across) / 2; i < (base + across) / 2; i++) {
			const int32 at = upright ? along * width + i : i * width + along;
			pixels[static_cast<size_t>(at)] = ink;
		}
	}
	return desktop::Picture(width, height, pixels.data(), static_cast<size_t>(width) * 4);
}

// Painted anew for every scale: lines of whole logical pixels would make coarse steps.
BBitmap
MakeArrow(ArrowDirection direction, rgb_color color, int32 width, int32 height)
{
	BBitmap bitmap(
		BRect(0, 0, static_cast<float>(width - 1), static_cast<float>(height - 1)), B_RGBA32);
	desktop::Picture picture = ArrowPicture(direction, color, width, height);
	picture.SetMaker([direction, color](int32 columns, int32 rows) {
		return ArrowPicture(direction, color, columns, rows);
	});
	bitmap.SetPicture(picture);
	return bitmap;
}

// One for each use: a handful in a program.
const BBitmap&
Arrow(ArrowDirection direction, rgb_color color, int32 width, int32 height)
{
	static std::mutex sLock;
	static std::map<std::tuple<ArrowDirection, uint32, int32>, BBitmap> sArrows;
	const uint32 key = uint32(color.red) << 16 | uint32(color.green) << 8 | color.blue;
	std::lock_guard lock(sLock);
	auto found = sArrows.find({direction, key, width});
	if (found == sArrows.end())
		found =
			sArrows.try_emplace({direction, key, width}, MakeArrow(direction, color, width, height))
				.first;
	return found->second;
}

} // namespace

void
BPrivate::DrawArrow(BView* view, BRect rect, ArrowDirection direction, rgb_color color)
{
	constexpr int32 kLength = 4;
	const bool upright = IsUpright(direction);
	// Evenly wide in an even box, so that it stands in the middle.
	const int32 box = (upright ? rect.IntegerWidth() : rect.IntegerHeight()) + 1;
	const int32 base = 2 * kLength - box % 2;
	const int32 width = upright ? base : kLength;
	const int32 height = upright ? kLength : base;
	// The half pixel that is left along the arrow goes to its point's side.
	const bool pointFirst = direction == ArrowDirection::kUp || direction == ArrowDirection::kLeft;
	auto start = [pointFirst](float low, float high, int32 length, bool along) {
		const float half = (high - low + 1 - static_cast<float>(length)) / 2;
		return low + (along && pointFirst ? std::ceil(half) : std::floor(half));
	};
	const BPoint where(start(rect.left, rect.right, width, !upright),
		start(rect.top, rect.bottom, height, upright));
	const drawing_mode before = view->DrawingMode();
	view->SetDrawingMode(B_OP_OVER);
	view->DrawBitmap(&Arrow(direction, color, width, height), where);
	view->SetDrawingMode(before);
}
