// SPDX-License-Identifier: MIT

#include <interface/MenuView.h>

#include <interface/Bitmap.h>
#include <interface/Look.h>

#include <algorithm>
#include <cmath>

namespace BPrivate {

// The right edge of shortcuts, and the place of a submenu's arrow, from the menu's right edge.
static constexpr float kShortcutRight = 14;
static constexpr float kArrowRight = 6;
static constexpr float kArrowSize = 8;

static BRect
PaneBounds(const MenuPane& pane)
{
	return BRect(0, 0, pane.frame.Width(), pane.frame.Height());
}

// A check mark, painted four times as large as it is shown, so that every scale is smooth.
static std::unique_ptr<BBitmap>
MakeMark(rgb_color color)
{
	constexpr int32 kSize = 4 * kMenuMarkSize;
	constexpr float kHalfWidth = 3.6f;
	// How far a point is from a line between two others.
	auto distance = [](float x, float y, BPoint from, BPoint to) {
		const BPoint along = to - from;
		const float length = along.x * along.x + along.y * along.y;
		const float part =
			std::clamp(((x - from.x) * along.x + (y - from.y) * along.y) / length, 0.0f, 1.0f);
		return std::hypot(x - from.x - part * along.x, y - from.y - part * along.y);
	};
	const BPoint left(5, 22), bottom(14, 32), right(34, 7);
	auto bitmap = std::make_unique<BBitmap>(BRect(0, 0, kSize - 1, kSize - 1), B_RGBA32);
	uint8* row = static_cast<uint8*>(bitmap->Bits());
	for (int32 y = 0; y < kSize; y++, row += bitmap->BytesPerRow()) {
		for (int32 x = 0; x < kSize; x++) {
			const float centreX = static_cast<float>(x) + 0.5f;
			const float centreY = static_cast<float>(y) + 0.5f;
			const bool inside = distance(centreX, centreY, left, bottom) <= kHalfWidth ||
				distance(centreX, centreY, bottom, right) <= kHalfWidth;
			const uint8 pixel[] = {color.blue, color.green, color.red, uint8(inside ? 255 : 0)};
			std::copy(std::begin(pixel), std::end(pixel), row + 4 * x);
		}
	}
	return bitmap;
}

MenuView::MenuView(const MenuPane& pane) :
	BView(PaneBounds(pane), "menu", B_FOLLOW_ALL_SIDES, B_WILL_DRAW), fPane(pane)
{
	SetViewColor(kPanelColor);
	SetLowColor(kPanelColor);
}

void
MenuView::SetPane(const MenuPane& pane)
{
	const MenuPane before = std::move(fPane);
	fPane = pane;
	if (before.scrolled != pane.scrolled) {
		Invalidate();
		return;
	}
	for (int32 row : {before.highlight, pane.highlight}) {
		if (row >= 0 && before.highlight != pane.highlight)
			Invalidate(_RowFrame(row));
	}
}

BRect
MenuView::_RowFrame(int32 index) const
{
	const MenuRow& row = fPane.rows->At(index);
	const float top = static_cast<float>(fPane.RowsTop() + row.top - fPane.scrolled);
	return BRect(
		kMenuEdge, top, Bounds().right - kMenuEdge, top + static_cast<float>(row.height - 1));
}

void
MenuView::Draw(BRect updateRect)
{
	const BRect bounds = Bounds();
	DrawEdges(this, bounds, kLightEdge, kDarkestEdge);
	DrawEdges(this, bounds.InsetByCopy(1, 1), kSoftLightEdge, kDarkEdge);
	const float top = static_cast<float>(fPane.RowsTop());
	BRect inside(kMenuEdge, top, bounds.right - kMenuEdge,
		top + static_cast<float>(fPane.VisibleRows() - 1));
	if (fPane.Scrolls())
		_DrawStrips(bounds);
	BRegion clip(inside & updateRect);
	ConstrainClippingRegion(&clip);
	for (int32 i = 0; i < fPane.rows->Count(); i++) {
		const BRect frame = _RowFrame(i);
		if (frame.Intersects(updateRect))
			_DrawRow(fPane.rows->At(i), frame, i == fPane.highlight);
	}
}

void
MenuView::_DrawRow(const MenuRow& row, BRect frame, bool highlighted)
{
	if (row.separator) {
		_DrawSeparator(frame);
		return;
	}
	if (highlighted) {
		SetHighColor(kChosenColor);
		FillRect(frame);
	}
	if (row.marked)
		_DrawMark(frame, row.enabled);
	const rgb_color color = row.enabled ? kTextColor : kDisabledTextColor;
	SetHighColor(color);
	SetLowColor(highlighted ? kChosenColor : kPanelColor);
	font_height font;
	GetFontHeight(&font);
	const float ascent = std::ceil(font.ascent);
	const float height = frame.Height() + 1;
	const float baseline =
		frame.top + ascent + std::floor((height - std::ceil(font.ascent + font.descent)) / 2);
	DrawString(row.label.c_str(), BPoint(kMenuLabelLeft, baseline));
	if (!row.shortcut.empty()) {
		float left = frame.right - kShortcutRight - static_cast<float>(fPane.rows->ShortcutWidth());
		if (fPane.rows->HasSubmenus())
			left -= kArrowSize;
		DrawString(row.shortcut.c_str(), BPoint(left, baseline));
	}
	if (row.submenu) {
		const float right = frame.right - kArrowRight;
		DrawArrow(this, BRect(right - kArrowSize, frame.top, right, frame.bottom),
			ArrowDirection::kRight, color);
	}
}

void
MenuView::_DrawSeparator(BRect frame)
{
	const float y = frame.top + std::floor(frame.Height() / 2);
	BeginLineArray(2);
	AddLine(BPoint(frame.left + 1, y), BPoint(frame.right - 1, y), kDarkEdge);
	AddLine(BPoint(frame.left + 1, y + 1), BPoint(frame.right - 1, y + 1), kLightEdge);
	EndLineArray();
}

void
MenuView::_DrawMark(BRect frame, bool enabled)
{
	static const std::unique_ptr<BBitmap> sMark = MakeMark(kTextColor);
	static const std::unique_ptr<BBitmap> sDisabledMark = MakeMark(kDisabledTextColor);
	const float size = kMenuMarkSize - 1;
	const float top = frame.top + std::floor((frame.Height() - size) / 2);
	SetDrawingMode(B_OP_OVER);
	DrawBitmap((enabled ? sMark : sDisabledMark).get(),
		BRect(kMenuMarkLeft, top, kMenuMarkLeft + size, top + size));
	SetDrawingMode(B_OP_COPY);
}

// Where the rest of a long menu is: an arrow each way, grey at the end.
void
MenuView::_DrawStrips(BRect bounds)
{
	BRect strip = bounds.InsetByCopy(kMenuEdge, kMenuEdge);
	strip.bottom = strip.top + kMenuScrollStrip - 1;
	DrawArrow(this, strip, ArrowDirection::kUp, fPane.scrolled > 0 ? kTextColor : kDarkEdge);
	strip.OffsetTo(strip.left, bounds.bottom - kMenuEdge - kMenuScrollStrip + 1);
	const bool atEnd = fPane.scrolled + fPane.VisibleRows() >= fPane.rows->Height();
	DrawArrow(this, strip, ArrowDirection::kDown, atEnd ? kDarkEdge : kTextColor);
}

} // namespace BPrivate
