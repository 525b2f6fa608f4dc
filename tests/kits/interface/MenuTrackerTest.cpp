// SPDX-License-Identifier: MIT

#include <interface/MenuTracker.h>

#include <interface/InterfaceDefs.h>
#include <interface/Menu.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using namespace BPrivate;

namespace {

constexpr bigtime_t kSecond = 1000000;

// A menu at (100, 100), opened at time 0 with the pointer there.
class Tracking : public testing::Test, public MenuTracker::Host {
protected:
	Tracking() : fMenu("menu")
	{
		for (const char* label : {"one", "two", "three"})
			fMenu.AddItem(new BMenuItem(label, nullptr));
		fSubmenu = new BMenu("sub");
		for (const char* label : {"apple", "Apricot", "banana"})
			fSubmenu->AddItem(new BMenuItem(label, nullptr));
		fMenu.AddItem(fSubmenu);
		fStart.where = fStart.pointer = BPoint(100, 100);
		fStart.screen = BRect(0, 0, 799, 599);
		fStart.held = true;
		fStart.stays = false;
		fStart.when = 0;
	}

	void Open()
	{
		fPanes = 1;
		fTracker.emplace(*this, std::make_shared<MenuRows>(fMenu), fStart);
	}

	// The middle of a row of a pane.
	BPoint Row(int32 level, int32 row) const
	{
		const MenuPane& pane = fTracker->Pane(level);
		const MenuRow& at = pane.rows->At(row);
		return pane.frame.LeftTop() +
			BPoint(30, static_cast<float>(pane.RowsTop() + at.top + at.height / 2));
	}
	void MoveTo(int32 level, int32 row, bigtime_t when)
	{
		fTracker->MouseMoved(Row(level, row), when);
	}
	void Type(const std::string& keys)
	{
		for (char key : keys)
			fTracker->Key({key}, 0);
	}
	void Release(BPoint where, bigtime_t when) { fTracker->MouseUp(where, 0, when); }

	void PaneOpened(int32 level, const MenuPane&) override { fPanes = level + 1; }
	void PaneClosed(int32 level) override { fPanes = level; }
	void PaneChanged(int32, const MenuPane&) override {}

	BMenu fMenu;
	BMenu* fSubmenu;
	MenuTracker::Start fStart;
	std::optional<MenuTracker> fTracker;
	int32 fPanes = 0; // that the host was told of
};

} // namespace

TEST_F(Tracking, ReleaseAtThePressLeavesItOpenWhenItComesSoon)
{
	fStart.where = BPoint(110, 110);
	Open();
	Release(BPoint(103, 98), kSecond / 4);
	EXPECT_FALSE(fTracker->IsOver());

	Open();
	Release(BPoint(103, 98), 2 * kSecond);
	EXPECT_TRUE(fTracker->IsOver()) << "too late for a click";

	fStart.stays = true;
	Open();
	Release(BPoint(103, 98), 2 * kSecond);
	EXPECT_FALSE(fTracker->IsOver()) << "whoever holds long to open it need not choose";

	Open();
	fTracker->MouseMoved(BPoint(300, 300), 1000);
	Release(BPoint(103, 98), 2000);
	EXPECT_TRUE(fTracker->IsOver()) << "no click any more: the pointer went away and came back";

	fStart.stays = false;
	fStart.where = BPoint(90, 90); // a row lies under the pointer
	Open();
	Release(BPoint(103, 98), 2 * kSecond);
	EXPECT_FALSE(fTracker->IsOver()) << "nobody has pointed at that row";
	fTracker->MouseDown(BPoint(103, 98));
	Release(BPoint(103, 98), 2 * kSecond);
	EXPECT_EQ(fTracker->Choice(), fMenu.ItemAt(0));
}

TEST_F(Tracking, ReleaseInTheOpeningRectangleLeavesItOpen)
{
	fStart.clickToOpen = BRect(20, 80, 99, 99);
	Open();
	Release(BPoint(30, 90), 2 * kSecond);
	EXPECT_FALSE(fTracker->IsOver());
	Open();
	Release(BPoint(10, 90), 2 * kSecond);
	EXPECT_TRUE(fTracker->IsOver());
	EXPECT_EQ(fTracker->Choice(), nullptr);
}

TEST_F(Tracking, OnlyTheLastButtonsReleaseCounts)
{
	Open();
	MoveTo(0, 1, 1000);
	fTracker->MouseDown(BPoint(500, 500)); // a second button
	fTracker->MouseUp(Row(0, 1), B_SECONDARY_MOUSE_BUTTON, 2 * kSecond);
	EXPECT_FALSE(fTracker->IsOver());
	Release(Row(0, 1), 3 * kSecond);
	EXPECT_EQ(fTracker->Choice(), fMenu.ItemAt(1));
}

