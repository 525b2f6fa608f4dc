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

	void MouseDown(BPoint) override
	{
		downs++;
		SetMouseEventMask(B_POINTER_EVENTS);
	}
	void MouseUp(BPoint) override { ups++; }
	void MouseMoved(BPoint, uint32, const BMessage*) override { moves++; }
	void WindowActivated(bool) override { activations++; }

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
	void Release(int32 row) { fUser->Release(Row(row).x, Row(row).y); }
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
	std::future<BMenuItem*> fChoice;

private:
	std::mutex fGuard;
	bool fOpenAnyway = false;
	std::promise<BMenuItem*> fAnswer;
};

} // namespace

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

TEST_F(Menu, TheClickThatClosesItIsSwallowed)
{
	Open();
	fUser->Press(250, 20);
	EXPECT_EQ(Choice(), nullptr);
	EXPECT_EQ(HeldButtons(), 0u) << "whoever polls must not wait for this release";
	fUser->Release(251, 21);
	fWindow->Settle();
	EXPECT_EQ(fPage->downs, 0);
	EXPECT_EQ(fPage->ups, 0);
	fUser->Click(250, 20);
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
	Release(0);
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

TEST_F(Menu, ALongOneScrollsByTheWheel)
{
	for (int i = 0; i < 100; i++)
		fMenu->AddItem(new BMenuItem(("row " + std::to_string(i)).c_str(), nullptr));
	const BRect screen = BScreen().Frame();
	InjectedUser seen = Open();
	EXPECT_EQ(seen.Snapshot().height, screen.IntegerHeight() + 1);
	// The last row then lies right above the strip below.
	const BPoint last = fWindow->ConvertFromScreen(
		BPoint(fWhere.x + 30, screen.bottom - BPrivate::kMenuEdge - 14 - 5));
	fUser->Move(last.x, last.y);
	fUser->Wheel(last.x, last.y, 0, 100);
	fUser->Click(last.x, last.y);
	EXPECT_EQ(Choice(), fMenu->ItemAt(104));
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
	EXPECT_EQ(menu.FindItem('code'), item);
	EXPECT_EQ(menu.RemoveItem(0), item);
	EXPECT_TRUE(other.AddItem(item));
	delete item;
	EXPECT_EQ(other.CountItems(), 0);
}

TEST(MenuItems, RadioModeKeepsOneMark)
{
	BPopUpMenu menu("menu", true, false);
	for (int32 i = 0; i < 3; i++) {
		menu.AddItem(new BMenuItem("item", nullptr));
		menu.ItemAt(i)->SetMarked(true);
		EXPECT_EQ(menu.FindMarked(), menu.ItemAt(i));
	}
	EXPECT_FALSE(menu.ItemAt(0)->IsMarked());
}
