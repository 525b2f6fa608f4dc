// SPDX-License-Identifier: MIT

// Pictures of what views draw: what is clipped, erased, moved and repainted.

#include <interface/View.h>

#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

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

} // namespace

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
	EXPECT_EQ(30 * 20 - 5 * 5, picture.Count(kBlack));
	// The same outside Draw(), where nothing is erased before.
	window->Do([&] {
		back->SetHighColor(0, 0, 255);
		back->FillRect(BRect(-1000, -1000, 1000, 1000));
	});
	picture = window->Snapshot();
	EXPECT_EQ(30 * 20 - 5 * 5, picture.Count(kBlue));
	EXPECT_EQ(0, picture.Count(kBlack));
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
	window->ShowWith({view});
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
	EXPECT_EQ(9 + 16 - 4, window->Snapshot().Count(kRed));
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
	window->ShowWith({view});
	EXPECT_EQ(100, window->Snapshot().Count(kBlack));
	EXPECT_EQ(kBlack, window->Snapshot().At(30, 10));
	window->Do([&] { view->StrokeLine(BPoint(0, 19), BPoint(39, 19)); });
	EXPECT_EQ(140, window->Snapshot().Count(kBlack));
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
	window->ShowWith({view});
	const InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(400, picture.Count(kBlue));
	EXPECT_EQ(200, picture.Count(kRed));
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
	window->ShowWith({plain, clear});
	window->Do([&] { clear->FillRect(BRect(0, 0, 9, 9)); });
	window->Do([&] { clear->Invalidate(); });
	InjectedUser::Picture picture = window->Snapshot();
	EXPECT_EQ(200, picture.Count(kRed));
	EXPECT_EQ(100, picture.Count(kBlack)); // still there
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
	EXPECT_EQ(10, picture.Count(kRed));
	EXPECT_EQ(10, picture.Count(kBlue));
	EXPECT_EQ(5, picture.Count(kBlack));
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
	window->ShowWith({view});
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
	window->ShowWith({view, cover});
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

TEST(Drawing, OtherThreadsDrawAndInvalidateUnderTheLock)
{
	Shown window(40, 20);
	DrawnView* view = new DrawnView(BRect(0, 0, 39, 19), nullptr);
	window->ShowWith({view});
	{
		Locked lock(window.Get());
		view->FillRect(BRect(0, 0, 4, 4));
	}
	// No message follows: the window has to notice by itself.
	EXPECT_TRUE(WaitUntil([&] { return window->Snapshot().Count(kBlack) == 25; }));
	{
		Locked lock(window.Get());
		view->Invalidate(BRect(0, 0, 4, 0));
	}
	EXPECT_TRUE(WaitUntil([&] { return window->Snapshot().Count(kBlack) == 20; }));
}
