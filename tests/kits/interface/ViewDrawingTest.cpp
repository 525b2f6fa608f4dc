// SPDX-License-Identifier: MIT

// Pictures of what views draw: what is clipped, erased, moved and repainted.

#include <interface/Bitmap.h>
#include <interface/View.h>

#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

constexpr uint32 kWhite = 0xffffffff, kBlack = 0xff000000, kRed = 0xffff0000, kBlue = 0xff0000ff;

// Draws by a function, and counts.
class DrawnView : public BView {
public:
	using Drawer = std::function<void(BView*, BRect)>;
	DrawnView(BRect frame, Drawer drawer, uint32 flags = B_WILL_DRAW) :
		BView(frame, nullptr, B_FOLLOW_NONE, flags), fDrawer(std::move(drawer))
	{}
	void Draw(BRect update) override
	{
		draws++;
		lastUpdate = update;
		if (fDrawer)
			fDrawer(this, update);
	}
	int draws = 0;
	BRect lastUpdate;

private:
	Drawer fDrawer;
};

int
Count(const InjectedUser::Picture& picture, uint32 colour)
{
	return static_cast<int>(std::count(picture.pixels.begin(), picture.pixels.end(), colour));
}

} // namespace

TEST(Drawing, LinesAndRectanglesIncludeTheirEdges)
{
	Shown window(40, 30);
	window->AddChild(new DrawnView(BRect(0, 0, 39, 29), [](BView* view, BRect) {
		view->StrokeRect(BRect(2, 2, 10, 8));
		view->StrokeLine(BPoint(20, 5), BPoint(30, 5));
		view->StrokeLine(BPoint(20, 7), BPoint(20, 7));
		view->FillRect(BRect(15, 20, 16.4f, 20.4f));
		view->SetLowColor(255, 0, 0);
		view->FillRect(BRect(0, 29, 39, 29), B_MIXED_COLORS);
	}));
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(kBlack, picture.At(2, 2));
	EXPECT_EQ(kBlack, picture.At(10, 8));
	EXPECT_EQ(kWhite, picture.At(3, 3));
	EXPECT_EQ(kWhite, picture.At(11, 8));
	EXPECT_EQ(kBlack, picture.At(20, 5));
	EXPECT_EQ(kBlack, picture.At(30, 5));
	EXPECT_EQ(kWhite, picture.At(31, 5));
	EXPECT_EQ(20, Count(picture, kRed));
	// 28 of the frame, 11 and 1 of the lines, 2 of the area, 20 of the pattern
	EXPECT_EQ(32 - 4 + 11 + 1 + 2 + 20, Count(picture, kBlack));
}

TEST(Drawing, OverLeavesTheLowColourOfPatternsOut)
{
	Shown window(20, 10);
	window->AddChild(new DrawnView(BRect(0, 0, 19, 9), [](BView* view, BRect) {
		view->SetHighColor(0, 0, 255);
		view->SetLowColor(255, 0, 0);
		view->SetDrawingMode(B_OP_OVER);
		view->FillRect(BRect(0, 0, 19, 0), B_MIXED_COLORS);
		view->SetDrawingMode(B_OP_COPY);
		view->FillRect(BRect(0, 1, 19, 1), B_MIXED_COLORS);
	}));
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(20, Count(picture, kBlue));
	EXPECT_EQ(10, Count(picture, kRed));
	// Anchored to the view's origin: neighbouring rows alternate.
	EXPECT_NE(picture.At(0, 0), picture.At(1, 0));
}

TEST(Drawing, NothingLeavesTheViewItsSiblingsOrItsChildren)
{
	Shown window(60, 40);
	auto flood = [](BView* view, BRect) { view->FillRect(BRect(-1000, -1000, 1000, 1000)); };
	DrawnView* back = new DrawnView(BRect(10, 10, 49, 29), flood);
	DrawnView* child = new DrawnView(BRect(5, 5, 9, 9), nullptr);
	back->AddChild(child);
	window->AddChild(back);
	window->AddChild(new DrawnView(BRect(40, 0, 59, 39), nullptr)); // in front
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(30 * 20 - 5 * 5, Count(picture, kBlack));
	// The same outside Draw(), where nothing is erased before.
	window->Do([&] {
		back->SetHighColor(0, 0, 255);
		back->FillRect(BRect(-1000, -1000, 1000, 1000));
	});
	picture = window->Snapshot();
	EXPECT_EQ(30 * 20 - 5 * 5, Count(picture, kBlue));
	EXPECT_EQ(0, Count(picture, kBlack));
}

