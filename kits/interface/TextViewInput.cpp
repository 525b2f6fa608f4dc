// SPDX-License-Identifier: MIT

// The text view: keys and mouse.

#include <interface/TextView.h>

#include <app/Application.h>
#include <app/Clipboard.h>
#include <interface/TextMessages.h>
#include <interface/Window.h>

#include <algorithm>

static constexpr bigtime_t kScrollInterval = 50000; // of a selection that leaves the view

// Of the message being handled, if it has such a field.
static int32
InMessage(const BView* view, const char* field, int32 otherwise)
{
	int32 value = otherwise;
	const BMessage* message =
		view->Window() != nullptr ? view->Window()->CurrentMessage() : nullptr;
	if (message != nullptr)
		message->FindInt32(field, &value);
	return value;
}

void
BTextView::KeyDown(const char* bytes, int32 numBytes)
{
	if (bytes == nullptr || numBytes <= 0)
		return;
	const uint32 held = static_cast<uint32>(InMessage(this, "modifiers", 0));
	const unsigned char first = static_cast<unsigned char>(bytes[0]);
	if (numBytes > 1 || (first >= B_SPACE && first != B_DELETE))
		_InsertFromUser(std::string_view(bytes, numBytes), Kind::kTyping);
	else if (!_MoveKey(bytes[0], held))
		_EditKey(bytes[0], held);
}

bool
BTextView::_MoveKey(char key, uint32 held)
{
	const bool extend = (held & B_SHIFT_KEY) != 0;
	const bool far = (held & B_CONTROL_KEY) != 0;
	const size_t caret = fModel.Caret();
	const bool collapse = fModel.HasSelection() && !extend && !far;
	const int32 row = fRows.IndexOf(caret);
	const int32 page = std::max(1, static_cast<int32>(_Visible().Height()) / LineHeight());
	switch (key) {
		case B_LEFT_ARROW:
			_MoveCaret(collapse ? fModel.Begin()
					: far       ? fModel.PreviousWord(caret)
								: fModel.Before(caret),
				extend);
			return true;
		case B_RIGHT_ARROW:
			_MoveCaret(collapse ? fModel.End()
					: far       ? fModel.NextWord(caret)
								: fModel.After(caret),
				extend);
			return true;
		case B_HOME:
			_MoveCaret(far ? 0 : fRows.At(row).begin, extend);
			return true;
		case B_END:
			_MoveCaret(far ? fModel.Length() : _RowEnd(row), extend);
			return true;
		case B_UP_ARROW:
			_MoveVertically(-1, extend);
			return true;
		case B_DOWN_ARROW:
			_MoveVertically(1, extend);
			return true;
		case B_PAGE_UP:
			_MoveVertically(-page, extend);
			return true;
		case B_PAGE_DOWN:
			_MoveVertically(page, extend);
			return true;
		default:
			return false;
	}
}

// The last place of a caret that is still seen on this row.
size_t
BTextView::_RowEnd(int32 row) const
{
	const BPrivate::TextRows::Row& place = fRows.At(row);
	return place.broken ? fModel.Before(place.end) : place.end;
}

void
BTextView::_MoveVertically(int32 rows, bool extend)
{
	const float x = fWantedX >= 0 ? fWantedX : _CaretRect().left;
	const int32 row = fRows.IndexOf(fModel.Caret()) + rows;
	if (row < 0)
		_MoveCaret(0, extend);
	else if (row >= fRows.Count())
		_MoveCaret(fModel.Length(), extend);
	else {
		const size_t offset = _Row(row).OffsetAt(x - _Origin().x);
		_MoveCaret(std::min(fRows.At(row).begin + offset, _RowEnd(row)), extend);
	}
	fWantedX = x;
}

