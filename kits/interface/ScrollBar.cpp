// SPDX-License-Identifier: MIT

#include <interface/ScrollBar.h>

#include <app/AppDefs.h>
#include <app/Messenger.h>
#include <interface/Look.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>

using BPrivate::ArrowDirection;
using BPrivate::ScrollBarLayout;
using BPrivate::ScrollBarPart;

static constexpr uint32 kMsgRepeat = '_SBR';
static constexpr bigtime_t kFirstRepeat = 300000;
static constexpr bigtime_t kNextRepeat = 40000;
static constexpr float kWheelSteps = 3; // small steps a notch

BScrollBar::BScrollBar(
	BRect frame, const char* name, BView* target, float min, float max, orientation direction) :
	BView(frame, name,
		direction == B_VERTICAL ? B_FOLLOW_RIGHT | B_FOLLOW_TOP_BOTTOM
								: B_FOLLOW_LEFT_RIGHT | B_FOLLOW_BOTTOM,
		B_WILL_DRAW | B_FULL_UPDATE_ON_RESIZE),
	fOrientation(direction),
	fMin(min),
	fMax(std::max(min, max)),
	fValue(min)
{
	SetViewColor(B_TRANSPARENT_COLOR);
	SetTarget(target);
}

BScrollBar::~BScrollBar()
{
	SetTarget(nullptr);
}

void
BScrollBar::SetTarget(BView* target)
{
	auto slot = [this](BView* view) -> BScrollBar*& {
		return IsVertical() ? view->fVerticalBar : view->fHorizontalBar;
	};
	if (fTarget != nullptr && slot(fTarget) == this)
		slot(fTarget) = nullptr;
	fTarget = target;
	if (target == nullptr)
		return;
	// Of several bars the last one is the view's.
	if (BScrollBar* other = slot(target))
		other->fTarget = nullptr;
	slot(target) = this;
}

void
BScrollBar::SetValue(float value)
{
	float limited = std::max(std::min(value, fMax), fMin);
	float whole = std::floor(limited + 0.5f);
	// The range may end between two units.
	if (whole > fMax)
		whole = std::floor(fMax);
	value = std::max(whole, fMin);
	if (value == fValue)
		return;
	ScrollBarLayout before = Layout();
	fValue = value;
	RedrawIfMoved(before);
	ValueChanged(value);
}

void
BScrollBar::ValueChanged(float value)
{
	if (fTarget == nullptr)
		return;
	BPoint offset = fTarget->Bounds().LeftTop();
	float& axis = IsVertical() ? offset.y : offset.x;
	if (axis == value)
		return;
	axis = value;
	fTarget->ScrollTo(offset);
}

void
BScrollBar::SetRange(float min, float max)
{
	max = std::max(min, max);
	if (min == fMin && max == fMax)
		return;
	ScrollBarLayout before = Layout();
	fMin = min;
	fMax = max;
	RedrawIfMoved(before);
	SetValue(fValue);
}

void
BScrollBar::GetRange(float* min, float* max) const
{
	if (min != nullptr)
		*min = fMin;
	if (max != nullptr)
		*max = fMax;
}

void
BScrollBar::SetSteps(float small, float large)
{
	fSmallStep = small;
	fLargeStep = large;
}

void
BScrollBar::GetSteps(float* small, float* large) const
{
	if (small != nullptr)
		*small = fSmallStep;
	if (large != nullptr)
		*large = fLargeStep;
}

void
BScrollBar::SetProportion(float proportion)
{
	proportion = std::clamp(proportion, 0.0f, 1.0f);
	if (proportion == fProportion)
		return;
	ScrollBarLayout before = Layout();
	fProportion = proportion;
	RedrawIfMoved(before);
}

float
BScrollBar::Along(BPoint where) const
{
	BRect bounds = Bounds();
	return IsVertical() ? where.y - bounds.top : where.x - bounds.left;
}

