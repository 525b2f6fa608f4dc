// SPDX-License-Identifier: MIT

#include <interface/Alert.h>

#include <app/Invoker.h>
#include <interface/Button.h>
#include <interface/Modal.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <future>
#include <thread>

namespace {

BAlert*
YesNo(const char* title)
{
	return new BAlert(title, "Really?", "Yes", "No", nullptr, B_WIDTH_AS_USUAL, B_STOP_ALERT);
}

// The answer of an alert that a thread of its own asks.
std::future<int32>
Ask(const char* title)
{
	return std::async(std::launch::async, [title] { return YesNo(title)->Go(); });
}

// Presses a key that ends an alert. Its release would meet a window that is gone.
void
Answer(InjectedUser user, char key)
{
	user.KeyDown(std::string(1, key));
}

// Fails, and closes what is open, instead of waiting for ever.
int32
AnswerOf(std::future<int32>& answer)
{
	if (answer.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
		ADD_FAILURE() << "the alert was not answered";
		BPrivate::CloseAllAlerts();
	}
	return answer.get();
}

BView*
NewPage()
{
	return new BView(BRect(0, 0, 200, 200), "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW);
}

BButton*
NewButton(uint32 what = 'push')
{
	return new BButton(BRect(10, 10, 90, 35), "button", "Push", new BMessage(what));
}

} // namespace

TEST(Alert, ShortcutsAndTheCloseBoxEndIt)
{
	std::future<int32> answer = std::async(std::launch::async, [] {
		BAlert* alert = YesNo("keys");
		alert->SetShortcut(0, B_ESCAPE);
		return alert->Go();
	});
	{
		InjectedUser user("keys");
		user.Key("x");
		Answer(user, B_ESCAPE);
	}
	EXPECT_EQ(AnswerOf(answer), 0);

	answer = Ask("box");
	InjectedUser("box").Close();
	EXPECT_EQ(AnswerOf(answer), -1);

	answer = Ask("all");
	InjectedUser all("all");
	BPrivate::CloseAllAlerts();
	EXPECT_EQ(AnswerOf(answer), -1);
}

TEST(Alert, ButtonsStandInOrderAtTheRight)
{
	BAlert* alert = new BAlert("order", "Text", "A", "B", "A much longer label for a button",
		B_WIDTH_AS_USUAL, B_OFFSET_SPACING, B_WARNING_ALERT);
	BRect frames[3];
	for (int32 i = 0; i < 3; i++)
		frames[i] = alert->ButtonAt(i)->Frame();
	EXPECT_EQ(frames[0].Width(), 75);
	EXPECT_GT(frames[2].Width(), 75);
	EXPECT_LT(frames[1].right, frames[2].left);
	EXPECT_GT(frames[1].left - frames[0].right, frames[2].left - frames[1].right);
	EXPECT_TRUE(alert->Bounds().Contains(frames[2]));
	EXPECT_EQ(alert->DefaultButton(), alert->ButtonAt(2));
	EXPECT_EQ(alert->ButtonAt(3), nullptr);
	alert->Quit();
}

TEST(Alert, OnlyALoopersAlertKeepsAWindowOpen)
{
	class Asker : public BLooper {
	public:
		void MessageReceived(BMessage*) override { YesNo("looper's")->Go(); }
	};
	auto* asker = new Asker;
	asker->Run();
	class Closing : public TestWindow {
	public:
		Closing() : TestWindow(200, 200) {}
		bool QuitRequested() override
		{
			asked++;
			return false;
		}
		std::atomic<int> asked = 0;
	};
	Shown<Closing> window;
	window->ShowAndSettle();
	std::future<int32> answer = Ask("worker's");
	InjectedUser worker("worker's");
	window.Get()->User().Close();
	window->Settle();
	EXPECT_EQ(window->asked, 1);
	asker->PostMessage('ask ');
	InjectedUser looper("looper's");
	window.Get()->User().Close();
	window->Settle();
	EXPECT_EQ(window->asked, 1);
	Answer(looper, B_ENTER);
	EXPECT_TRUE(WaitUntil([&] { return !BPrivate::CloseBlockedBy(window.Get()); }));
	Answer(worker, B_ENTER);
	EXPECT_EQ(AnswerOf(answer), 1);
	asker->Lock();
	asker->Quit();
}

TEST(Alert, AlertsOfWorkerThreadsComeOneAfterTheOther)
{
	std::future<int32> first = Ask("first");
	InjectedUser one("first");
	BMessage note('answ');
	ListenedWindow window(200, 200, NewPage());
	std::thread asker([&] {
		BInvoker invoker(new BMessage(note), window.Get());
		EXPECT_EQ(YesNo("second")->Go(&invoker), B_OK);
	});
	asker.join(); // does not wait for the answer
	EXPECT_EQ(first.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
	Answer(one, B_ENTER);
	EXPECT_EQ(AnswerOf(first), 1);
	Answer(InjectedUser("second"), B_ENTER);
	std::vector<BMessage> answers;
	ASSERT_TRUE(WaitUntil([&] {
		answers = window->Take('answ');
		return !answers.empty();
	}));
	int32 which = -1;
	EXPECT_EQ(answers[0].FindInt32("which", &which), B_OK);
	EXPECT_EQ(which, 1);
}

namespace {

class AskingView : public BView {
public:
	AskingView() : BView(BRect(0, 0, 200, 200), "asking", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {}

	void MessageReceived(BMessage* message) override
	{
		if (message->what != 'ask?')
			return BView::MessageReceived(message);
		SetViewColor(255, 0, 0);
		Invalidate();
		answer = YesNo("asked")->Go();
	}

	std::atomic<int32> answer = -2;
};

} // namespace

TEST(Alert, TheWindowThatAsksStillRepaints)
{
	AskingView* view = new AskingView;
	ListenedWindow window(200, 200, view);
	BMessenger(view).SendMessage('ask?');
	InjectedUser user("asked");
	EXPECT_TRUE(WaitUntil([&] { return window.User().Snapshot().At(100, 100) == 0xffff0000; }));
	EXPECT_EQ(view->answer, -2);
	Answer(user, B_ENTER);
	EXPECT_TRUE(WaitUntil([&] { return view->answer == 1; }));
}

TEST(Button, ActsOnReleaseInsideOnly)
{
	BButton* button = NewButton();
	ListenedWindow window(200, 200, button);
	window.User().Press(20, 20);
	window.User().Move(150, 150);
	window.User().Release(150, 150);
	window.User().Press(20, 20);
	window.User().Move(150, 150);
	window.User().Move(25, 20);
	window.Settle();
	EXPECT_TRUE(window->Take('push').empty());
	window.User().Release(25, 20);
	window.Settle();
	std::vector<BMessage> pushed = window->Take('push');
	ASSERT_EQ(pushed.size(), 1u);
	EXPECT_TRUE(pushed[0].HasInt32("be:value"));
	window.Under([&] { button->SetEnabled(false); });
	window.User().Click(20, 20);
	window.Settle();
	EXPECT_TRUE(window->Take('push').empty());
}

TEST(Button, SpaceAndTheWindowsEnterPressIt)
{
	BView* page = NewPage();
	BButton* focused = NewButton();
	BButton* other = NewButton('dflt');
	page->AddChild(focused);
	page->AddChild(other);
	ListenedWindow window(200, 200, page);
	window.Under([&] {
		focused->MakeDefault(true);
		other->MakeDefault(true);
		EXPECT_FALSE(focused->IsDefault());
	});
	window.User().Key(std::string(1, B_TAB));
	window.User().Key(" ");
	window.User().Key(std::string(1, B_ENTER));
	window.Settle();
	EXPECT_EQ(window->Take('push').size(), 1u);
	EXPECT_EQ(window->Take('dflt').size(), 1u);
}
