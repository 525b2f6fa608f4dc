// SPDX-License-Identifier: MIT

#include "support/DrawFun.h"

#include "tests/support/TestWindow.h"

#include <functional>

namespace {

constexpr uint32 kErased = 0xffff0000; // the low colour
constexpr uint32 kPaper = 0xffffffff;

// The box of the pixels that are not paper, or of those in one colour.
BRect
Box(const InjectedUser::Picture& picture, uint32 colour = kPaper, bool equal = false)
{
	BRect box(1000, 1000, -1, -1);
	for (int32 y = 0; y < picture.height; y++) {
		for (int32 x = 0; x < picture.width; x++) {
			if ((picture.At(x, y) == colour) == equal)
				box = box | BRect(x, y, x, y);
		}
	}
	return box;
}

InjectedUser::Picture
Drawn(const std::function<void(BView*)>& draw)
{
	Shown window(200, 60);
	BView* view = new BView(BRect(0, 0, 199, 59), nullptr, B_FOLLOW_NONE, B_WILL_DRAW);
	view->SetLowColor(255, 0, 0);
	window->ShowWith({view});
	window->Do([&] { draw(view); });
	return window->Snapshot();
}

constexpr const char* kShort = "lll";
constexpr const char* kLong = "lllllllllllllllllllllllllllllllllllllllllllllllllllllE";
const BRect kCell(50, 10, 149, 39);

InjectedUser::Picture
Cell(const char* text, bool fill, vertical_alignment valign, alignment align)
{
	return Drawn([=](BView* view) {
		NDrawFunction::DrawStringClipped(view, text, kCell, fill, valign, align);
	});
}

} // namespace

TEST(DrawStringClipped, StaysInsideItsRectangleWhicheverEndItShows)
{
	for (alignment align : {B_ALIGN_LEFT, B_ALIGN_CENTER, B_ALIGN_RIGHT}) {
		BRect box = Box(Cell(kLong, false, B_ALIGN_MIDDLE, align));
		EXPECT_TRUE(kCell.Contains(box)) << align;
	}
	// A string that does not fit shows its end when centred: the E is there, not at the left.
	InjectedUser::Picture centred = Cell(kLong, false, B_ALIGN_MIDDLE, B_ALIGN_CENTER);
	InjectedUser::Picture right = Cell(kLong, false, B_ALIGN_MIDDLE, B_ALIGN_RIGHT);
	InjectedUser::Picture left = Cell(kLong, false, B_ALIGN_MIDDLE, B_ALIGN_LEFT);
	EXPECT_EQ(right.pixels, centred.pixels);
	EXPECT_NE(left.pixels, centred.pixels);
	// One that fits is at the left.
	EXPECT_EQ(Cell(kShort, false, B_ALIGN_MIDDLE, B_ALIGN_LEFT).pixels,
		Cell(kShort, false, B_ALIGN_MIDDLE, B_ALIGN_CENTER).pixels);
}

TEST(DrawStringClipped, AlignsInItsCell)
{
	BRect top = Box(Cell(kShort, false, B_ALIGN_TOP, B_ALIGN_LEFT));
	BRect middle = Box(Cell(kShort, false, B_ALIGN_MIDDLE, B_ALIGN_RIGHT));
	BRect bottom = Box(Cell(kShort, false, B_ALIGN_BOTTOM, B_ALIGN_LEFT));
	EXPECT_LT(top.top, middle.top);
	EXPECT_LT(middle.top, bottom.top);
	EXPECT_LE(top.left, kCell.left + 4);
	EXPECT_GE(middle.right, kCell.right - 4);
}

TEST(DrawStringClipped, FillErasesTheTextsLineOnly)
{
	font_height font;
	be_plain_font->GetHeight(&font);
	float textWidth = be_plain_font->StringWidth(kShort) + 2;
	BRect erased = Box(Cell(kShort, true, B_ALIGN_MIDDLE, B_ALIGN_LEFT), kErased, true);
	EXPECT_EQ(kCell.left, erased.left);
	EXPECT_NEAR(kCell.left + textWidth, erased.right, 1);
	EXPECT_NEAR(font.ascent + font.descent + 1, erased.Height(), 2);
	// Text wider than the rectangle: the full width, still only the line.
	erased = Box(Cell(kLong, true, B_ALIGN_MIDDLE, B_ALIGN_CENTER), kErased, true);
	EXPECT_EQ(kCell.left, erased.left);
	EXPECT_EQ(kCell.right, erased.right);
	EXPECT_LT(erased.Height(), kCell.Height());
}

TEST(DrawStringClipped, TheFormWithALengthDrawsThatMuchAtTheLeft)
{
	auto first = [](uint32 length, vertical_alignment valign, alignment align) {
		return Drawn([=](BView* view) {
			NDrawFunction::DrawStringClipped(view, kLong, length, kCell, false, valign, align);
		});
	};
	InjectedUser::Picture three = first(3, B_ALIGN_MIDDLE, B_ALIGN_LEFT);
	EXPECT_EQ(three.pixels, first(3, B_ALIGN_TOP, B_ALIGN_RIGHT).pixels);
	EXPECT_LE(Box(three).right, kCell.left + 3 + be_plain_font->StringWidth(kShort));
	EXPECT_LT(Box(three).right, Box(first(6, B_ALIGN_MIDDLE, B_ALIGN_LEFT)).right);
}
