// SPDX-License-Identifier: MIT

#include <interface/ScrollView.h>

#include <interface/Look.h>
#include <interface/ScrollBar.h>

static constexpr float kInitialRange = 1000;

static float
BorderWidth(border_style border)
{
	return border == B_FANCY_BORDER ? 2.0f : border == B_PLAIN_BORDER ? 1.0f : 0.0f;
}

static BRect
FrameAround(BRect target, bool horizontal, bool vertical, border_style border)
{
	if (vertical)
		target.right += B_V_SCROLL_BAR_WIDTH;
	if (horizontal)
		target.bottom += B_H_SCROLL_BAR_HEIGHT;
	return target.InsetByCopy(-BorderWidth(border), -BorderWidth(border));
}

BScrollView::BScrollView(const char* name, BView* target, uint32 resizingMode, uint32 flags,
	bool horizontal, bool vertical, border_style border) :
	BView(FrameAround(target != nullptr ? target->Frame() : BRect(), horizontal, vertical, border),
		name, resizingMode, flags | B_WILL_DRAW | B_FRAME_EVENTS),
	fTarget(target),
	fBorder(border)
{
	SetViewColor(BPrivate::kPanelColor);
	const float inset = BorderWidth(border);
	BRect inner = target != nullptr ? target->Frame() : BRect();
	inner.OffsetTo(inset, inset);
	if (target != nullptr) {
		target->MoveTo(inset, inset);
		AddChild(target);
	}
	// A bar covers as many pixels as its constant says, of which its frame counts one less.
	if (horizontal) {
		BRect frame(
			inner.left, inner.bottom + 1, inner.right, inner.bottom + B_H_SCROLL_BAR_HEIGHT);
		fHorizontal = new BScrollBar(frame, "_HSB_", target, 0, kInitialRange, B_HORIZONTAL);
		AddChild(fHorizontal);
	}
	if (vertical) {
		BRect frame(inner.right + 1, inner.top, inner.right + B_V_SCROLL_BAR_WIDTH, inner.bottom);
		fVertical = new BScrollBar(frame, "_VSB_", target, 0, kInitialRange, B_VERTICAL);
		AddChild(fVertical);
	}
	if (target != nullptr)
		target->TargetedByScrollView(this);
}

BScrollBar*
BScrollView::ScrollBar(orientation direction) const
{
	return direction == B_HORIZONTAL ? fHorizontal : fVertical;
}

void
BScrollView::SetBorderHighlighted(bool highlighted)
{
	if (highlighted == fHighlighted)
		return;
	fHighlighted = highlighted;
	if (fBorder == B_FANCY_BORDER)
		InvalidateBorder();
}

void
BScrollView::InvalidateBorder()
{
	const float last = BorderWidth(fBorder) - 1;
	if (last < 0)
		return;
	BRect bounds = Bounds();
	Invalidate(BRect(bounds.left, bounds.top, bounds.right, bounds.top + last));
	Invalidate(BRect(bounds.left, bounds.bottom - last, bounds.right, bounds.bottom));
	Invalidate(BRect(bounds.left, bounds.top, bounds.left + last, bounds.bottom));
	Invalidate(BRect(bounds.right - last, bounds.top, bounds.right, bounds.bottom));
}

// The strips uncovered by a resize do not hold the old corners, which have become edges, nor the
// old edges, which may now lie where the bars meet.
void
BScrollView::FrameResized(float width, float height)
{
	BView::FrameResized(width, height);
	InvalidateBorder();
	if (fHorizontal != nullptr && fVertical != nullptr)
		Invalidate(BRect(fVertical->Frame().left, fHorizontal->Frame().top,
			fVertical->Frame().right, fHorizontal->Frame().bottom));
}

void
BScrollView::Draw(BRect)
{
	BRect bounds = Bounds();
	if (fBorder == B_PLAIN_BORDER) {
		BPrivate::DrawEdges(this, bounds, BPrivate::kDarkEdge, BPrivate::kDarkEdge);
	} else if (fBorder == B_FANCY_BORDER && fHighlighted) {
		rgb_color color = keyboard_navigation_color();
		BPrivate::DrawEdges(this, bounds, color, color);
		BPrivate::DrawEdges(this, bounds.InsetByCopy(1, 1), color, color);
	} else if (fBorder == B_FANCY_BORDER)
		BPrivate::DrawSunken(this, bounds);
}
