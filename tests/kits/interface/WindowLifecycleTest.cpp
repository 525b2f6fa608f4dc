// SPDX-License-Identifier: MIT

// Windows, views, alerts and applications made, shown, quit and deleted in every order: what
// counts is that nobody waits for ever, nothing leaks, and the sanitizers have nothing to say.

#include <app/AppDefs.h>
#include <app/Application.h>
#include <desktop/GuiThread.h>
#include <interface/Alert.h>
#include <interface/Button.h>

#include "tests/support/Storm.h"
#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr uint32 kMsgQuitInside = 'quin';
constexpr uint32 kMsgAlert = 'aler';

std::atomic<int> sWindows;
std::atomic<int> sViews;

// Paints, and changes the tree in its hooks now and then.
class StormView : public BView {
public:
	explicit StormView(int number) :
		BView(BRect(0, 0, 40, 40), "storm", B_FOLLOW_ALL_SIDES,
			B_WILL_DRAW | B_FRAME_EVENTS | B_PULSE_NEEDED),
		fNumber(number)
	{
		sViews++;
		MoveTo(static_cast<float>(number * 7 % 150), static_cast<float>(number * 13 % 150));
	}
	~StormView() override { sViews--; }

	void Draw(BRect) override
	{
		FillRect(Bounds());
		DrawString("storm", BPoint(2, 12));
	}
	void Pulse() override
	{
		if (fNumber % 3 == 0) {
			RemoveSelf();
			delete this;
		}
	}
	void WindowActivated(bool) override
	{
		if (BView* next = NextSibling()) {
			next->RemoveSelf();
			delete next;
		}
	}
	void MouseDown(BPoint) override
	{
		SetMouseEventMask(B_POINTER_EVENTS);
		if (fNumber % 2 == 0)
			MakeFocus();
	}
	void MouseUp(BPoint) override
	{
		if (fNumber % 5 == 0) {
			RemoveSelf();
			delete this;
		}
	}

private:
	const int fNumber;
};

class StormWindow : public TestWindow {
public:
	StormWindow() : TestWindow(200, 200)
	{
		sWindows++;
		SetPulseRate(2000);
		for (int i = 0; i < 6; i++)
			AddChild(new StormView(i));
	}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kMsgQuitInside)
			Quit();
		else if (message->what == kMsgAlert)
			(new BAlert("storm", "Go on?", "No", "Yes"))->Go();
		else
			TestWindow::MessageReceived(message);
	}

protected:
	~StormWindow() override { sWindows--; }
};

struct Place {
	StormWindow* window = nullptr;
	BMessenger messenger;
};

class Places {
public:
	static constexpr int kCount = 5;

	Place Get(int index)
	{
		std::lock_guard lock(fLock);
		return fPlaces[index];
	}
	// Another thread may have taken the place at the same time: its window goes.
	void Set(int index, const Place& place)
	{
		std::lock_guard lock(fLock);
		fPlaces[index].messenger.SendMessage(kMsgQuitInside);
		fPlaces[index] = place;
	}

private:
	std::mutex fLock;
	Place fPlaces[kCount];
};

void
ChangeViews(BWindow* window, Dice& dice)
{
	switch (dice(4)) {
		case 0:
			window->AddChild(new StormView(dice(30)));
			break;
		case 1:
			if (BView* view = window->ChildAt(dice(8)))
				view->AddChild(new StormView(dice(30)));
			break;
		case 2:
			delete window->ChildAt(dice(8)); // leaves its parent by itself
			break;
		default:
			if (BView* view = window->ChildAt(dice(8))) {
				view->MoveBy(3, 1);
				view->Invalidate();
			}
	}
}

void
Renew(Places& places, int index, Dice& dice)
{
	StormWindow* window = new StormWindow;
	const Place place = {window, BMessenger(window)};
	const int what = dice(6);
	if (what == 0) { // never shown
		window->Quit();
		return;
	}
	if (what < 3)
		place.messenger.SendMessage(what == 1 ? kMsgQuitInside : uint32(B_QUIT_REQUESTED));
	else
		places.Set(index, place);
	window->Show();
	if (what == 3 && window->Lock())
		window->Quit();
}

void
DoSomething(Places& places, Dice& dice)
{
	const int index = dice(Places::kCount);
	const Place place = places.Get(index);
	if (!place.messenger.IsValid())
		return Renew(places, index, dice);
	if (dice(4) == 0) {
		return InjectedUser::ClickAnyWindow(static_cast<uint32>(dice(8)),
			static_cast<float>(dice(200)), static_cast<float>(dice(200)));
	}
	if (dice(16) == 0)
		place.messenger.SendMessage(kMsgQuitInside);
	// By the messenger, since another window may have come to where this one was.
	if (!place.messenger.LockTarget())
		return;
	switch (dice(10)) {
		case 0:
			place.window->Quit();
			return;
		case 1:
			place.window->Hide();
			break;
		case 2:
			place.window->Show();
			break;
		case 3:
			place.window->ResizeTo(static_cast<float>(100 + dice(100)), 150);
			break;
		case 4: {
			BMessage active(B_WINDOW_ACTIVATED);
			active.AddBool("active", dice(2) == 0);
			place.messenger.SendMessage(&active);
			break;
		}
		default:
			ChangeViews(place.window, dice);
	}
	place.window->Unlock();
}

