// SPDX-License-Identifier: MIT

#include <interface/TextControl.h>

#include <interface/Look.h>
#include <interface/Window.h>

#include "kits/interface/ControlEditor.h"

#include <algorithm>
#include <cmath>

static constexpr float kLabelGap = 5;
static constexpr float kBevel = 2;
static constexpr float kTextInset = 2;   // from the bevel
static constexpr float kLeastBox = 40;   // of the preferred size
static constexpr float kSpareHeight = 3; // what the box adds to a line of text

BTextControl::BTextControl(BRect frame, const char* name, const char* label, const char* text,
	BMessage* message, uint32 resizingMode, uint32 flags) :
	BControl(frame, name, label, message, resizingMode,
		flags | B_FRAME_EVENTS | B_FULL_UPDATE_ON_RESIZE),
	fEditor(new BPrivate::ControlEditor(*this))
{
	AddChild(fEditor);
	SetText(text);
}

void
BTextControl::SetText(const char* text)
{
	fEditor->SetCleanText(text);
}

const char*
BTextControl::Text() const
{
	return fEditor->Text();
}

BTextView*
BTextControl::TextView() const
{
	return fEditor;
}

void
BTextControl::SetModificationMessage(BMessage* message)
{
	fModification.reset(message);
}

void
BTextControl::SetDivider(float divider)
{
	fDivider = std::max(0.0f, divider);
	_PlaceEditor();
	Invalidate();
}

float
BTextControl::Divider() const
{
	if (fDivider >= 0)
		return fDivider;
	return Label()[0] == '\0' ? 0 : std::ceil(StringWidth(Label())) + kLabelGap;
}

BRect
BTextControl::_Box() const
{
	BRect box = Bounds();
	box.left += Divider();
	return box;
}

// The line of text stands in the middle of the box, whatever its height.
void
BTextControl::_PlaceEditor()
{
	BRect place = _Box();
	place.InsetBy(kBevel, kBevel);
	fEditor->MoveTo(place.LeftTop());
	fEditor->ResizeTo(place.Width(), place.Height());
	const float height = static_cast<float>(fEditor->LineHeight());
	const float top = std::floor((fEditor->Bounds().Height() + 1 - height) / 2);
	fEditor->SetTextRect(
		BRect(kTextInset, top, fEditor->Bounds().right - kTextInset, top + height - 1));
}

void
BTextControl::SetEnabled(bool enabled)
{
	const rgb_color& color = enabled ? BPrivate::kTextColor : BPrivate::kDisabledTextColor;
	fEditor->MakeEditable(enabled);
	fEditor->SetFontAndColor(nullptr, 0, &color);
	BControl::SetEnabled(enabled);
}

void
BTextControl::SetLabel(const char* label)
{
	BControl::SetLabel(label);
	_PlaceEditor();
}

void
BTextControl::AttachedToWindow()
{
	BControl::AttachedToWindow();
	_PlaceEditor();
}

void
BTextControl::Draw(BRect)
{
	const BRect box = _Box();
	if (!box.IsValid())
		return;
	BPrivate::DrawSunken(this, box);
	if (fEditor->IsFocus() && Window()->IsActive()) {
		const rgb_color marked = keyboard_navigation_color();
		BPrivate::DrawEdges(this, box.InsetByCopy(1, 1), marked, marked);
	}
	font_height font;
	GetFontHeight(&font);
	const float textTop = fEditor->Frame().top + fEditor->TextRect().top;
	SetHighColor(IsEnabled() ? BPrivate::kTextColor : BPrivate::kDisabledTextColor);
	SetDrawingMode(B_OP_OVER);
	DrawString(Label(), BPoint(0, textTop + std::round(font.ascent)));
	SetDrawingMode(B_OP_COPY);
}

void
BTextControl::MouseDown(BPoint where)
{
	if (IsEnabled() && _Box().Contains(where))
		fEditor->Press(fEditor->ConvertFromParent(where));
	else
		MakeFocus(true);
}

void
BTextControl::MakeFocus(bool focus)
{
	if (!IsEnabled() && focus)
		return;
	fEditor->MakeFocus(focus);
	if (focus)
		fEditor->SelectAll();
}

void
BTextControl::WindowActivated(bool active)
{
	BControl::WindowActivated(active);
	if (fEditor->IsFocus())
		Invalidate();
}

void
BTextControl::FrameResized(float width, float height)
{
	BControl::FrameResized(width, height);
	_PlaceEditor();
}

void
BTextControl::GetPreferredSize(float* width, float* height)
{
	BFont font;
	GetFont(&font);
	if (width != nullptr)
		*width = Divider() + kLeastBox;
	if (height != nullptr) // fonts with tall lines are not given more than others
		*height =
			std::min(static_cast<float>(fEditor->LineHeight()) + kSpareHeight, font.Size() + 6.5f);
}

void
BTextControl::ResizeToPreferred()
{
	float width, height;
	GetPreferredSize(&width, &height);
	ResizeTo(width, height);
	_PlaceEditor();
}