void
BTextView::_EditKey(char key, uint32 held)
{
	const bool byWord = (held & B_CONTROL_KEY) != 0;
	const size_t caret = fModel.Caret();
	switch (key) {
		case B_BACKSPACE:
		case B_DELETE:
			if (key == B_DELETE && (held & B_SHIFT_KEY) != 0)
				Cut(be_clipboard);
			else if (fModel.HasSelection())
				_UserReplace(fModel.Begin(), fModel.End(), {}, Kind::kOther);
			else if (key == B_BACKSPACE)
				_UserReplace(byWord ? fModel.PreviousWord(caret) : fModel.Before(caret), caret, {},
					Kind::kErasing);
			else
				_UserReplace(caret, byWord ? fModel.NextWord(caret) : fModel.After(caret), {},
					Kind::kErasing);
			break;
		case B_INSERT:
			if ((held & B_SHIFT_KEY) != 0)
				Paste(be_clipboard);
			else if (byWord)
				Copy(be_clipboard);
			break;
		case B_ENTER:
		case B_TAB:
			_InsertFromUser(std::string_view(&key, 1), Kind::kTyping);
			break;
		default: // Escape, function keys
			break;
	}
}

void
BTextView::MouseDown(BPoint where)
{
	_Press(where);
}

void
BTextView::_Press(BPoint where)
{
	const int32 buttons = InMessage(this, "buttons", B_PRIMARY_MOUSE_BUTTON);
	if ((buttons & (B_PRIMARY_MOUSE_BUTTON | B_TERTIARY_MOUSE_BUTTON)) == 0)
		return;
	MakeFocus(true);
	_EndComposing();
	if ((buttons & B_PRIMARY_MOUSE_BUTTON) == 0) {
		_PastePrimary(where);
		return;
	}
	const int32 clicks = InMessage(this, "clicks", 1);
	const bool extend = (InMessage(this, "modifiers", 0) & B_SHIFT_KEY) != 0;
	fTracking = clicks >= 3 ? Unit::kLine : clicks == 2 ? Unit::kWord : Unit::kCharacter;
	fTrackStart = _UnitAt(OffsetAt(where));
	if (extend && fTracking == Unit::kCharacter)
		fTrackStart = {fModel.Anchor(), fModel.Anchor()};
	SetMouseEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
	_TrackTo(where);
}

desktop::TextSpan
BTextView::_UnitAt(size_t offset) const
{
	if (fTracking == Unit::kWord)
		return fModel.WordAt(offset);
	if (fTracking != Unit::kLine)
		return {offset, offset};
	if (fSingleLine)
		return {0, fModel.Length()};
	const desktop::TextSpan line = fModel.LineAt(offset);
	return {line.begin, std::min(line.end + 1, fModel.Length())};
}

void
BTextView::_TrackTo(BPoint where)
{
	const desktop::TextSpan unit = _UnitAt(OffsetAt(where));
	if (unit.begin < fTrackStart.begin)
		_SelectRange(fTrackStart.end, unit.begin);
	else
		_SelectRange(fTrackStart.begin, std::max(unit.end, fTrackStart.end));
	ScrollToSelection();
	if (!Bounds().Contains(where))
		fAutoScroll.Post(BMessenger(this), BMessage(BPrivate::kMsgAutoScroll), kScrollInterval);
	else
		fAutoScroll.Cancel();
}

void
BTextView::_AutoScroll()
{
	BPoint where;
	uint32 buttons = 0;
	GetMouse(&where, &buttons, false);
	if (fTracking != Unit::kNone && (buttons & B_PRIMARY_MOUSE_BUTTON) != 0)
		_TrackTo(where);
}

void
BTextView::MouseMoved(BPoint where, uint32 transit, const BMessage*)
{
	if (be_app != nullptr && transit == B_ENTERED_VIEW)
		be_app->SetCursor(B_I_BEAM_CURSOR);
	else if (be_app != nullptr && transit == B_EXITED_VIEW)
		be_app->SetCursor(B_HAND_CURSOR);
	if (fTracking != Unit::kNone)
		_TrackTo(where);
}

void
BTextView::MouseUp(BPoint)
{
	// Who takes the mouse away calls this too, with any message.
	const BMessage* message = Window()->CurrentMessage();
	const bool held = message != nullptr && message->what == B_MOUSE_UP &&
		(InMessage(this, "buttons", 0) & B_PRIMARY_MOUSE_BUTTON) != 0;
	if (fTracking == Unit::kNone || held)
		return;
	fTracking = Unit::kNone;
	fAutoScroll.Cancel();
	_SetPrimary();
}
