// SPDX-License-Identifier: MIT

#include "support/InvTextView.h"

#include "app/Messages.h"

#include "tests/support/ListenedWindow.h"

#include <gtest/gtest.h>

namespace {

int gDeleted = 0;

class CountedMessage : public BMessage {
public:
	explicit CountedMessage(uint32 code) : BMessage(code) {}
	~CountedMessage() override { gDeleted++; }
};

InvocableTextView*
NewEditor()
{
	InvocableTextView* editor = new InvocableTextView(
		BRect(20, 10, 159, 28), "editname", BRect(1.5f, 2, 137, 16), B_FOLLOW_ALL_SIDES, 0);
	editor->SetWordWrap(false);
	return editor;
}

class InvTextViewTest : public testing::Test {
protected:
	InvTextViewTest() : editor(NewEditor()), window(200, 60, editor), user(window.User())
	{
		gDeleted = 0;
		user.Activate();
		window.Get()->Do([&] {
			editor->SetTarget(window.Get());
			for (uint32 code : {uint32(kMSG_TextEditInvoke), uint32(kMSG_TextEditEscape)}) {
				BMessage* message = new CountedMessage(code);
				message->AddInt32("row", 7);
				code == kMSG_TextEditInvoke ? editor->SetInvocationMessage(message)
											: editor->SetEscapeMessage(message);
			}
			editor->DisallowChar('/');
			editor->SetText("name");
			editor->MakeFocus();
			editor->SelectAll();
		});
	}

	void Key(char key)
	{
		user.Key(std::string(1, key));
		window.Settle();
	}

	// The one message of this code that came; it names the editor.
	BMessage Received(uint32 what, bool invoked)
	{
		std::vector<BMessage> all = window->Take(what);
		EXPECT_EQ(all.size(), 1u);
		if (all.empty())
			return BMessage();
		void* view = nullptr;
		bool told = !invoked;
		int32 row = 0;
		EXPECT_EQ(all[0].FindPointer("view", &view), B_OK);
		EXPECT_EQ(view, editor);
		EXPECT_EQ(all[0].FindBool("invoked", &told), B_OK);
		EXPECT_EQ(told, invoked);
		EXPECT_EQ(all[0].FindInt32("row", &row), B_OK);
		return all[0];
	}

	InvocableTextView* editor;
	ListenedWindow window;
	InjectedUser& user;
};

} // namespace

TEST_F(InvTextViewTest, EnterSendsTheTextAndEscapeDoesNot)
{
	Key('n');
	Key('/');
	Key('2');
	Key(B_ENTER);
	const BMessage invoked = Received(kMSG_TextEditInvoke, true);
	const char* text = nullptr;
	EXPECT_EQ(invoked.FindString("text", &text), B_OK);
	EXPECT_STREQ(text, "n2");
	Key(B_ESCAPE);
	EXPECT_FALSE(Received(kMSG_TextEditEscape, false).HasString("text"));
	EXPECT_STREQ(window.Under([&] { return editor->Text(); }), "n2"); // it stays, unharmed
	// Composed text counts by its bytes.
	user.Compose("x\ny");
	window.Settle();
	Received(kMSG_TextEditInvoke, true);
}

TEST_F(InvTextViewTest, ANewlineThatIsPastedDoesNotInvoke)
{
	window.Under([&] { editor->Insert("two\nlines"); });
	window.Settle();
	EXPECT_TRUE(window->Take(kMSG_TextEditInvoke).empty());
	Key(B_ENTER);
	const char* text = nullptr;
	EXPECT_EQ(Received(kMSG_TextEditInvoke, true).FindString("text", &text), B_OK);
}

TEST_F(InvTextViewTest, ItsMessagesGoWithIt)
{
	window.Get()->Do([&] {
		editor->RemoveSelf();
		delete editor;
	});
	EXPECT_EQ(gDeleted, 2);
	// Also when it was never shown, and without any message its keys do nothing.
	{
		InvocableTextView alone(
			BRect(0, 0, 50, 20), "alone", BRect(0, 0, 50, 20), B_FOLLOW_NONE, 0);
		alone.KeyDown("\n", 1);
		alone.SetEscapeMessage(new CountedMessage('esc '));
	}
	EXPECT_EQ(gDeleted, 3);
}

TEST_F(InvTextViewTest, ADottedFrameTellsItFromTheRowBelow)
{
	const InjectedUser::Picture picture = user.Snapshot();
	for (int x = 20; x < 159; x++) {
		const uint32 here = picture.At(x, 10), next = picture.At(x + 1, 10);
		ASSERT_TRUE(here == 0xff000000 || here == 0xffffffff);
		ASSERT_NE(here, next) << x;
	}
	EXPECT_NE(picture.At(20, 11), picture.At(20, 12));
	EXPECT_EQ(picture.At(22, 11), 0xffffffff); // one pixel wide
}
