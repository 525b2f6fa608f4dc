// SPDX-License-Identifier: MIT

// Bitmaps in memory: their rows, the 256-colour palette, and the drawable form.

#include <interface/Bitmap.h>

#include <algorithm>
#include <cstring>
#include <mutex>

static constexpr int32 kMaxSide = 16384;
// A pixel of B_RGB32 with this value shows what is below; all others are opaque.
static constexpr uint32 kTransparent32 = 0x00777477;

static int32
RowLength(int32 columns, color_space space)
{
	int32 bits = space == B_GRAY1 ? 1 : space == B_CMAP8 ? 8 : 32;
	return (columns * bits + 31) / 32 * 4;
}

// 32 greys, white at 63 and 255, and a 6 by 6 by 6 cube in what is left, in order.
static const uint32*
Palette()
{
	static const struct Table {
		Table()
		{
			for (uint32 i = 0; i < 32; i++)
				colors[i] = 0xff000000 | i * 8 * 0x010101;
			uint32 index = 32;
			for (uint32 entry = 0; entry < 216; entry++) {
				if (index == 63)
					index++;
				colors[index++] =
					0xff000000 | entry / 36 * 51 << 16 | entry / 6 % 6 * 51 << 8 | entry % 6 * 51;
			}
			colors[63] = 0xffffffff;
			std::fill(colors + index, colors + 255, 0xffffffff);
			colors[B_TRANSPARENT_MAGIC_CMAP8] = 0x00ffffff;
		}
		uint32 colors[256];
	} sTable;
	return sTable.colors;
}

// The index whose colour is nearest; the transparent one for half and less of opacity.
static uint8
NearestIndex(uint32 color)
{
	if (color >> 24 < 128)
		return B_TRANSPARENT_MAGIC_CMAP8;
	auto part = [](uint32 value, int shift) { return static_cast<int32>(value >> shift & 0xff); };
	int32 best = INT32_MAX;
	uint8 found = 0;
	for (int32 i = 0; i < B_TRANSPARENT_MAGIC_CMAP8 && best > 0; i++) {
		int32 distance = 0;
		for (int shift = 0; shift < 24; shift += 8) {
			int32 d = part(color, shift) - part(Palette()[i], shift);
			distance += d * d;
		}
		if (distance < best) {
			best = distance;
			found = static_cast<uint8>(i);
		}
	}
	return found;
}

// 0xAARRGGBB, not premultiplied.
static uint32
PixelOf(const uint8* row, int32 column, color_space space)
{
	if (space == B_GRAY1)
		return row[column / 8] >> (7 - column % 8) & 1 ? 0xff000000 : 0xffffffff;
	if (space == B_CMAP8)
		return Palette()[row[column]];
	uint32 value;
	memcpy(&value, row + column * 4, 4);
	if (space == B_RGB32)
		return value == kTransparent32 ? value : value | 0xff000000;
	return value;
}

static void
SetPixel(uint8* row, int32 column, color_space space, uint32 color)
{
	if (space == B_CMAP8) {
		row[column] = NearestIndex(color);
	} else if (space == B_GRAY1) {
		uint32 sum = (color & 0xff) + (color >> 8 & 0xff) + (color >> 16 & 0xff);
		uint8 bit = static_cast<uint8>(0x80 >> column % 8);
		bool black = color >> 24 >= 128 && sum < 3 * 128;
		row[column / 8] =
			static_cast<uint8>(black ? row[column / 8] | bit : row[column / 8] & ~bit);
	} else {
		if (space == B_RGB32)
			color = color >> 24 < 128 ? kTransparent32 : color | 0xff000000;
		memcpy(row + column * 4, &color, 4);
	}
}

BBitmap::BBitmap(BRect bounds, color_space space, bool, bool) : fBounds(bounds), fSpace(space)
{
	if (!bounds.IsValid() || bounds.Width() >= kMaxSide || bounds.Height() >= kMaxSide)
		return;
	int32 columns = bounds.IntegerWidth() + 1;
	int32 rows = bounds.IntegerHeight() + 1;
	fBytesPerRow = RowLength(columns, space);
	fBits.resize(static_cast<size_t>(fBytesPerRow) * static_cast<size_t>(rows));
	if (space == B_CMAP8)
		std::fill(fBits.begin(), fBits.end(), B_TRANSPARENT_MAGIC_CMAP8);
	for (size_t at = 0; space == B_RGB32 && at < fBits.size(); at += 4)
		memcpy(&fBits[at], &kTransparent32, 4);
}

BBitmap::BBitmap(const BBitmap& other) :
	fBounds(other.fBounds),
	fSpace(other.fSpace),
	fBytesPerRow(other.fBytesPerRow),
	fBits(other.fBits),
	fPicture(std::make_unique<desktop::Picture>(other.Picture()))
{}

BBitmap::~BBitmap() = default;

void
BBitmap::SetBits(const void* data, int32 length, int32 offset, color_space space)
{
	if (data == nullptr || offset < 0 || length <= 0 || !IsValid())
		return;
	fPicture.reset();
	if (space == fSpace) {
		if (offset < BitsLength())
			memcpy(&fBits[static_cast<size_t>(offset)], data,
				static_cast<size_t>(std::min(length, BitsLength() - offset)));
		return;
	}
	// Other spaces are converted pixel by pixel; the offset is one into a bitmap of that space.
	const int32 columns = fBounds.IntegerWidth() + 1;
	const int32 rows = fBounds.IntegerHeight() + 1;
	const int32 sourceRow = RowLength(columns, space);
	const int32 perPixel = space == B_GRAY1 || space == B_CMAP8 ? 1 : 4;
	const uint8* source = static_cast<const uint8*>(data);
	for (int32 y = offset / sourceRow; y < rows; y++) {
		// Where this row would begin in `data`; before it for the row that the offset cuts.
		int32 start = y * sourceRow - offset;
		for (int32 x = 0; x < columns; x++) {
			int32 at = start + (space == B_GRAY1 ? x / 8 : x * perPixel);
			if (at < 0)
				continue;
			if (at + perPixel > length)
				return;
			uint32 color = PixelOf(source + at, space == B_GRAY1 ? x % 8 : 0, space);
			SetPixel(&fBits[static_cast<size_t>(y * fBytesPerRow)], x, fSpace, color);
		}
	}
}

const desktop::Picture&
BBitmap::Picture() const
{
	// Several threads may draw the same bitmap for the first time at once.
	static std::mutex sLock;
	std::lock_guard lock(sLock);
	if (!fPicture) {
		if (!IsValid()) {
			fPicture = std::make_unique<desktop::Picture>();
			return *fPicture;
		}
		const int32 columns = fBounds.IntegerWidth() + 1;
		const int32 rows = fBounds.IntegerHeight() + 1;
		std::vector<uint32> pixels;
		pixels.reserve(static_cast<size_t>(columns) * static_cast<size_t>(rows));
		for (int32 y = 0; y < rows; y++) {
			for (int32 x = 0; x < columns; x++)
				pixels.push_back(PixelOf(&fBits[static_cast<size_t>(y * fBytesPerRow)], x, fSpace));
		}
		fPicture = std::make_unique<desktop::Picture>(
			columns, rows, pixels.data(), static_cast<size_t>(columns) * 4);
	}
	return *fPicture;
}
