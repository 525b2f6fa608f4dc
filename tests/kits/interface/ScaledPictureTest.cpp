// SPDX-License-Identifier: MIT

// Pictures of whole windows at the scale that QT_SCALE_FACTOR names; run once for each scale that
// matters. Expectations come from the views' places in logical pixels.

#include <interface/Look.h>
#include <interface/ScrollBar.h>
#include <interface/ScrollView.h>

#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

double
Scale()
{
	const char* factor = std::getenv("QT_SCALE_FACTOR");
	return factor != nullptr ? std::atof(factor) : 1;
}

int32
Edge(int32 logical)
{
	return static_cast<int32>(std::floor(logical * Scale() + 0.5));
}

// What a window should show, by its logical pixels.
struct Expected : InjectedUser::Picture {
	Expected(int32 columns, int32 rows, uint32 colour)
	{
		width = Edge(columns);
		height = Edge(rows);
		pixels.assign(static_cast<size_t>(width * height), colour);
	}

	void Fill(int32 left, int32 top, int32 right, int32 bottom, uint32 colour)
	{
		for (int32 y = Edge(top); y < Edge(bottom + 1); y++) {
			for (int32 x = Edge(left); x < Edge(right + 1); x++)
				pixels[static_cast<size_t>(y * width + x)] = colour;
		}
	}

	void Compare(const InjectedUser::Picture& picture) const
	{
		ASSERT_EQ(width, picture.width);
		ASSERT_EQ(height, picture.height);
		for (int32 y = 0; y < height; y++) {
			for (int32 x = 0; x < width; x++)
				ASSERT_EQ(At(x, y), picture.At(x, y)) << "device " << x << "," << y;
		}
	}
};

constexpr uint32 kRed = 0xffff0000, kBlue = 0xff0000ff, kGreen = 0xff00ff00, kBlack = 0xff000000;

// Rows of text and lines, as a list has them.
class Rows : public BView {
public:
	explicit Rows(BRect frame) : BView(frame, nullptr, B_FOLLOW_ALL, B_WILL_DRAW) {}
	void Draw(BRect update) override
	{
		for (int32 row = 0; row < 100; row++) {
			const float top = static_cast<float>(row) * 13;
			if (top > update.bottom || top + 13 < update.top)
				continue;
			DrawString(("Row " + std::to_string(row)).c_str(), BPoint(3, top + 10));
			StrokeLine(BPoint(0, top + 12), BPoint(50 + static_cast<float>(row), top + 12));
		}
	}
};

} // namespace

TEST(ScaledPicture, ViewsAndStrokesCoverTheirPixelsWithoutSeamOrBlend)
{
	Shown window(101, 77);
	// Splitters stop at half pixels.
	const BRect frames[] = {
		BRect(0, 0, 40.5f, 20.5f), BRect(41.5f, 0, 100, 20.5f), BRect(0, 21.5f, 100, 76)};
	const rgb_color colours[] = {{255, 0, 0, 255}, {0, 0, 255, 255}, {0, 255, 0, 255}};
	for (int i = 0; i < 3; i++) {
		BView* view = new BView(frames[i], nullptr, B_FOLLOW_NONE, B_WILL_DRAW);
		view->SetViewColor(colours[i]);
		window->AddChild(view);
	}
	window->ShowAndSettle();
	Expected expected(101, 77, kGreen);
	expected.Fill(0, 0, 41, 21, kRed);
	expected.Fill(42, 0, 100, 21, kBlue);
	expected.Compare(window->Snapshot());

	window->Do([&] {
		BView* view = window->ChildAt(2);
		view->StrokeRect(BRect(5, 5, 95, 50));
		view->StrokeLine(BPoint(10, 20), BPoint(11, 20));
	});
	expected.Fill(5, 27, 95, 72, kBlack);
	expected.Fill(6, 28, 94, 71, kGreen);
	expected.Fill(10, 42, 11, 42, kBlack);
	expected.Compare(window->Snapshot());

	window->Do([&] {
		window->ChildAt(0)->ResizeTo(30, 21);
		window->ChildAt(1)->MoveTo(31, 0);
		window->ChildAt(1)->ResizeTo(69, 21);
	});
	expected.Fill(31, 0, 100, 21, kBlue);
	expected.Compare(window->Snapshot());
}

TEST(ScaledPicture, ScrollingAndResizingLeaveWhatAFullRepaintDraws)
{
	Shown window(120, 90);
	Rows* rows = new Rows(BRect(2, 2, 103, 73));
	BScrollView* scroll =
		new BScrollView(nullptr, rows, B_FOLLOW_ALL, 0, true, true, B_FANCY_BORDER);
	window->ShowWith({scroll});
	auto isAsRepainted = [&] {
		const InjectedUser::Picture before = window->Snapshot();
		window->Do([&] {
			for (BView* view : {static_cast<BView*>(rows), static_cast<BView*>(scroll),
					 static_cast<BView*>(scroll->ScrollBar(B_VERTICAL)),
					 static_cast<BView*>(scroll->ScrollBar(B_HORIZONTAL))})
				view->Invalidate();
		});
		return before.pixels == window->Snapshot().pixels;
	};
	for (float y : {13.0f, 26.0f, 27.0f, 40.0f, 39.0f, 300.0f, 298.0f, 0.0f}) {
		window->Do([&] { rows->ScrollTo(0, y); });
		EXPECT_TRUE(isAsRepainted()) << "scrolled to " << y;
	}
	for (int32 step : {1, 2, 3, 5, 20}) {
		window->User().Resize(120 + step, 90 + 2 * step);
		window->Settle();
		EXPECT_EQ(Edge(120 + step), window->Snapshot().width);
		EXPECT_TRUE(isAsRepainted()) << "larger by " << step;
	}
}