void
QuitLater(const BMessenger& messenger, BLooper* looper)
{
	if (messenger.LockTarget())
		looper->Quit();
}

} // namespace

TEST(WindowLifecycle, WindowsAndViewsInAStormOfThreads)
{
	const int rounds = Rounds(300, 20000);
	sWindows = sViews = 0;
	Places places;
	InThreads(4, [&places, rounds](int thread) {
		Dice dice(20261125 + static_cast<unsigned>(thread));
		for (int i = 0; i < rounds; i++)
			DoSomething(places, dice);
	});
	for (int i = 0; i < Places::kCount; i++)
		QuitLater(places.Get(i).messenger, places.Get(i).window);
	EXPECT_TRUE(WaitUntil([] { return sWindows == 0; })) << sWindows << " are left";
	EXPECT_TRUE(WaitUntil([] { return sViews == 0; })) << sViews << " are left";
}

TEST(WindowLifecycle, AWindowThatWaitsInAnAlertEndsWhenTheAlertDoes)
{
	for (int i = 0; i < Rounds(5, 300); i++) {
		sWindows = 0;
		StormWindow* window = new StormWindow;
		const BMessenger messenger(window);
		window->Show();
		messenger.SendMessage(kMsgAlert);
		InjectedUser alert("storm");
		// From another thread, by a request, or both.
		if (i % 3 != 0)
			messenger.SendMessage(B_QUIT_REQUESTED);
		std::thread quitter;
		if (i % 3 != 1)
			quitter = std::thread([&] { QuitLater(messenger, window); });
		alert.KeyDown("\n");
		EXPECT_TRUE(WaitUntil([] { return sWindows == 0; }));
		if (quitter.joinable())
			quitter.join();
		EXPECT_TRUE(WaitUntil([&] { return !messenger.IsValid(); }));
	}
}

// Such a window is locked by its maker for as long as that likes.
TEST(WindowLifecycle, AnApplicationNeedNotWaitForAWindowThatWasNeverShown)
{
	sWindows = 0;
	std::atomic<bool> made = false;
	std::atomic<bool> ended = false;
	std::thread maker([&] {
		StormWindow* window = new StormWindow;
		made = true;
		EXPECT_TRUE(WaitUntil([&] { return ended.load(); }));
		window->Quit();
	});
	EXPECT_TRUE(WaitUntil([&] { return made.load(); }));
	{
		BApplication application("application/x-unseen");
		application.PostMessage(B_QUIT_REQUESTED);
		application.Run();
	}
	ended = true;
	maker.join();
	EXPECT_EQ(0, sWindows);
}

TEST(WindowLifecycle, AWindowInAHookMayLockTheApplicationThatWantsToAskIt)
{
	static std::atomic<bool> asking;
	static std::atomic<bool> inHook;
	asking = inHook = false;
	class Asking : public BApplication {
	public:
		Asking() : BApplication("application/x-asking") {}
		bool QuitRequested() override
		{
			asking = true;
			return BApplication::QuitRequested();
		}
	};
	class Locking : public TestWindow {
	public:
		Locking() : TestWindow(50, 50) {}
		void MessageReceived(BMessage*) override
		{
			inHook = true;
			EXPECT_TRUE(WaitUntil([] { return asking.load(); }));
			EXPECT_TRUE(be_app->Lock());
			be_app->Unlock();
		}
	};
	Asking application;
	Locking* window = new Locking;
	window->PostMessage('lock');
	window->Show();
	EXPECT_TRUE(WaitUntil([] { return inHook.load(); }));
	application.PostMessage(B_QUIT_REQUESTED);
	application.Run();
	EXPECT_TRUE(asking);
}

TEST(WindowLifecycle, AShortcutForAnotherLooperTakesNoLockOfIt)
{
	BLooper* other = new BLooper; // locked by us all the time
	Shown<TestWindow> window(100, 100);
	window->AddShortcut('k', B_COMMAND_KEY, new BMessage('shrt'), other);
	window->ShowAndSettle();
	window->User().Key("k", B_COMMAND_KEY);
	BMessage sync('sync'), reply;
	EXPECT_EQ(B_OK, BMessenger(window.Get()).SendMessage(&sync, &reply, 0, 20'000'000));
	other->Quit();
}

TEST(WindowLifecycle, ADeletedDefaultButtonIsForgotten)
{
	Shown<TestWindow> window(100, 100);
	auto* button = new BButton(BRect(10, 10, 90, 35), "button", "Push", new BMessage('push'));
	window->AddChild(button);
	button->MakeDefault(true);
	window->ShowAndSettle();
	window->Do([&] {
		EXPECT_EQ(button, window->DefaultButton());
		delete button;
		EXPECT_EQ(nullptr, window->DefaultButton());
	});
	window->User().Key(std::string(1, B_ENTER));
	window->Settle();
}
