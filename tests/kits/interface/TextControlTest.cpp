// SPDX-License-Identifier: MIT

#include <interface/TextControl.h>

#include <app/Clipboard.h>
#include <interface/TextView.h>

#include "tests/support/ListenedWindow.h"

namespace {

constexpr uint32 kSent = 'sent';
constexpr uint32 kModified = 'modi';

// Counts the presses that come to it.
class PressedControl : public BTextControl {
public:
	PressedControl() :
		BTextControl(BRect(10, 10, 209, 40), "field", "Name:", "start", new BMessage(kSent))
	{}

	void MouseDown(BPoint where) override
	{
		presses++;
		last = where;
		BTextControl::MouseDown(where);
	}

	int presses = 0;
	BPoint last;
};

// Two controls, one below the other.
class TextControlTest : public testing::Test {
protected:
	TextControlTest() :
		field(new PressedControl),
		second(new BTextControl(BRect(10, 50, 209, 80), "second", "", "two", new BMessage('two '))),
		window(240, 100, field),
		user(window.User())
	{
		window.Get()->Do([&] {
			window->AddChild(second);
			field->ResizeToPreferred();
			field->ResizeTo(150, field->Frame().Height());
		});
		user.Activate();
		window.Settle();
	}

	void Keys(const std::string& keys, uint32 held = 0)
	{
		for (char key : keys)
			user.Key(std::string(1, key), held);
		window.Settle();
	}
	std::string Text()
	{
		return window.Under([&] { return std::string(field->Text()); });
	}
	size_t Sent(uint32 what = kSent) { return window->Take(what).size(); }
	bool HasFocus(BTextControl* control)
	{
		return window.Under([&] { return control->TextView()->IsFocus(); });
	}
	std::string Selected()
	{
		return window.Under([&] {
			int32 begin = 0, end = 0;
			field->TextView()->GetSelection(&begin, &end);
			return std::string(field->Text()).substr(begin, end - begin);
		});
	}
	void Focus(BTextControl* control)
	{
		window.Get()->Do([&] { control->MakeFocus(true); });
	}

	PressedControl* field;
	BTextControl* second;
	ListenedWindow window;
	InjectedUser& user;
};

const std::string kEnter(1, B_ENTER);
const std::string kTab(1, B_TAB);

} // namespace

TEST_F(TextControlTest, EnterSendsAndSelectsAll)
{
	Focus(field);
	EXPECT_EQ(Selected(), "start"); // so that typing replaces it
	Keys("new" + kEnter);
	EXPECT_EQ(Text(), "new");
	EXPECT_EQ(Selected(), "new");
	EXPECT_EQ(Sent(), 1u);
	Keys(kEnter); // again, unchanged
	EXPECT_EQ(Sent(), 1u);
	EXPECT_TRUE(HasFocus(field));
}

TEST_F(TextControlTest, LosingTheFocusSendsWhatWasChanged)
{
	Focus(field);
	Focus(second);
	EXPECT_EQ(Sent(), 0u);
	Focus(field);
	Keys("x");
	user.Deactivate(); // the window, not the field
	window.Settle();
	EXPECT_EQ(Sent(), 0u);
	user.Activate();
	Focus(second);
	EXPECT_EQ(Sent(), 1u);
	// What the program sets is clean.
	Focus(field);
	Keys("y");
	window.Get()->Do([&] { field->SetText("set"); });
	Focus(second);
	EXPECT_EQ(Sent(), 0u);
	// What Enter has sent, too.
	Focus(field);
	Keys("z" + kEnter);
	Focus(second);
	EXPECT_EQ(Sent(), 1u);
}

TEST_F(TextControlTest, NewlinesAreNeverTakenFromOutsideButKeptWhenSet)
{
	ASSERT_TRUE(be_clipboard->Lock());
	be_clipboard->Clear();
	be_clipboard->Data()->AddData("text/plain", B_MIME_TYPE, "a\r\nb\n", 5);
	be_clipboard->Commit();
	be_clipboard->Unlock();
	Focus(field);
	Keys("v", B_CONTROL_KEY);
	EXPECT_EQ(Text(), "ab");
	user.Compose("c\nd");
	window.Settle();
	EXPECT_EQ(Text(), "abcd");
	window.Get()->Do([&] { field->SetText("odd\nname\xff"); });
	EXPECT_EQ(window.Under([&] { return field->TextView()->CountLines(); }), 1);
	Keys(std::string(1, B_END) + "!" + kEnter);
	EXPECT_EQ(Text(), "odd\nname\xff!");
}

TEST_F(TextControlTest, PressesComeToTheControlAndThenPlaceTheCaret)
{
	const BPoint place = window.Under([&] {
		BTextView* editor = field->TextView();
		return editor->ConvertToParent(editor->PointAt(2) + BPoint(1, 5)) + BPoint(10, 10);
	});
	user.Click(place.x, place.y);
	window.Settle();
	EXPECT_EQ(field->presses, 1);
	EXPECT_EQ(field->last, place - BPoint(10, 10));
	Keys("_");
	EXPECT_EQ(Text(), "st_art");
	// Dragging goes on in the editor; the label only focuses.
	user.Press(place.x + 6, place.y); // too far away for a double click
	user.Move(200, place.y);
	user.Release(200, place.y);
	window.Settle();
	EXPECT_EQ(Selected(), "art");
	Focus(second);
	user.Click(12, place.y);
	window.Settle();
	EXPECT_TRUE(HasFocus(field));
	EXPECT_EQ(Selected(), "st_art");
}

TEST_F(TextControlTest, TabStepsFromFieldToField)
{
	Focus(field);
	Keys(kTab);
	EXPECT_TRUE(HasFocus(second));
	Keys(kTab);
	EXPECT_TRUE(HasFocus(field));
	Keys(kTab, B_SHIFT_KEY);
	EXPECT_TRUE(HasFocus(second));
	window.Get()->Do([&] { field->SetEnabled(false); });
	Keys(kTab);
	EXPECT_TRUE(HasFocus(second));
	user.Click(100, 20);
	Keys("x");
	EXPECT_EQ(Text(), "start");
}

TEST_F(TextControlTest, EachChangeByTheUserIsTold)
{
	window.Get()->Do([&] { field->SetModificationMessage(new BMessage(kModified)); });
	Focus(field);
	Keys("ab");
	EXPECT_EQ(Sent(kModified), 2u);
	Keys("z", B_CONTROL_KEY);
	EXPECT_EQ(Sent(kModified), 1u);
	window.Get()->Do([&] { field->SetText("quiet"); });
	EXPECT_EQ(Sent(kModified), 0u);
}
