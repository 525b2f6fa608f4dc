// SPDX-License-Identifier: MIT

#include <interface/PopUpMenu.h>

#include <app/AppDefs.h>
#include <interface/Alert.h>
#include <interface/Look.h>
#include <interface/MenuRows.h>
#include <interface/MenuSession.h>
#include <interface/Screen.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <atomic>
#include <future>

namespace {

// Notes what the mouse does, and captures it.
class Listener : public BView {
public:
	Listener() : BView(BRect(0, 0, 2000, 2000), "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {}

	void Draw(BRect) override { draws++; }
	void MouseDown(BPoint) override
	{
		downs++;
		SetMouseEventMask(B_POINTER_EVENTS);
		if (whenPressed)
			whenPressed();
	}
	void MouseUp(BPoint) override { ups++; }
	void MouseMoved(BPoint, uint32, const BMessage*) override { moves++; }
	void WindowActivated(bool) override { activations++; }

	std::function<void()> whenPressed; // set before any press
	std::atomic<int> draws = 0;
	std::atomic<int> downs = 0;
	std::atomic<int> ups = 0;
	std::atomic<int> moves = 0;
	std::atomic<int> activations = 0;
};

class MenuOwner : public RecordingWindow {
public:
	using RecordingWindow::RecordingWindow;

	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'open')
			open();
		RecordingWindow::MessageReceived(message);
	}

	bool QuitRequested() override { return false; }

	std::function<void()> open;
};

// A window at (100, 100) with a menu to open, and its user.
class Menu : public testing::Test {
protected:
	Menu() : fWindow(300, 300), fPage(new Listener)
	{
		static std::atomic<int> count = 0;
		fName = "menu " + std::to_string(++count);
		fMenu = std::make_unique<BPopUpMenu>(fName.c_str());
		for (const char* label : {"Open", "-", "Cut", "Copy", "Paste"}) {
			if (label[0] == '-')
				fMenu->AddSeparatorItem();
			else
				fMenu->AddItem(new BMenuItem(label, new BMessage('item')));
		}
		fMenu->ItemAt(4)->SetEnabled(false);
		fWindow->AddChild(fPage);
		fWindow->open = [this] { Go(); };
		fPage->whenPressed = [this] {
			if (fOpensOnPress)
				Go();
		};
		fWindow->ShowAndSettle();
		fUser = std::make_unique<InjectedUser>(fWindow->Title());
		fUser->Activate();
		fUser->Move(10, 10);
		fWindow->Settle();
		fPage->activations = 0;
		fPage->moves = 0;
	}
	~Menu() override { BPrivate::CloseOpenMenu(); }

	// In the window's thread.
	void Go()
	{
		std::promise<BMenuItem*> answer;
		{
			std::lock_guard lock(fGuard);
			answer = std::move(fAnswer);
		}
		answer.set_value(fMenu->Go(fWhere, false, fOpenAnyway));
	}

	void Expect(bool openAnyway)
	{
		std::lock_guard lock(fGuard);
		fOpenAnyway = openAnyway;
		fAnswer = std::promise<BMenuItem*>();
		fChoice = fAnswer.get_future();
	}

	// Opens it without a button and returns what the menu's user sees.
	InjectedUser Open()
	{
		Expect(true);
		fWindow->PostMessage('open');
		return InjectedUser(fName);
	}
	// Opens it with a button that stays down, at (20, 20) of the window.
	void OpenByPress()
	{
		Expect(false);
		fOpensOnPress = true;
		fUser->Press(20, 20, B_SECONDARY_MOUSE_BUTTON);
		InjectedUser seen(fName);
		fOpensOnPress = false;
	}

	BMenuItem* Choice()
	{
		if (fChoice.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
			ADD_FAILURE() << "the menu stays open";
			BPrivate::CloseOpenMenu();
		}
		return fChoice.get();
	}

	// The middle of a row, in the owner's window, for a menu that is not pushed back.
	BPoint Row(int32 index) const
	{
		const BPrivate::MenuRows rows(*fMenu);
		const BPrivate::MenuRow& row = rows.At(index);
		const float y = static_cast<float>(BPrivate::kMenuEdge + row.top + row.height / 2);
		return fWindow->ConvertFromScreen(fWhere + BPoint(30, y));
	}
	void MoveTo(int32 row) { fUser->Move(Row(row).x, Row(row).y); }
	void Release(int32 row, uint32 button = B_SECONDARY_MOUSE_BUTTON)
	{
		fUser->Release(Row(row).x, Row(row).y, button);
	}
	void Click(int32 row) { fUser->Click(Row(row).x, Row(row).y); }

	uint32 HeldButtons()
	{
		BPoint where;
		uint32 buttons = 0;
		Locked lock(fWindow.Get());
		fPage->GetMouse(&where, &buttons, false);
		return buttons;
	}

