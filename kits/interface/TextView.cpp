// SPDX-License-Identifier: MIT

// The text view as programs use it.

#include <interface/TextView.h>

#include <interface/Window.h>

#include <cstring>

BTextView::BTextView(
	BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags) :
	BView(frame, name, resizingMode, flags | B_FRAME_EVENTS), fTextRect(textRect)
{
	_Layout();
}

BTextView::~BTextView()
{
	RemoveSelf(); // while the hooks are still this class's
}

void
BTextView::SetText(const char* text)
{
	SetText(text, text != nullptr ? static_cast<int32>(strlen(text)) : 0);
}

void
BTextView::SetText(const char* text, int32 length)
{
	_EndComposing();
	fModel.SetText(std::string_view(text != nullptr ? text : "", length));
	fTracking = Unit::kNone;
	fScroll = BPoint();
	fWantedX = -1;
	_Layout();
}

void
BTextView::Insert(const char* text)
{
	if (text != nullptr)
		Insert(text, static_cast<int32>(strlen(text)));
}

void
BTextView::Insert(const char* text, int32 length)
{
	if (text != nullptr && length >= 0)
		_Replace(fModel.Begin(), fModel.End(), std::string_view(text, length), Kind::kOther);
}

void
BTextView::Insert(int32 offset, const char* text, int32 length)
{
	if (text != nullptr && length >= 0 && offset >= 0)
		_Replace(offset, offset, std::string_view(text, length), Kind::kOther);
}

void
BTextView::Delete()
{
	_Replace(fModel.Begin(), fModel.End(), {}, Kind::kOther);
}

void
BTextView::Delete(int32 begin, int32 end)
{
	if (begin >= 0 && end > begin)
		_Replace(begin, end, {}, Kind::kOther);
}

void
BTextView::Select(int32 begin, int32 end)
{
	if (begin >= 0 && end >= begin)
		_SelectRange(begin, end);
}

void
BTextView::SelectAll()
{
	_SelectRange(0, fModel.Length());
}

void
BTextView::GetSelection(int32* begin, int32* end) const
{
	if (begin != nullptr)
		*begin = static_cast<int32>(fModel.Begin());
	if (end != nullptr)
		*end = static_cast<int32>(fModel.End());
}

void
BTextView::MakeEditable(bool editable)
{
	if (editable == fEditable)
		return;
	fEditable = editable;
	_SetComposing(std::string(), 0);
	_RestartBlinking();
	_TellInputMethod();
}

void
BTextView::SetWordWrap(bool wrap)
{
	if (wrap == fWrap)
		return;
	fWrap = wrap;
	_Layout();
}

void
BTextView::_SetSingleLine()
{
	fSingleLine = true;
	fWrap = false;
	_Layout();
}

void
BTextView::SetTextRect(BRect rect)
{
	if (rect == fTextRect)
		return;
	fTextRect = rect;
	_Layout();
}

void
BTextView::SetFontAndColor(const BFont* font, uint32 mask, const rgb_color* color)
{
	if (font != nullptr)
		SetFont(font, mask);
	if (color != nullptr)
		fTextColor = *color;
	_Layout();
}

void
BTextView::AttachedToWindow()
{
	BView::AttachedToWindow();
}

void
BTextView::DetachedFromWindow()
{
	if (IsFocus()) {
		_SetComposing(std::string(), 0);
		Window()->_SetTextInput(false, BRect());
	}
	fToldCaret = BRect();
	fBlink.Cancel();
	fAutoScroll.Cancel();
	fTracking = Unit::kNone;
	BView::DetachedFromWindow();
}

void
BTextView::MakeFocus(bool focus)
{
	const bool had = IsFocus();
	if (had && !focus)
		_SetComposing(std::string(), 0);
	BView::MakeFocus(focus);
	if (had == focus)
		return;
	_InvalidateRows(fModel.Begin(), fModel.End());
	_RestartBlinking();
	_TellInputMethod();
}

void
BTextView::WindowActivated(bool active)
{
	BView::WindowActivated(active);
	if (!IsFocus())
		return;
	fToldCaret = BRect(); // the window may not have been shown when it was told
	_InvalidateRows(fModel.Begin(), fModel.End());
	_RestartBlinking();
	_TellInputMethod();
}