TEST(Drawing, AnUpdateReachesOnlyTheDamage)
{
	Shown window(60, 40);
	DrawnView* view = new DrawnView(BRect(10.5f, 10, 49.5f, 29), [](BView* self, BRect) {
		BRegion clip;
		self->GetClippingRegion(&clip);
		EXPECT_EQ(clip.Frame(), static_cast<DrawnView*>(self)->lastUpdate);
		self->FillRect(self->Bounds());
	});
	window->AddChild(view);
	window->ShowAndSettle();
	EXPECT_EQ(1, view->draws);
	EXPECT_EQ(BRect(0, 0, 39, 19), view->lastUpdate);
	window->Do([&] {
		view->SetHighColor(255, 0, 0);
		view->Invalidate(BRect(3, 4, 5, 6));
		view->Invalidate(BRect(4, 5, 7, 8));
		view->Invalidate(BRect(500, 500, 600, 600));
		view->Invalidate(BRect(5, 5, 4, 4)); // not valid
	});
	EXPECT_EQ(2, view->draws);
	EXPECT_EQ(BRect(3, 4, 7, 8), view->lastUpdate);
	EXPECT_EQ(9 + 16 - 4, Count(window->Snapshot(), kRed));
}

TEST(Drawing, TheOwnClipReplacesTheLastAndEndsWithDraw)
{
	Shown window(60, 40);
	DrawnView* view = new DrawnView(BRect(10, 10, 49, 29), [](BView* self, BRect) {
		BRegion first(BRect(0, 0, 9, 9)), second(BRect(20, 0, 29, 9));
		self->ConstrainClippingRegion(&first);
		self->ConstrainClippingRegion(&second);
		self->FillRect(self->Bounds());
	});
	window->AddChild(view);
	window->ShowAndSettle();
	EXPECT_EQ(100, Count(window->Snapshot(), kBlack));
	EXPECT_EQ(kBlack, window->Snapshot().At(30, 10));
	window->Do([&] { view->StrokeLine(BPoint(0, 19), BPoint(39, 19)); });
	EXPECT_EQ(140, Count(window->Snapshot(), kBlack));
}

TEST(Drawing, APoppedStateIsTheOneThatWasPushed)
{
	Shown window(60, 40);
	DrawnView* view = new DrawnView(BRect(0, 0, 59, 39), [](BView* self, BRect) {
		BFont small;
		small.SetSize(6);
		BRegion left(BRect(0, 0, 9, 39)), right(BRect(50, 0, 59, 39));
		self->SetHighColor(255, 0, 0);
		self->MovePenTo(3, 4);
		self->ConstrainClippingRegion(&left);
		self->PushState();
		self->SetHighColor(0, 0, 255);
		self->SetLowColor(0, 255, 0);
		self->SetDrawingMode(B_OP_OVER);
		self->SetPenSize(3);
		self->SetFont(&small);
		self->MovePenTo(30, 30);
		self->ConstrainClippingRegion(&right);
		self->PushState();
		self->ConstrainClippingRegion(nullptr);
		self->PopState();
		self->FillRect(self->Bounds()); // blue, at the right
		self->PopState();
		self->FillRect(BRect(0, 0, 59, 19)); // red, at the left
		self->PopState();                    // one too many
	});
	window->AddChild(view);
	window->ShowAndSettle();
	const InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(400, Count(picture, kBlue));
	EXPECT_EQ(200, Count(picture, kRed));
	EXPECT_EQ(kBlue, picture.At(59, 39));
	EXPECT_EQ(kRed, picture.At(9, 19));
	window->Do([&] {
		BFont font;
		view->GetFont(&font);
		EXPECT_EQ(font.Size(), be_plain_font->Size());
		EXPECT_EQ(view->LowColor(), (rgb_color{255, 255, 255, 255}));
		EXPECT_EQ(view->DrawingMode(), B_OP_COPY);
		EXPECT_EQ(view->PenSize(), 1);
		EXPECT_EQ(view->PenLocation(), BPoint(3, 4));
	});
}

