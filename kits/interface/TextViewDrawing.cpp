// SPDX-License-Identifier: MIT

// The text view: where its text lies, scrolling, drawing and the blinking caret.

#include <interface/TextView.h>

#include <app/Messenger.h>
#include <interface/TextMessages.h>
#include <interface/Window.h>

#include <algorithm>
#include <cmath>

using BPrivate::TextRow;

static constexpr bigtime_t kBlinkTime = 500000;
static constexpr float kNewlineWidth = 5; // how a selected one is shown
static constexpr size_t kMaxMeasured = 200;
static constexpr rgb_color kSelectionColor = {180, 200, 240, 255};
static constexpr rgb_color kIdleSelectionColor = {216, 216, 216, 255}; // of a window in the back

void
BTextView::_Layout()
{
	BFont font;
	GetFont(&font);
	fRows.SetRules(font, fWrap ? std::max(fTextRect.Width(), 1.0f) : 0, fSingleLine, Text());
	fMeasured.clear();
	_LimitScrolling();
	Invalidate();
	_RestartBlinking();
	_TellInputMethod();
}

int32
BTextView::LineHeight() const
{
	font_height height;
	GetFontHeight(&height);
	return std::max(1, static_cast<int32>(std::ceil(height.ascent + height.descent)));
}

BRect
BTextView::_Visible() const
{
	BRect visible = Bounds();
	visible.left += std::max(0.0f, fTextRect.left);
	visible.right -= std::max(0.0f, fTextRect.left); // as much at the other side
	return visible;
}

BPoint
BTextView::_Origin() const
{
	return fTextRect.LeftTop() - fScroll;
}

// The row as it is drawn, with what is being composed at the caret.
const TextRow&
BTextView::_Row(int32 index) const
{
	const auto known = fMeasured.find(index);
	if (known != fMeasured.end())
		return known->second;
	if (fMeasured.size() == kMaxMeasured)
		fMeasured.clear();
	const BPrivate::TextRows::Row& place = fRows.At(index);
	std::string text = fModel.Text().substr(place.begin, place.end - place.begin);
	if (!fComposing.empty() && index == fRows.IndexOf(fModel.Caret()))
		text.insert(fModel.Caret() - place.begin, fComposing);
	BFont font;
	GetFont(&font);
	return fMeasured[index] = TextRow(font, text);
}

BPoint
BTextView::PointAt(int32 offset, float* height) const
{
	const size_t at = std::min(static_cast<size_t>(std::max(0, offset)), fModel.Length());
	const int32 row = fRows.IndexOf(at);
	size_t inRow = at - fRows.At(row).begin;
	if (row == fRows.IndexOf(fModel.Caret()) && at > fModel.Caret())
		inRow += fComposing.size();
	if (height != nullptr)
		*height = static_cast<float>(LineHeight());
	return _Origin() + BPoint(_Row(row).CaretAt(inRow), static_cast<float>(row) * LineHeight());
}

int32
BTextView::OffsetAt(BPoint where) const
{
	const BPoint origin = _Origin();
	const float below = std::floor((where.y - origin.y) / static_cast<float>(LineHeight()));
	const int32 row =
		static_cast<int32>(std::clamp(below, 0.0f, static_cast<float>(fRows.Count() - 1)));
	const BPrivate::TextRows::Row& place = fRows.At(row);
	size_t offset = place.begin + _Row(row).OffsetAt(where.x - origin.x);
	if (row == fRows.IndexOf(fModel.Caret()) && offset > fModel.Caret())
		offset = std::max(fModel.Caret(), offset - std::min(offset, fComposing.size()));
	// The end of a broken row is seen as the next one's begin.
	const size_t end = place.broken ? fModel.Before(place.end) : place.end;
	return static_cast<int32>(std::min(offset, end));
}

BRect
BTextView::_CaretRect() const
{
	BPoint top = PointAt(static_cast<int32>(fModel.Caret()));
	if (!fComposing.empty()) {
		const int32 row = fRows.IndexOf(fModel.Caret());
		const size_t inRow = fModel.Caret() - fRows.At(row).begin + fComposingCaret;
		top.x = _Origin().x + _Row(row).CaretAt(inRow);
	}
	top.Set(std::floor(top.x), std::floor(top.y + 0.5f));
	return BRect(top, top + BPoint(0, static_cast<float>(LineHeight() - 1)));
}

void
BTextView::ScrollToSelection()
{
	const BRect visible = _Visible();
	if (Window() == nullptr || visible.Width() <= 0)
		return;
	const BRect caret = _CaretRect();
	BPoint way;
	if (caret.left < visible.left)
		way.x = std::floor(caret.left - visible.left);
	else if (caret.right > visible.right)
		way.x = std::ceil(caret.right - visible.right);
	if (caret.top < visible.top)
		way.y = std::max(std::floor(caret.top - visible.top), -fScroll.y);
	else if (caret.bottom > visible.bottom && visible.Height() >= caret.Height())
		way.y = std::ceil(caret.bottom - visible.bottom);
	way.x = std::max(way.x, -fScroll.x);
	if (way != BPoint()) {
		fScroll += way;
		Invalidate();
	}
	_TellInputMethod();
}

