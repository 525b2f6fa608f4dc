// SPDX-License-Identifier: MIT

// The text view under the hands of a user.

#include <interface/TextView.h>

#include <app/Clipboard.h>
#include <app/MessagePrivate.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <string>

namespace {

constexpr float kLeft = 10; // of the view in its window
constexpr float kTop = 10;
constexpr uint32 kSelected = 0xffb4c8f0;
constexpr const char* kNihon = "\xe6\x97\xa5\xe6\x9c\xac"; // two characters

// One editor of two hundred pixels with a text and the keys.
class TextViewTest : public testing::Test {
protected:
	explicit TextViewTest(BTextView* editor = NewEditor()) :
		view(editor), window(240, 120, editor), user(window.User())
	{
		user.Activate();
		window.Get()->Do([&] { view->MakeFocus(true); });
	}

	static BTextView* NewEditor()
	{
		BTextView* editor = new BTextView(BRect(kLeft, kTop, kLeft + 199, kTop + 79), "editor",
			BRect(2, 2, 197, 77), B_FOLLOW_NONE, B_WILL_DRAW);
		editor->SetWordWrap(false);
		return editor;
	}

	void Set(const std::string& text, int32 begin = 0, int32 end = 0)
	{
		window.Get()->Do([&] {
			view->SetText(text.c_str());
			view->Select(begin, end);
		});
	}

	void Keys(const std::string& keys, uint32 held = 0)
	{
		for (char key : keys)
			user.Key(std::string(1, key), held);
		window.Settle();
	}

	// "before[selected]behind", or a bar for the caret.
	std::string State()
	{
		return window.Under([&] {
			int32 begin = 0, end = 0;
			view->GetSelection(&begin, &end);
			std::string text = view->Text();
			if (begin == end)
				return text.insert(begin, "|");
			text.insert(end, "]");
			return text.insert(begin, "[");
		});
	}

	// Where the window shows the place before this byte; in the middle of its line.
	BPoint PlaceOf(int32 offset)
	{
		return window.Under([&] {
			float height = 0;
			const BPoint top = view->PointAt(offset, &height);
			return view->ConvertToParent(top + BPoint(0, height / 2));
		});
	}

	void ClickAt(int32 offset, int times = 1, uint32 held = 0)
	{
		const BPoint place = PlaceOf(offset);
		for (int i = 0; i < times; i++)
			user.Click(place.x + 1, place.y, B_PRIMARY_MOUSE_BUTTON, held);
		window.Settle();
	}

	BTextView* view;
	ListenedWindow window;
	InjectedUser& user;
};

const std::string kRight(1, B_RIGHT_ARROW);
const std::string kLeftKey(1, B_LEFT_ARROW);
const std::string kHome(1, B_HOME);
const std::string kEnd(1, B_END);
const std::string kUp(1, B_UP_ARROW);
const std::string kDown(1, B_DOWN_ARROW);
const std::string kBack(1, B_BACKSPACE);
const std::string kErase(1, B_DELETE);

} // namespace

TEST_F(TextViewTest, TypesAndErasesWholeCharacters)
{
	Keys("ab\ncd");
	EXPECT_EQ(State(), "ab\ncd|");
	Keys(kBack + kBack + kBack);
	EXPECT_EQ(State(), "ab|");
	Keys(kHome + kErase);
	EXPECT_EQ(State(), "|b");
	Set("xe\xcc\x81\xff", 5, 5);
	Keys(kBack);
	EXPECT_EQ(State(), "xe\xcc\x81|");
	Keys(kBack);
	EXPECT_EQ(State(), "x|");
	Keys(std::string(1, B_ESCAPE));
	EXPECT_EQ(State(), "x|");
	window.Get()->Do([&] { view->MakeEditable(false); });
	Keys("y" + kBack);
	EXPECT_EQ(State(), "x|");
}

TEST_F(TextViewTest, KeysMoveTheCaretAndShiftSelects)
{
	Set("one two\nx\nthree", 2, 2);
	Keys(kRight + kRight);
	EXPECT_EQ(State(), "one |two\nx\nthree");
	Keys(kDown);
	EXPECT_EQ(State(), "one two\nx|\nthree");
	Keys(kDown); // as far to the right as it began
	EXPECT_EQ(State(), "one two\nx\nthre|e");
	Keys(kDown);
	EXPECT_EQ(State(), "one two\nx\nthree|");
	Keys(kUp + kHome + kLeftKey);
	EXPECT_EQ(State(), "one two|\nx\nthree");
	Keys(kLeftKey + kLeftKey, B_SHIFT_KEY);
	EXPECT_EQ(State(), "one t[wo]\nx\nthree");
	Keys(kLeftKey); // to the selection's edge
	EXPECT_EQ(State(), "one t|wo\nx\nthree");
	Keys(kHome, B_SHIFT_KEY);
	Keys("1");
	EXPECT_EQ(State(), "1|wo\nx\nthree");
	Keys(kEnd, B_CONTROL_KEY | B_SHIFT_KEY);
	EXPECT_EQ(State(), "1[wo\nx\nthree]");
}