TEST(Drawing, EveryViewIsErasedInItsColourUnlessTransparent)
{
	Shown window(40, 20);
	BView* plain = new BView(BRect(0, 0, 9, 19), nullptr, B_FOLLOW_NONE, 0);
	plain->SetViewColor(255, 0, 0);
	DrawnView* clear = new DrawnView(BRect(10, 0, 19, 19), nullptr);
	clear->SetViewColor(B_TRANSPARENT_COLOR);
	window->AddChild(plain);
	window->AddChild(clear);
	window->ShowAndSettle();
	window->Do([&] { clear->FillRect(BRect(0, 0, 9, 9)); });
	window->Do([&] { clear->Invalidate(); });
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(200, Count(picture, kRed));
	EXPECT_EQ(100, Count(picture, kBlack)); // still there
}

TEST(Drawing, LineArraysKeepTheHighColourAndStopAtTheirCount)
{
	Shown window(40, 20);
	window->AddChild(new DrawnView(BRect(0, 0, 39, 19), [](BView* view, BRect) {
		view->BeginLineArray(2);
		view->AddLine(BPoint(0, 0), BPoint(9, 0), {255, 0, 0, 255});
		view->AddLine(BPoint(0, 1), BPoint(9, 1), {0, 0, 255, 255});
		view->AddLine(BPoint(0, 2), BPoint(9, 2), {255, 0, 0, 255});
		view->EndLineArray();
		view->StrokeLine(BPoint(0, 3), BPoint(4, 3));
	}));
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(10, Count(picture, kRed));
	EXPECT_EQ(10, Count(picture, kBlue));
	EXPECT_EQ(5, Count(picture, kBlack));
}

TEST(Drawing, BitmapsAreDrawnScaledAndTransparent)
{
	BBitmap bitmap(BRect(0, 0, 2, 0), B_CMAP8);
	const uint8 row[4] = {0x00, B_TRANSPARENT_MAGIC_CMAP8, 0x3f, 0};
	bitmap.SetBits(row, 4, 0, B_CMAP8);
	Shown window(40, 20);
	DrawnView* view = new DrawnView(BRect(0, 0, 39, 19), [&](BView* self, BRect) {
		self->SetDrawingMode(B_OP_OVER);
		self->DrawBitmap(&bitmap, BPoint(1, 1));
		self->DrawBitmap(&bitmap, BRect(10, 10, 15, 11));
		self->SetDrawingMode(B_OP_COPY);
		self->DrawBitmap(&bitmap, BPoint(1, 3));
	});
	view->SetViewColor(255, 0, 0);
	window->AddChild(view);
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(kBlack, picture.At(1, 1));
	EXPECT_EQ(kRed, picture.At(2, 1));
	EXPECT_EQ(kWhite, picture.At(3, 1));
	EXPECT_EQ(kWhite, picture.At(2, 3));
	EXPECT_EQ(kBlack, picture.At(10, 10));
	EXPECT_EQ(kBlack, picture.At(10, 11));
	EXPECT_EQ(kWhite, picture.At(15, 11));
	EXPECT_EQ(kRed, picture.At(16, 11));
}