// Text that became shorter, or a view that became larger, leaves nothing scrolled out in vain.
void
BTextView::_LimitScrolling()
{
	if (fScroll == BPoint())
		return;
	const BRect visible = _Visible();
	const float height = static_cast<float>(fRows.Count() * LineHeight()) + fTextRect.top;
	BPoint limited = fScroll;
	limited.y = std::clamp(fScroll.y, 0.0f, std::max(0.0f, std::ceil(height - visible.Height())));
	if (fSingleLine || fRows.Count() == 1)
		limited.x =
			std::min(fScroll.x, std::max(0.0f, std::ceil(_Row(0).Width() - visible.Width())));
	if (limited == fScroll)
		return;
	fScroll = limited;
	Invalidate();
}

void
BTextView::FrameResized(float, float)
{
	_LimitScrolling();
	ScrollToSelection();
}

void
BTextView::Draw(BRect update)
{
	PushState();
	SetDrawingMode(B_OP_OVER);
	const float height = static_cast<float>(LineHeight());
	const float top = _Origin().y;
	const float count = static_cast<float>(fRows.Count());
	const int32 first =
		static_cast<int32>(std::clamp(std::floor((update.top - top) / height) - 1, 0.0f, count));
	const int32 last =
		static_cast<int32>(std::clamp(std::floor((update.bottom - top) / height) + 2, 0.0f, count));
	for (int32 row = first; row < last; row++)
		_DrawRow(row, update);
	if (fCaretShown && fEditable && _IsLive()) {
		SetHighColor(fTextColor);
		FillRect(_CaretRect());
	}
	PopState();
}

void
BTextView::_DrawRow(int32 index, BRect update)
{
	const BPrivate::TextRows::Row& place = fRows.At(index);
	const TextRow& row = _Row(index);
	const float lineHeight = static_cast<float>(LineHeight());
	const BPoint leftTop = _Origin() + BPoint(0, static_cast<float>(index) * lineHeight);
	const auto column = [&](float x) { return std::floor(leftTop.x + x + 0.5f); };
	if (IsFocus() && fModel.Begin() <= place.end && fModel.End() > place.begin) {
		SetHighColor(_IsLive() ? kSelectionColor : kIdleSelectionColor);
		const size_t begin = std::max(fModel.Begin(), place.begin) - place.begin;
		auto spans = row.Spans(begin, fModel.End() - place.begin);
		if (fModel.End() > place.end && !place.broken)
			spans.push_back({row.Width(), row.Width() + kNewlineWidth});
		for (const TextRow::Span& span : spans) {
			const float top = std::floor(leftTop.y + 0.5f);
			FillRect(BRect(column(span.left), top, column(span.right) - 1, top + lineHeight - 1));
		}
	}
	font_height font;
	GetFontHeight(&font);
	const BPoint baseline(leftTop.x, std::floor(leftTop.y + 0.5f) + std::round(font.ascent));
	SetHighColor(fTextColor);
	row.Draw(this, baseline, {update.left, update.right});
	if (!fComposing.empty() && index == fRows.IndexOf(fModel.Caret())) {
		const size_t begin = fModel.Caret() - place.begin;
		for (const TextRow::Span& span : row.Spans(begin, begin + fComposing.size()))
			StrokeLine(BPoint(column(span.left), baseline.y + 1),
				BPoint(column(span.right) - 1, baseline.y + 1));
	}
}

void
BTextView::_InvalidateRows(size_t begin, size_t end)
{
	if (Window() == nullptr)
		return;
	const float height = static_cast<float>(LineHeight());
	const float top = _Origin().y;
	BRect rows = Bounds();
	rows.bottom = top + static_cast<float>(fRows.IndexOf(end) + 1) * height;
	rows.top = top + static_cast<float>(fRows.IndexOf(begin)) * height;
	Invalidate(rows);
}

bool
BTextView::_IsLive() const
{
	return IsFocus() && Window()->IsActive();
}

// The caret is seen while something happens.
void
BTextView::_RestartBlinking()
{
	const bool blinks = fEditable && _IsLive();
	if (fCaretShown != blinks && Window() != nullptr)
		Invalidate(_CaretRect());
	fCaretShown = blinks;
	if (blinks)
		fBlink.Post(BMessenger(this), BMessage(BPrivate::kMsgBlink), kBlinkTime);
	else
		fBlink.Cancel();
}

void
BTextView::_Blink()
{
	if (!fEditable || !_IsLive())
		return;
	fCaretShown = !fCaretShown;
	Invalidate(_CaretRect());
	fBlink.Post(BMessenger(this), BMessage(BPrivate::kMsgBlink), kBlinkTime);
	_TellInputMethod(); // a view above may have scrolled or moved
}

void
BTextView::_TellInputMethod()
{
	if (Window() == nullptr)
		return;
	BRect caret;
	if (IsFocus() && fEditable) {
		caret = ConvertToScreen(_CaretRect());
		caret.OffsetTo(Window()->ConvertFromScreen(caret.LeftTop()));
	}
	if (caret == fToldCaret)
		return;
	fToldCaret = caret;
	Window()->_SetTextInput(caret.IsValid(), caret);
}

void
BTextView::_SetComposing(const std::string& text, size_t caret)
{
	if (text == fComposing && caret == fComposingCaret)
		return;
	fComposing = text;
	fComposingCaret = std::min(caret, text.size());
	fMeasured.clear();
	_InvalidateRows(fModel.Caret(), fModel.Caret());
	ScrollToSelection();
}

// The input method forgets what it composes, and is ready for more.
void
BTextView::_EndComposing()
{
	if (fComposing.empty())
		return;
	_SetComposing(std::string(), 0);
	Window()->_SetTextInput(false, BRect());
	fToldCaret = BRect();
	_TellInputMethod();
}
