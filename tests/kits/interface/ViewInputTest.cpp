// SPDX-License-Identifier: MIT

// From injected input to the hooks of views.

#include <app/AppDefs.h>
#include <interface/View.h>

#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

#include <string>
#include <vector>

namespace {

// Notes each hook in words.
class NotingView : public BView {
public:
	NotingView(BRect frame, const char* name, std::vector<std::string>* notes, uint32 flags = 0) :
		BView(frame, name, B_FOLLOW_NONE, flags), fNotes(notes)
	{}

	void MouseDown(BPoint where) override
	{
		BMessage* message = Window()->CurrentMessage();
		int32 buttons = 0, clicks = 0, held = 0;
		EXPECT_EQ(B_OK, message->FindInt32("buttons", &buttons));
		EXPECT_EQ(B_OK, message->FindInt32("clicks", &clicks));
		EXPECT_EQ(B_OK, message->FindInt32("modifiers", &held));
		EXPECT_TRUE(message->HasInt64("when"));
		EXPECT_TRUE(message->HasPoint("where"));
		Note("down " + At(where) + " b" + std::to_string(buttons) + " c" + std::to_string(clicks) +
			((held & B_SHIFT_KEY) != 0 ? " shift" : ""));
		if (captures)
			SetMouseEventMask(B_POINTER_EVENTS);
	}
	void MouseUp(BPoint where) override { Note("up " + At(where)); }
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override
	{
		static const char* const kTransits[] = {"entered", "inside", "exited", "outside"};
		EXPECT_EQ(nullptr, drag);
		EXPECT_TRUE(Window()->CurrentMessage()->HasInt32("buttons"));
		Note(std::string(kTransits[transit]) + " " + At(where));
	}
	void KeyDown(const char* bytes, int32 numBytes) override
	{
		if (numBytes == 1 && bytes[0] == B_TAB)
			BView::KeyDown(bytes, numBytes);
		else
			Note("key " +
				(bytes[0] > 0 && bytes[0] < ' ' ? std::to_string(bytes[0])
												: std::string(bytes, numBytes)));
	}
	void MakeFocus(bool focus) override
	{
		BView::MakeFocus(focus);
		Note(focus ? "focus" : "blur");
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->what == B_COPY || message->what == B_SELECT_ALL)
			Note(message->what == B_COPY ? "copy" : "select all");
		else
			BView::MessageReceived(message);
	}

	bool captures = false;

private:
	static std::string At(BPoint p)
	{
		return std::to_string(static_cast<int>(p.x)) + "," + std::to_string(static_cast<int>(p.y));
	}
	void Note(const std::string& text) { fNotes->push_back(std::string(Name()) + " " + text); }

	std::vector<std::string>* fNotes;
};

using Notes = std::vector<std::string>;

class ViewInput : public testing::Test {
protected:
	void SetUp() override
	{
		left = new NotingView(BRect(0, 0, 49, 49), "left", &notes, B_NAVIGABLE);
		right = new NotingView(BRect(50, 0, 99, 49), "right", &notes, B_NAVIGABLE);
		inner = new NotingView(BRect(10, 10, 29, 29), "inner", &notes);
		left->AddChild(inner);
		window->AddChild(left);
		window->AddChild(right);
		window->ShowAndSettle();
		Taken();
	}

	Notes Taken()
	{
		window->Settle();
		Notes taken;
		taken.swap(notes);
		return taken;
	}

	Notes notes;
	Shown<> window{100, 60};
	NotingView* left = nullptr;
	NotingView* right = nullptr;
	NotingView* inner = nullptr;
};

} // namespace

TEST_F(ViewInput, TheDeepestViewUnderThePointerGetsTheHook)
{
	InjectedUser user = window->User();
	user.Move(15, 15);
	EXPECT_EQ(Notes({"inner entered 5,5"}), Taken());
	user.Move(16, 15);
	EXPECT_EQ(Notes({"inner inside 6,5"}), Taken());
	user.Move(5, 5);
	EXPECT_EQ(Notes({"inner exited -5,-5", "left entered 5,5"}), Taken());
	user.Leave();
	Notes gone = Taken();
	ASSERT_EQ(1u, gone.size());
	EXPECT_EQ("left exited", gone[0].substr(0, 11));
}

TEST_F(ViewInput, PressesCarryButtonsClicksAndModifiers)
{
	InjectedUser user = window->User();
	user.Move(55, 5);
	Taken();
	user.Click(55, 5, B_PRIMARY_MOUSE_BUTTON, B_SHIFT_KEY);
	user.Click(55, 5);
	EXPECT_EQ(Notes({"right down 5,5 b1 c1 shift", "right up 5,5", "right down 5,5 b1 c2",
				  "right up 5,5"}),
		Taken());
	user.Press(55, 5, B_SECONDARY_MOUSE_BUTTON);
	user.Press(55, 5, B_PRIMARY_MOUSE_BUTTON);
	user.Release(55, 5, B_SECONDARY_MOUSE_BUTTON);
	user.Release(55, 5, B_PRIMARY_MOUSE_BUTTON);
	EXPECT_EQ(
		Notes({"right down 5,5 b2 c1", "right down 5,5 b3 c1", "right up 5,5", "right up 5,5"}),
		Taken());
}

TEST_F(ViewInput, WithoutCaptureNothingFollowsThePointerOut)
{
	InjectedUser user = window->User();
	user.Move(5, 5);
	user.Press(5, 5);
	Taken();
	user.Move(60, 5);
	user.Release(60, 5);
	EXPECT_EQ(Notes({"left exited 60,5", "right entered 10,5", "right up 10,5"}), Taken());
}

