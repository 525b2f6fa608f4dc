// SPDX-License-Identifier: MIT

// Bitmaps in memory: their rows, the 256-colour palette, and the drawable form.

#include <interface/Bitmap.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <optional>
#include <vector>

namespace BPrivate {

struct BitmapPixels {
	explicit BitmapPixels(size_t length) : bits(length) {}
	explicit BitmapPixels(const std::vector<uint8>& other) : bits(other) {}

	std::vector<uint8> bits;
	// Set for good by the first copy. The number of owners would not do: that it is one again
	// does not mean that what the others have read is done with.
	std::atomic<bool> shared = false;
	std::optional<desktop::Picture> picture;
};

} // namespace BPrivate

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

static int32
Distance(uint32 a, uint32 b)
{
	int32 sum = 0;
	for (int shift = 0; shift < 24; shift += 8) {
		int32 d = static_cast<int32>(a >> shift & 0xff) - static_cast<int32>(b >> shift & 0xff);
		sum += d * d;
	}
	return sum;
}

// The index whose colour is nearest; the transparent one for half and less of opacity.
static uint8
NearestIndex(uint32 color)
{
	if (color >> 24 < 128)
		return B_TRANSPARENT_MAGIC_CMAP8;
	const uint32 red = color >> 16 & 0xff;
	const uint32 green = color >> 8 & 0xff;
	const uint32 blue = color & 0xff;
	const uint32 grey = std::min((red + green + blue + 12) / 24, 31u);
	// In the cube the nearest is the nearest in each direction; its last colour is white.
	uint32 cube = 32 + (red + 25) / 51 * 36 + (green + 25) / 51 * 6 + (blue + 25) / 51;
	cube = cube == 32 + 215 ? 63 : cube >= 63 ? cube + 1 : cube;
	const bool greyIsNearer = Distance(color, Palette()[grey]) <= Distance(color, Palette()[cube]);
	return static_cast<uint8>(greyIsNearer ? grey : cube);
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
	fPixels = std::make_shared<BPrivate::BitmapPixels>(
		static_cast<size_t>(fBytesPerRow) * static_cast<size_t>(rows));
	std::vector<uint8>& bits = fPixels->bits;
	if (space == B_CMAP8)
		std::fill(bits.begin(), bits.end(), B_TRANSPARENT_MAGIC_CMAP8);
	for (size_t at = 0; space == B_RGB32 && at < bits.size(); at += 4)
		memcpy(&bits[at], &kTransparent32, 4);
}

BBitmap::BBitmap(const BBitmap& other) :
	fBounds(other.fBounds),
	fSpace(other.fSpace),
	fBytesPerRow(other.fBytesPerRow),
	fPixels(other.fPixels)
{
	if (fPixels)
		fPixels->shared = true;
}

BBitmap::~BBitmap() = default;

int32
BBitmap::BitsLength() const
{
	return fPixels ? static_cast<int32>(fPixels->bits.size()) : 0;
}

void*
BBitmap::Bits()
{
	return fPixels ? OwnPixels().bits.data() : nullptr;
}

const void*
BBitmap::Bits() const
{
	return fPixels ? fPixels->bits.data() : nullptr;
}

status_t
BBitmap::SharePixels(const BBitmap& other)
{
	if (!IsValid() || !other.IsValid() || fSpace != other.fSpace ||
		fBounds.IntegerWidth() != other.fBounds.IntegerWidth() ||
		fBounds.IntegerHeight() != other.fBounds.IntegerHeight())
		return B_BAD_VALUE;
	other.fPixels->shared = true;
	fPixels = other.fPixels;
	return B_OK;
}

void
BBitmap::SetPicture(const desktop::Picture& picture)
{
	if (IsValid())
		OwnPixels().picture = picture;
}

// The pixels to write to, of which no other bitmap and no picture knows.
BPrivate::BitmapPixels&
BBitmap::OwnPixels()
{
	if (fPixels->shared)
		fPixels = std::make_shared<BPrivate::BitmapPixels>(fPixels->bits);
	fPixels->picture.reset();
	return *fPixels;
}

void
BBitmap::SetBits(const void* data, int32 length, int32 offset, color_space space)
{
	if (data == nullptr || offset < 0 || length <= 0 || !IsValid())
		return;
	std::vector<uint8>& bits = OwnPixels().bits;
	if (space == fSpace) {
		if (offset < BitsLength())
			memcpy(&bits[static_cast<size_t>(offset)], data,
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
			SetPixel(&bits[static_cast<size_t>(y * fBytesPerRow)], x, fSpace, color);
		}
	}
}

const desktop::Picture&
BBitmap::Picture() const
{
	static const desktop::Picture sNone;
	if (!IsValid())
		return sNone;
	// Several threads may draw the same bitmap for the first time at once.
	static std::mutex sLock;
	std::lock_guard lock(sLock);
	if (!fPixels->picture) {
		const int32 columns = fBounds.IntegerWidth() + 1;
		const int32 rows = fBounds.IntegerHeight() + 1;
		std::vector<uint32> pixels;
		pixels.reserve(static_cast<size_t>(columns) * static_cast<size_t>(rows));
		for (int32 y = 0; y < rows; y++) {
			const uint8* row = &fPixels->bits[static_cast<size_t>(y * fBytesPerRow)];
			for (int32 x = 0; x < columns; x++)
				pixels.push_back(PixelOf(row, x, fSpace));
		}
		fPixels->picture.emplace(columns, rows, pixels.data(), static_cast<size_t>(columns) * 4);
	}
	return *fPixels->picture;
}
