// SPDX-License-Identifier: MIT

// Icons drawn on a grid of 16 by 16 units, with outlines one pixel wide in every size.

#include "BuiltinIcons.h"

#include <desktop/GuiThread.h>

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <utility>

namespace desktop {

namespace {

constexpr int kGrid = 16;

const QColor kPageLine(96, 100, 112);
const QColor kInk(60, 72, 104);

class Sketch {
public:
	explicit Sketch(int32 size) :
		fImage(size, size, QImage::Format_ARGB32_Premultiplied), fPixel(double(kGrid) / size)
	{
		fImage.fill(Qt::transparent);
		WaitForDesktop(); // a painter asks the application for its font
		fPainter.begin(&fImage);
		fPainter.setRenderHint(QPainter::Antialiasing);
		fPainter.scale(1 / fPixel, 1 / fPixel);
	}

	// Fills the outline and draws its line inside of it. Edges in the left half are left edges,
	// those in the upper half upper ones.
	void Shape(const QPolygonF& outline, const QBrush& fill, const QColor& line)
	{
		auto inside = [this](double at) {
			return Whole(at) + (at < kGrid / 2 ? fPixel : -fPixel) / 2;
		};
		QPolygonF inset;
		for (const QPointF& point : outline)
			inset << QPointF(inside(point.x()), inside(point.y()));
		QPen pen(line, fPixel);
		pen.setJoinStyle(Qt::MiterJoin);
		fPainter.setPen(pen);
		fPainter.setBrush(fill);
		fPainter.drawPolygon(inset);
	}

	void Fill(const QPolygonF& outline, const QBrush& fill)
	{
		fPainter.setPen(Qt::NoPen);
		fPainter.setBrush(fill);
		fPainter.drawPolygon(outline);
	}
	void Box(double left, double top, double right, double bottom, const QBrush& fill)
	{
		fPainter.fillRect(
			QRectF(QPointF(Whole(left), Whole(top)), QPointF(Whole(right), Whole(bottom))), fill);
	}
	void Disc(double x, double y, double across, double down, const QBrush& fill)
	{
		fPainter.setPen(Qt::NoPen);
		fPainter.setBrush(fill);
		fPainter.drawEllipse(QPointF(x, y), across, down);
	}
	void Stroke(const QPainterPath& path, const QColor& color, double width)
	{
		fPainter.setBrush(Qt::NoBrush);
		fPainter.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
		fPainter.drawPath(path);
	}

	double Pixel() const { return fPixel; } // its side in units

	QImage Take()
	{
		fPainter.end();
		return std::move(fImage);
	}

private:
	// The nearest place between two pixels: edges there are sharp.
	double Whole(double at) const { return std::floor(at / fPixel + 0.5) * fPixel; }

