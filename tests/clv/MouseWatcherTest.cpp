// SPDX-License-Identifier: MIT

#include "clv/MouseWatcher.h"

#include "app/Messages.h"
#include "clv/MouseDragOrPopupWatcher.h"

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

namespace {

constexpr uint32 kPrimary = B_PRIMARY_MOUSE_BUTTON;
constexpr uint32 kBoth = B_PRIMARY_MOUSE_BUTTON | B_SECONDARY_MOUSE_BUTTON;

} // namespace

TEST(MouseWatcher, TellsEveryLookThatDiffersFromTheFirst)
{
	const struct {
		BPoint where;
		uint32 buttons;
		uint32 told;
	} looks[] = {
		{BPoint(5, 5), kPrimary, 0},
		{BPoint(5, 5), kPrimary, 0},
		{BPoint(6, 5), kPrimary, MW_MOUSE_MOVED},
		{BPoint(6, 5), kPrimary, MW_MOUSE_MOVED}, // the start stays
		{BPoint(5, 5), kPrimary, 0},
		{BPoint(5, 5), kBoth, MW_MOUSE_DOWN},
		{BPoint(6, 5), B_SECONDARY_MOUSE_BUTTON, MW_MOUSE_DOWN},
		{BPoint(5, 5), 0, MW_MOUSE_UP},
	};
	MouseWatch watch;
	for (const auto& look : looks)
		EXPECT_EQ(watch.Look(look.where, look.buttons), look.told);
}

TEST(MouseWatcher, DragPopupOrClickIsDecidedInThisOrder)
{
	const auto decide = [](BPoint where, uint32 buttons, bigtime_t later) {
		DragOrPopup watch(250000);
		EXPECT_EQ(watch.Look(BPoint(5, 5), kPrimary, 1000), 0u);
		const uint32 what = watch.Look(where, buttons, 1000 + later);
		EXPECT_EQ(watch.PressPoint(), BPoint(5, 5));
		return what;
	};
	EXPECT_EQ(decide(BPoint(6, 4), kPrimary, 249999), 0u); // a pixel is no drag
	EXPECT_EQ(decide(BPoint(7, 5), kPrimary, 0), uint32(MW_MOUSE_DRAG));
	EXPECT_EQ(decide(BPoint(5, 3), kPrimary, 900000), uint32(MW_MOUSE_DRAG));
	EXPECT_EQ(decide(BPoint(6, 6), kPrimary, 250000), uint32(MW_MOUSE_POPUP));
	EXPECT_EQ(decide(BPoint(90, 5), 0, 900000), uint32(MW_MOUSE_CLICK));
	EXPECT_EQ(decide(BPoint(90, 5), kBoth, 0), uint32(MW_MOUSE_CLICK));
	EXPECT_EQ(DragOrPopup(9).Look(BPoint(1, 1), 0, 0), uint32(MW_MOUSE_CLICK));
}

TEST(MouseWatcher, HoldTimesAreMultiplesOfADoubleClick)
{
	const bigtime_t expected[] = {250, 500, 1000, 2000, 4000, 1000};
	for (int32 length = 0; length < 6; length++)
		EXPECT_EQ(MouseHoldTime(length, 500), expected[length]);
	EXPECT_EQ(MouseHoldTime(-1, 500), 1000);
}

TEST(MouseWatcher, EndsWithItsView)
{
	{
		BView* view = new BView(BRect(10, 10, 200, 200), nullptr, 0, 0);
		ListenedWindow window(220, 220, view);
		window.User().Press(60, 60);
		window.Under([&] {
			EXPECT_GT(StartMouseWatcher(view), 0);
			EXPECT_GT(StartMouseDragOrPopupWatcher(view, 0, MW_EIGHT_CLICKS), 0);
		});
	}
	for (const char* name : {"MouseWatcher", "MouseDragOrPopupWatcher"})
		EXPECT_TRUE(WaitUntil([&] { return find_thread(name) == B_NAME_NOT_FOUND; })) << name;
}
