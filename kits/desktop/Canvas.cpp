// SPDX-License-Identifier: MIT

// Drawing on the picture of a window: fills and lines write the pixels themselves, text and
// pictures go through Qt's painter.

#include "CanvasData.h"

#include "FontCache.h"
#include "PixelRegionAccess.h"

#include <desktop/GuiThread.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace desktop {

namespace {

constexpr uint32 kOpaque = 0xff000000;
constexpr int32 kMaxDeviceSize = 32767;

uint32
ToPixel(rgb_color colour)
{
	return kOpaque | uint32(colour.red) << 16 | uint32(colour.green) << 8 | colour.blue;
}

// What happens to the pixels where a pattern's bit has one value.
struct Stroke {
	enum { kNothing, kPaint, kInvert } action;
	uint32 pixel;
};

Stroke
StrokeFor(const Ink& ink, bool bit)
{
	switch (ink.mode) {
		case B_OP_COPY:
			return {Stroke::kPaint, ToPixel(bit ? ink.high : ink.low)};
		case B_OP_OVER:
			return {bit ? Stroke::kPaint : Stroke::kNothing, ToPixel(ink.high)};
		case B_OP_ERASE:
			return {bit ? Stroke::kPaint : Stroke::kNothing, ToPixel(ink.low)};
		case B_OP_INVERT:
			return {bit ? Stroke::kInvert : Stroke::kNothing, 0};
	}
	return {Stroke::kNothing, 0};
}

void
Apply(CanvasData& data, const QRect& device, Stroke stroke)
{
	if (stroke.action == Stroke::kNothing)
		return;
	for (int32 y = device.top(); y <= device.bottom(); y++) {
		uint32* row = data.Row(y) + device.left();
		if (stroke.action == Stroke::kPaint)
			std::fill_n(row, device.width(), stroke.pixel);
		else
			std::for_each_n(row, device.width(), [](uint32& pixel) { pixel ^= ~kOpaque; });
	}
}

bool
PatternBit(const Ink& ink, int32 x, int32 y)
{
	const uint32 row = (uint32(y) - uint32(ink.patternY)) & 7;
	const uint32 column = (uint32(x) - uint32(ink.patternX)) & 7;
	return (ink.shape.data[row] & (0x80u >> column)) != 0;
}

// `part` is logical and lies in the clip.
void
PaintPattern(CanvasData& data, const QRect& part, const Ink& ink)
{
	const Stroke strokes[] = {StrokeFor(ink, false), StrokeFor(ink, true)};
	for (int32 y = part.top(); y <= part.bottom(); y++) {
		int32 start = part.left();
		while (start <= part.right()) {
			const bool bit = PatternBit(ink, start, y);
			int32 end = start;
			while (end < part.right() && PatternBit(ink, end + 1, y) == bit)
				end++;
			const QRect run(QPoint(start, y), QPoint(end, y));
			Apply(data, data.ToDevice(run), strokes[bit]);
			start = end + 1;
		}
	}
}

void
Paint(CanvasData& data, const QRect& part, const Ink& ink)
{
	if (ink.shape == B_SOLID_HIGH || ink.shape == B_SOLID_LOW)
		Apply(data, data.ToDevice(part), StrokeFor(ink, ink.shape == B_SOLID_HIGH));
	else
		PaintPattern(data, part, ink);
}

void
PaintClipped(CanvasData& data, const QRect& rect, const Ink& ink)
{
	if (!data.clip.boundingRect().intersects(rect))
		return;
	for (const QRect& clip : data.clip) {
		const QRect part = clip & rect;
		if (!part.isEmpty())
			Paint(data, part, ink);
	}
}

// A line that is neither level nor upright, seen so that it runs along `major`, one span of
// `thickness` across for each device pixel on its way: no pixel is painted twice.
struct SlantedLine {
	SlantedLine(const CanvasData& data, int32 x1, int32 y1, int32 x2, int32 y2) :
		upright(std::abs(int64(y2) - y1) > std::abs(int64(x2) - x1)),
		thickness(std::max(1, int32(std::lround(data.scale))))
	{
		if (upright) {
			std::swap(x1, y1);
			std::swap(x2, y2);
		}
		if (x1 > x2) {
			std::swap(x1, x2);
			std::swap(y1, y2);
		}
		majorStart = data.Edge(x1);
		majorEnd = data.Edge(x2 + 1) - 1;
		minorStart = data.Edge(y1);
		minorEnd = data.Edge(y2);
	}