	QImage fImage;
	double fPixel;
	QPainter fPainter;
};

QPolygonF
Rectangle(double left, double top, double right, double bottom)
{
	return QPolygonF({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

QBrush
Downwards(double top, double bottom, const QColor& from, const QColor& to)
{
	QLinearGradient run(0, top, 0, bottom);
	run.setColorAt(0, from);
	run.setColorAt(1, to);
	return run;
}

void
DrawFolder(Sketch& sketch)
{
	const QColor line(140, 98, 20);
	const double pixel = sketch.Pixel();
	sketch.Shape(QPolygonF({{1, 2}, {5, 2}, {7, 4}, {15, 4}, {15, 14}, {1, 14}}),
		QColor(232, 180, 64), line);
	// The flap in front, lit from the upper left.
	sketch.Shape(Rectangle(0, 6, 16, 14), Downwards(6, 14, {255, 228, 136}, {244, 192, 76}), line);
	sketch.Box(pixel, 6 + pixel, 16 - pixel, 6 + 2 * pixel, QColor(255, 246, 204));
	sketch.Box(pixel, 6 + pixel, 2 * pixel, 14 - pixel, QColor(255, 246, 204));
}

// A sheet with a folded corner.
void
DrawPage(Sketch& sketch)
{
	sketch.Shape(QPolygonF({{2, 0}, {10, 0}, {14, 4}, {14, 16}, {2, 16}}),
		Downwards(0, 16, {255, 255, 255}, {232, 234, 240}), kPageLine);
	sketch.Shape(QPolygonF({{10, 0}, {10, 4}, {14, 4}}), QColor(208, 212, 222), kPageLine);
}

void
DrawText(Sketch& sketch)
{
	DrawPage(sketch);
	const QColor line(124, 140, 180);
	sketch.Box(4, 4, 8, 5, line);
	for (int y = 6; y <= 12; y += 2)
		sketch.Box(4, y, y == 12 ? 9 : 12, y + 1, line);
}

void
DrawImage(Sketch& sketch)
{
	sketch.Shape(Rectangle(0, 2, 16, 15), QColor(255, 255, 255), kPageLine);
	sketch.Box(2, 4, 14, 13, Downwards(4, 13, {88, 152, 232}, {196, 224, 252}));
	sketch.Disc(11.5, 6.5, 1.5, 1.5, QColor(255, 224, 96));
	sketch.Fill(QPolygonF({{2, 11}, {6, 7}, {12, 13}, {2, 13}}), QColor(64, 132, 72));
	sketch.Fill(QPolygonF({{7, 13}, {11, 9}, {14, 12}, {14, 13}}), QColor(96, 168, 88));
}

void
DrawAudio(Sketch& sketch)
{
	DrawPage(sketch);
	const QColor note(120, 64, 160);
	sketch.Fill(QPolygonF({{6, 6}, {12, 5}, {12, 7}, {6, 8}}), note);
	sketch.Box(6, 6, 7, 13, note);
	sketch.Box(11, 5, 12, 12, note);
	sketch.Disc(5.5, 12.5, 1.5, 1.25, note);
	sketch.Disc(10.5, 11.5, 1.5, 1.25, note);
}

void
DrawVideo(Sketch& sketch)
{
	sketch.Shape(Rectangle(0, 2, 16, 14), QColor(56, 60, 72), QColor(32, 34, 42));
	for (int x = 2; x < 15; x += 3) {
		sketch.Box(x, 3, x + 1, 4, QColor(224, 228, 236));
		sketch.Box(x, 12, x + 1, 13, QColor(224, 228, 236));
	}
	sketch.Box(1, 5, 15, 11, Downwards(5, 11, {112, 168, 224}, {64, 112, 184}));
	sketch.Fill(QPolygonF({{6, 5.5}, {11, 8}, {6, 10.5}}), QColor(255, 255, 255));
}

void
DrawArchive(Sketch& sketch)
{
	const QColor line(112, 72, 32);
	sketch.Shape(Rectangle(1, 5, 15, 15), Downwards(5, 15, {224, 176, 116}, {196, 140, 80}), line);
	sketch.Shape(QPolygonF({{2, 1}, {14, 1}, {16, 6}, {0, 6}}), QColor(236, 200, 148), line);
	sketch.Fill(QPolygonF({{6.5, 1 + sketch.Pixel()}, {9.5, 1 + sketch.Pixel()}, {10, 9}, {6, 9}}),
		QColor(248, 236, 208));
	sketch.Box(4, 12, 7, 13, line);
}

void
DrawProgram(Sketch& sketch)
{
	sketch.Shape(Rectangle(0, 2, 16, 14), QColor(252, 252, 252), kPageLine);
	sketch.Box(1, 3, 15, 5, Downwards(3, 5, {112, 160, 232}, {72, 120, 200}));
	sketch.Box(12, 3.5, 13, 4.5, QColor(255, 255, 255));
	QPainterPath prompt;
	prompt.moveTo(3, 7);
	prompt.lineTo(5.5, 9.25);
	prompt.lineTo(3, 11.5);
	sketch.Stroke(prompt, kInk, 1.25);
	sketch.Box(7, 11, 12, 12, kInk);
}

void
DrawUnknown(Sketch& sketch)
{
	DrawPage(sketch);
	QPainterPath mark;
	mark.moveTo(5.5, 8);
	mark.arcTo(QRectF(5.5, 5.75, 5, 4.5), 180, -235);
	mark.lineTo(8, 12.25);
	sketch.Stroke(mark, kInk, 1.5);
	sketch.Disc(8, 13.75, 1, 1, kInk);
}

// The small box in the lower left corner that tells of a link.
void
DrawBadge(Sketch& sketch)
{
	sketch.Shape(Rectangle(0, 7, 9, 16), QColor(255, 255, 255), QColor(64, 68, 80));
}

void
DrawLink(Sketch& sketch)
{
	const QColor arrow(24, 80, 184);
	DrawPage(sketch);
	DrawBadge(sketch);
	sketch.Fill(QPolygonF({{3, 9}, {7, 9}, {7, 13}}), arrow);
	QPainterPath shaft;
	shaft.moveTo(2.25, 14);
	shaft.quadTo(2.25, 12, 5.5, 10.5);
	sketch.Stroke(shaft, arrow, 1.5);
}

void
DrawBrokenLink(Sketch& sketch)
{
	const QColor red(204, 24, 24);
	DrawPage(sketch);
	DrawBadge(sketch);
	QPainterPath cross;
	cross.moveTo(2, 9);
	cross.lineTo(7, 14);
	cross.moveTo(7, 9);
	cross.lineTo(2, 14);
	sketch.Stroke(cross, red, 1.75);
}

} // namespace

QImage
DrawBuiltinIcon(BuiltinIcon icon, int32 size)
{
	static constexpr void (*kDraw[])(Sketch&) = {DrawFolder, DrawLink, DrawBrokenLink, DrawText,
		DrawImage, DrawAudio, DrawVideo, DrawArchive, DrawProgram, DrawUnknown};
	if (!WaitForDesktop()) { // a painter asks the application for its font
		QImage none(size, size, QImage::Format_ARGB32_Premultiplied);
		none.fill(Qt::transparent);
		return none;
	}
	Sketch sketch(size);
	kDraw[size_t(icon)](sketch);
	return sketch.Take();
}

} // namespace desktop
