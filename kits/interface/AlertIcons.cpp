// SPDX-License-Identifier: MIT

// The icons of alerts, painted from plain shapes with smooth edges.

#include <interface/AlertPanel.h>

#include <interface/Bitmap.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr int32 kSize = 32; // the grid on which the shapes are drawn

struct Point {
	float x;
	float y;
};

// True inside.
using Shape = std::function<bool(Point)>;

Shape
Disc(float x, float y, float radius)
{
	return [=](Point p) { return std::hypot(p.x - x, p.y - y) <= radius; };
}

Shape
Box(float left, float top, float right, float bottom, float corner)
{
	return [=](Point p) {
		float dx = std::max({left + corner - p.x, p.x - right + corner, 0.0f});
		float dy = std::max({top + corner - p.y, p.y - bottom + corner, 0.0f});
		return std::hypot(dx, dy) <= corner;
	};
}

// A triangle that stands on its base, with round corners.
Shape
Triangle(Point top, float halfBase, float bottom, float corner)
{
	return [=](Point p) {
		float slope = halfBase / (bottom - top.y);
		float length = std::sqrt(1 + slope * slope);
		// Distances to the sides, negative inside.
		float side = (std::abs(p.x - top.x) - (p.y - top.y) * slope) / length + corner;
		float base = p.y - bottom + corner;
		if (side <= 0 && base <= 0)
			return true;
		// Outside the inner triangle: near one of its edges or corners?
		float innerTop = top.y + corner * length / slope;
		float innerHalf = (bottom - corner - innerTop) * slope;
		if (std::hypot(p.x - top.x, p.y - innerTop) <= corner)
			return true;
		if (std::hypot(std::abs(p.x - top.x) - innerHalf, base) <= corner)
			return true;
		float along = (std::abs(p.x - top.x) * slope + (p.y - innerTop)) / length;
		float edge = std::hypot(innerHalf, bottom - corner - innerTop);
		if (side > 0 && side <= corner && along >= 0 && along <= edge)
			return true;
		return base > 0 && base <= corner && std::abs(p.x - top.x) <= innerHalf;
	};
}

Shape
Octagon(float x, float y, float radius)
{
	return [=](Point p) {
		float dx = std::abs(p.x - x);
		float dy = std::abs(p.y - y);
		return std::max(dx, dy) <= radius && dx + dy <= radius * 1.4142f;
	};
}

class IconPainter {
public:
	// So many pixels in each direction.
	explicit IconPainter(int32 size) :
		fSize(size),
		fSamples(size > kSize ? 4 : 6),
		fPixels(static_cast<size_t>(size) * static_cast<size_t>(size))
	{}

	// Paints with a vertical run of colours, by how much of each pixel the shape covers.
	void Fill(const Shape& shape, rgb_color top, rgb_color bottom)
	{
		for (int32 y = 0; y < fSize; y++) {
			for (int32 x = 0; x < fSize; x++) {
				float cover = Coverage(shape, x, y);
				if (cover > 0)
					Blend(&fPixels[static_cast<size_t>(y * fSize + x)], Mix(top, bottom, y), cover);
			}
		}
	}
	void Fill(const Shape& shape, rgb_color color) { Fill(shape, color, color); }

	// Rows of 0xAARRGGBB, not premultiplied.
	const std::vector<uint32>& Pixels() const { return fPixels; }

private:
	float Coverage(const Shape& shape, int32 x, int32 y) const
	{
		const float samples = static_cast<float>(fSamples);
		const float unit = static_cast<float>(kSize) / static_cast<float>(fSize);
		int inside = 0;
		for (int i = 0; i < fSamples * fSamples; i++) {
			float dx = (static_cast<float>(i % fSamples) + 0.5f) / samples;
			float dy = (static_cast<float>(i / fSamples) + 0.5f) / samples;
			const Point point{
				(static_cast<float>(x) + dx) * unit, (static_cast<float>(y) + dy) * unit};
			inside += shape(point) ? 1 : 0;
		}
		return static_cast<float>(inside) / (samples * samples);
	}

	rgb_color Mix(rgb_color top, rgb_color bottom, int32 y) const
	{
		auto mix = [this, y](uint8 a, uint8 b) {
			return static_cast<uint8>((a * (fSize - 1 - y) + b * y) / (fSize - 1));
		};
		return {mix(top.red, bottom.red), mix(top.green, bottom.green), mix(top.blue, bottom.blue),
			255};
	}