TEST_F(Tracking, SubmenusWaitForThePointerToRest)
{
	Open();
	MoveTo(0, 3, 0);
	EXPECT_EQ(fPanes, 1);
	fTracker->Tick(fTracker->NextTick());
	ASSERT_EQ(fPanes, 2);
	// Over a sibling on the way into the submenu, which stays.
	MoveTo(0, 2, kSecond);
	EXPECT_EQ(fTracker->Pane(0).highlight, 2);
	MoveTo(1, 1, kSecond + 1000);
	EXPECT_EQ(fTracker->NextTick(), B_INFINITE_TIMEOUT);
	EXPECT_EQ(fTracker->Pane(0).highlight, 3);
	EXPECT_EQ(fTracker->Pane(1).highlight, 1);
	// Resting on the sibling closes it.
	MoveTo(0, 2, 2 * kSecond);
	fTracker->Tick(fTracker->NextTick());
	EXPECT_EQ(fPanes, 1);
	EXPECT_EQ(fTracker->Pane(0).highlight, 2);
}

TEST_F(Tracking, KeysGoThroughSubmenus)
{
	Open();
	Type({B_LEFT_ARROW, B_UP_ARROW, B_ENTER}); // round the end
	ASSERT_EQ(fPanes, 2);
	Type({B_LEFT_ARROW});
	EXPECT_EQ(fPanes, 1);
	Type({B_RIGHT_ARROW, B_ESCAPE});
	EXPECT_EQ(fPanes, 1);
	EXPECT_FALSE(fTracker->IsOver());
	Type({B_ESCAPE});
	EXPECT_TRUE(fTracker->IsOver());
}

TEST_F(Tracking, KeysChooseAndSkipWhatIsDisabled)
{
	const std::unique_ptr<BMenuItem> removed(fMenu.RemoveItem(3)); // and its submenu
	fMenu.AddItem(new BSeparatorItem, 1);                          // one, -, two, three
	fMenu.ItemAt(3)->SetEnabled(false);
	const std::pair<const char*, int32> kChoices[] = {
		{"\x1f\x1f\n", 2}, // down: over the separator
		{"\x1f\x1e ", 2},  // up, round the end: over the disabled item
		{"\x1e\x1f\n", 0}, // and back
		{"\x04\n", 2},     // End
		{"\x04\x01\n", 0}, // Home
		{"t\n", 2},        // a first letter; the other one's item is disabled
		{"to\x1f\n", 0},   // no item begins so
	};
	for (const auto& [keys, index] : kChoices) {
		Open();
		Type(keys);
		EXPECT_EQ(fTracker->Choice(), fMenu.ItemAt(index)) << keys;
	}
}

TEST_F(Tracking, LettersTypedInOneGoMakeABeginning)
{
	Open();
	Type({B_END, B_RIGHT_ARROW});
	const auto typed = [this](const char* letter, bigtime_t when) {
		fTracker->Key(letter, when);
		return fTracker->Pane(1).highlight;
	};
	EXPECT_EQ(typed("b", 10 * kSecond), 2);
	EXPECT_EQ(typed("A", 12 * kSecond), 0);
	EXPECT_EQ(typed("p", 12 * kSecond), 0) << "still fits";
	EXPECT_EQ(typed("r", 12 * kSecond), 1);
	EXPECT_EQ(typed("a", 14 * kSecond), 0) << "after a pause: the next one, round the end";
	EXPECT_EQ(typed("a", 14 * kSecond), 1);
	EXPECT_EQ(typed("x", 16 * kSecond), 1) << "nothing begins so";
}

TEST_F(Tracking, SubmenusFindRoomOnTheOtherSide)
{
	fStart.where = BPoint(790, 590);
	Open();
	const BRect menu = fTracker->Pane(0).frame;
	EXPECT_EQ(menu.RightBottom(), fStart.screen.RightBottom());
	Type({B_END, B_RIGHT_ARROW});
	const BRect submenu = fTracker->Pane(1).frame;
	EXPECT_LE(submenu.right, menu.left + 2);
	EXPECT_TRUE(fStart.screen.Contains(submenu));
}

TEST_F(Tracking, RowsScrollWhileThePointerRestsOnTheirStrip)
{
	for (int i = 0; i < 100; i++)
		fMenu.AddItem(new BMenuItem("more", nullptr));
	Open();
	const MenuPane& pane = fTracker->Pane(0);
	EXPECT_EQ(pane.frame.top, fStart.screen.top);
	EXPECT_EQ(pane.frame.bottom, fStart.screen.bottom);
	fTracker->MouseMoved(BPoint(120, 595), 0);
	bigtime_t now = 0;
	int steps = 0;
	while ((now = fTracker->NextTick()) != B_INFINITE_TIMEOUT && steps < 1000) {
		fTracker->Tick(now);
		steps++;
	}
	EXPECT_EQ(pane.scrolled + pane.VisibleRows(), pane.rows->Height());
	EXPECT_GT(steps, 50) << "not at once";
	fTracker->MouseMoved(BPoint(120, 5), kSecond);
	fTracker->Tick(fTracker->NextTick());
	EXPECT_LT(pane.scrolled + pane.VisibleRows(), pane.rows->Height());
	fTracker->MouseMoved(BPoint(120, 300), kSecond);
	EXPECT_EQ(fTracker->NextTick(), B_INFINITE_TIMEOUT);
}
