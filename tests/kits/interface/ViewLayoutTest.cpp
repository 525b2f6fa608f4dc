// SPDX-License-Identifier: MIT

#include <interface/View.h>

#include "tests/support/Storm.h"
#include "tests/support/TestWindow.h"

#include <random>
#include <utility>

namespace {

// What a nibble of a resizing mode says, in the plainest words.
float
EdgeAfter(float edge, uint32 side, float growth)
{
	switch (side) {
		case 3: // bottom
		case 4: // right
			return edge + growth;
		case 5: // centre
			return edge + growth / 2;
		default:
			return edge;
	}
}

BRect
FrameAfter(BRect frame, uint32 mode, float dx, float dy)
{
	return BRect(EdgeAfter(frame.left, (mode >> 8) & 15, dx),
		EdgeAfter(frame.top, (mode >> 12) & 15, dy), EdgeAfter(frame.right, mode & 15, dx),
		EdgeAfter(frame.bottom, (mode >> 4) & 15, dy));
}

const uint32 kHorizontal[] = {
	B_FOLLOW_NONE, B_FOLLOW_LEFT, B_FOLLOW_RIGHT, B_FOLLOW_LEFT_RIGHT, B_FOLLOW_H_CENTER};
const uint32 kVertical[] = {
	B_FOLLOW_NONE, B_FOLLOW_TOP, B_FOLLOW_BOTTOM, B_FOLLOW_TOP_BOTTOM, B_FOLLOW_V_CENTER};

class ColouredView : public BView {
public:
	ColouredView(BRect frame, rgb_color color, uint32 mode = B_FOLLOW_NONE, uint32 flags = 0) :
		BView(frame, nullptr, mode, flags)
	{
		SetViewColor(color);
	}
	void FrameMoved(BPoint) override { moves++; }
	void FrameResized(float width, float) override
	{
		resizes++;
		lastWidth = width;
	}
	int moves = 0, resizes = 0;
	float lastWidth = 0;
};

constexpr rgb_color kRed = {255, 0, 0, 255};
constexpr rgb_color kGreen = {0, 255, 0, 255};
constexpr rgb_color kBlue = {0, 0, 255, 255};
constexpr uint32 kRedPixel = 0xffff0000, kGreenPixel = 0xff00ff00, kBluePixel = 0xff0000ff;

} // namespace

TEST(ViewLayout, EdgesFollowTheirSidesAtFractionalSizes)
{
	const unsigned seed = PrintedSeed(7);
	std::mt19937 random(seed);
	auto fraction = [&] { return static_cast<float>(random() % 4000) / 8; };
	for (uint32 h : kHorizontal) {
		for (uint32 v : kVertical) {
			BView parent(BRect(0, 0, 300.5f, 200.25f), nullptr, B_FOLLOW_NONE, 0);
			BView* child = new BView(BRect(10.5f, 20.25f, 100.125f, 90), nullptr, h | v, 0);
			parent.AddChild(child);
			BRect expected = child->Frame();
			for (int step = 0; step < 50; step++) {
				float width = std::floor(fraction()), height = std::floor(fraction());
				float dx = width - parent.Bounds().Width(), dy = height - parent.Bounds().Height();
				expected = FrameAfter(expected, h | v, dx, dy);
				parent.ResizeTo(width, height);
				ASSERT_EQ(expected, child->Frame()) << h << " " << v;
			}
		}
	}
}

TEST(ViewLayout, MovesSettleOnWholePixelsAndSizesAreCut)
{
	BView view(BRect(0.25f, 0.5f, 10.75f, 20.5f), nullptr, B_FOLLOW_NONE, 0);
	view.MoveTo(3.5f, 7.4f);
	EXPECT_EQ(BRect(3, 7, 13.5f, 27), view.Frame());
	view.MoveTo(3.6f, 7);
	view.ResizeTo(5.9f, 8.99f);
	EXPECT_EQ(BRect(4, 7, 9, 15), view.Frame());
	view.ResizeTo(-5, -7); // legal, and recovers
	EXPECT_FALSE(view.Bounds().IsValid());
	view.ResizeTo(5, 8);
	EXPECT_EQ(BRect(4, 7, 9, 15), view.Frame());
	// A splitter's rule with half a pixel, applied again and again, does not creep.
	for (int i = 0; i < 10; i++) {
		BRect frame = view.Frame();
		view.MoveTo(frame.left, frame.top);
		view.ResizeTo(frame.Width() + 0.5f, frame.Height());
	}
	EXPECT_EQ(BRect(4, 7, 9, 15), view.Frame());
}

