// SPDX-License-Identifier: MIT

// Where views are: frames, resizing modes, conversion, and the regions of the window that they
// show themselves in.

#include <interface/View.h>

#include <app/AppDefs.h>
#include <interface/Window.h>

#include "kits/interface/WindowSurface.h"

#include <cmath>

using BPrivate::RoundToPixel;
using desktop::PixelRect;
using desktop::PixelRegion;

namespace {

// The sides of a parent, as the nibbles of a resizing mode name them.
enum : uint32 { kTop = 1, kLeft = 2, kBottom = 3, kRight = 4, kCentre = 5 };

// How far an edge moves when the parent grows by `growth`.
float
EdgeMoves(uint32 side, float growth)
{
	if (side == kRight || side == kBottom)
		return growth;
	return side == kCentre ? growth / 2 : 0;
}

} // namespace

BRect
BView::Bounds() const
{
	float left = static_cast<float>(fOriginX);
	float top = static_cast<float>(fOriginY);
	return BRect(left, top, left + fFrame.Width(), top + fFrame.Height());
}

void
BView::MoveTo(BPoint leftTop)
{
	// Whole pixels only, and a half goes down as in ResizeTo(): who moves an edge by a rule with
	// half pixels, time and again, moves nothing else.
	BRect frame = fFrame;
	frame.OffsetTo(std::ceil(leftTop.x - 0.5f), std::ceil(leftTop.y - 0.5f));
	_SetFrame(frame);
}

void
BView::MoveBy(float dx, float dy)
{
	MoveTo(BPoint(fFrame.left + dx, fFrame.top + dy));
}

void
BView::ResizeTo(float width, float height)
{
	BRect frame = fFrame;
	frame.right = frame.left + std::floor(width);
	frame.bottom = frame.top + std::floor(height);
	_SetFrame(frame);
}

void
BView::ResizeBy(float dx, float dy)
{
	ResizeTo(fFrame.Width() + dx, fFrame.Height() + dy);
}

void
BView::GetPreferredSize(float* width, float* height)
{
	if (width != nullptr)
		*width = fFrame.Width();
	if (height != nullptr)
		*height = fFrame.Height();
}

void
BView::ResizeToPreferred()
{
	float width = 0, height = 0;
	GetPreferredSize(&width, &height);
	ResizeTo(width, height);
}

// Keeps fractions: a view that follows its parent may lie anywhere.
void
BView::_SetFrame(BRect frame)
{
	if (frame == fFrame)
		return;
	PixelRegion old;
	bool seen = _LayoutChanging(&old);
	PixelRect oldPixels = _PixelFrame();

	bool moved = frame.LeftTop() != fFrame.LeftTop();
	float dx = frame.Width() - fFrame.Width();
	float dy = frame.Height() - fFrame.Height();
	fFrame = frame;
	if (fWindow != nullptr) {
		fWindow->fSurface->LayoutChanged();
		if (seen) {
			PixelRect pixels = _PixelFrame();
			bool shifted = pixels.left != oldPixels.left || pixels.top != oldPixels.top;
			bool whole = (dx != 0 || dy != 0) && (fFlags & B_FULL_UPDATE_ON_RESIZE) != 0;
			_LayoutChanged(old, shifted || whole);
		}
		if ((fFlags & B_FRAME_EVENTS) != 0) {
			if (moved && !fFrameMovedPending) {
				fFrameMovedPending = true;
				fWindow->PostMessage(B_VIEW_MOVED, this);
			}
			if ((dx != 0 || dy != 0) && !fFrameResizedPending) {
				fFrameResizedPending = true;
				fWindow->PostMessage(B_VIEW_RESIZED, this);
			}
		}
	}
	if (dx != 0 || dy != 0)
		_ResizeChildren(dx, dy);
}

void
BView::_ResizeChildren(float dx, float dy)
{
	for (BView* child : fChildren) {
		uint32 mode = child->fResizingMode;
		BRect frame = child->fFrame;
		frame.top += EdgeMoves((mode >> 12) & 15, dy);
		frame.left += EdgeMoves((mode >> 8) & 15, dx);
		frame.bottom += EdgeMoves((mode >> 4) & 15, dy);
		frame.right += EdgeMoves(mode & 15, dx);
		child->_SetFrame(frame);
	}
}

bool
BView::_LayoutChanging(PixelRegion* old)
{
	if (fWindow == nullptr || fWindow->fSurface->Canvas() == nullptr)
		return false;
	*old = _VisibleRegion();
	return true;
}

// Damages what the change uncovered: everything of a view that moved, the new strips of one that
// grew, and what it left to those behind it.
void
BView::_LayoutChanged(const PixelRegion& old, bool moved)
{
	PixelRegion damage = old;
	PixelRegion now = _VisibleRegion();
	if (moved)
		damage.Include(now);
	else {
		damage.Exclude(now);
		now.Exclude(old);
		damage.Include(now);
	}
	fWindow->fSurface->AddDamage(damage);
	fWindow->_WakeLoop();
}