ScrollBarLayout
BScrollBar::Layout() const
{
	BRect bounds = Bounds();
	int32 width = bounds.IntegerWidth() + 1;
	int32 height = bounds.IntegerHeight() + 1;
	return ScrollBarLayout(IsVertical() ? height : width, IsVertical() ? width : height, fMin, fMax,
		fProportion, fValue);
}

// Values change far more often than the thumb's pixels.
void
BScrollBar::RedrawIfMoved(const ScrollBarLayout& before)
{
	if (Window() == nullptr)
		return;
	ScrollBarLayout now = Layout();
	if (now.HasThumb() != before.HasThumb())
		Invalidate();
	else if (now.ThumbStart() != before.ThumbStart() || now.ThumbLength() != before.ThumbLength()) {
		Invalidate(PartRect(before.ThumbStart(), before.ThumbLength()));
		Invalidate(PartRect(now.ThumbStart(), now.ThumbLength()));
	}
}

// Pixels along the bar, over its whole breadth.
BRect
BScrollBar::PartRect(int32 start, int32 length) const
{
	BRect rect = Bounds();
	float first = static_cast<float>(start);
	float last = static_cast<float>(start + length - 1);
	if (IsVertical())
		return BRect(rect.left, rect.top + first, rect.right, rect.top + last);
	return BRect(rect.left + first, rect.top, rect.left + last, rect.bottom);
}

void
BScrollBar::DrawArrowBox(bool more, const ScrollBarLayout& layout)
{
	const int32 length = layout.ArrowLength();
	BRect box = PartRect(more ? length + layout.TroughLength() : 0, length);
	if (!box.IsValid())
		return;
	const bool held = fPressed == (more ? ScrollBarPart::kMoreArrow : ScrollBarPart::kLessArrow);
	if (held)
		BPrivate::DrawPressed(this, box, BPrivate::kSoftDarkEdge);
	else
		BPrivate::DrawRaised(this, box, BPrivate::kPanelColor);
	ArrowDirection direction = IsVertical()
		? (more ? ArrowDirection::kDown : ArrowDirection::kUp)
		: (more ? ArrowDirection::kRight : ArrowDirection::kLeft);
	if (held)
		box.OffsetBy(1, 1);
	bool enabled = fMax > fMin;
	if (length >= 10)
		BPrivate::DrawArrow(
			this, box, direction, enabled ? rgb_color{64, 64, 64, 255} : BPrivate::kDarkEdge);
}

void
BScrollBar::Draw(BRect)
{
	const ScrollBarLayout layout = Layout();
	DrawArrowBox(false, layout);
	DrawArrowBox(true, layout);

	BRect trough = PartRect(layout.ArrowLength(), layout.TroughLength());
	if (trough.IsValid()) {
		const bool enabled = fMax > fMin;
		SetHighColor(enabled ? BPrivate::kTroughColor : BPrivate::kPanelColor);
		FillRect(trough);
		if (enabled)
			BPrivate::DrawSunken(this, trough);
		else
			BPrivate::DrawEdges(this, trough, BPrivate::kDarkEdge, BPrivate::kDarkEdge);
	}
	if (layout.HasThumb())
		BPrivate::DrawRaised(
			this, PartRect(layout.ThumbStart(), layout.ThumbLength()), BPrivate::kPanelColor);
}

void
BScrollBar::MouseDown(BPoint where)
{
	int32 buttons = B_PRIMARY_MOUSE_BUTTON;
	if (BMessage* message = Window()->CurrentMessage())
		message->FindInt32("buttons", &buttons);
	const ScrollBarLayout layout = Layout();
	if ((buttons & B_PRIMARY_MOUSE_BUTTON) == 0 || fPressed != ScrollBarPart::kNone || fMax <= fMin)
		return;
	fPressed = layout.PartAt(double(Along(where)));
	if (fPressed == ScrollBarPart::kNone)
		return;
	fPointer = where;
	fPressCount++;
	SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
	if (fPressed == ScrollBarPart::kThumb) {
		fGrabOffset = Along(where) - static_cast<float>(layout.ThumbStart());
		return;
	}
	Invalidate();
	Step();
	BMessage repeat(kMsgRepeat);
	repeat.AddInt32("press", fPressCount);
	fRepeat.Post(BMessenger(this), repeat, kFirstRepeat);
}

