// SPDX-License-Identifier: MIT

// The icons of alerts, painted from plain shapes with smooth edges.

#include <interface/AlertPanel.h>

#include <interface/Bitmap.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

constexpr int32 kSize = 32;
constexpr int kSamples = 6; // per pixel and direction

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
	IconPainter() : fBitmap(std::make_unique<BBitmap>(BRect(0, 0, kSize - 1, kSize - 1), B_RGBA32))
	{}

	// Paints with a vertical run of colours, by how much of each pixel the shape covers.
	void Fill(const Shape& shape, rgb_color top, rgb_color bottom)
	{
		uint8* bits = static_cast<uint8*>(fBitmap->Bits());
		for (int32 y = 0; y < kSize; y++) {
			for (int32 x = 0; x < kSize; x++) {
				float cover = Coverage(shape, x, y);
				if (cover > 0)
					Blend(bits + y * fBitmap->BytesPerRow() + x * 4, Mix(top, bottom, y), cover);
			}
		}
	}
	void Fill(const Shape& shape, rgb_color color) { Fill(shape, color, color); }

	std::unique_ptr<BBitmap> Take() { return std::move(fBitmap); }

private:
	static float Coverage(const Shape& shape, int32 x, int32 y)
	{
		int inside = 0;
		for (int i = 0; i < kSamples * kSamples; i++) {
			float dx = (static_cast<float>(i % kSamples) + 0.5f) / kSamples;
			float dy = (static_cast<float>(i / kSamples) + 0.5f) / kSamples;
			inside += shape({static_cast<float>(x) + dx, static_cast<float>(y) + dy}) ? 1 : 0;
		}
		return static_cast<float>(inside) / (kSamples * kSamples);
	}

	static rgb_color Mix(rgb_color top, rgb_color bottom, int32 y)
	{
		auto mix = [y](uint8 a, uint8 b) {
			return static_cast<uint8>((a * (kSize - 1 - y) + b * y) / (kSize - 1));
		};
		return {mix(top.red, bottom.red), mix(top.green, bottom.green), mix(top.blue, bottom.blue),
			255};
	}

	// Source over destination; colours are not premultiplied.
	static void Blend(uint8* pixel, rgb_color color, float cover)
	{
		float below = static_cast<float>(pixel[3]) / 255 * (1 - cover);
		float alpha = cover + below;
		const uint8 parts[3] = {color.blue, color.green, color.red};
		for (int i = 0; i < 3; i++) {
			float mixed =
				(static_cast<float>(parts[i]) * cover + static_cast<float>(pixel[i]) * below) /
				alpha;
			pixel[i] = static_cast<uint8>(std::lround(mixed));
		}
		pixel[3] = static_cast<uint8>(std::lround(alpha * 255));
	}

	std::unique_ptr<BBitmap> fBitmap;
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

} // namespace

std::unique_ptr<BBitmap>
BPrivate::MakeAlertIcon(alert_type type)
{
	IconPainter painter;
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
	return painter.Take();
}
