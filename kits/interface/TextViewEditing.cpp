// SPDX-License-Identifier: MIT

// The text view: edits, and the ways that text comes and goes.

#include <interface/TextView.h>

#include <app/Clipboard.h>
#include <interface/InterfaceDefs.h>
#include <interface/TextMessages.h>
#include <interface/Window.h>

static constexpr const char* kTextField = "text/plain";

// Several items are several lines.
static std::string
TextIn(const BMessage& message)
{
	std::string text;
	const void* bytes = nullptr;
	ssize_t size = 0;
	for (int32 i = 0; message.FindData(kTextField, B_MIME_TYPE, i, &bytes, &size) == B_OK; i++) {
		if (i > 0)
			text += '\n';
		text.append(static_cast<const char*>(bytes), size);
	}
	return text;
}

void
BTextView::_Replace(size_t begin, size_t end, std::string_view with, Kind kind)
{
	_Changed(fModel.Replace(begin, end, with, kind));
}

void
BTextView::_Changed(const Change& change)
{
	if (change.removed == 0 && change.inserted == 0)
		return;
	fRows.TextChanged(fModel.Text(), change);
	fMeasured.clear();
	fWantedX = -1;
	Invalidate();
	_LimitScrolling();
	ScrollToSelection();
	_RestartBlinking();
}

void
BTextView::_SelectRange(size_t anchor, size_t caret)
{
	const size_t begin = fModel.Begin(), end = fModel.End();
	fWantedX = -1;
	fModel.Select(anchor, caret);
	if (!fComposing.empty()) // it stands at the caret
		fMeasured.clear();
	_InvalidateRows(begin, end);
	_InvalidateRows(fModel.Begin(), fModel.End());
	_RestartBlinking();
	_TellInputMethod();
}

void
BTextView::_MoveCaret(size_t offset, bool extend)
{
	_SelectRange(extend ? fModel.Anchor() : offset, offset);
	ScrollToSelection();
	if (extend)
		_SetPrimary();
}

static std::string
ToUtf8(uint32 c)
{
	const auto lead = [c](uint32 mark, int shift) { return static_cast<char>(mark | c >> shift); };
	const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3f)); };
	if (c < 0x80)
		return {lead(0, 0)};
	if (c < 0x800)
		return {lead(0xc0, 6), tail(0)};
	if (c < 0x10000)
		return {lead(0xe0, 12), tail(6), tail(0)};
	return {lead(0xf0, 18), tail(12), tail(6), tail(0)};
}

static void
RemoveAll(std::string& text, const std::string& what)
{
	for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at))
		text.erase(at, what.size());
}

void
BTextView::DisallowChar(uint32 character)
{
	fDisallowed.insert(ToUtf8(character));
}

void
BTextView::AllowChar(uint32 character)
{
	fDisallowed.erase(ToUtf8(character));
}

// What is left of text from outside. Our strings end at a null byte: it cannot be kept.
std::string
BTextView::_Allowed(std::string_view text) const
{
	std::string allowed(text);
	std::erase(allowed, '\0');
	std::erase(allowed, '\r'); // the half of a line's end that we do not use
	if (fSingleLine)
		std::erase(allowed, '\n');
	for (const std::string& character : fDisallowed)
		RemoveAll(allowed, character);
	return allowed;
}

void
BTextView::_UserReplace(size_t begin, size_t end, std::string_view with, Kind kind)
{
	if (!fEditable || (begin == end && with.empty()))
		return;
	_Replace(begin, end, with, kind);
	_UserChanged();
}

// In place of the selection. A key of which nothing is left does nothing, but is heard.
void
BTextView::_InsertFromUser(std::string_view text, Kind kind)
{
	if (!fEditable)
		return;
	const std::string allowed = _Allowed(text);
	if (allowed.empty()) {
		if (kind == Kind::kTyping)
			beep();
		return;
	}
	_UserReplace(fModel.Begin(), fModel.End(), allowed, kind);
}