// One step of the part that is held, while the pointer is on it: a thumb that has reached the
// pointer ends the paging.
void
BScrollBar::Step()
{
	const ScrollBarPart under = Bounds().Contains(fPointer)
		? Layout().PartAt(double(Along(fPointer)))
		: ScrollBarPart::kNone;
	if (under != fPressed)
		return;
	switch (fPressed) {
		case ScrollBarPart::kLessArrow:
			SetValue(fValue - fSmallStep);
			break;
		case ScrollBarPart::kMoreArrow:
			SetValue(fValue + fSmallStep);
			break;
		case ScrollBarPart::kTroughBefore:
			SetValue(fValue - fLargeStep);
			break;
		case ScrollBarPart::kTroughBehind:
			SetValue(fValue + fLargeStep);
			break;
		case ScrollBarPart::kThumb:
		case ScrollBarPart::kNone:
			break;
	}
}

void
BScrollBar::Repeat(int32 press)
{
	if (fPressed == ScrollBarPart::kNone || press != fPressCount)
		return;
	BPoint where;
	uint32 buttons = 0;
	GetMouse(&where, &buttons, false);
	if ((buttons & B_PRIMARY_MOUSE_BUTTON) == 0) {
		// Its message is still queued, or never comes.
		EndPress();
		return;
	}
	Step();
	BMessage repeat(kMsgRepeat);
	repeat.AddInt32("press", press);
	fRepeat.Post(BMessenger(this), repeat, kNextRepeat);
}

void
BScrollBar::EndPress()
{
	if (fPressed == ScrollBarPart::kNone)
		return;
	fPressed = ScrollBarPart::kNone;
	fRepeat.Cancel();
	Invalidate();
}

void
BScrollBar::MouseUp(BPoint)
{
	int32 buttons = 0;
	if (BMessage* message = Window()->CurrentMessage())
		message->FindInt32("buttons", &buttons);
	if ((buttons & B_PRIMARY_MOUSE_BUTTON) == 0)
		EndPress();
}

void
BScrollBar::MouseMoved(BPoint where, uint32, const BMessage*)
{
	if (fPressed == ScrollBarPart::kNone)
		return;
	fPointer = where;
	if (fPressed == ScrollBarPart::kThumb)
		SetValue(
			static_cast<float>(Layout().ValueForThumbStart(double(Along(where) - fGrabOffset))));
}

void
BScrollBar::DetachedFromWindow()
{
	EndPress();
	BView::DetachedFromWindow();
}

void
BScrollBar::MessageReceived(BMessage* message)
{
	int32 press = 0;
	if (message->what == kMsgRepeat && message->FindInt32("press", &press) == B_OK)
		Repeat(press);
	else if (message->what != B_MOUSE_WHEEL_CHANGED || !WheelMoved(message))
		BView::MessageReceived(message);
}

// Over a bar the wheel moves along the bar, whichever wheel it is.
bool
BScrollBar::WheelMoved(BMessage* message)
{
	float dx = 0, dy = 0;
	message->FindFloat("be:wheel_delta_x", &dx);
	message->FindFloat("be:wheel_delta_y", &dy);
	float delta = IsVertical() || dx == 0 ? dy : dx;
	if (delta == 0)
		return false;
	SetValue(fValue + _WheelDistance(delta));
	return true;
}

float
BScrollBar::_WheelDistance(float notches) const
{
	return std::round(notches * kWheelSteps * fSmallStep);
}
