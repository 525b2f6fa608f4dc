// SPDX-License-Identifier: MIT

#include <desktop/Canvas.h>

#include "tests/support/Storm.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>

using namespace desktop;

namespace {

constexpr uint32 kWhite = 0xffffffff;
constexpr uint32 kBlack = 0xff000000;
constexpr uint32 kRed = 0xffff0000;
constexpr rgb_color kRedColour = {255, 0, 0};

// A letter for each pixel: '.' white, '#' black, 'r' red, '?' anything else.
std::string
Letters(const Canvas& canvas)
{
	std::string text;
	for (int32 y = 0; canvas.PixelAt(0, y) != 0; y++) {
		text += '\n';
		for (int32 x = 0; canvas.PixelAt(x, y) != 0; x++) {
			const uint32 pixel = canvas.PixelAt(x, y);
			text += pixel == kWhite ? '.' : pixel == kBlack ? '#' : pixel == kRed ? 'r' : '?';
		}
	}
	return text;
}

// The smallest rectangle around the pixels that are not white, device pixels.
PixelRect
InkBounds(const Canvas& canvas)
{
	PixelRect bounds{INT_MAX, INT_MAX, -1, -1};
	for (int32 y = 0; canvas.PixelAt(0, y) != 0; y++) {
		for (int32 x = 0; canvas.PixelAt(x, y) != 0; x++) {
			if (canvas.PixelAt(x, y) == kWhite)
				continue;
			bounds.left = std::min(bounds.left, x);
			bounds.right = std::max(bounds.right, x);
			bounds.top = std::min(bounds.top, y);
			bounds.bottom = std::max(bounds.bottom, y);
		}
	}
	return bounds;
}

void
Draw(Canvas& canvas, float x, int32 baseline, const std::string& text, const Ink& ink = {})
{
	canvas.DrawText(x, baseline, text.data(), text.size(), FontSpec{}, ink);
}

float
Width(const std::string& text)
{
	return WidthOf(FontSpec{}, text.data(), text.size());
}

Ink
RedInk(drawing_mode mode = B_OP_COPY, pattern shape = B_SOLID_HIGH)
{
	Ink ink;
	ink.high = kRedColour;
	ink.low = {0, 0, 0};
	ink.mode = mode;
	ink.shape = shape;
	return ink;
}

int32
DeviceEdge(int32 logical, double scale)
{
	return int32(std::floor(logical * scale + 0.5));
}

} // namespace

TEST(Canvas, FillsWhatRectangleClipAndCanvasShare)
{
	Canvas canvas(6, 4, 1);
	PixelRegion clip(PixelRect{0, 0, 1, 3});
	clip.Include(PixelRect{4, 1, 90, 2});
	canvas.SetClip(clip);
	canvas.FillRect({-5, 1, 40, 50}, Ink());
	EXPECT_EQ(Letters(canvas), "\n......\n##..##\n##..##\n##....");
	canvas.SetClip(PixelRect{0, 0, 5, 3});
	canvas.FillRegion(clip, RedInk());
	EXPECT_EQ(Letters(canvas), "\nrr....\nrr..rr\nrr..rr\nrr....");
}

TEST(Canvas, PaintsPatternsOnTheirGridInEveryMode)
{
	const pattern stripes = {{0x80, 0x40, 0, 0, 0, 0, 0, 0}};
	const auto paint = [&stripes](drawing_mode mode) {
		Canvas canvas(4, 3, 1);
		Ink ink = RedInk(mode, stripes);
		ink.patternX = 1;
		ink.patternY = -7; // so that row 1 is the grid's first
		canvas.FillRect({0, 0, 3, 2}, ink);
		return Letters(canvas);
	};
	EXPECT_EQ(paint(B_OP_COPY), "\n####\n#r##\n##r#");
	EXPECT_EQ(paint(B_OP_OVER), "\n....\n.r..\n..r.");
	EXPECT_EQ(paint(B_OP_ERASE), "\n....\n.#..\n..#.");
	EXPECT_EQ(paint(B_OP_INVERT), "\n....\n.#..\n..#.");
}