	QRect Span(int32 major) const
	{
		// Both ends may lie on one pixel of a screen with fewer than logical ones.
		const int64 length = std::max<int64>(1, majorEnd - int64(majorStart));
		const int64 rise = 2 * (int64(minorEnd) - minorStart) * (major - int64(majorStart));
		// Rounds to the nearest, also below zero.
		const int64 floored = rise + length;
		int64 offset = floored / (2 * length);
		if (floored % (2 * length) < 0)
			offset--;
		const int32 minor = int32(minorStart + offset);
		return upright ? QRect(minor, major, thickness, 1) : QRect(major, minor, 1, thickness);
	}

	bool upright;
	int32 thickness;
	int32 majorStart;
	int32 majorEnd;
	int32 minorStart;
	int32 minorEnd;
};

void
PaintSlanted(CanvasData& data, const SlantedLine& line, const Ink& ink)
{
	const Stroke strokes[] = {StrokeFor(ink, false), StrokeFor(ink, true)};
	for (const QRect& logicalClip : data.clip) {
		const QRect clip = data.ToDevice(logicalClip);
		const int32 first = std::max(line.majorStart, line.upright ? clip.top() : clip.left());
		const int32 last = std::min(line.majorEnd, line.upright ? clip.bottom() : clip.right());
		for (int32 major = first; major <= last; major++) {
			const QRect span = line.Span(major);
			const QRect part = span & clip;
			if (part.isEmpty())
				continue;
			const bool bit =
				PatternBit(ink, int32(span.left() / data.scale), int32(span.top() / data.scale));
			Apply(data, part, strokes[bit]);
		}
	}
}

bool
IsFilledWith(const CanvasData& data, const QRect& device, uint32 pixel)
{
	for (int32 y = device.top(); y <= device.bottom(); y++) {
		const uint32* row = data.Row(y) + device.left();
		uint32 difference = 0;
		for (int32 i = 0; i < device.width(); i++)
			difference |= row[i] ^ pixel;
		if ((difference & ~kOpaque) != 0)
			return false;
	}
	return true;
}

void
DrawRuns(QPainter& painter, const ShapedText& text, const QPointF& origin)
{
	for (const QGlyphRun& run : text.runs)
		painter.drawGlyphRun(origin, run);
}

uint32
MixChannel(uint32 high, uint32 low, uint32 coverage)
{
	return (high * coverage + low * (255 - coverage) + 127) / 255;
}

// Replaces the pixels that the glyphs touch by mixtures of the high and low colour; for text on
// a background of another colour.
void
DrawTwoColoured(CanvasData& data, const ShapedText& text, const QPoint& origin, const QRect& box,
	const Ink& ink)
{
	QImage coverage(box.size(), QImage::Format_RGB32);
	coverage.fill(Qt::white);
	QPainter painter(&coverage);
	painter.setPen(Qt::black);
	DrawRuns(painter, text, origin - box.topLeft());
	painter.end();
	for (const QRect& clip : data.clip) {
		const QRect part = data.ToDevice(clip) & box;
		for (int32 y = part.top(); y <= part.bottom(); y++) {
			const uint32* mask =
				reinterpret_cast<const uint32*>(coverage.constScanLine(y - box.top()));
			for (int32 x = part.left(); x <= part.right(); x++) {
				const uint32 covered = ~mask[x - box.left()] & ~kOpaque;
				if (covered == 0)
					continue;
				data.Row(y)[x] = kOpaque |
					MixChannel(ink.high.red, ink.low.red, covered >> 16) << 16 |
					MixChannel(ink.high.green, ink.low.green, covered >> 8 & 0xff) << 8 |
					MixChannel(ink.high.blue, ink.low.blue, covered & 0xff);
			}
		}
	}
}

} // namespace

int32
CanvasData::Edge(int32 logical) const
{
	return scale == 1.0 ? logical : int32(std::floor(logical * scale + 0.5));
}