	// Source over destination.
	static void Blend(uint32* pixel, rgb_color color, float cover)
	{
		const float below = static_cast<float>(*pixel >> 24) / 255 * (1 - cover);
		const float alpha = cover + below;
		auto blend = [&](uint8 part, int shift) {
			const float old = static_cast<float>(*pixel >> shift & 0xff);
			const float mixed = (static_cast<float>(part) * cover + old * below) / alpha;
			return static_cast<uint32>(std::lround(mixed)) << shift;
		};
		*pixel = static_cast<uint32>(std::lround(alpha * 255)) << 24 | blend(color.red, 16) |
			blend(color.green, 8) | blend(color.blue, 0);
	}

	int32 fSize;
	int fSamples; // for each pixel and direction
	std::vector<uint32> fPixels;
};

constexpr rgb_color kWhite = {255, 255, 255};
constexpr rgb_color kInk = {40, 36, 24};

void
PaintInfo(IconPainter& painter)
{
	painter.Fill(Disc(16, 16, 15), {24, 58, 120});
	painter.Fill(Disc(16, 16, 13.8f), {104, 160, 232}, {40, 92, 184});
	painter.Fill(Disc(16, 9, 2.4f), kWhite);
	painter.Fill(Box(13.8f, 13, 18.2f, 24.5f, 0.8f), kWhite);
	painter.Fill(Box(11.8f, 13, 16, 15.4f, 0.8f), kWhite);
	painter.Fill(Box(11.8f, 22.6f, 20.2f, 25, 0.8f), kWhite);
}

void
PaintIdea(IconPainter& painter)
{
	constexpr rgb_color kOutline = {140, 104, 16};
	constexpr rgb_color kGlassTop = {255, 244, 160};
	constexpr rgb_color kGlassBottom = {248, 200, 48};
	painter.Fill(Disc(16, 12, 11), kOutline);
	painter.Fill(Box(10.2f, 14, 21.8f, 23, 3), kOutline);
	painter.Fill(Disc(16, 12, 9.8f), kGlassTop, kGlassBottom);
	painter.Fill(Box(11.4f, 14, 20.6f, 22, 2.4f), kGlassTop, kGlassBottom);
	painter.Fill(Disc(12.5f, 8.5f, 2.6f), {255, 252, 228});
	painter.Fill(Box(11, 22, 21, 24.4f, 1.2f), {88, 88, 96});
	painter.Fill(Box(11, 25, 21, 27.4f, 1.2f), {120, 120, 128});
	painter.Fill(Box(12.4f, 28, 19.6f, 30.4f, 1.2f), {88, 88, 96});
}

void
PaintWarning(IconPainter& painter)
{
	painter.Fill(Triangle({16, -0.5f}, 18, 30.5f, 2.6f), {136, 96, 0});
	painter.Fill(Triangle({16, 2.4f}, 15.8f, 29.2f, 2), {255, 232, 96}, {248, 184, 24});
	painter.Fill(Box(14.2f, 10.5f, 17.8f, 20.5f, 1.6f), kInk);
	painter.Fill(Disc(16, 24.4f, 2.2f), kInk);
}

void
PaintStop(IconPainter& painter)
{
	painter.Fill(Octagon(16, 16, 15), {112, 16, 16});
	painter.Fill(Octagon(16, 16, 13.8f), {240, 96, 80}, {192, 32, 32});
	painter.Fill(Box(7.5f, 13.2f, 24.5f, 18.8f, 1.2f), kWhite);
}

desktop::Picture
PaintIcon(alert_type type, int32 size)
{
	IconPainter painter(size);
	switch (type) {
		case B_INFO_ALERT:
			PaintInfo(painter);
			break;
		case B_IDEA_ALERT:
			PaintIdea(painter);
			break;
		case B_WARNING_ALERT:
			PaintWarning(painter);
			break;
		case B_STOP_ALERT:
			PaintStop(painter);
			break;
		case B_EMPTY_ALERT:
			break;
	}
	return desktop::Picture(
		size, size, painter.Pixels().data(), static_cast<size_t>(size) * sizeof(uint32));
}

} // namespace

std::unique_ptr<BBitmap>
BPrivate::MakeAlertIcon(alert_type type)
{
	auto bitmap = std::make_unique<BBitmap>(BRect(0, 0, kSize - 1, kSize - 1), B_RGBA32);
	desktop::Picture picture = PaintIcon(type, kSize);
	picture.SetMaker([type](int32 width, int32) { return PaintIcon(type, width); });
	bitmap->SetPicture(picture);
	return bitmap;
}