TEST(Canvas, DrawsLinesWithBothEndsTheSameFromEitherSide)
{
	struct Line {
		int32 x1, y1, x2, y2;
		const char* picture;
	};
	const Line lines[] = {
		{1, 1, 4, 1, "\n......\n.####.\n......\n......"},
		{2, 3, 2, 3, "\n......\n......\n......\n..#..."},
		{0, 0, 3, 3, "\n#.....\n.#....\n..#...\n...#.."},
		{0, 3, 5, 1, "\n......\n....##\n..##..\n##...."},
		{1, -1, 4, 5, "\n..#...\n..#...\n...#..\n...#.."},
	};
	for (const Line& line : lines) {
		Canvas canvas(6, 4, 1);
		Canvas back(6, 4, 1);
		canvas.StrokeLine(line.x1, line.y1, line.x2, line.y2, Ink());
		back.StrokeLine(line.x2, line.y2, line.x1, line.y1, Ink());
		EXPECT_EQ(Letters(back), Letters(canvas));
		EXPECT_EQ(Letters(canvas), line.picture);
	}
	Canvas coarse(6, 4, 0.5);
	coarse.StrokeLine(0, 0, 1, 1, Ink());
	EXPECT_EQ(Letters(coarse), "\n#..\n...");
}

TEST(Canvas, InvertsEveryPixelOfAnOutlineOrLineOnce)
{
	for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
		Canvas canvas(40, 40, scale);
		const Ink invert = RedInk(B_OP_INVERT);
		for (int twice = 0; twice < 2; twice++) {
			canvas.StrokeRect({3, 4, 12, 9}, invert);
			canvas.StrokeRect({20, 20, 20, 30}, invert);
			canvas.StrokeRect({25, 25, 25, 25}, invert);
			canvas.StrokeLine(1, 2, 35, 27, invert);
			EXPECT_EQ(InkBounds(canvas).IsEmpty(), twice == 1) << scale;
			EXPECT_EQ(Letters(canvas).find('?'), std::string::npos);
		}
	}
}

TEST(Canvas, MovesPixelsOntoThemselvesAsIfDrawnThere)
{
	const auto cross = [](Canvas& canvas, int32 x, int32 y) {
		Ink white;
		white.high = {255, 255, 255};
		canvas.FillRect(PixelRect{0, 0, 19, 19}.Offset(x, y), white);
		for (int32 i = 0; i < 20; i++) {
			canvas.FillRect(PixelRect{i, i, i, i}.Offset(x, y), Ink());
			canvas.FillRect(PixelRect{19 - i, i, 19 - i, i}.Offset(x, y), RedInk());
		}
	};
	for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
		for (const auto& [dx, dy] : {std::pair{0, 3}, {0, -3}, {4, 0}, {-5, 2}, {1, -1}}) {
			Canvas moved(40, 40, scale), expected(40, 40, scale);
			cross(moved, 10, 10);
			moved.MovePixels({10, 10, 29, 29}, dx, dy);
			cross(expected, 10, 10);
			cross(expected, 10 + dx, 10 + dy);
			EXPECT_EQ(Letters(moved), Letters(expected)) << scale << " " << dx << " " << dy;
		}
	}
}

TEST(Canvas, MovesOnlyWhatStaysInside)
{
	Canvas canvas(4, 3, 1);
	canvas.FillRect({0, 0, 3, 0}, Ink());
	canvas.MovePixels({-10, -10, 30, 30}, 2, 1);
	EXPECT_EQ(Letters(canvas), "\n####\n..##\n....");
	Canvas nothing(0, 0, 1); // a window without rows is legal
	nothing.FillRect({0, 0, 5, 5}, Ink());
	nothing.MovePixels({0, 0, 5, 5}, 1, 1);
	Canvas scaled(8, 8, 1.25);
	EXPECT_TRUE(scaled.MovesExactly(4, -8));
	EXPECT_FALSE(scaled.MovesExactly(0, 3));
}

TEST(CanvasText, StaysInsideTheClipAndItsMeasuredWidth)
{
	ASSERT_GT(Width("mmmm"), 20);
	EXPECT_GT(Width("m "), Width("m")) << "trailing spaces count";
	for (const double scale : {1.0, 1.25, 2.0}) {
		Canvas canvas(200, 40, scale);
		Draw(canvas, 10, 20, "mmmm");
		const PixelRect all = InkBounds(canvas);
		EXPECT_GE(all.left, 9 * scale);
		EXPECT_LE(all.right, (12 + double(Width("mmmm"))) * scale);
		EXPECT_GE(all.right - all.left, double(Width("mmm")) * scale);
		EXPECT_LE(all.bottom, 21 * scale);

		Canvas clipped(200, 40, scale);
		clipped.SetClip(PixelRect{15, 15, 24, 17});
		Draw(clipped, 10, 20, "mmmm");
		const PixelRect part = InkBounds(clipped);
		EXPECT_GE(part.left, DeviceEdge(15, scale));
		EXPECT_LT(part.right, DeviceEdge(25, scale));
		EXPECT_GE(part.top, DeviceEdge(15, scale));
		EXPECT_LT(part.bottom, DeviceEdge(18, scale));
	}
}