void
BTextView::Undo()
{
	if (!fEditable)
		return;
	if (const auto change = fModel.Undo()) {
		_Changed(*change);
		_UserChanged();
	}
}

void
BTextView::Redo()
{
	if (!fEditable)
		return;
	if (const auto change = fModel.Redo()) {
		_Changed(*change);
		_UserChanged();
	}
}

void
BTextView::Cut(BClipboard* clipboard)
{
	Copy(clipboard);
	_UserReplace(fModel.Begin(), fModel.End(), {}, Kind::kOther);
}

void
BTextView::Copy(BClipboard* clipboard)
{
	if (clipboard == nullptr || !fModel.HasSelection() || !clipboard->Lock())
		return;
	const std::string text = fModel.Selected();
	clipboard->Clear();
	if (BMessage* data = clipboard->Data()) {
		data->what = B_MIME_DATA;
		data->AddData(kTextField, B_MIME_TYPE, text.data(), static_cast<ssize_t>(text.size()));
		clipboard->Commit();
	}
	clipboard->Unlock();
}

bool
BTextView::AcceptsPaste(BClipboard* clipboard)
{
	if (!fEditable || clipboard == nullptr || !clipboard->Lock())
		return false;
	const BMessage* data = clipboard->Data();
	const bool accepts = data != nullptr && data->HasData(kTextField, B_MIME_TYPE);
	clipboard->Unlock();
	return accepts;
}

void
BTextView::Paste(BClipboard* clipboard)
{
	if (!fEditable || clipboard == nullptr || !clipboard->Lock())
		return;
	const BMessage* data = clipboard->Data();
	const std::string text = data != nullptr ? TextIn(*data) : std::string();
	clipboard->Unlock();
	_InsertFromUser(text, Kind::kOther);
}

bool
BTextView::AcceptsDrop(const BMessage* message)
{
	return fEditable && message->HasData(kTextField, B_MIME_TYPE);
}

void
BTextView::_Drop(BMessage* message)
{
	MakeFocus(true);
	const size_t offset = OffsetAt(ConvertFromScreen(message->DropPoint()));
	_SelectRange(offset, offset);
	_InsertFromUser(TextIn(*message), Kind::kOther);
}

void
BTextView::_PastePrimary(BPoint where)
{
	if (!fEditable)
		return;
	const size_t offset = OffsetAt(where);
	_SelectRange(offset, offset);
	_InsertFromUser(desktop::PrimaryText(), Kind::kOther);
}

// What is composed takes the selection's place from the start, as what is typed does.
void
BTextView::_Compose(const std::string& text, size_t caret)
{
	if (!text.empty() && fModel.HasSelection())
		_UserReplace(fModel.Begin(), fModel.End(), {}, Kind::kOther);
	_SetComposing(text, caret);
}

void
BTextView::_SetPrimary()
{
	if (fModel.HasSelection())
		desktop::SetPrimaryText(fModel.Selected());
}

void
BTextView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case B_CUT:
			Cut(be_clipboard);
			break;
		case B_COPY:
			Copy(be_clipboard);
			break;
		case B_PASTE:
			Paste(be_clipboard);
			break;
		case B_SELECT_ALL:
			SelectAll();
			_SetPrimary();
			break;
		case B_UNDO:
			Undo();
			break;
		case B_REDO:
			Redo();
			break;
		case BPrivate::kMsgBlink:
			_Blink();
			break;
		case BPrivate::kMsgAutoScroll:
			_AutoScroll();
			break;
		case BPrivate::kMsgComposing: {
			const char* text = nullptr;
			int32 caret = 0;
			message->FindInt32("caret", &caret);
			if (fEditable && message->FindString("text", &text) == B_OK)
				_Compose(text, caret);
			break;
		}
		default:
			if (message->WasDropped() && AcceptsDrop(message))
				_Drop(message);
			else
				BView::MessageReceived(message);
	}
}
