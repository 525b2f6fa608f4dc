// SPDX-License-Identifier: MIT

// BBitmap: a picture in memory, to be drawn by views.

#pragma once

#include <interface/InterfaceDefs.h>
#include <interface/Rect.h>

#include <desktop/Canvas.h>

#include <memory>
#include <vector>

// A value-like object without thread rules of its own: reading from several threads at once is
// fine, writing is not. Starts transparent. Rows are padded to 4 bytes; colour values of
// B_RGB32 and B_RGBA32 lie in memory as blue, green, red, alpha.
class BBitmap {
public:
	BBitmap(BRect bounds, color_space space, bool acceptsViews = false, bool needsContiguous = false);
	BBitmap(const BBitmap& other);
	virtual ~BBitmap();
	BBitmap& operator=(const BBitmap&) = delete;

	bool IsValid() const { return !fBits.empty(); }
	BRect Bounds() const { return fBounds; }
	color_space ColorSpace() const { return fSpace; }
	int32 BytesPerRow() const { return fBytesPerRow; }
	int32 BitsLength() const { return static_cast<int32>(fBits.size()); }
	// To be written to only before the bitmap is first drawn, or through SetBits().
	void* Bits() { return fBits.data(); }
	const void* Bits() const { return fBits.data(); }

	// Copies `length` bytes of the given colour space to `offset`; what does not fit is cut off.
	void SetBits(const void* data, int32 length, int32 offset, color_space space);

	// The drawable form, made when first asked for.
	const desktop::Picture& Picture() const;

private:
	BRect fBounds;
	color_space fSpace;
	int32 fBytesPerRow = 0;
	std::vector<uint8> fBits;
	mutable std::unique_ptr<desktop::Picture> fPicture;
};
