// SPDX-License-Identifier: MIT

// The picture of a window, the pictures drawn onto it, and the fonts they are drawn with.

#pragma once

#include <desktop/Pixels.h>
#include <interface/InterfaceDefs.h>

#include <functional>
#include <memory>

namespace desktop {

enum class FontFace : uint8 { kPlain, kBold, kFixed };

struct FontSpec {
	bool operator==(const FontSpec&) const = default;

	FontFace face = FontFace::kPlain;
	float size = 12.0f; // logical pixels
};

struct FontHeights {
	float ascent; // all three in logical pixels, never negative
	float descent;
	float leading;
};

// Both wait until the desktop is up (see GuiThread.h); any thread. Text is UTF-8 of any quality:
// bytes that are no text and control characters are drawn as one replacement glyph each.
FontHeights HeightsOf(const FontSpec& font);
float WidthOf(const FontSpec& font, const char* text, size_t length);

// A picture in 32-bit colour, as drawn by Canvas::DrawPicture. Pixels are shared between copies
// until written to.
class Picture {
public:
	Picture(); // none
	// From rows of 0xAARRGGBB words, not premultiplied, `bytesPerRow` apart; copied.
	Picture(int32 width, int32 height, const uint32* pixels, size_t bytesPerRow);
	Picture(const Picture&);
	Picture& operator=(const Picture&);
	~Picture();

	bool IsValid() const;
	int32 Width() const;
	int32 Height() const;

	// The same picture with more pixels, for screens that show finer ones. `make` gets the columns
	// and rows that such a screen has for this picture or a copy, and is called in the thread that
	// draws it; what it made is kept. It may return none.
	typedef std::function<Picture(int32 width, int32 height)> Maker;
	void SetMaker(Maker make);

private:
	friend class Canvas;
	friend struct PictureData;
	std::shared_ptr<struct PictureData> fData;
};

// What a drawing call paints with. Pattern pixels lie on a grid that starts at
// (patternX, patternY).
struct Ink {
	rgb_color high = {0, 0, 0, 255};
	rgb_color low = {255, 255, 255, 255};
	pattern shape = B_SOLID_HIGH;
	drawing_mode mode = B_OP_COPY;
	int32 patternX = 0;
	int32 patternY = 0;
};

// The picture of one window.
//
// All coordinates are whole logical pixels of the window; the canvas holds scale times as many
// device pixels, and the edges of neighbouring rectangles meet without seam or overlap.
// Thread: one at a time, the window's. The GUI thread reads it in NativeWindow::Present().
class Canvas {
public:
	Canvas(int32 width, int32 height, double scale);
	~Canvas();
	Canvas(const Canvas&) = delete;
	Canvas& operator=(const Canvas&) = delete;

	// Keeps the pixels that both sizes hold; the rest is undefined. A new scale clears to white.
	void Resize(int32 width, int32 height, double scale);
	int32 Width() const;
	int32 Height() const;
	double Scale() const;

	// Limits all drawing below; initially the whole canvas.
	void SetClip(const PixelRegion& region);

	void FillRect(const PixelRect& rect, const Ink& ink);
	void FillRegion(const PixelRegion& region, const Ink& ink);
	void StrokeRect(const PixelRect& rect, const Ink& ink); // the outermost pixels inside
	void StrokeLine(int32 x1, int32 y1, int32 x2, int32 y2, const Ink& ink); // with both ends
	// B_OP_COPY blends between the high and low colour, all other modes between the high colour
	// and what is there. x may be fractional.
	void DrawText(float x, int32 baseline, const char* text, size_t length, const FontSpec& font,
		const Ink& ink);
	// `source` in the picture's own pixels, scaled to `dest`. B_OP_COPY replaces (transparent
	// pixels become white), other modes blend.
	void DrawPicture(
		const Picture& picture, const PixelRect& source, const PixelRect& dest, drawing_mode mode);

	// Moves the pixels of `source` by (dx, dy), clip ignored; what lies or lands outside is left
	// out.
	void MovePixels(const PixelRect& source, int32 dx, int32 dy);
	// Whether moved pixels look as if drawn at their new place. Else (the distance is no whole
	// number of device pixels) areas and lines fit, but text is bent: better draw it again.
	bool MovesExactly(int32 dx, int32 dy) const;

	// For tests: 0xffRRGGBB of a device pixel.
	uint32 PixelAt(int32 deviceX, int32 deviceY) const;

private:
	friend class NativeWindow;
	void MoveUneven(const PixelRect& to, int32 dx, int32 dy);

	std::unique_ptr<struct CanvasData> fData;
};

} // namespace desktop
