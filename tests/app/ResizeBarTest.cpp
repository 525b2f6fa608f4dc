// SPDX-License-Identifier: MIT

#include "app/ResizeBar.h"

#include "app/Messages.h"

#include <app/Application.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <random>

namespace {

constexpr float kThird = 500 / 3.0f; // the panes begin with fractions, as the program's do

class App : public BApplication {
public:
	App() : BApplication("application/x-vnd.test-splitter") {}
};

class ResizeBarTest : public testing::Test {
protected:
	ResizeBarTest() :
		bar(new ResizeBar(BRect(kThird + 1, 27, kThird + 6, 475), "bar",
			B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, 0, B_VERTICAL)),
		left(new BView(BRect(0, 27, kThird, 475), "left", B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, 0)),
		right(new BView(BRect(kThird + 7, 27, 500, 475), "right", B_FOLLOW_ALL_SIDES, 0)),
		window(501, 476, left),
		user(window.User())
	{
		bar->SetLeftView(left);
		bar->SetRightView(right);
		window.Get()->Do([&] {
			window->AddChild(right);
			window->AddChild(bar);
		});
	}

	BRect FrameOf(BView* view)
	{
		return window.Under([&] { return view->Frame(); });
	}

	// Presses in the bar's middle and lets go elsewhere; returns when the bar has arrived.
	void DragTo(float x)
	{
		const BRect frame = FrameOf(bar);
		user.Press(frame.left + 2, 200);
		user.Move(x, 200);
		user.Release(x, 200);
		ASSERT_TRUE(WaitUntil([&] { return std::abs(FrameOf(bar).left - (x - 2.5f)) <= 0.5f; }));
		window.Settle();
	}

	App app;
	ResizeBar* bar;
	BView* left;
	BView* right;
	ListenedWindow window;
	InjectedUser& user;
};

} // namespace

TEST_F(ResizeBarTest, JumpsToTheReleaseAndThePanesMeetIt)
{
	const BRect before = FrameOf(bar);
	user.Press(before.left + 2, 200);
	user.Move(250, 210);
	window.Settle();
	EXPECT_EQ(before, FrameOf(bar)); // not while the button is held
	user.Release(250, 210);
	ASSERT_TRUE(WaitUntil([&] { return FrameOf(bar) != before; }));
	window.Settle();
	const BRect now = FrameOf(bar);
	EXPECT_NEAR((now.left + now.right) / 2, 250, 0.51);
	EXPECT_EQ(now.top, before.top);
	EXPECT_EQ(FrameOf(left).right, now.left - 1);
	EXPECT_EQ(FrameOf(right).left, now.right + 1);
	EXPECT_EQ(FrameOf(right).right, 500);
	EXPECT_EQ(FrameOf(left).bottom, 475);
}

TEST_F(ResizeBarTest, FiftyDragsLeaveTheRightEdgeWhereItWas)
{
	std::mt19937 random(17);
	for (int i = 0; i < 50; i++) {
		DragTo(static_cast<float>(60 + random() % 380) + (i % 5 == 0 ? 0.5f : 0));
		ASSERT_NEAR(FrameOf(right).right, 500, 1) << i;
		ASSERT_EQ(FrameOf(right).left, FrameOf(bar).right + 1) << i;
		ASSERT_EQ(FrameOf(left).right, FrameOf(bar).left - 1) << i;
	}
	EXPECT_NEAR(FrameOf(right).right, 500, 1);
	EXPECT_EQ(FrameOf(left).left, 0);
	EXPECT_EQ(FrameOf(bar).Width(), 5);
}

TEST_F(ResizeBarTest, MayLeaveTheWindowAndComesBack)
{
	DragTo(-20);
	EXPECT_LT(FrameOf(left).Width(), 0);
	window.Get()->Do([&] { bar->MoveTo(530, 27); });
	window.Settle(); // its own move tells the panes
	EXPECT_LT(FrameOf(right).Width(), 0);
	window.Get()->Do([&] { bar->MoveTo(100, 27); });
	window.Settle();
	EXPECT_EQ(FrameOf(left), BRect(0, 27, 99, 475));
	EXPECT_EQ(FrameOf(right).left, 106);
	EXPECT_NEAR(FrameOf(right).right, 500, 1);
}

TEST_F(ResizeBarTest, AReleaseWithoutAPlaceMovesNothingAndTheCodeMakesThePanesMeet)
{
	const BRect before = FrameOf(bar);
	window->PostMessage(MW_MOUSE_UP, bar);
	window->PostMessage(MW_MOUSE_DOWN, bar);
	window->PostMessage(MW_MOUSE_MOVED, bar);
	window.Settle();
	EXPECT_EQ(before, FrameOf(bar));
	EXPECT_TRUE(window->Take(MW_MOUSE_MOVED).empty());
	window.Get()->Do([&] { left->ResizeTo(20, 448); });
	window->PostMessage(kMSG_ResizeEdges, bar);
	window.Settle();
	EXPECT_EQ(FrameOf(left).right, std::floor(before.left - 1));
}

TEST_F(ResizeBarTest, ABarAcrossGivesTheSecondViewTheFirstOnesPlace)
{
	ResizeBar* across =
		new ResizeBar(BRect(0, 100, 500, 105), "across", B_FOLLOW_NONE, 0, B_HORIZONTAL);
	window.Get()->Do([&] {
		window->AddChild(across);
		left->MoveTo(10, 20);
		left->ResizeTo(90, 79);
		across->SetFirstView(left);
		across->ResizeEdges(across->Frame()); // no second view: skipped
		across->SetSecondView(right);
		across->ResizeEdges(across->Frame());
	});
	EXPECT_EQ(FrameOf(left), BRect(10, 20, 100, 99));
	EXPECT_EQ(FrameOf(right), BRect(10, 106, 100, 99));
}