bool
BView::IsHidden() const
{
	return fHidden > 0 ||
		(fParent != nullptr ? fParent->IsHidden() : fWindow == nullptr || fWindow->IsHidden());
}

void
BView::Hide()
{
	if (fHidden++ == 0) {
		PixelRegion old;
		fHidden = 0;
		bool seen = _LayoutChanging(&old);
		fHidden = 1;
		if (fWindow != nullptr)
			fWindow->fSurface->LayoutChanged();
		if (seen)
			_LayoutChanged(old, true);
	}
}

void
BView::Show()
{
	if (--fHidden == 0 && fWindow != nullptr) {
		fWindow->fSurface->LayoutChanged();
		if (fWindow->fSurface->Canvas() != nullptr)
			_LayoutChanged(PixelRegion(), true);
	}
}

BPoint
BView::ConvertToParent(BPoint p) const
{
	return BPoint(static_cast<float>(p.x - fOriginX + fFrame.left),
		static_cast<float>(p.y - fOriginY + fFrame.top));
}

BPoint
BView::ConvertFromParent(BPoint p) const
{
	return BPoint(static_cast<float>(p.x - fFrame.left + fOriginX),
		static_cast<float>(p.y - fFrame.top + fOriginY));
}

BPoint
BView::ConvertToScreen(BPoint p) const
{
	double x = 0, y = 0;
	_Offset(&x, &y);
	BPoint inWindow(static_cast<float>(p.x + x), static_cast<float>(p.y + y));
	return fWindow != nullptr ? fWindow->ConvertToScreen(inWindow) : inWindow;
}

BPoint
BView::ConvertFromScreen(BPoint p) const
{
	double x = 0, y = 0;
	_Offset(&x, &y);
	BPoint inWindow = fWindow != nullptr ? fWindow->ConvertFromScreen(p) : p;
	return BPoint(static_cast<float>(inWindow.x - x), static_cast<float>(inWindow.y - y));
}

BRect
BView::ConvertToParent(BRect r) const
{
	return BRect(ConvertToParent(r.LeftTop()), ConvertToParent(r.RightBottom()));
}

BRect
BView::ConvertFromParent(BRect r) const
{
	return BRect(ConvertFromParent(r.LeftTop()), ConvertFromParent(r.RightBottom()));
}

BRect
BView::ConvertToScreen(BRect r) const
{
	return BRect(ConvertToScreen(r.LeftTop()), ConvertToScreen(r.RightBottom()));
}

BRect
BView::ConvertFromScreen(BRect r) const
{
	return BRect(ConvertFromScreen(r.LeftTop()), ConvertFromScreen(r.RightBottom()));
}

void
BView::_Offset(double* x, double* y) const
{
	for (const BView* view = this; view != nullptr; view = view->fParent) {
		*x += view->fFrame.left - view->fOriginX;
		*y += view->fFrame.top - view->fOriginY;
	}
}

PixelRect
BView::_PixelFrame() const
{
	double x = 0, y = 0;
	if (fParent != nullptr)
		fParent->_Offset(&x, &y);
	return {RoundToPixel(x + fFrame.left), RoundToPixel(y + fFrame.top),
		RoundToPixel(x + fFrame.right), RoundToPixel(y + fFrame.bottom)};
}

const PixelRegion&
BView::_VisibleRegion() const
{
	_UpdateRegions();
	return fVisible;
}

const PixelRegion&
BView::_DrawableRegion() const
{
	_UpdateRegions();
	return fDrawable;
}

void
BView::_UpdateRegions() const
{
	uint64 layout = fWindow->fSurface->Layout();
	if (fRegionsOf == layout)
		return;
	fRegionsOf = layout;
	fVisible.MakeEmpty();
	fDrawable.MakeEmpty();
	if (fHidden > 0)
		return;
	PixelRect frame = _PixelFrame();
	if (frame.IsEmpty())
		return;
	if (fParent != nullptr) {
		fVisible = fParent->_VisibleRegion();
		fVisible.IntersectWith(frame);
		bool behind = false; // siblings come from back to front
		for (const BView* sibling : fParent->fChildren) {
			if (behind && sibling->fHidden == 0)
				fVisible.Exclude(sibling->_PixelFrame());
			behind = behind || sibling == this;
		}
	} else {
		fVisible = frame;
		fVisible.IntersectWith(fWindow->fSurface->Bounds());
	}
	fDrawable = fVisible;
	for (const BView* child : fChildren) {
		if (child->fHidden == 0)
			fDrawable.Exclude(child->_PixelFrame());
	}
}
