// SPDX-License-Identifier: MIT

#include "support/DrawFun.h"

#include "support/GeneralFun.h"

#include <interface/Region.h>
#include <interface/View.h>

namespace {

constexpr float kLeftGap = 1.5f;    // from the rectangle's edge to the text
constexpr float kWidthExtra = 2.0f; // room that a string takes beyond its own width

float
StartOf(BRect rect, float width, alignment align)
{
	bool fits = width <= rect.Width();
	if (align == B_ALIGN_RIGHT || (align == B_ALIGN_CENTER && !fits))
		return rect.right - width;
	return rect.left + kLeftGap;
}

float
BaselineOf(BRect rect, const font_height& font, vertical_alignment align)
{
	switch (align) {
		case B_ALIGN_TOP:
			return rect.top + font.ascent + font.leading;
		case B_ALIGN_BOTTOM:
			return rect.bottom - font.descent - font.leading;
		default:
			return rect.bottom - rect.Height() / 2 + (font.ascent + font.descent) / 2;
	}
}

// Erases what lies behind the text: its line, no wider than the text.
void
EraseLine(BView* view, BRect rect, float width, float baseline, const font_height& font)
{
	if (width <= rect.Width())
		rect.right = rect.left + width;
	rect.bottom = static_cast<float>(
		NGeneralFunction::min(baseline + font.descent + 0.5, static_cast<double>(rect.bottom)));
	rect.top = static_cast<float>(
		NGeneralFunction::max(baseline - font.ascent - 0.5, static_cast<double>(rect.top)));
	view->FillRect(rect, B_SOLID_LOW);
}

} // namespace

void
NDrawFunction::DrawStringClipped(BView* view, const char* text, BRect rect, bool fill,
	vertical_alignment valign, alignment align)
{
	BRegion clipping(rect);
	view->ConstrainClippingRegion(&clipping);

	font_height font;
	view->GetFontHeight(&font);
	float width = view->StringWidth(text) + kWidthExtra;
	BPoint start(StartOf(rect, width, align), BaselineOf(rect, font, valign));

	if (fill)
		EraseLine(view, rect, width, start.y, font);
	view->DrawString(text, start);
	view->ConstrainClippingRegion(nullptr);
}

void
NDrawFunction::DrawStringClipped(BView* view, const char* text, uint32 length, BRect rect,
	bool fill, vertical_alignment, alignment)
{
	BRegion clipping(rect);
	view->ConstrainClippingRegion(&clipping);

	font_height font;
	view->GetFontHeight(&font);
	int32 halfHeight = static_cast<int32>(rect.Height()) / 2;
	int32 halfText = static_cast<int32>(font.ascent + font.descent) / 2;
	BPoint start(rect.left + kLeftGap,
		rect.bottom - static_cast<float>(halfHeight) + static_cast<float>(halfText));

	int32 bytes = static_cast<int32>(length);
	if (fill)
		EraseLine(view, rect, view->StringWidth(text, bytes) + kWidthExtra, start.y, font);
	view->DrawString(text, bytes, start);
	view->ConstrainClippingRegion(nullptr);
}
