// SPDX-License-Identifier: MIT

// Drawing: from view coordinates to whole pixels of the window's canvas.

#include <interface/View.h>

#include <interface/Bitmap.h>
#include <interface/Window.h>

#include "kits/interface/WindowSurface.h"

#include <algorithm>
#include <cstring>

using BPrivate::RoundToPixel;
using desktop::PixelRect;
using desktop::PixelRegion;

// Made for each call: finds the canvas, gives it the view's clip and knows the offset. Outside an
// update it also notes what has to be shown.
class BView::Painter {
public:
	explicit Painter(const BView* view) : fView(view)
	{
		if (view->fWindow == nullptr)
			return;
		fSurface = view->fWindow->fSurface.get();
		fCanvas = fSurface->Canvas();
		if (fCanvas == nullptr)
			return;
		if (fSurface->TakeClip(view))
			fCanvas->SetClip(view->_ClipNow());
		view->_Offset(&fX, &fY);
	}

	explicit operator bool() const { return fCanvas != nullptr; }
	desktop::Canvas* operator->() const { return fCanvas; }
	int32 X(float x) const { return RoundToPixel(x + fX); }
	int32 Y(float y) const { return RoundToPixel(y + fY); }
	float ExactX(float x) const { return static_cast<float>(x + fX); }
	PixelRect Rect(BRect r) const { return {X(r.left), Y(r.top), X(r.right), Y(r.bottom)}; }

	desktop::Ink Ink(pattern shape = B_SOLID_HIGH) const
	{
		return {fView->fState.high, fView->fState.low, shape, fView->fState.mode, X(0), Y(0)};
	}

	void Drawn(const PixelRect& rect) const
	{
		if (fSurface->IsUpdating())
			return;
		PixelRegion region(rect);
		region.IntersectWith(fView->_DrawableRegion());
		fSurface->AddDrawn(region);
		fView->fWindow->_WakeLoop();
	}

private:
	const BView* fView;
	BPrivate::WindowSurface* fSurface = nullptr;
	desktop::Canvas* fCanvas = nullptr;
	double fX = 0;
	double fY = 0;
};

// What drawing can reach at this moment, in the window's pixels.
PixelRegion
BView::_ClipNow() const
{
	PixelRegion clip = _DrawableRegion();
	const BPrivate::WindowSurface& surface = *fWindow->fSurface;
	if (surface.IsUpdating())
		clip.IntersectWith(surface.UpdateRegion());
	if (fState.clip) {
		double x = 0, y = 0;
		_Offset(&x, &y);
		PixelRegion own = fState.clip->Pixels();
		own.OffsetBy(RoundToPixel(x), RoundToPixel(y));
		clip.IntersectWith(own);
	}
	return clip;
}

// Erases and draws what the update under way touches, then the children.
void
BView::_Paint()
{
	BPrivate::WindowSurface& surface = *fWindow->fSurface;
	PixelRegion damage = _VisibleRegion();
	damage.IntersectWith(surface.UpdateRegion());
	if (damage.IsEmpty())
		return;
	damage.IntersectWith(_DrawableRegion());
	if (!damage.IsEmpty()) {
		if (fViewColor != B_TRANSPARENT_COLOR) {
			desktop::Ink ink;
			ink.high = fViewColor;
			surface.ForgetClip();
			surface.Canvas()->SetClip(damage);
			surface.Canvas()->FillRegion(damage, ink);
		}
		if ((fFlags & B_WILL_DRAW) != 0) {
			double x = 0, y = 0;
			_Offset(&x, &y);
			PixelRect box = damage.Bounds();
			Draw(BRect(static_cast<float>(box.left - RoundToPixel(x)),
				static_cast<float>(box.top - RoundToPixel(y)),
				static_cast<float>(box.right - RoundToPixel(x)),
				static_cast<float>(box.bottom - RoundToPixel(y))));
			if (fState.clip)
				ConstrainClippingRegion(nullptr);
		}
	}
	for (size_t i = 0; i < fChildren.size(); i++)
		fChildren[i]->_Paint();
}

void
BView::Invalidate()
{
	if (fWindow == nullptr || fWindow->fSurface->Canvas() == nullptr)
		return;
	fWindow->fSurface->AddDamage(_VisibleRegion());
	fWindow->_WakeLoop();
}

void
BView::Invalidate(BRect rect)
{
	if (fWindow == nullptr || fWindow->fSurface->Canvas() == nullptr || !rect.IsValid())
		return;
	double x = 0, y = 0;
	_Offset(&x, &y);
	PixelRegion damage({RoundToPixel(rect.left + x), RoundToPixel(rect.top + y),
		RoundToPixel(rect.right + x), RoundToPixel(rect.bottom + y)});
	damage.IntersectWith(_VisibleRegion());
	fWindow->fSurface->AddDamage(damage);
	fWindow->_WakeLoop();
}

void
BView::SetViewColor(rgb_color color)
{
	fViewColor = color;
}

void
BView::PushState()
{
	fStateStack.push_back(fState);
}

void
BView::PopState()
{
	if (fStateStack.empty())
		return;
	fState = fStateStack.back();
	fStateStack.pop_back();
	if (fWindow != nullptr)
		fWindow->fSurface->ForgetClip();
}

