// SPDX-License-Identifier: MIT

#include "clv/MouseWatcher.h"

#include "app/Messages.h"
#include "clv/MouseDragOrPopupWatcher.h"

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

namespace {

constexpr uint32 kPrimary = B_PRIMARY_MOUSE_BUTTON;
constexpr uint32 kBoth = B_PRIMARY_MOUSE_BUTTON | B_SECONDARY_MOUSE_BUTTON;

struct Told {
	explicit Told(const BMessage& message)
	{
		EXPECT_EQ(message.FindPoint("where", &where), B_OK);
		EXPECT_EQ(message.FindInt32("buttons", &buttons), B_OK);
		EXPECT_EQ(message.FindInt32("modifiers", &held), B_OK);
		message.FindInt32("data", &data);
	}

	BPoint where;
	int32 buttons = -1;
	int32 held = -1;
	int32 data = -1;
};

// A view that takes no message: all climb to its window.
struct Watched {
	Watched() : view(new BView(BRect(10, 10, 200, 200), nullptr, 0, 0)), window(220, 220, view) {}

	void Press() { window.User().Press(60, 60); }
	void Release() { window.User().Release(60, 60); }
	template <typename Start>
	void Watch(Start start)
	{
		EXPECT_GT(window.Under([&] { return start(view); }), 0);
	}
	Told Await(uint32 what)
	{
		std::vector<BMessage> messages;
		EXPECT_TRUE(WaitUntil([&] { return !(messages = window->Take(what)).empty(); }));
		return messages.empty() ? Told(BMessage()) : Told(messages.back());
	}

	BView* view;
	ListenedWindow window;
};

bool
AllEnded(const char* name)
{
	return WaitUntil([&] { return find_thread(name) == B_NAME_NOT_FOUND; });
}

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

TEST(MouseWatcher, HoldingStillAndLettingGoAreToldOnce)
{
	Watched it;
	bigtime_t speed = 0;
	get_click_speed(&speed);
	it.Press();
	const bigtime_t start = system_time();
	it.Watch([](BView* view) { return StartMouseDragOrPopupWatcher(view, 42, MW_HALF_CLICK); });
	const Told popup = it.Await(MW_MOUSE_POPUP);
	EXPECT_GE(system_time() - start, speed / 2);
	EXPECT_EQ(popup.data, 42);
	EXPECT_EQ(popup.where, BPoint(50, 50));
	it.Watch([](BView* view) { return StartMouseDragOrPopupWatcher(view, -7, MW_EIGHT_CLICKS); });
	it.Release();
	const Told click = it.Await(MW_MOUSE_CLICK);
	EXPECT_EQ(click.data, -7);
	EXPECT_EQ(click.buttons, 0);
	EXPECT_EQ(click.where, BPoint(50, 50));
	EXPECT_TRUE(AllEnded("MouseDragOrPopupWatcher")); // a name is cut to 31 bytes, this has 23
}

TEST(MouseWatcher, EndsWithItsView)
{
	{
		Watched it;
		it.Press();
		it.Watch(StartMouseWatcher);
		it.Watch(
			[](BView* view) { return StartMouseDragOrPopupWatcher(view, 0, MW_EIGHT_CLICKS); });
	}
	EXPECT_TRUE(AllEnded("MouseWatcher"));
	EXPECT_TRUE(AllEnded("MouseDragOrPopupWatcher"));
}