TEST(Window, AScreenThatChangesItsScaleGetsAFullPicture)
{
	Shown window(120, 90);
	window->AddChild(new Rows(BRect(0, 0, 119, 89)));
	window->ShowAndSettle();
	InjectedUser user = window->User();
	const InjectedUser::Picture before = user.Snapshot();
	user.Rescale(2);
	EXPECT_TRUE(WaitUntil([&] { return user.Snapshot().width == 240; }));
	window->Settle();
	const InjectedUser::Picture fine = user.Snapshot();
	EXPECT_EQ(180, fine.height);
	for (int32 x = 0; x < 240; x++)
		EXPECT_EQ(before.At(x / 2, 12), fine.At(x, 25)) << x; // the first row's line
	window->Do([&] {
		EXPECT_EQ(window->Bounds(), BRect(0, 0, 119, 89));
		window->ChildAt(0)->Invalidate();
	});
	EXPECT_EQ(fine.pixels, user.Snapshot().pixels);
	user.Rescale(1);
	EXPECT_TRUE(WaitUntil([&] { return user.Snapshot().width == 120; }));
	window->Settle();
	EXPECT_EQ(before.pixels, user.Snapshot().pixels);
}

TEST(ScaledPicture, ArrowsAreEvenTrianglesInTheMiddleOfTheirBoxes)
{
	using BPrivate::ArrowDirection;
	constexpr int32 kBox = 14;
	for (ArrowDirection direction : {ArrowDirection::kUp, ArrowDirection::kDown,
			 ArrowDirection::kLeft, ArrowDirection::kRight}) {
		Shown window(kBox, kBox);
		BView* view = new BView(BRect(0, 0, kBox - 1, kBox - 1), nullptr, B_FOLLOW_ALL, 0);
		window->ShowWith({view});
		window->Do([&] { BPrivate::DrawArrow(view, view->Bounds(), direction, {0, 0, 0, 255}); });
		const InjectedUser::Picture picture = window->Snapshot();
		const bool upright = direction == ArrowDirection::kUp || direction == ArrowDirection::kDown;
		const int32 side = picture.width;
		std::vector<int32> widths;
		for (int32 along = 0; along < side; along++) {
			std::vector<int32> ink;
			for (int32 across = 0; across < side; across++) {
				if ((upright ? picture.At(across, along) : picture.At(along, across)) == kBlack)
					ink.push_back(across);
			}
			if (ink.empty())
				continue;
			EXPECT_EQ(ink.size(), static_cast<size_t>(ink.back() - ink.front() + 1));
			EXPECT_LE(std::abs(ink.front() - (side - 1 - ink.back())), 1);
			widths.push_back(static_cast<int32>(ink.size()));
		}
		if (direction == ArrowDirection::kDown || direction == ArrowDirection::kRight)
			std::reverse(widths.begin(), widths.end());
		// One step for each device pixel, not one for each logical one; and no blends.
		ASSERT_EQ(Edge(9) - Edge(5), static_cast<int32>(widths.size()));
		EXPECT_TRUE(std::is_sorted(widths.begin(), widths.end(), std::less_equal<>()));
		EXPECT_EQ(Edge(11) - Edge(3), widths.back());
		EXPECT_EQ(picture.Count(kBlack) + picture.Count(0xffffffff), side * side);
	}
}

// From left or top to right or bottom, in logical pixels.
static void
ExpectEdges(const InjectedUser::Picture& picture, int32 x, int32 y, int32 dx, int32 dy,
	const std::vector<uint8>& greys)
{
	for (uint8 grey : greys) {
		EXPECT_EQ(0xff000000 | grey * 0x010101u, picture.At(Edge(x), Edge(y))) << x << "," << y;
		x += dx;
		y += dy;
	}
}

TEST(ScaledPicture, ScrollBarsShowThumbTroughAndArrows)
{
	Shown window(40, 120);
	BScrollBar* bar = new BScrollBar(BRect(10, 10, 23, 109), nullptr, nullptr, 0, 100, B_VERTICAL);
	window->AddChild(bar);
	bar->SetProportion(0.25f);
	bar->SetValue(50);
	window->ShowAndSettle();
	// Arrows of 14 pixels leave a trough of 72, whose quarter stands in its middle.
	InjectedUser::Picture picture = window->Snapshot();
	ExpectEdges(picture, 10, 30, 1, 0, {152, 108, 192, 192});
	ExpectEdges(picture, 23, 30, -1, 0, {255, 216, 192, 192});
	ExpectEdges(picture, 12, 22, 0, 1, {152, 108, 152, 108, 192});
	ExpectEdges(picture, 12, 49, 0, 1, {192, 192, 255, 232, 216});
	ExpectEdges(picture, 12, 69, 0, -1, {192, 108, 152, 216});
	ExpectEdges(picture, 17, 109, 0, -1, {108, 152, 216});
	EXPECT_EQ(0xff404040u, picture.At(Edge(17) - 1, Edge(18)));
	// Without anything to scroll there is no thumb and nothing looks as if it could be pressed.
	window->Do([&] { bar->SetRange(0, 0); });
	picture = window->Snapshot();
	ExpectEdges(picture, 10, 60, 1, 0, {152, 216, 216});
	EXPECT_EQ(0xff989898u, picture.At(Edge(17) - 1, Edge(18)));
}