TEST(ViewLayout, AWindowsSizeReachesItsViewsAndTheirPicture)
{
	Shown window(100, 80);
	ColouredView* left = new ColouredView(
		BRect(0, 0, 29, 79), kRed, B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, B_FRAME_EVENTS);
	ColouredView* right =
		new ColouredView(BRect(30, 0, 99, 79), kBlue, B_FOLLOW_ALL_SIDES, B_FRAME_EVENTS);
	window->ShowWith({left, right});
	window->User().Resize(160, 120);
	window->Settle();
	{
		Locked lock(window.Get());
		EXPECT_EQ(BRect(0, 0, 159, 119), window->Bounds());
		EXPECT_EQ(BRect(0, 0, 29, 119), left->Frame());
		EXPECT_EQ(BRect(30, 0, 159, 119), right->Frame());
		EXPECT_EQ(1, right->resizes);
		EXPECT_EQ(129, right->lastWidth);
		EXPECT_EQ(0, left->moves + right->moves);
	}
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(kRedPixel, picture.At(29, 119));
	EXPECT_EQ(kBluePixel, picture.At(30, 119));
	EXPECT_EQ(kBluePixel, picture.At(159, 119));

	// Shrunk to almost nothing and grown again, all is as before.
	window->User().Resize(1, 1);
	window->Settle();
	window->User().Resize(160, 120);
	window->Settle();
	EXPECT_EQ(picture.pixels, window->Snapshot().pixels);
}

TEST(WindowFrame, HooksTellEveryChangeOnceInTheWindowsThread)
{
	class Telling : public TestWindow {
	public:
		Telling() : TestWindow(100, 80) {}
		void FrameMoved(BPoint where) override
		{
			EXPECT_EQ(Thread(), find_thread(nullptr));
			EXPECT_EQ(where, Frame().LeftTop());
			told += "moved ";
		}
		void FrameResized(float width, float height) override
		{
			EXPECT_EQ(Thread(), find_thread(nullptr));
			EXPECT_EQ(BPoint(width, height), Bounds().RightBottom());
			told += "resized ";
		}
		std::string told;
	};
	Shown<Telling> window;
	window->MoveTo(120, 130);
	window->ShowAndSettle();
	window->Do([&] { EXPECT_EQ("moved ", std::exchange(window->told, "")); });
	window->Do([&] {
		for (int i = 0; i < 5; i++) {
			window->MoveTo(200.0f + static_cast<float>(i), 210);
			window->ResizeTo(140.0f + static_cast<float>(i), 90);
		}
		EXPECT_EQ(BRect(204, 210, 348, 300), window->Frame()) << "the frame itself changes at once";
		EXPECT_EQ("", window->told);
	});
	// The desktop may have answered to one of the sizes in between, and then to the last one.
	window->Do([&] { EXPECT_EQ(0u, std::exchange(window->told, "").find("moved resized ")); });
	window->Settle();
	window->Do([&] {
		EXPECT_EQ(BRect(204, 210, 348, 300), window->Frame());
		window->told.clear();
		window->MoveTo(204, 210);
		window->ResizeTo(144.9f, 90);
	});
	window->Do([&] { EXPECT_EQ("", window->told) << "nothing has changed"; });
}