void
BView::StrokeLine(BPoint from, BPoint to, pattern shape)
{
	fState.pen = to;
	Painter paint(this);
	if (!paint)
		return;
	int32 x1 = paint.X(from.x), y1 = paint.Y(from.y), x2 = paint.X(to.x), y2 = paint.Y(to.y);
	paint->StrokeLine(x1, y1, x2, y2, paint.Ink(shape));
	paint.Drawn({std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)});
}

void
BView::StrokeLine(BPoint to, pattern shape)
{
	StrokeLine(fState.pen, to, shape);
}

void
BView::StrokeRect(BRect rect, pattern shape)
{
	Painter paint(this);
	if (!paint || !rect.IsValid())
		return;
	paint->StrokeRect(paint.Rect(rect), paint.Ink(shape));
	paint.Drawn(paint.Rect(rect));
}

void
BView::FillRect(BRect rect, pattern shape)
{
	Painter paint(this);
	if (!paint || !rect.IsValid())
		return;
	paint->FillRect(paint.Rect(rect), paint.Ink(shape));
	paint.Drawn(paint.Rect(rect));
}

void
BView::FillRegion(BRegion* region, pattern shape)
{
	Painter paint(this);
	if (!paint || region == nullptr)
		return;
	PixelRegion pixels = region->Pixels();
	pixels.OffsetBy(paint.X(0), paint.Y(0));
	paint->FillRegion(pixels, paint.Ink(shape));
	paint.Drawn(pixels.Bounds());
}

void
BView::BeginLineArray(int32 maxCount)
{
	fLines.clear();
	fMaxLines = maxCount;
	fLines.reserve(std::clamp<int32>(maxCount, 0, 256));
}

void
BView::AddLine(BPoint from, BPoint to, rgb_color color)
{
	if (static_cast<int32>(fLines.size()) < fMaxLines)
		fLines.push_back({from, to, color});
}

void
BView::EndLineArray()
{
	std::vector<Line> lines = std::move(fLines);
	fLines.clear();
	fMaxLines = 0;
	rgb_color high = fState.high;
	BPoint pen = fState.pen;
	for (const Line& line : lines) {
		fState.high = line.color;
		StrokeLine(line.from, line.to);
	}
	fState.high = high;
	fState.pen = pen;
}

void
BView::DrawString(const char* text, BPoint baselineLeft)
{
	if (text != nullptr)
		DrawString(text, static_cast<int32>(strlen(text)), baselineLeft);
}

void
BView::DrawString(const char* text, int32 length, BPoint baselineLeft)
{
	if (text == nullptr || length < 0)
		return;
	length = static_cast<int32>(strnlen(text, length));
	float width = StringWidth(text, length);
	fState.pen = BPoint(baselineLeft.x + width, baselineLeft.y);
	Painter paint(this);
	if (!paint)
		return;
	desktop::FontSpec font{
		static_cast<desktop::FontFace>(fState.font.FontFace()), fState.font.Size()};
	int32 baseline = paint.Y(baselineLeft.y);
	paint->DrawText(paint.ExactX(baselineLeft.x), baseline, text, length, font, paint.Ink());
	// Glyphs may reach beyond the line's box a little.
	int32 reach = RoundToPixel(fState.font.Size() * 2);
	paint.Drawn({paint.X(baselineLeft.x) - reach, baseline - reach, paint.X(fState.pen.x) + reach,
		baseline + reach});
}

void
BView::DrawBitmap(const BBitmap* bitmap, BPoint leftTop)
{
	if (bitmap != nullptr)
		DrawBitmap(bitmap, bitmap->Bounds(),
			bitmap->Bounds().OffsetByCopy(leftTop - bitmap->Bounds().LeftTop()));
}

void
BView::DrawBitmap(const BBitmap* bitmap, BRect dest)
{
	if (bitmap != nullptr)
		DrawBitmap(bitmap, bitmap->Bounds(), dest);
}

void
BView::DrawBitmap(const BBitmap* bitmap, BRect source, BRect dest)
{
	Painter paint(this);
	if (!paint || bitmap == nullptr || !bitmap->IsValid() || !source.IsValid() || !dest.IsValid())
		return;
	source.OffsetBy(-bitmap->Bounds().left, -bitmap->Bounds().top);
	paint->DrawPicture(
		bitmap->Picture(), BPrivate::ToPixels(source), paint.Rect(dest), fState.mode);
	paint.Drawn(paint.Rect(dest));
}

void
BView::ConstrainClippingRegion(BRegion* region)
{
	fState.clip = region != nullptr ? std::make_unique<BRegion>(*region) : nullptr;
	if (fWindow != nullptr)
		fWindow->fSurface->ForgetClip();
}

void
BView::GetClippingRegion(BRegion* region) const
{
	region->MakeEmpty();
	if (fWindow == nullptr)
		return;
	double x = 0, y = 0;
	_Offset(&x, &y);
	region->Pixels() = _ClipNow();
	region->Pixels().OffsetBy(-RoundToPixel(x), -RoundToPixel(y));
}

void
BView::SetFont(const BFont* font, uint32 mask)
{
	if ((mask & B_FONT_FAMILY_AND_STYLE) != 0)
		fState.font = BFont(font->FontFace(), fState.font.Size());
	if ((mask & B_FONT_SIZE) != 0)
		fState.font.SetSize(font->Size());
}
