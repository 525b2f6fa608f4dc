// SPDX-License-Identifier: MIT

#include <interface/Look.h>

#include <interface/View.h>

#include <cmath>

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

void
BPrivate::DrawArrow(BView* view, BRect rect, ArrowDirection direction, rgb_color color)
{
	constexpr int kRows = 4;
	const bool upright = direction == ArrowDirection::kUp || direction == ArrowDirection::kDown;
	const bool forward = direction == ArrowDirection::kDown || direction == ArrowDirection::kRight;
	const float middleX = std::floor((rect.left + rect.right) / 2);
	const float middleY = std::floor((rect.top + rect.bottom) / 2);
	// As many pixels across as fit evenly: an odd number in the middle of an odd one.
	const int32 across = upright ? rect.IntegerWidth() : rect.IntegerHeight();
	const float extra = across % 2 == 0 ? 0 : 1;
	view->BeginLineArray(kRows);
	for (int row = 0; row < kRows; row++) {
		// Rows of 1, 3, 5 and 7 pixels (or 2, 4, 6 and 8), from the point to the base.
		float along = static_cast<float>(forward ? kRows / 2 - row : row - kRows / 2 + 1);
		float half = static_cast<float>(row);
		if (upright)
			view->AddLine(BPoint(middleX - half, middleY + along),
				BPoint(middleX + half + extra, middleY + along), color);
		else
			view->AddLine(BPoint(middleX + along, middleY - half),
				BPoint(middleX + along, middleY + half + extra), color);
	}
	view->EndLineArray();
}