TEST(Drawing, ScrollingMovesPixelsAndDrawsOnlyTheUncoveredStrip)
{
	Shown window(40, 100);
	DrawnView* view = new DrawnView(BRect(0, 10, 39, 89), [](BView* self, BRect update) {
		for (int y = 0; y < 1000; y += 10) {
			if (y >= update.top && y <= update.bottom)
				self->StrokeLine(BPoint(0, y), BPoint(y % 40, y));
		}
	});
	window->AddChild(view);
	window->ShowAndSettle();
	window->Do([&] { view->ScrollTo(BPoint(0, 25)); });
	EXPECT_EQ(BRect(0, 80, 39, 104), view->lastUpdate);
	InjectedUser::Picture scrolled = window->Snapshot();
	window->Do([&] { view->Invalidate(); });
	EXPECT_EQ(scrolled.pixels, window->Snapshot().pixels);
	EXPECT_EQ(kBlack, scrolled.At(30, 10 + 30 - 25));

	// Several at once, back and forth, with damage waiting: the picture is that of a full repaint.
	window->Do([&] {
		view->Invalidate(BRect(0, 40, 20, 50));
		view->ScrollTo(BPoint(0, 60));
		view->ScrollTo(BPoint(0, 33));
		view->ScrollTo(BPoint(5, 41));
		view->ScrollTo(BPoint(0.5f, 41.5f));
		view->ScrollTo(BPoint(0, 500));
		view->ScrollTo(BPoint(0, 490));
	});
	scrolled = window->Snapshot();
	window->Do([&] { view->Invalidate(); });
	EXPECT_EQ(scrolled.pixels, window->Snapshot().pixels);
}

TEST(Drawing, CopyBitsDamagesWhatItCannotCopy)
{
	Shown window(60, 40);
	auto stripes = [](BView* self, BRect) {
		for (int x = 0; x < 60; x += 2)
			self->StrokeLine(BPoint(x, 0), BPoint(x, 39));
	};
	DrawnView* view = new DrawnView(BRect(0, 0, 59, 39), stripes);
	DrawnView* cover = new DrawnView(BRect(0, 0, 9, 39), nullptr);
	window->AddChild(view);
	window->AddChild(cover);
	window->ShowAndSettle();
	window->Do([&] {
		view->FillRect(BRect(20, 0, 29, 39)); // only copying brings this to its new place
		view->CopyBits(BRect(5, 0, 29, 39), BRect(25, 0, 49, 39));
	});
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(BRect(25, 0, 29, 39), view->lastUpdate); // came from below the cover
	EXPECT_EQ(kBlack, picture.At(40, 5));
	EXPECT_EQ(kBlack, picture.At(41, 5));
	EXPECT_EQ(kWhite, picture.At(27, 5));
}

TEST(Drawing, TextMovesThePenAndStaysInsideTheClip)
{
	Shown window(120, 40);
	BPoint pen;
	window->AddChild(new DrawnView(BRect(0, 0, 119, 39), [&](BView* self, BRect) {
		self->DrawString("Korva", BPoint(10, 20));
		pen = self->PenLocation();
		BRegion clip(BRect(60, 0, 69, 39));
		self->ConstrainClippingRegion(&clip);
		self->DrawString("MMMMMMMMM", BPoint(50, 20));
		self->DrawString("bad \xff\xfe bytes\n", BPoint(50, 35));
	}));
	window->ShowAndSettle();
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(BPoint(10 + be_plain_font->StringWidth("Korva"), 20), pen);
	EXPECT_GT(pen.x, 30);
	int inside = 0;
	for (int y = 0; y < 40; y++) {
		for (int x = 52; x < 120; x++) {
			bool ink = picture.At(x, y) != kWhite;
			inside += ink;
			EXPECT_TRUE(!ink || (x >= 60 && x <= 69)) << x << "," << y;
		}
	}
	EXPECT_GT(inside, 20);
}

TEST(Drawing, OtherThreadsDrawAndInvalidateUnderTheLock)
{
	Shown window(40, 20);
	DrawnView* view = new DrawnView(BRect(0, 0, 39, 19), nullptr);
	window->AddChild(view);
	window->ShowAndSettle();
	{
		Locked lock(window.Get());
		view->FillRect(BRect(0, 0, 4, 4));
	}
	// No message follows: the window has to notice by itself.
	EXPECT_TRUE(WaitUntil([&] { return Count(window->Snapshot(), kBlack) == 25; }));
	{
		Locked lock(window.Get());
		view->Invalidate(BRect(0, 0, 4, 0));
	}
	EXPECT_TRUE(WaitUntil([&] { return Count(window->Snapshot(), kBlack) == 20; }));
}
