// SPDX-License-Identifier: MIT

#include <interface/Button.h>

#include <interface/Look.h>
#include <interface/Window.h>

#include <cmath>

static constexpr float kLabelMargin = 12;
static constexpr float kHeightMargin = 12;
static constexpr rgb_color kDefaultRing = {48, 48, 48, 255};

BButton::BButton(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags) :
	BControl(frame, name, label, message, resizingMode, flags | B_FULL_UPDATE_ON_RESIZE)
{}

void
BButton::MakeDefault(bool isDefault)
{
	if (isDefault == fDefault)
		return;
	fDefault = isDefault;
	Invalidate();
	if (Window() == nullptr)
		return;
	BButton* other = Window()->DefaultButton();
	if (isDefault) {
		Window()->SetDefaultButton(this);
		if (other != nullptr && other != this)
			other->MakeDefault(false);
	} else if (other == this)
		Window()->SetDefaultButton(nullptr);
}

void
BButton::Press()
{
	if (IsEnabled())
		Invoke();
}

void
BButton::GetPreferredSize(float* width, float* height)
{
	font_height font;
	GetFontHeight(&font);
	if (width != nullptr)
		*width = std::ceil(StringWidth(Label())) + 2 * kLabelMargin;
	if (height != nullptr)
		*height = std::ceil(font.ascent + font.descent) + kHeightMargin;
}

void
BButton::ResizeToPreferred()
{
	float width, height;
	GetPreferredSize(&width, &height);
	ResizeTo(width, height);
}

void
BButton::AttachedToWindow()
{
	BControl::AttachedToWindow();
	if (fDefault) {
		// Made the default before it had a window.
		fDefault = false;
		MakeDefault(true);
	}
}

void
BButton::DetachedFromWindow()
{
	fTracking = false;
	if (Window()->DefaultButton() == this)
		Window()->SetDefaultButton(nullptr);
	BControl::DetachedFromWindow();
}

void
BButton::Draw(BRect)
{
	BRect rect = Bounds();
	const rgb_color ring = fDefault ? kDefaultRing : BPrivate::kDarkEdge;
	BPrivate::DrawEdges(this, rect, ring, ring);
	rect.InsetBy(1, 1);
	const bool pushed = Value() == B_CONTROL_ON;
	if (pushed)
		BPrivate::DrawPressed(this, rect, BPrivate::kSoftDarkEdge);
	else
		BPrivate::DrawRaised(this, rect, BPrivate::kPanelColor);

	if (IsFocus() && Window()->IsActive()) {
		SetHighColor(keyboard_navigation_color());
		StrokeRect(rect.InsetByCopy(3, 3));
	}
	font_height font;
	GetFontHeight(&font);
	BPoint baseline(std::floor((rect.left + rect.right - StringWidth(Label())) / 2 + 0.5f),
		std::floor((rect.top + rect.bottom + font.ascent - font.descent) / 2 + 0.5f));
	if (pushed)
		baseline += BPoint(1, 1);
	SetLowColor(pushed ? BPrivate::kSoftDarkEdge : BPrivate::kPanelColor);
	SetHighColor(IsEnabled() ? BPrivate::kTextColor : BPrivate::kDisabledTextColor);
	DrawString(Label(), baseline);
}

static int32
ButtonsOf(BView* view, int32 otherwise)
{
	int32 buttons = otherwise;
	if (BMessage* message = view->Window()->CurrentMessage())
		message->FindInt32("buttons", &buttons);
	return buttons;
}

void
BButton::MouseDown(BPoint)
{
	if (!IsEnabled() || (ButtonsOf(this, B_PRIMARY_MOUSE_BUTTON) & B_PRIMARY_MOUSE_BUTTON) == 0)
		return;
	SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
	fTracking = true;
	SetValue(B_CONTROL_ON);
}

void
BButton::MouseMoved(BPoint where, uint32, const BMessage*)
{
	if (fTracking)
		SetValue(Bounds().Contains(where) ? B_CONTROL_ON : B_CONTROL_OFF);
}

void
BButton::MouseUp(BPoint where)
{
	if (!fTracking || (ButtonsOf(this, 0) & B_PRIMARY_MOUSE_BUTTON) != 0)
		return;
	fTracking = false;
	SetValue(B_CONTROL_OFF);
	if (Bounds().Contains(where))
		Press();
}

void
BButton::KeyDown(const char* bytes, int32 numBytes)
{
	if (numBytes == 1 && (bytes[0] == B_SPACE || bytes[0] == B_ENTER))
		Press();
	else
		BControl::KeyDown(bytes, numBytes);
}
