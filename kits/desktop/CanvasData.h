// SPDX-License-Identifier: MIT

// The pixels of a canvas. Internal to this folder.

#pragma once

#include <desktop/Canvas.h>

#include <QImage>
#include <QPainter>
#include <QRegion>

#include <deque>
#include <mutex>
#include <optional>

namespace desktop {

struct PictureData {
	explicit PictureData(QImage pixels) : image(std::move(pixels)) {}

	void SetMaker(Picture::Maker make);
	// Part of the picture in another size; remembers the last ones, for icons on scaled screens.
	QImage Scaled(const QRect& source, const QSize& size);

	static QImage ImageOf(const Picture& picture); // null without one

	const QImage image; // premultiplied

private:
	struct Copy {
		QRect source;
		QImage pixels;
	};

	QImage Make(const QRect& source, const QSize& size);

	std::mutex fLock; // pictures are shared by threads; guards the fields below
	Picture::Maker fMake;
	std::deque<Copy> fScaled; // the newest last
};

struct CanvasData {
	int32 Edge(int32 logical) const;
	QRect ToDevice(const QRect& logical) const;
	uint32* Row(int32 deviceY) { return pixels.get() + size_t(deviceY) * size_t(stride); }
	const uint32* Row(int32 deviceY) const
	{
		return pixels.get() + size_t(deviceY) * size_t(stride);
	}
	// Limited to the clip; kept open between calls, since it draws into memory that is ours.
	QPainter& Painter();

	int32 width = 0; // logical
	int32 height = 0;
	double scale = 1;
	int32 deviceWidth = 0;
	int32 deviceHeight = 0;
	int32 stride = 0;                 // pixels from row to row
	int32 deviceRows = 0;             // rows there is memory for
	std::unique_ptr<uint32[]> pixels; // 0xffRRGGBB
	QImage image;                     // looks at `pixels`
	QRegion clip;                     // logical
	std::optional<QPainter> painter;
	bool painterClipped = false; // the painter knows `clip`
};

} // namespace desktop
