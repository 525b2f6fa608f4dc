// SPDX-License-Identifier: MIT

#include "support/InvTextView.h"

#include "app/Messages.h"

#include "tests/support/ListenedWindow.h"

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

	InvocableTextView* editor;
	ListenedWindow window;
	InjectedUser& user;
};

} // namespace

TEST_F(InvTextViewTest, EnterSendsTheTextAndEscapeDoesNot)
{
	Key('n');
	Key('/');
	window.Under([&] { editor->Insert("\n2"); }); // a newline that is pasted
	Key(B_ENTER);
	std::vector<BMessage> invoked = window->Take(kMSG_TextEditInvoke);
	ASSERT_EQ(invoked.size(), 1u);
	const char* text = nullptr;
	EXPECT_EQ(invoked[0].FindString("text", &text), B_OK);
	EXPECT_STREQ(text, "n\n2");
	EXPECT_TRUE(invoked[0].HasInt32("row"));
	Key(B_ESCAPE);
	std::vector<BMessage> escaped = window->Take(kMSG_TextEditEscape);
	ASSERT_EQ(escaped.size(), 1u);
	EXPECT_FALSE(escaped[0].HasString("text"));
	// Composed text counts by its bytes.
	user.Compose("x\ny");
	window.Settle();
	EXPECT_EQ(window->Take(kMSG_TextEditInvoke).size(), 1u);
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