TEST_F(TextViewTest, ControlMovesAndErasesByWords)
{
	Set("one two three", 0, 0);
	Keys(kRight + kRight, B_CONTROL_KEY);
	EXPECT_EQ(State(), "one two |three");
	Keys(kBack, B_CONTROL_KEY);
	EXPECT_EQ(State(), "one |three");
	Keys(kLeftKey, B_CONTROL_KEY);
	Keys(kErase, B_CONTROL_KEY);
	EXPECT_EQ(State(), "|three");
}

TEST_F(TextViewTest, ThePressPlacesTheCaretAndDraggingSelects)
{
	Set("some words here\nnext line");
	ClickAt(7);
	EXPECT_EQ(State(), "some wo|rds here\nnext line");
	ClickAt(12, 1, B_SHIFT_KEY);
	EXPECT_EQ(State(), "some wo[rds h]ere\nnext line");
	const BPoint from = PlaceOf(2), to = PlaceOf(18);
	user.Press(from.x, from.y);
	user.Move(to.x, to.y);
	user.Release(to.x, to.y);
	window.Settle();
	EXPECT_EQ(State(), "so[me words here\nne]xt line");
	user.Move(from.x, from.y); // let go
	window.Settle();
	EXPECT_EQ(State(), "so[me words here\nne]xt line");
	// Behind the text and beside it.
	user.Click(kLeft + 190, kTop + 70);
	window.Settle();
	EXPECT_EQ(State(), "some words here\nnext line|");
}

TEST_F(TextViewTest, SeveralClicksSelectTheWordAndTheLine)
{
	Set("some words here\nnext line");
	ClickAt(7, 2);
	EXPECT_EQ(State(), "some [words] here\nnext line");
	ClickAt(7, 1); // the third
	EXPECT_EQ(State(), "[some words here\n]next line");
	// By words to the left of the first one, which stays selected.
	Set("some words here\nnext line");
	const BPoint from = PlaceOf(12), to = PlaceOf(6);
	user.Click(from.x + 1, from.y);
	user.Press(from.x + 1, from.y);
	user.Move(to.x + 1, to.y);
	window.Settle();
	EXPECT_EQ(State(), "some [words here]\nnext line");
	user.Release(to.x, to.y);
}

TEST_F(TextViewTest, CommandKeysEditThroughTheClipboardAndUndo)
{
	Set("a \xff b", 2, 3);
	Keys("x", B_CONTROL_KEY);
	EXPECT_EQ(State(), "a | b");
	Keys("v", B_COMMAND_KEY);
	Keys("v", B_CONTROL_KEY);
	EXPECT_EQ(State(), "a \xff\xff| b"); // to the byte
	Keys("z", B_CONTROL_KEY);
	Keys("z", B_COMMAND_KEY);
	EXPECT_EQ(State(), "a | b");
	Keys("Z", B_CONTROL_KEY | B_SHIFT_KEY);
	EXPECT_EQ(State(), "a \xff| b");
	Keys("a", B_CONTROL_KEY);
	Keys("c", B_COMMAND_KEY);
	Keys(kEnd);
	Keys("v", B_CONTROL_KEY);
	EXPECT_EQ(State(), "a \xff ba \xff b|");
	Keys("c", B_CONTROL_KEY); // nothing is selected: the clipboard stays
	EXPECT_TRUE(window.Under([&] { return view->AcceptsPaste(be_clipboard); }));
}

TEST_F(TextViewTest, ComposedTextIsShownButNoPartOfTheText)
{
	Set("ab", 1, 1);
	const desktop::PixelRect before = user.InputCaret();
	ASSERT_FALSE(before.IsEmpty());
	ASSERT_TRUE(user.ShowComposing(kNihon, 1));
	window.Settle();
	EXPECT_EQ(State(), "a|b");
	EXPECT_TRUE(WaitUntil([&] { return user.InputCaret().left > before.left + 5; }));
	EXPECT_EQ(user.InputCaret().top, before.top);
	const int32 wide = window.Under([&] { return int32(view->PointAt(2).x - view->PointAt(1).x); });
	EXPECT_GT(wide, 20);
	user.ShowComposing("", 0);
	ASSERT_TRUE(user.Compose(kNihon));
	window.Settle();
	EXPECT_EQ(State(), std::string("a") + kNihon + "|b");
	// A press elsewhere gives up what is being composed.
	user.ShowComposing("x", 1);
	window.Settle();
	ClickAt(0);
	EXPECT_EQ(window.Under([&] { return view->PointAt(1).x; }),
		window.Under([&] { return 2 + be_plain_font->StringWidth("a"); }));
	Set("");
	user.ShowComposing("        ", 8);
	window.Settle();
	EXPECT_GT(user.Snapshot().BoundsOf(0xff000000).Width(), 10) << "underlined";
	window.Get()->Do([&] { view->MakeFocus(false); });
	EXPECT_TRUE(WaitUntil([&] { return user.InputCaret().IsEmpty(); }));
	EXPECT_FALSE(user.Compose("no"));
}