QRect
CanvasData::ToDevice(const QRect& logical) const
{
	if (scale == 1.0)
		return logical;
	return QRect(QPoint(Edge(logical.left()), Edge(logical.top())),
		QPoint(Edge(logical.right() + 1) - 1, Edge(logical.bottom() + 1) - 1));
}

QPainter&
CanvasData::Painter()
{
	if (!painter)
		painter.emplace(&image);
	if (!painterClipped) {
		if (clip.rectCount() == 1) {
			painter->setClipRect(ToDevice(clip.boundingRect()));
		} else {
			QRegion device;
			for (const QRect& rect : clip)
				device += ToDevice(rect);
			painter->setClipRegion(device);
		}
		painterClipped = true;
	}
	return *painter;
}

Canvas::Canvas(int32 width, int32 height, double scale) : fData(std::make_unique<CanvasData>())
{
	fData->scale = 0; // any scale is new
	Resize(width, height, scale);
}

Canvas::~Canvas() = default;

void
Canvas::Resize(int32 width, int32 height, double scale)
{
	CanvasData& data = *fData;
	const bool cleared = scale != data.scale;
	data.painter.reset();
	data.painterClipped = false;
	data.scale = scale;
	data.width = std::max(0, width);
	data.height = std::max(0, height);
	const int32 oldWidth = data.deviceWidth;
	const int32 oldHeight = data.deviceHeight;
	data.deviceWidth = std::clamp(data.Edge(data.width), 1, kMaxDeviceSize);
	data.deviceHeight = std::clamp(data.Edge(data.height), 1, kMaxDeviceSize);
	const int64 needed = int64(data.deviceWidth) * data.deviceHeight;
	if (data.deviceWidth > data.stride || data.deviceHeight > data.deviceRows ||
		needed * 2 < int64(data.stride) * data.deviceRows) {
		// A little more than asked for: a window that is being resized asks for many sizes.
		const int32 stride = (data.deviceWidth + 63) & ~63;
		const int32 rows = (data.deviceHeight + 31) & ~31;
		auto pixels = std::make_unique_for_overwrite<uint32[]>(size_t(stride) * size_t(rows));
		const size_t kept = size_t(std::min(oldWidth, data.deviceWidth)) * sizeof(uint32);
		for (int32 y = 0; !cleared && y < std::min(oldHeight, data.deviceHeight); y++)
			std::memcpy(pixels.get() + size_t(y) * size_t(stride), data.Row(y), kept);
		data.pixels = std::move(pixels);
		data.stride = stride;
		data.deviceRows = rows;
	}
	data.image = QImage(reinterpret_cast<uchar*>(data.pixels.get()), data.deviceWidth,
		data.deviceHeight, qsizetype(data.stride) * 4, QImage::Format_RGB32);
	data.clip = QRect(0, 0, data.width, data.height);
	if (cleared)
		std::fill_n(data.pixels.get(), size_t(data.stride) * size_t(data.deviceHeight), ~0u);
}

int32
Canvas::Width() const
{
	return fData->width;
}

int32
Canvas::Height() const
{
	return fData->height;
}

double
Canvas::Scale() const
{
	return fData->scale;
}

void
Canvas::SetClip(const PixelRegion& region)
{
	const QRect all(0, 0, fData->width, fData->height);
	QRegion clip = PixelRegionAccess::Of(region) & all;
	if (clip == fData->clip)
		return;
	fData->clip = std::move(clip);
	fData->painterClipped = false;
}

void
Canvas::FillRect(const PixelRect& rect, const Ink& ink)
{
	PaintClipped(*fData, ToQt(rect), ink);
}

void
Canvas::FillRegion(const PixelRegion& region, const Ink& ink)
{
	for (const QRect& part : PixelRegionAccess::Of(region) & fData->clip)
		Paint(*fData, part, ink);
}

void
Canvas::StrokeRect(const PixelRect& rect, const Ink& ink)
{
	if (rect.IsEmpty())
		return;
	FillRect({rect.left, rect.top, rect.right, rect.top}, ink);
	if (rect.bottom > rect.top)
		FillRect({rect.left, rect.bottom, rect.right, rect.bottom}, ink);
	FillRect({rect.left, rect.top + 1, rect.left, rect.bottom - 1}, ink);
	if (rect.right > rect.left)
		FillRect({rect.right, rect.top + 1, rect.right, rect.bottom - 1}, ink);
}