	std::string fName;
	std::unique_ptr<BPopUpMenu> fMenu;
	Shown<MenuOwner> fWindow;
	Listener* fPage;
	std::unique_ptr<InjectedUser> fUser;
	BPoint fWhere{120, 120};
	std::atomic<bool> fOpensOnPress = false;
	std::future<BMenuItem*> fChoice;

private:
	std::mutex fGuard;
	bool fOpenAnyway = false;
	std::promise<BMenuItem*> fAnswer;
};

constexpr uint32 kChosenPixel = 0xffb8b8b8;

} // namespace

TEST_F(Menu, ADragFromThePressChoosesWhereItIsReleased)
{
	OpenByPress();
	MoveTo(2);
	MoveTo(3);
	Release(3);
	EXPECT_EQ(Choice(), fMenu->ItemAt(3));
	EXPECT_EQ(fMenu->FindMarked(), fMenu->ItemAt(3));

	OpenByPress();
	MoveTo(2);
	Release(2);
	EXPECT_EQ(Choice(), fMenu->ItemAt(2));
	EXPECT_EQ(fMenu->FindMarked(), fMenu->ItemAt(2)) << "the mark moves";
	EXPECT_FALSE(fMenu->ItemAt(3)->IsMarked());

	OpenByPress();
	MoveTo(2);
	fUser->Release(250, 20, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(Choice(), nullptr) << "released outside";
	EXPECT_EQ(HeldButtons(), 0u);
}

TEST_F(Menu, AClickOpensItAndAClickChooses)
{
	OpenByPress();
	fUser->Release(20, 20, B_SECONDARY_MOUSE_BUTTON);
	Click(1);
	Click(4);
	Click(3);
	EXPECT_EQ(Choice(), fMenu->ItemAt(3)) << "not by a separator or a disabled item";
}

TEST_F(Menu, NeedsAPressUnlessToldOtherwise)
{
	Expect(false);
	fWindow->PostMessage('open');
	EXPECT_EQ(Choice(), nullptr);
	EXPECT_EQ(fMenu->Go(fWhere), nullptr) << "from a thread without a window";

	Open();
	MoveTo(0);
	Click(0);
	EXPECT_EQ(Choice(), fMenu->ItemAt(0));
}

TEST_F(Menu, KeysChooseAndSkipWhatIsDisabled)
{
	const std::pair<const char*, int32> kChoices[] = {
		{"\x1f\x1f\n", 2}, // down: over the separator
		{"\x1f\x1e ", 3},  // up, round the end: over the disabled item
		{"\x1e\x1f\n", 0}, // and back
		{"\x04\n", 3},     // End
		{"\x04\x01\n", 0}, // Home
		{"c\n", 2},        // a first letter,
		{"cc\n", 3},       // again: the next one
		{"co\n", 3},       // more letters
		{"p\x1f\n", 0},    // that of a disabled item does nothing
	};
	for (const auto& [keys, index] : kChoices) {
		Open();
		for (const char* key = keys; *key != '\0'; key++)
			fUser->KeyDown(std::string(1, *key));
		EXPECT_EQ(Choice(), fMenu->ItemAt(index)) << keys;
	}
	Open();
	fUser->KeyDown("\x1f");
	fUser->KeyDown("x", B_CONTROL_KEY);
	fUser->KeyDown({B_ESCAPE});
	EXPECT_EQ(Choice(), nullptr);
}

TEST_F(Menu, TheClickThatClosesItIsSwallowed)
{
	Open();
	fUser->Press(250, 20);
	EXPECT_EQ(Choice(), nullptr);
	EXPECT_EQ(HeldButtons(), 0u) << "whoever polls must not wait for this release";
	fUser->Move(251, 21);
	EXPECT_EQ(HeldButtons(), 0u);
	fUser->Release(251, 21);
	fWindow->Settle();
	EXPECT_EQ(fPage->downs, 0);
	EXPECT_EQ(fPage->ups, 0);

	fUser->Press(250, 20);
	fWindow->Settle();
	EXPECT_EQ(HeldButtons(), uint32(B_PRIMARY_MOUSE_BUTTON));
	fUser->Release(250, 20);
	fWindow->Settle();
	EXPECT_EQ(fPage->downs, 1) << "the next one counts";
	EXPECT_EQ(fPage->ups, 1);
}

TEST_F(Menu, EndsTheCaptureOfTheMouse)
{
	fUser->Press(20, 20);
	fWindow->Settle();
	EXPECT_EQ(fPage->ups, 0);
	Open();
	EXPECT_EQ(fPage->ups, 1) << "before the menu opened";
	MoveTo(0);
	Release(0, B_PRIMARY_MOUSE_BUTTON);
	EXPECT_EQ(Choice(), fMenu->ItemAt(0));
	fWindow->Settle();
	EXPECT_EQ(fPage->ups, 1);
	EXPECT_EQ(HeldButtons(), 0u);
}

TEST_F(Menu, TellsOtherWindowsOfTheReleaseToo)
{
	auto* page = new Listener;
	ListenedWindow other(200, 200, page);
	other.User().Press(20, 20);
	other.Settle();
	Open();
	other.Settle();
	EXPECT_EQ(page->ups, 1);
	fUser->KeyDown({B_ESCAPE});
	Choice();
}

TEST_F(Menu, TheWindowBehindPaintsButHandlesNothing)
{
	Open();
	const int draws = fPage->draws;
	fWindow->PostMessage('ping');
	fUser->Resize(400, 350);
	EXPECT_TRUE(WaitUntil([&] { return fPage->draws > draws; }));
	EXPECT_TRUE(fWindow->Take('ping').empty());
	fUser->KeyDown({B_ESCAPE});
	EXPECT_EQ(Choice(), nullptr);
	fWindow->Settle();
	EXPECT_EQ(fWindow->Take('ping').size(), 1u);
	EXPECT_EQ(fPage->activations, 0) << "a menu leaves its window active";
}

TEST_F(Menu, ClosesWhenTheWindowOrTheProgramIsToQuit)
{
	Open();
	BPrivate::CloseOpenMenu();
	EXPECT_EQ(Choice(), nullptr);

	Open();
	fWindow->PostMessage(B_QUIT_REQUESTED); // which is refused
	EXPECT_EQ(Choice(), nullptr);

	auto* doomed = new MenuOwner(100, 100);
	BPopUpMenu menu("of a doomed window");
	menu.AddItem(new BMenuItem("item", nullptr));
	doomed->open = [&] { menu.Go(fWhere, false, true, true); };
	doomed->ShowAndSettle();
	doomed->PostMessage('open');
	InjectedUser seen("of a doomed window");
	fUser->Move(30, 30);
	fWindow->Settle();
	EXPECT_EQ(fPage->moves, 0) << "the menu has the mouse";
	doomed->QuitNow();
	EXPECT_TRUE(WaitUntil([&] {
		fUser->Move(static_cast<float>(system_time() % 100), 30);
		fWindow->Settle();
		return fPage->moves > 0;
	}));
}

TEST_F(Menu, ClosesWhenTheProgramLosesTheFocus)
{
	Open();
	fUser->Deactivate();
	EXPECT_EQ(Choice(), nullptr);
	EXPECT_TRUE(WaitUntil([&] { return fPage->activations == 1; })) << "the window is told too";
}

TEST_F(Menu, ClosesForAnAlert)
{
	Open();
	std::future<int32> answer = std::async(
		std::launch::async, [] { return (new BAlert("over a menu", "Well?", "Yes"))->Go(); });
	EXPECT_EQ(Choice(), nullptr);
	InjectedUser("over a menu").KeyDown({B_ENTER});
	EXPECT_EQ(answer.get(), 0);
}

TEST_F(Menu, SendsMessagesOnlyWhenAsked)
{
	fMenu->SetTargetForItems(fWindow.Get());
	Open();
	Click(0);
	Choice();
	fWindow->Settle();
	EXPECT_TRUE(fWindow->Take('item').empty());

	EXPECT_EQ(fMenu->Go(fWhere, true, true, true), nullptr) << "at once";
	{
		InjectedUser seen(fName);
	}
	fWindow->Settle(); // the window is free
	Click(3);
	std::vector<BMessage> sent;
	ASSERT_TRUE(WaitUntil([&] { return !(sent = fWindow->Take('item')).empty(); }));
	int64 when = 0;
	int32 index = 0;
	void* source = nullptr;
	EXPECT_EQ(sent[0].FindInt64("when", &when), B_OK);
	EXPECT_EQ(sent[0].FindInt32("index", &index), B_OK);
	EXPECT_EQ(sent[0].FindPointer("source", &source), B_OK);
	EXPECT_EQ(index, 3);
	EXPECT_EQ(source, fMenu->ItemAt(3));
	EXPECT_TRUE(fMenu->ItemAt(3)->IsMarked());

	EXPECT_EQ(fMenu->Go(fWhere, true, true, true), nullptr);
	fMenu.reset(); // closes it
	fWindow->Settle();
	EXPECT_TRUE(fWindow->Take('item').empty());
}

TEST_F(Menu, IsPushedBackIntoTheScreen)
{
	const BRect screen = BScreen().Frame();
	fWhere = screen.RightBottom();
	InjectedUser seen = Open();
	const InjectedUser::Picture picture = seen.Snapshot();
	// Its last row but one in its right bottom corner.
	const BPrivate::MenuRows rows(*fMenu);
	const float bottom =
		screen.bottom - BPrivate::kMenuEdge - static_cast<float>(rows.At(4).height);
	fUser->MoveOnScreen(screen.right - 10, bottom - 3);
	EXPECT_TRUE(WaitUntil([&] {
		const int32 row = BPrivate::kMenuEdge + rows.At(3).top;
		return seen.Snapshot().At(picture.width - 4, row) == kChosenPixel;
	}));
	const BPoint there = fWindow->ConvertFromScreen(BPoint(screen.right - 10, bottom - 3));
	fUser->Click(there.x, there.y);
	EXPECT_EQ(Choice(), fMenu->ItemAt(3));
}

TEST_F(Menu, ALongOneScrolls)
{
	for (int i = 0; i < 100; i++)
		fMenu->AddItem(new BMenuItem(("row " + std::to_string(i)).c_str(), nullptr));
	const BRect screen = BScreen().Frame();
	InjectedUser seen = Open();
	EXPECT_EQ(seen.Snapshot().height, screen.IntegerHeight() + 1);
	// The last row comes by the wheel, and by resting on the strip below; each time it lies
	// right above that strip.
	const BPoint last = fWindow->ConvertFromScreen(
		BPoint(fWhere.x + 30, screen.bottom - BPrivate::kMenuEdge - 14 - 5));
	fUser->Move(last.x, last.y);
	fUser->Wheel(last.x, last.y, 0, 100);
	fUser->Click(last.x, last.y);
	EXPECT_EQ(Choice(), fMenu->ItemAt(104));

	InjectedUser again = Open();
	const InjectedUser::Picture before = again.Snapshot();
	fUser->KeyDown({B_END});
	fUser->KeyDown({B_UP_ARROW});
	EXPECT_TRUE(WaitUntil([&] { return again.Snapshot().pixels != before.pixels; }));
	fUser->KeyDown({B_ENTER});
	EXPECT_EQ(Choice(), fMenu->ItemAt(103));
}

TEST_F(Menu, SubmenusOpenBesideTheirItem)
{
	auto* submenu = new BMenu("More");
	submenu->AddItem(new BMenuItem("first", nullptr));
	submenu->AddItem(new BMenuItem("second", nullptr));
	fMenu->AddItem(submenu);
	Open();
	for (const char* key : {"m", "\x1d", "\x1f", "\n"})
		fUser->KeyDown(key);
	EXPECT_EQ(Choice(), submenu->ItemAt(1));

	Open();
	MoveTo(5);
	InjectedUser seen("submenu"); // after a moment
	const BPrivate::MenuRows rows(*fMenu);
	const BPoint first = Row(5) + BPoint(static_cast<float>(rows.Width()), 0);
	fUser->Move(first.x, first.y);
	fUser->Click(first.x, first.y);
	EXPECT_EQ(Choice(), submenu->ItemAt(0));
}

TEST_F(Menu, ANewOneClosesTheOneThatIsOpen)
{
	Open();
	BPopUpMenu other("another menu");
	other.AddItem(new BMenuItem("only", nullptr));
	std::future<BMenuItem*> choice =
		std::async(std::launch::async, [&] { return other.Go(fWhere, false, true); });
	EXPECT_EQ(Choice(), nullptr);
	InjectedUser seen("another menu");
	fUser->KeyDown({B_DOWN_ARROW});
	fUser->KeyDown({B_ENTER});
	EXPECT_EQ(choice.get(), other.ItemAt(0));
}

TEST(MenuItems, BelongToOneMenu)
{
	BMenu menu("menu"), other("other");
	auto* item = new BMenuItem("item", new BMessage('code'));
	EXPECT_TRUE(menu.AddItem(item));
	EXPECT_FALSE(other.AddItem(item));
	EXPECT_EQ(menu.FindItem("item"), item);
	EXPECT_EQ(menu.FindItem('code'), item);
	EXPECT_EQ(menu.FindItem('none'), nullptr);
	EXPECT_EQ(menu.RemoveItem(0), item);
	EXPECT_EQ(item->Menu(), nullptr);
	EXPECT_TRUE(other.AddItem(item));
	delete item;
	EXPECT_EQ(other.CountItems(), 0);
}

TEST(MenuItems, RadioModeKeepsOneMark)
{
	BPopUpMenu menu("menu", false, false);
	for (int i = 0; i < 3; i++)
		menu.AddItem(new BMenuItem("item", nullptr));
	menu.ItemAt(0)->SetMarked(true);
	menu.ItemAt(1)->SetMarked(true);
	EXPECT_TRUE(menu.ItemAt(0)->IsMarked()) << "no radio mode";
	EXPECT_TRUE(BPopUpMenu("forced", false, true).IsRadioMode());
	menu.SetRadioMode(true);
	menu.ItemAt(2)->SetMarked(true);
	EXPECT_EQ(menu.FindMarked(), menu.ItemAt(2));
}
