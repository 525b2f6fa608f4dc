// SPDX-License-Identifier: MIT

// BTextView: an editor of plain text.
//
// Text is UTF-8; bytes that are none are shown as one sign each and kept as they are. Offsets are
// bytes. Lines begin at the text rectangle's left top, are as wide as it when they wrap, and else
// scroll sideways with the caret. Needs neither its AttachedToWindow() nor Pulse().

#pragma once

#include <app/DelayedMessage.h>
#include <interface/TextModel.h>
#include <interface/TextRows.h>
#include <interface/View.h>

#include <map>
#include <set>
#include <string>

class BClipboard;

class BTextView : public BView {
public:
	BTextView(BRect frame, const char* name, BRect textRect, uint32 resizingMode,
		uint32 flags = B_WILL_DRAW | B_PULSE_NEEDED);
	~BTextView() override;

	// The text. Setting it puts the caret at the start and forgets what could be undone.
	void SetText(const char* text);
	void SetText(const char* text, int32 length);
	const char* Text() const { return fModel.Text().c_str(); } // good until the next change
	int32 TextLength() const { return static_cast<int32>(fModel.Length()); }
	void Insert(const char* text); // in place of the selection
	void Insert(const char* text, int32 length);
	void Insert(int32 offset, const char* text, int32 length);
	void Delete(); // the selection
	void Delete(int32 begin, int32 end);

	// The caret is at the selection's end.
	void Select(int32 begin, int32 end);
	void SelectAll();
	void GetSelection(int32* begin, int32* end) const;
	virtual void ScrollToSelection();

	virtual void Cut(BClipboard* clipboard);
	virtual void Copy(BClipboard* clipboard);
	virtual void Paste(BClipboard* clipboard);
	virtual bool AcceptsPaste(BClipboard* clipboard);
	virtual bool AcceptsDrop(const BMessage* message);
	void Undo();
	void Redo();

	// Characters that cannot be typed, pasted or dropped; SetText() and Insert() may bring them.
	void DisallowChar(uint32 character);
	void AllowChar(uint32 character);

	void MakeEditable(bool editable = true);
	bool IsEditable() const { return fEditable; }
	void SetWordWrap(bool wrap);
	bool DoesWordWrap() const { return fWrap; }
	void SetTextRect(BRect rect);
	BRect TextRect() const { return fTextRect; }
	void SetFontAndColor(const BFont* font, uint32 mask, const rgb_color* color); // null: as it is

	int32 CountLines() const { return fRows.Count(); } // those seen: long ones count as wrapped
	int32 LineHeight() const;
	BPoint PointAt(int32 offset, float* height = nullptr) const; // of the caret's top
	int32 OffsetAt(BPoint where) const;

	// BView
	void Draw(BRect update) override;
	void KeyDown(const char* bytes, int32 numBytes) override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void MouseUp(BPoint where) override;
	void MakeFocus(bool focus = true) override;
	void WindowActivated(bool active) override;
	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void FrameResized(float width, float height) override;
	void MessageReceived(BMessage* message) override;

protected:
	// For single lines: newlines are no line's end and cannot be typed, pasted or dropped.
	void _SetSingleLine();
	void _Press(BPoint where);     // what MouseDown() does
	virtual void _UserChanged() {} // the text, by any means but SetText(), Insert() and Delete()

private:
	using Change = BPrivate::TextModel::Change;
	using Kind = BPrivate::TextModel::Kind;
	enum class Unit { kNone, kCharacter, kWord, kLine };

	// TextViewEditing.cpp
	void _Replace(size_t begin, size_t end, std::string_view with, Kind kind);
	void _Changed(const Change& change);
	void _MoveCaret(size_t offset, bool extend);
	void _SelectRange(size_t anchor, size_t caret);
	std::string _Allowed(std::string_view text) const;
	void _InsertFromUser(std::string_view text, Kind kind);
	void _UserReplace(size_t begin, size_t end, std::string_view with, Kind kind);
	void _PutOnClipboard(BClipboard* clipboard, const std::string& text);
	void _Drop(BMessage* message);
	void _PastePrimary(BPoint where);
	void _Compose(const std::string& text, size_t caret);
	void _SetPrimary();

	// TextViewInput.cpp
	void _EditKey(char key, uint32 held);
	bool _MoveKey(char key, uint32 held);
	void _MoveVertically(int32 rows, bool extend);
	size_t _RowEnd(int32 row) const;
	desktop::TextSpan _UnitAt(size_t offset) const;
	void _TrackTo(BPoint where);
	void _AutoScroll();

	// TextViewDrawing.cpp
	void _Layout();
	void _LimitScrolling();
	BRect _Visible() const; // what shows text
	BPoint _Origin() const; // the first line's left top, scrolled
	BRect _CaretRect() const;
	const BPrivate::TextRow& _Row(int32 index) const;
	void _DrawRow(int32 index, BRect update);
	void _InvalidateRows(size_t begin, size_t end);
	bool _IsLive() const; // has the focus of the active window
	void _RestartBlinking();
	void _Blink();
	void _TellInputMethod();
	void _SetComposing(const std::string& text, size_t caret);
	void _EndComposing();

	BPrivate::TextModel fModel;
	BPrivate::TextRows fRows;
	BRect fTextRect;
	BPoint fScroll; // of the text in the view, which itself stays where it is
	rgb_color fTextColor = {0, 0, 0, 255};
	bool fWrap = true;
	bool fSingleLine = false;
	bool fEditable = true;
	std::set<std::string> fDisallowed; // each as UTF-8

	std::string fComposing; // by an input method: shown at the caret, no part of the text
	size_t fComposingCaret = 0;
	bool fCaretShown = false;
	BPrivate::DelayedMessage fBlink;
	BRect fToldCaret; // to the input method

	Unit fTracking = Unit::kNone; // how the pressed mouse selects
	desktop::TextSpan fTrackStart;
	BPrivate::DelayedMessage fAutoScroll;
	float fWantedX = -1; // of a caret that moves up and down; negative: where it is
	mutable std::map<int32, BPrivate::TextRow> fMeasured; // rows; the composed text included
};