void
Canvas::StrokeLine(int32 x1, int32 y1, int32 x2, int32 y2, const Ink& ink)
{
	if (x1 == x2 || y1 == y2) {
		FillRect({std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)}, ink);
		return;
	}
	PaintSlanted(*fData, SlantedLine(*fData, x1, y1, x2, y2), ink);
}

void
Canvas::DrawText(
	float x, int32 baseline, const char* text, size_t length, const FontSpec& font, const Ink& ink)
{
	if (text == nullptr || length == 0 || fData->clip.isEmpty() || !WaitForDesktop())
		return;
	const auto shaped = FontCache::Current().Shape(font, fData->scale, {text, length});
	// Whole device pixels: the same string looks the same wherever it stands.
	const QPoint origin(int32(std::floor(x * fData->scale + 0.5)), fData->Edge(baseline));
	const QRect box = shaped->bounds.translated(origin).toAlignedRect().adjusted(-2, -2, 2, 2) &
		fData->ToDevice(fData->clip.boundingRect());
	if (box.isEmpty())
		return;
	if (ink.mode == B_OP_COPY && !IsFilledWith(*fData, box, ToPixel(ink.low))) {
		DrawTwoColoured(*fData, *shaped, origin, box, ink);
		return;
	}
	QPainter& painter = fData->Painter();
	painter.setPen(QColor(ink.high.red, ink.high.green, ink.high.blue));
	DrawRuns(painter, *shaped, origin);
}

bool
Canvas::MovesExactly(int32 dx, int32 dy) const
{
	const double moveX = dx * fData->scale;
	const double moveY = dy * fData->scale;
	return moveX == std::floor(moveX) && moveY == std::floor(moveY);
}

void
Canvas::MovePixels(const PixelRect& source, int32 dx, int32 dy)
{
	CanvasData& data = *fData;
	const QRect all(0, 0, data.width, data.height);
	const QRect to = ToQt(source).translated(dx, dy) & all & all.translated(dx, dy);
	if (to.isEmpty())
		return;
	if (!MovesExactly(dx, dy)) {
		MoveUneven(FromQt(to), dx, dy);
		return;
	}
	const QRect target = data.ToDevice(to);
	const QRect from = data.ToDevice(to.translated(-dx, -dy));
	const size_t bytes = size_t(target.width()) * sizeof(uint32);
	const bool upwards = dy <= 0;
	for (int32 i = 0; i < target.height(); i++) {
		const int32 y = upwards ? i : target.height() - 1 - i;
		std::memmove(data.Row(target.top() + y) + target.left(),
			data.Row(from.top() + y) + from.left(), bytes);
	}
}

// The device pixels that a logical one covers differ in number from place to place: each takes
// its nearest from the place where it comes from.
void
Canvas::MoveUneven(const PixelRect& to, int32 dx, int32 dy)
{
	CanvasData& data = *fData;
	const auto origins = [&data](int32 first, int32 last, int32 distance) {
		std::vector<int32> result;
		for (int32 i = first; i <= last; i++) {
			const int32 from = data.Edge(i - distance);
			const int32 count = data.Edge(i - distance + 1) - from;
			for (int32 j = 0; j < data.Edge(i + 1) - data.Edge(i); j++)
				result.push_back(from + std::min(j, count - 1));
		}
		return result;
	};
	const std::vector<int32> columns = origins(to.left, to.right, dx);
	const std::vector<int32> rows = origins(to.top, to.bottom, dy);
	const QImage before = data.image.copy();
	const QRect target = data.ToDevice(ToQt(to));
	for (size_t y = 0; y < rows.size(); y++) {
		const uint32* from = reinterpret_cast<const uint32*>(before.constScanLine(rows[y]));
		uint32* row = data.Row(target.top() + int32(y)) + target.left();
		for (size_t x = 0; x < columns.size(); x++)
			row[x] = from[columns[x]];
	}
}

uint32
Canvas::PixelAt(int32 deviceX, int32 deviceY) const
{
	if (deviceX < 0 || deviceX >= fData->deviceWidth || deviceY < 0 ||
		deviceY >= fData->deviceHeight)
		return 0;
	return fData->Row(deviceY)[deviceX] | kOpaque;
}

} // namespace desktop