TEST(ViewLayout, FrameEventsComeOnceForABurstOfChanges)
{
	Shown window(100, 80);
	ColouredView* view = new ColouredView(BRect(0, 0, 9, 9), kRed, B_FOLLOW_NONE, B_FRAME_EVENTS);
	window->ShowWith({view});
	EXPECT_EQ(0, view->moves + view->resizes); // attaching tells nothing
	window->Do([&] {
		for (int i = 1; i <= 5; i++) {
			view->MoveTo(i, 2 * i);
			view->ResizeTo(10 + i, 20 + i);
		}
	});
	EXPECT_EQ(1, view->moves);
	EXPECT_EQ(1, view->resizes);
	EXPECT_EQ(15, view->lastWidth);
}

TEST(ViewLayout, LaterSiblingsAreInFrontAndHiddenOnesAreNot)
{
	Shown window(60, 20);
	ColouredView* back = new ColouredView(BRect(0, 0, 39, 19), kRed);
	ColouredView* front = new ColouredView(BRect(20, 0, 59, 19), kBlue);
	window->ShowWith({back, front});
	EXPECT_EQ(kRedPixel, window->Snapshot().At(19, 5));
	EXPECT_EQ(kBluePixel, window->Snapshot().At(20, 5));
	window->Do([&] { front->Hide(); });
	EXPECT_EQ(kRedPixel, window->Snapshot().At(39, 5));
	window->Do([&] { front->Show(); });
	EXPECT_EQ(kBluePixel, window->Snapshot().At(20, 5));
	window->Do([&] {
		front->RemoveSelf();
		delete front;
	});
	EXPECT_EQ(kRedPixel, window->Snapshot().At(39, 5));
	EXPECT_EQ(0xffffffff, window->Snapshot().At(40, 5));
}

TEST(ViewLayout, PointsConvertThroughScrolledParents)
{
	Shown window(100, 100);
	BView* outer = new BView(BRect(10, 20, 90, 90), nullptr, B_FOLLOW_NONE, 0);
	BView* inner = new BView(BRect(5, 6, 50, 60), nullptr, B_FOLLOW_NONE, 0);
	outer->AddChild(inner);
	window->AddChild(outer);
	outer->ScrollTo(BPoint(3, 4));
	inner->ScrollTo(BPoint(100, 200));
	BPoint point(107, 211);
	EXPECT_EQ(BPoint(12, 17), inner->ConvertToParent(point));
	EXPECT_EQ(point, inner->ConvertFromParent(BPoint(12, 17)));
	BPoint screen = BPoint(100 + 10 + 12 - 3, 100 + 20 + 17 - 4);
	EXPECT_EQ(screen, inner->ConvertToScreen(point));
	EXPECT_EQ(point, inner->ConvertFromScreen(screen));
}

TEST(ViewLayout, AttachingTellsParentsFirstAndEachViewOnce)
{
	static std::vector<std::string> told;
	told.clear();
	class Teller : public BView {
	public:
		Teller(const char* name, bool addsChild) :
			BView(BRect(0, 0, 9, 9), name, B_FOLLOW_NONE, 0), fAddsChild(addsChild)
		{}
		void AttachedToWindow() override
		{
			EXPECT_NE(nullptr, Window());
			told.push_back(std::string("attached ") + Name());
			if (fAddsChild)
				AddChild(new Teller("late", false));
		}
		void AllAttached() override { told.push_back(std::string("all ") + Name()); }
		void DetachedFromWindow() override
		{
			EXPECT_NE(nullptr, Window());
			told.push_back(std::string("detached ") + Name());
		}

	private:
		bool fAddsChild;
	};
	Teller* parent = new Teller("parent", true);
	parent->AddChild(new Teller("child", false));
	{
		Shown window(50, 50);
		window->AddChild(parent);
		EXPECT_EQ(nullptr, parent->Parent());
		EXPECT_EQ(window.Get(), parent->NextHandler());
		EXPECT_EQ(parent, parent->ChildAt(0)->NextHandler());
		std::vector<std::string> expected = {"attached parent", "attached late", "all late",
			"attached child", "all parent", "all child"};
		EXPECT_EQ(expected, told);
		told.clear();
		window->RemoveChild(parent);
		EXPECT_EQ(
			(std::vector<std::string>{"detached parent", "detached child", "detached late"}), told);
		EXPECT_EQ(nullptr, parent->Window());
	}
	delete parent;
}
