// SPDX-License-Identifier: MIT

// Pictures, and drawing them on a canvas.

#include "CanvasData.h"

#include "PixelRegionAccess.h"

#include <desktop/GuiThread.h>

namespace desktop {

QImage
PictureData::Scaled(const QRect& source, const QSize& size)
{
	std::lock_guard lock(fLock);
	if (fScaled.size() != size || fScaledSource != source) {
		const bool larger = size.width() > source.width();
		if (larger && fMakeDouble) {
			const Picture twice = std::exchange(fMakeDouble, nullptr)();
			if (twice.IsValid() && twice.fData->image.size() == image.size() * 2)
				fDouble = twice.fData->image;
		}
		const bool useDouble = larger && !fDouble.isNull();
		const QRect part(source.topLeft() * 2, source.size() * 2);
		const QImage pixels = useDouble ? fDouble.copy(part) : image.copy(source);
		fScaled = pixels.size() == size
			? pixels
			: pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
		fScaledSource = source;
	}
	return fScaled;
}

QImage
PictureData::ImageOf(const Picture& picture)
{
	return picture.fData != nullptr ? picture.fData->image : QImage();
}

void
PictureData::SetDouble(std::function<Picture()> make)
{
	std::lock_guard lock(fLock);
	fMakeDouble = std::move(make);
}

Picture::Picture() = default;

Picture::Picture(int32 width, int32 height, const uint32* pixels, size_t bytesPerRow)
{
	if (width <= 0 || height <= 0)
		return;
	const QImage rows(reinterpret_cast<const uchar*>(pixels), width, height, qsizetype(bytesPerRow),
		QImage::Format_ARGB32);
	fData =
		std::make_shared<PictureData>(rows.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

Picture::Picture(const Picture&) = default;
Picture& Picture::operator=(const Picture&) = default;
Picture::~Picture() = default;

bool
Picture::IsValid() const
{
	return fData != nullptr && !fData->image.isNull();
}

int32
Picture::Width() const
{
	return IsValid() ? fData->image.width() : 0;
}

int32
Picture::Height() const
{
	return IsValid() ? fData->image.height() : 0;
}

void
Picture::SetDouble(std::function<Picture()> make)
{
	if (IsValid())
		fData->SetDouble(std::move(make));
}

void
Canvas::DrawPicture(
	const Picture& picture, const PixelRect& source, const PixelRect& dest, drawing_mode mode)
{
	if (!picture.IsValid() || dest.IsEmpty())
		return;
	const QRect part = ToQt(source) & picture.fData->image.rect();
	const QRect target = fData->ToDevice(ToQt(dest));
	if (part.isEmpty() || target.isEmpty() || part != ToQt(source))
		return;
	if (mode == B_OP_COPY) {
		Ink white;
		white.high = {255, 255, 255, 255};
		FillRect(dest, white);
	}
	if (!WaitForDesktop()) // a painter asks the application for its font
		return;
	QPainter& painter = fData->Painter();
	if (part.size() == target.size())
		painter.drawImage(target.topLeft(), picture.fData->image, part);
	else
		painter.drawImage(target.topLeft(), picture.fData->Scaled(part, target.size()));
}

} // namespace desktop
