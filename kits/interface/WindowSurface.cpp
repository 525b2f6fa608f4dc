// SPDX-License-Identifier: MIT

#include "kits/interface/WindowSurface.h"

namespace BPrivate {

// A busy window paints this long after the first damage, a quiet one at once; microseconds.
constexpr bigtime_t kLongestWait = 10000;

void
WindowSurface::Open(desktop::WindowClient& client, const desktop::PixelRect& frame,
	const std::string& title, const desktop::NativeWindow::Options& options)
{
	fNative = std::make_unique<desktop::NativeWindow>(client, frame, title, options);
	SetSize(frame.Width(), frame.Height(), fNative->Scale());
}

void
WindowSurface::Close()
{
	fNative.reset();
	fCanvas.reset();
}

void
WindowSurface::SetSize(int32 columns, int32 rows, double scale)
{
	if (!fCanvas) {
		fCanvas = std::make_unique<desktop::Canvas>(columns, rows, scale);
		AddDamage(Bounds());
	} else {
		bool repaint = fCanvas->Scale() != scale;
		fCanvas->Resize(columns, rows, scale);
		if (repaint)
			AddDamage(Bounds());
	}
	LayoutChanged();
}

desktop::PixelRect
WindowSurface::Bounds() const
{
	if (!fCanvas)
		return {};
	return {0, 0, fCanvas->Width() - 1, fCanvas->Height() - 1};
}

void
WindowSurface::LayoutChanged()
{
	fLayout++;
	ForgetClip();
}

void
WindowSurface::AddDamage(const desktop::PixelRegion& region)
{
	if (!fCanvas || region.IsEmpty())
		return;
	fDamage.Include(region);
	_SetDeadline();
}

void
WindowSurface::AddDrawn(const desktop::PixelRegion& region)
{
	fDrawn.Include(region);
	_SetDeadline();
}

void
WindowSurface::_SetDeadline()
{
	if (fDeadline == B_INFINITE_TIMEOUT)
		fDeadline = system_time() + kLongestWait;
}

bool
WindowSurface::BeginUpdate()
{
	if (fUpdate)
		return false;
	fDamage.IntersectWith(Bounds());
	if (fDamage.IsEmpty())
		return false;
	fUpdate = std::move(fDamage);
	fDamage = desktop::PixelRegion();
	ForgetClip();
	return true;
}

void
WindowSurface::EndUpdate()
{
	fDrawn.Include(*fUpdate);
	fUpdate.reset();
	ForgetClip();
}

bool
WindowSurface::TakeClip(const BView* view)
{
	if (fClipOf == view)
		return false;
	fClipOf = view;
	return true;
}

BRect
WindowSurface::RectTracking::RectAt(BPoint pointer) const
{
	const BPoint way = pointer - start;
	return corner ? BRect(rect.left, rect.top, pointer.x, pointer.y) : rect.OffsetByCopy(way);
}

void
WindowSurface::EndTracking(const BView* view)
{
	if (fTracking.view != view)
		return;
	fTracking = RectTracking();
	SetOutline(desktop::PixelRegion());
}

bool
WindowSurface::SetOutline(const desktop::PixelRegion& outline)
{
	if (outline == fOutline)
		return false;
	AddDrawn(fOutline);
	AddDrawn(outline);
	fOutline = outline;
	return true;
}

void
WindowSurface::Show()
{
	if (fNative && fCanvas && !fDrawn.IsEmpty()) {
		fDrawn.IntersectWith(Bounds());
		fNative->Present(*fCanvas, fDrawn, fOutline);
	}
	fDrawn.MakeEmpty();
	fDeadline = fDamage.IsEmpty() ? B_INFINITE_TIMEOUT : system_time() + kLongestWait;
}

} // namespace BPrivate