TEST_F(ViewInput, ACapturingViewHearsAllUntilTheLastRelease)
{
	left->captures = true;
	InjectedUser user = window->User();
	user.Move(5, 5);
	user.Press(5, 5);
	user.Move(60, 5);
	user.Move(61, 5);
	window->Settle();
	user.Release(61, 5);
	Notes taken = Taken();
	EXPECT_NE(taken.end(), std::find(taken.begin(), taken.end(), "left outside 61,5"));
	EXPECT_NE(taken.end(), std::find(taken.begin(), taken.end(), "left up 61,5"));
	user.Move(62, 5);
	EXPECT_EQ(Notes({"right inside 12,5"}), Taken());
}

TEST_F(ViewInput, QueuedMovesMergeButNoTransitIsLost)
{
	InjectedUser user = window->User();
	Taken();
	{
		Locked lock(window.Get()); // the loop cannot take anything meanwhile
		for (int x = 1; x <= 9; x++)
			user.Move(x, 5);
		for (int x = 50; x <= 59; x++)
			user.Move(x, 5);
		user.Press(59, 5);
		user.Release(59, 5);
	}
	EXPECT_EQ(Notes({"left entered 1,5", "left inside 9,5", "left exited 50,5", "right entered 0,5",
				  "right inside 9,5", "right down 9,5 b1 c1", "right up 9,5"}),
		Taken());
}

TEST_F(ViewInput, KeysGoToTheFocusAndTabStepsThroughNavigableViews)
{
	InjectedUser user = window->User();
	user.Key("a"); // nobody has the focus
	EXPECT_EQ(Notes({}), Taken());
	char tab[] = {B_TAB, 0};
	user.Key(tab);
	EXPECT_EQ(Notes({"left focus"}), Taken());
	user.Key("a");
	user.Key(tab);
	user.Key("\xc3\xa9");
	user.Key(tab); // wraps
	user.Key(tab, B_SHIFT_KEY);
	EXPECT_EQ(Notes({"left key a", "left blur", "right focus", "right key \xc3\xa9", "right blur",
				  "left focus", "left blur", "right focus"}),
		Taken());
	// The window forgets a focus view that leaves.
	window->Do([&] { right->RemoveSelf(); });
	EXPECT_EQ(nullptr, window->CurrentFocus());
	user.Key("b");
	EXPECT_EQ(Notes({}), Taken());
	delete right;
}

TEST_F(ViewInput, ShortcutsAreTakenBeforeKeys)
{
	window->Do([&] { left->MakeFocus(true); });
	Taken();
	InjectedUser user = window->User();
	user.Key("c", B_COMMAND_KEY);
	user.Key("a", B_CONTROL_KEY);
	user.Key("k", B_CONTROL_KEY); // unknown: swallowed
	user.Key("d", B_CONTROL_KEY);
	char down[] = {B_DOWN_ARROW, 0};
	user.Key(down, B_CONTROL_KEY); // no text: goes on
	EXPECT_EQ(Notes({"left copy", "left select all", "left key 31"}), Taken());

	window->Do([&] { window->AddShortcut('k', B_COMMAND_KEY, new BMessage(B_COPY), right); });
	user.Key("k", B_CONTROL_KEY);
	EXPECT_EQ(Notes({"right copy"}), Taken());
}

TEST_F(ViewInput, CommandWAndTheCloseBoxAskTheWindowToQuit)
{
	class Asked : public TestWindow {
	public:
		Asked() : TestWindow(50, 50) {}
		bool QuitRequested() override
		{
			asked++;
			return false;
		}
		int asked = 0;
	};
	Shown<Asked> other;
	other->ShowAndSettle();
	other->User().Key("w", B_COMMAND_KEY);
	other->User().Close();
	other->Settle();
	EXPECT_EQ(2, other->asked);
}

TEST_F(ViewInput, PulsesComeOnlyToThoseWhoWantThem)
{
	class Pulsing : public BView {
	public:
		explicit Pulsing(uint32 flags) : BView(BRect(0, 50, 9, 59), nullptr, B_FOLLOW_NONE, flags)
		{}
		void Pulse() override { pulses++; }
		std::atomic<int> pulses = 0;
	};
	Pulsing* wants = new Pulsing(B_PULSE_NEEDED);
	Pulsing* plain = new Pulsing(0);
	window->Do([&] {
		window->AddChild(wants);
		window->AddChild(plain);
		window->SetPulseRate(1000);
	});
	EXPECT_TRUE(WaitUntil([&] { return wants->pulses >= 3; }));
	EXPECT_EQ(0, plain->pulses);
}

TEST_F(ViewInput, PollingTakesQueuedMouseMessagesInOrder)
{
	left->captures = true;
	InjectedUser user = window->User();
	user.Move(5, 5);
	user.Press(5, 5);
	Taken();
	{
		Locked lock(window.Get());
		user.Move(20, 30);
		user.Release(21, 31);
		BPoint where;
		uint32 buttons = 0;
		left->GetMouse(&where, &buttons, false); // the live state, queue untouched
		EXPECT_EQ(BPoint(21, 31), where);
		EXPECT_EQ(0u, buttons);
		inner->GetMouse(&where, &buttons);
		EXPECT_EQ(BPoint(10, 20), where);
		EXPECT_EQ(1u, buttons);
		do
			left->GetMouse(&where, &buttons);
		while (buttons != 0);
		EXPECT_EQ(BPoint(21, 31), where);
	}
	EXPECT_EQ(Notes({}), Taken()); // all was taken
	user.Move(60, 5);
	for (const std::string& note : Taken())
		EXPECT_NE("left outside 60,5", note); // the release taken ended the capture
}
