// SPDX-License-Identifier: MIT

// BBitmap: a picture in memory, to be drawn by views.

#pragma once

#include <interface/InterfaceDefs.h>
#include <interface/Rect.h>

#include <desktop/Canvas.h>

#include <memory>

namespace BPrivate {
struct BitmapPixels;
}

// A value-like object without thread rules of its own: reading from several threads at once is
// fine, writing is not. Starts transparent. Rows are padded to 4 bytes; colour values of
// B_RGB32 and B_RGBA32 lie in memory as blue, green, red, alpha.
//
// Copies share their pixels until one of them is written to.
class BBitmap {
public:
	BBitmap(
		BRect bounds, color_space space, bool acceptsViews = false, bool needsContiguous = false);
	BBitmap(const BBitmap& other);
	virtual ~BBitmap();
	BBitmap& operator=(const BBitmap&) = delete;

	bool IsValid() const { return fPixels != nullptr; }
	BRect Bounds() const { return fBounds; }
	color_space ColorSpace() const { return fSpace; }
	int32 BytesPerRow() const { return fBytesPerRow; }
	int32 BitsLength() const;
	// For writing, before the bitmap is next drawn or copied.
	void* Bits();
	const void* Bits() const;

	// Copies `length` bytes of the given colour space to `offset`; what does not fit is cut off.
	void SetBits(const void* data, int32 length, int32 offset, color_space space);

	// The drawable form, made when first asked for.
	const desktop::Picture& Picture() const;

	// For the kits: shares the pixels of another bitmap of the same size and colour space, else
	// B_BAD_VALUE.
	status_t SharePixels(const BBitmap& other);
	// For the kits: what is drawn in place of the bits, with more colours and finer edges than
	// they have; until they are written to.
	void SetPicture(const desktop::Picture& picture);

private:
	BPrivate::BitmapPixels& OwnPixels();

	BRect fBounds;
	color_space fSpace;
	int32 fBytesPerRow = 0;
	std::shared_ptr<BPrivate::BitmapPixels> fPixels; // null when not valid
};