TEST(CanvasText, LooksTheSameWhereverItStands)
{
	Canvas canvas(300, 60, 1);
	Draw(canvas, 3.0f, 20, "Crisp");
	Draw(canvas, 100.4f, 20, "Crisp");
	Draw(canvas, 199.6f, 50, "Crisp");
	for (int32 y = 0; y < 30; y++) {
		for (int32 x = 0; x < 60; x++) {
			EXPECT_EQ(canvas.PixelAt(x, y), canvas.PixelAt(x + 97, y));
			EXPECT_EQ(canvas.PixelAt(x, y), canvas.PixelAt(x + 197, y + 30));
		}
	}
}

TEST(CanvasText, CopyMixesTheTwoColoursAndLeavesTheBackground)
{
	Canvas canvas(100, 40, 1);
	canvas.FillRect({0, 0, 99, 39}, RedInk());
	Draw(canvas, 10, 25, "Text"); // black and white upon red
	int ink = 0;
	for (int32 y = 0; y < 40; y++) {
		for (int32 x = 0; x < 100; x++) {
			const uint32 pixel = canvas.PixelAt(x, y);
			const bool isGrey = pixel == 0xff000000 + 0x010101 * (pixel & 0xff);
			EXPECT_TRUE(pixel == kRed || isGrey) << std::hex << pixel;
			ink += isGrey;
		}
	}
	EXPECT_GT(ink, 0);
}

TEST(CanvasText, TakesBytesOfAnyKind)
{
	const std::string replacement = "\xef\xbf\xbd";
	EXPECT_EQ(Width("a\nb\tc"), Width("a" + replacement + "b" + replacement + "c"));
	EXPECT_EQ(Width("a\xff z"), Width("a" + replacement + " z"));
	EXPECT_EQ(Width("\xe2\x80\xae"
					"abc"),
		Width(replacement + "abc"));
	EXPECT_EQ(Width(std::string("a\0b", 3)), Width("a" + replacement + "b"));
	EXPECT_EQ(Width(""), 0);
	EXPECT_EQ(WidthOf(FontSpec{}, nullptr, 0), 0);

	Canvas canvas(60, 40, 1);
	Draw(canvas, 2, 20, "one\xe2\x80\xa8two\r\nthree");
	EXPECT_LT(InkBounds(canvas).bottom, 26) << "one row only";
	Draw(canvas, 2, 20, std::string(100000, 'w'));
	std::string bytes;
	for (int i = 0; i < 3000; i++)
		bytes += char(i * 7919 >> 3);
	Draw(canvas, -500, 20, bytes);
}

TEST(CanvasText, IsTheSameInEveryThread)
{
	std::array<std::string, 4> pictures;
	InThreads(4, [&](int thread) {
		Canvas canvas(200, 320, 1);
		for (int i = 0; i < 60; i++)
			Draw(canvas, 2, 14 + i * 5, "Name " + std::to_string(i % 13) + " \xc3\xa9\xd7\x90");
		pictures[size_t(thread)] = Letters(canvas);
	});
	for (const std::string& picture : pictures)
		EXPECT_EQ(picture, pictures[0]);
}

