// SPDX-License-Identifier: MIT

// Pictures, and drawing them on a canvas.

#include "CanvasData.h"

#include "PixelRegionAccess.h"

#include <desktop/GuiThread.h>

namespace desktop {

namespace {

// Windows on screens of different scales take turns.
constexpr size_t kMaxScaled = 4;

} // namespace

QImage
PictureData::Scaled(const QRect& source, const QSize& size)
{
	std::lock_guard lock(fLock);
	for (const Copy& copy : fScaled) {
		if (copy.source == source && copy.pixels.size() == size)
			return copy.pixels;
	}
	QImage pixels = Make(source, size);
	if (pixels.isNull())
		pixels = image.copy(source).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
	if (fScaled.size() >= kMaxScaled)
		fScaled.pop_front();
	fScaled.push_back({source, pixels});
	return pixels;
}

// Null when there is nothing better than the picture itself.
QImage
PictureData::Make(const QRect& source, const QSize& size)
{
	if (!fMake || size.width() <= source.width() || size.height() <= source.height())
		return {};
	const QSize whole(image.width() * size.width() / source.width(),
		image.height() * size.height() / source.height());
	const Picture made = fMake(whole.width(), whole.height());
	if (!made.IsValid() || made.fData->image.size() != whole)
		return {};
	const QPoint corner(source.left() * size.width() / source.width(),
		source.top() * size.height() / source.height());
	return made.fData->image.copy(QRect(corner, size));
}

QImage
PictureData::ImageOf(const Picture& picture)
{
	return picture.fData != nullptr ? picture.fData->image : QImage();
}

void
PictureData::SetMaker(Picture::Maker make)
{
	std::lock_guard lock(fLock);
	fMake = std::move(make);
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
Picture::SetMaker(Maker make)
{
	if (IsValid())
		fData->SetMaker(std::move(make));
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