TEST_F(TextViewTest, WhatIsComposedTakesTheSelectionsPlace)
{
	Set("abcd", 1, 3);
	user.ShowComposing("x", 1);
	window.Settle();
	EXPECT_EQ(State(), "a|d");
	user.ShowComposing("", 0);
	user.Compose("xy");
	window.Settle();
	EXPECT_EQ(State(), "axy|d");
	Keys("zz", B_CONTROL_KEY);
	EXPECT_EQ(State(), "a[bc]d");
	// A text that is set ends it.
	user.ShowComposing("xxxx", 4);
	window.Settle();
	Set("abcd");
	EXPECT_EQ(window.Under([&] { return view->PointAt(4).x; }),
		window.Under([&] { return 2 + be_plain_font->StringWidth("abcd"); }));
}

TEST_F(TextViewTest, DisallowedCharactersComeInByNoWay)
{
	window.Get()->Do([&] {
		view->DisallowChar('/');
		view->DisallowChar(0x65e5); // the first of two characters
		view->SetText("a/b");       // but the program may
		view->Select(0, 2);
	});
	Keys("c", B_CONTROL_KEY);
	Keys(kEnd);
	Keys("/x");
	EXPECT_EQ(State(), "a/bx|");
	Keys("v", B_CONTROL_KEY);
	EXPECT_EQ(State(), "a/bxa|");
	user.Compose(kNihon);
	window.Settle();
	EXPECT_EQ(State(), std::string("a/bxa") + (kNihon + 3) + "|");
	window.Get()->Do([&] { view->AllowChar('/'); });
	Keys("/");
	EXPECT_EQ(State(), std::string("a/bxa") + (kNihon + 3) + "/|");
}

TEST_F(TextViewTest, DroppedTextIsInsertedWhereItFell)
{
	Set("ab cd");
	BMessage drop(B_MIME_DATA);
	drop.AddData("text/plain", B_MIME_TYPE, "X\r\nY", 4);
	drop.AddPoint("_drop_point_", window->ConvertToScreen(PlaceOf(3)));
	BPrivate::MessageAccess::SetDropped(drop, true);
	window->PostMessage(&drop, view);
	window.Settle();
	EXPECT_EQ(State(), "ab X\nY|cd");
	// Other things climb to those who can use them.
	BMessage other(B_SIMPLE_DATA);
	BPrivate::MessageAccess::SetDropped(other, true);
	window->PostMessage(&other, view);
	window.Settle();
	EXPECT_EQ(window->Take(B_SIMPLE_DATA).size(), 1u);
}

TEST_F(TextViewTest, WrappedTextBreaksAtItsRectangle)
{
	window.Get()->Do([&] {
		view->SetWordWrap(true);
		view->SetText("some words that do not fit into one single row of this narrow view");
	});
	EXPECT_GT(window.Under([&] { return view->CountLines(); }), 1);
	Keys(kEnd);
	const std::string first = State();
	const size_t end = first.find('|');
	Keys(kDown + kHome);
	EXPECT_EQ(State().find('|'), end + 1) << "the blank ends the row above";
	window.Get()->Do([&] { view->SetTextRect(BRect(2, 2, 1000, 77)); });
	EXPECT_EQ(window.Under([&] { return view->CountLines(); }), 1);
}

TEST_F(TextViewTest, ALongLineScrollsSoThatTheCaretIsSeen)
{
	Set(std::string(200, 'W'));
	Keys(kEnd);
	const BPoint caret = PlaceOf(200);
	EXPECT_LE(caret.x, kLeft + 199);
	EXPECT_GT(caret.x, kLeft + 150);
	// Erasing brings what was scrolled out back.
	Keys(std::string(190, B_BACKSPACE));
	EXPECT_EQ(PlaceOf(0).x, kLeft + 2);
	// A selection that is dragged out of the view goes on while the pointer rests there.
	Set(std::string(200, 'W'));
	user.Press(kLeft + 50, kTop + 8);
	user.Move(kLeft + 230, kTop + 8);
	EXPECT_TRUE(WaitUntil([&] { return State().back() == ']'; })) << State();
	user.Release(kLeft + 230, kTop + 8);
}