TEST(CanvasText, DoesNotDependOnWhatWasDrawnBefore)
{
	// Kerning, joined letters, letters that the font lacks.
	const std::vector<std::string> parts = {"Wave", "AVATAR", "To", "fi", "ffl", " ", "r.", "19",
		"_", "\xc3\xa9", "e\xcc\x81", "\xd7\x90", "j(", "Ty-", "\t"};
	std::mt19937 random(3);
	for (int i = 0; i < 150; i++) {
		std::string text;
		for (unsigned count = 1 + random() % 4; count > 0; count--)
			text += parts[random() % parts.size()];
		const FontSpec font{
			i % 3 == 0 ? FontFace::kBold : FontFace::kPlain, i % 5 == 0 ? 15.0f : 12.0f};
		const auto show = [&](float* width) {
			Canvas canvas(200, 40, i % 4 == 0 ? 1.5 : 1.0);
			canvas.DrawText(3, 20, text.data(), text.size(), font, Ink());
			*width = WidthOf(font, text.data(), text.size());
			return Letters(canvas);
		};
		float width = 0, freshWidth = 0;
		const std::string picture = show(&width);
		std::string freshPicture; // of a thread that has seen no other text
		std::thread([&] { freshPicture = show(&freshWidth); }).join();
		EXPECT_EQ(width, freshWidth) << text;
		EXPECT_EQ(picture, freshPicture) << text;
	}
}

TEST(CanvasPicture, CopiesBlendsAndScales)
{
	const uint32 pixels[] = {0xffff0000, 0xff000000, 0, 0xffffffff};
	const Picture picture(2, 2, pixels, 8);
	Canvas canvas(4, 2, 1);
	canvas.FillRect({0, 0, 3, 1}, RedInk());
	canvas.DrawPicture(picture, {0, 0, 1, 1}, {0, 0, 1, 1}, B_OP_COPY);
	canvas.DrawPicture(picture, {0, 0, 1, 1}, {2, 0, 3, 1}, B_OP_OVER);
	EXPECT_EQ(Letters(canvas), "\nr#r#\n..r.");

	Canvas large(4, 4, 2);
	large.DrawPicture(picture, {0, 0, 0, 0}, {1, 1, 2, 2}, B_OP_OVER);
	EXPECT_EQ(InkBounds(large), (PixelRect{2, 2, 5, 5}));
	EXPECT_EQ(large.PixelAt(4, 4), kRed);
	EXPECT_FALSE(Picture().IsValid());
	large.DrawPicture(Picture(), {0, 0, 5, 5}, {0, 0, 5, 5}, B_OP_COPY);
	EXPECT_EQ(InkBounds(large), (PixelRect{2, 2, 5, 5}));
}

TEST(CanvasPicture, AFinerScreenIsGivenFinerPixels)
{
	const std::vector<uint32> coarse(4, 0xff000000);
	Picture picture(2, 2, coarse.data(), 8);
	std::vector<std::pair<int32, int32>> asked;
	picture.SetMaker([&asked](int32 width, int32 height) {
		asked.emplace_back(width, height);
		std::vector<uint32> pixels(size_t(width * height), 0xffff0000);
		pixels[0] = 0xff000000; // only the first pixel is black
		return height < 12 ? Picture(width, height, pixels.data(), size_t(width) * 4) : Picture();
	});
	const Picture copy = picture;
	Canvas plain(2, 2, 1), fine(2, 2, 1.5), finer(4, 4, 2);
	for (int i = 0; i < 2; i++) {
		plain.DrawPicture(copy, {0, 0, 1, 1}, {0, 0, 1, 1}, B_OP_COPY);
		fine.DrawPicture(copy, {0, 0, 1, 1}, {0, 0, 1, 1}, B_OP_COPY);
		finer.DrawPicture(copy, {0, 0, 1, 1}, {0, 0, 1, 1}, B_OP_COPY);
	}
	EXPECT_EQ(Letters(plain), "\n##\n##");
	EXPECT_EQ(Letters(fine), "\n#rr\nrrr\nrrr");
	// Each size is made once, also when screens take turns.
	EXPECT_EQ(asked, (std::vector<std::pair<int32, int32>>{{3, 3}, {4, 4}}));
	// A part is one of the finer picture.
	finer.DrawPicture(copy, {0, 0, 0, 1}, {2, 2, 2, 3}, B_OP_COPY);
	finer.DrawPicture(copy, {1, 0, 1, 1}, {3, 2, 3, 3}, B_OP_COPY);
	EXPECT_EQ(Letters(finer),
		"\n#rrr....\nrrrr....\nrrrr....\nrrrr....\n....#rrr\n....rrrr\n....rrrr\n....rrrr");
	// Where none is made the picture itself is enlarged.
	Canvas finest(2, 2, 6);
	finest.DrawPicture(copy, {0, 0, 1, 1}, {0, 0, 1, 1}, B_OP_COPY);
	EXPECT_EQ(Letters(finest).find('r'), std::string::npos);
}
