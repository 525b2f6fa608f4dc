// SPDX-License-Identifier: MIT

#include <interface/ScrollBar.h>

#include <interface/Alert.h>
#include <interface/ScrollView.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Waiting.h"

#include <future>

using BPrivate::ScrollBarLayout;
using BPrivate::ScrollBarPart;

namespace {

class Page : public BView {
public:
	explicit Page(BRect frame) : BView(frame, "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {}

	void ScrollTo(BPoint where) override
	{
		scrolls++;
		BView::ScrollTo(where);
	}
	using BView::ScrollTo;

	int scrolls = 0;
};

// A page of 100 by 100 pixels and its bar of 14 by 100, right of it, all within the border.
struct Scene {
	Scene() :
		page(new Page(BRect(10, 10, 109, 109))),
		scroll(new BScrollView("scroll", page, B_FOLLOW_NONE, 0, false, true)),
		bar(scroll->ScrollBar(B_VERTICAL)),
		window(200, 200, scroll)
	{
		window.Under([&] {
			bar->SetRange(0, 500);
			bar->SetSteps(10, 90);
			bar->SetProportion(0.5f);
		});
	}
	float Value()
	{
		window.Settle();
		return window.Under([&] { return bar->Value(); });
	}
	float Offset()
	{
		window.Settle();
		return window.Under([&] { return page->Bounds().top; });
	}

	Page* page;
	BScrollView* scroll;
	BScrollBar* bar;
	ListenedWindow window;
};

constexpr float kBarX = 10 - 2 + 2 + 100 + 7;
constexpr float kBarTop = 10;

} // namespace

TEST(ScrollBarLayout, ThumbCoversItsShareAndComesBackFromItsPlace)
{
	ScrollBarLayout layout(128, 14, 0, 1000, 0.25, 500);
	EXPECT_EQ(layout.ArrowLength(), 14);
	EXPECT_EQ(layout.ThumbLength(), 25);
	for (int32 value = 0; value <= 1000; value++) {
		ScrollBarLayout at(128, 14, 0, 1000, 0.25, value);
		EXPECT_NEAR(at.ValueForThumbStart(at.ThumbStart()), value, 7);
	}
	EXPECT_EQ(ScrollBarLayout(128, 14, 0, 1000, 0.25, 1000).ThumbStart(), 128 - 14 - 25);
	EXPECT_EQ(layout.ValueForThumbStart(-50), 0);
	EXPECT_EQ(layout.ValueForThumbStart(500), 1000);
	EXPECT_EQ(ScrollBarLayout(128, 14, 0, 1e6, 0.0001, 0).ThumbLength(), 8);
}

TEST(ScrollBar, ValuesAreWholeAndWithinTheRange)
{
	BScrollBar bar(BRect(0, 0, 13, 99), "bar", nullptr, 0, 100.5f, B_VERTICAL);
	bar.SetValue(7.6f);
	EXPECT_EQ(bar.Value(), 8);
	bar.SetValue(1000);
	EXPECT_EQ(bar.Value(), 100);
}

TEST(ScrollBar, LinkLastsUntilOneOfThemIsDeleted)
{
	Page* page = new Page(BRect(0, 0, 99, 99));
	BScrollView* scroll = new BScrollView("scroll", page, B_FOLLOW_NONE, 0, true, true);
	BScrollBar* bar = scroll->ScrollBar(B_HORIZONTAL);
	scroll->RemoveChild(page);
	EXPECT_EQ(page->ScrollBar(B_HORIZONTAL), bar);
	scroll->AddChild(page);
	scroll->RemoveChild(bar);
	delete bar;
	EXPECT_EQ(page->ScrollBar(B_HORIZONTAL), nullptr);
	bar = scroll->ScrollBar(B_VERTICAL);
	scroll->RemoveChild(page);
	delete page;
	EXPECT_EQ(bar->Target(), nullptr);
	bar->SetValue(10);
	delete scroll;
}

TEST(ScrollBar, ArrowsAndTroughStepAndRepeatWhileHeld)
{
	Scene scene;
	scene.window.User().Click(kBarX, kBarTop + 95);
	EXPECT_EQ(scene.Value(), 10);
	EXPECT_EQ(scene.Offset(), 10);
	scene.window.User().Click(kBarX, kBarTop + 80);
	EXPECT_EQ(scene.Value(), 100);
	scene.window.User().Click(kBarX, kBarTop + 16);
	EXPECT_EQ(scene.Value(), 10);
	scene.window.User().Click(kBarX, kBarTop + 3);
	EXPECT_EQ(scene.Value(), 0);
	// Held until it has gone on by itself.
	scene.window.User().Press(kBarX, kBarTop + 95);
	EXPECT_TRUE(WaitUntil([&] { return scene.Value() >= 40; }));
	scene.window.User().Release(kBarX, kBarTop + 95);
	float stopped = scene.Value();
	// Three times what lies between two repetitions.
	bigtime_t later = system_time() + 120000;
	EXPECT_TRUE(WaitUntil([&] { return scene.Value() != stopped || system_time() > later; }));
	EXPECT_EQ(scene.Value(), stopped);
}

TEST(ScrollBar, ThumbTracksThePointerAlsoFromOutside)
{
	Scene scene;
	// The trough has 72 pixels, the thumb 36 of them: each pixel is worth 500 / 36.
	scene.window.User().Press(kBarX, kBarTop + 20);
	scene.window.User().Move(kBarX, kBarTop + 38);
	EXPECT_EQ(scene.Offset(), 250);
	scene.window.User().Move(kBarX + 60, kBarTop + 190);
	EXPECT_EQ(scene.Offset(), 500);
	scene.window.User().Release(kBarX + 60, kBarTop + 190);
	scene.window.User().Move(kBarX, kBarTop + 20);
	EXPECT_EQ(scene.Offset(), 500);
}

TEST(ScrollBar, AThumbIsLetGoWhileAnAlertHasTheInput)
{
	Scene scene;
	scene.window.User().Press(kBarX, kBarTop + 20);
	scene.window.Settle();
	std::future<int32> answer =
		std::async(std::launch::async, [] { return (new BAlert("over", "", "OK"))->Go(); });
	InjectedUser alert("over");
	scene.window.User().Move(kBarX, kBarTop + 38);
	scene.window.User().Release(kBarX, kBarTop + 38);
	scene.window.Settle();
	alert.KeyDown(std::string(1, B_ENTER));
	EXPECT_EQ(answer.get(), 0);
	scene.window.User().Move(kBarX, kBarTop + 40);
	EXPECT_EQ(scene.Offset(), 0);
}

TEST(ScrollBar, WheelMovesThreeSmallStepsANotch)
{
	Scene scene;
	scene.window.User().Wheel(kBarX, kBarTop + 50, 0, 1);
	EXPECT_EQ(scene.Offset(), 30);
	scene.window.User().Wheel(50, 50, 0, 2);
	EXPECT_EQ(scene.Offset(), 90);
	scene.window.User().Wheel(50, 50, 0, -1);
	EXPECT_EQ(scene.Value(), 60);
}
