// SPDX-License-Identifier: MIT

// The desktop's side of a window: its picture.

#include "WindowPeer.h"

#include "CanvasData.h"
#include "Drag.h"
#include "PopUps.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QTimerEvent>

#include <cstring>
#include <utility>

namespace desktop {

namespace {

// How long a resized window keeps its old picture instead of a padded one.
constexpr int kPictureDelay = 40; // ms
constexpr QRgb kPadding = qRgb(216, 216, 216);

Qt::WindowFlags
FlagsFor(const NativeWindow::Options& options)
{
	if (options.kind == WindowKind::kPopUp)
		return Qt::Popup | Qt::FramelessWindowHint;
	Qt::WindowFlags flags = options.kind == WindowKind::kDialog ? Qt::Dialog : Qt::Window;
	if (options.closable && options.resizable)
		return flags;
	flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
	if (options.closable)
		flags |= Qt::WindowCloseButtonHint;
	if (options.resizable)
		flags |= Qt::WindowMinMaxButtonsHint;
	else if (options.kind == WindowKind::kTitled)
		flags |= Qt::WindowMinimizeButtonHint;
	return flags;
}

bool
IsOnWayland()
{
	return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool
HasFullPixels(const QImage& image)
{
	return image.format() == QImage::Format_RGB32 ||
		image.format() == QImage::Format_ARGB32_Premultiplied;
}

} // namespace

PeerWindow::PeerWindow(WindowClient& client, const PixelRect& frame, const std::string& title,
	const NativeWindow::Options& options) :
	fClient(client),
	fStore(this),
	fResizable(options.resizable),
	fIsPopUp(options.kind == WindowKind::kPopUp),
	fToldSize(frame.Width(), frame.Height()),
	fToldScale(devicePixelRatio())
{
	setSurfaceType(RasterSurface);
	setFlags(FlagsFor(options));
	setTitle(QString::fromUtf8(title.c_str()));
	setPosition(frame.left, frame.top); // of the content: the decoration goes around it
	ResizeContent(fToldSize);
}

PeerWindow::~PeerWindow()
{
	// The display server would tell nobody of the release.
	CancelDragOf(*this);
	PopUpClosed(*this);
}

void
PeerWindow::ResizeContent(const QSize& size)
{
	if (!fResizable) {
		setMinimumSize(size);
		setMaximumSize(size);
	}
	resize(size);
}

// The window that a dialog has to stay above: else it could be lost behind one that takes no input.
QWindow*
PeerWindow::WindowBehind() const
{
	QWindow* behind = QGuiApplication::focusWindow();
	if (behind != nullptr && behind != this && behind->isVisible())
		return behind;
	behind = nullptr;
	for (QWindow* window : QGuiApplication::topLevelWindows()) {
		if (window != this && window->isVisible())
			behind = window;
	}
	return behind;
}

void
PeerWindow::ShowFirst(const CanvasData& canvas, QWindow* parent)
{
	if (parent == nullptr && fIsPopUp)
		parent = PopUpParent();
	if (parent == nullptr && type() != Qt::Window)
		parent = WindowBehind();
	setTransientParent(parent);
	create();
	const QRect all(0, 0, canvas.width, canvas.height);
	TakePicture(canvas, all);
	show();
	// Where programs decorate their windows themselves, Qt makes the decoration when a window is
	// painted that is shown already.
	if (IsOnWayland())
		TakePicture(canvas, all);
	if (fIsPopUp)
		PopUpOpened(*this);
}

void
PeerWindow::hideEvent(QHideEvent*)
{
	PopUpClosed(*this);
}

void
PeerWindow::Activate()
{
	raise();
	requestActivate();
	// Wayland's compositors give the keys to new windows, not to those that ask for them.
	if (IsOnWayland() && type() == Qt::Dialog && isVisible() && !isActive()) {
		hide();
		setTransientParent(WindowBehind());
		show();
	}
}

QImage*
PeerWindow::StoreImage()
{
	QPaintDevice* device = fStore.paintDevice();
	return device != nullptr && device->devType() == QInternal::Image ? static_cast<QImage*>(device)
																	  : nullptr;
}

void
PeerWindow::TakePicture(const CanvasData& canvas, const QRegion& region, const QRegion& inverted)
{
	if (handle() == nullptr)
		return; // ShowFirst() brings everything; Wayland's pictures need the surface anyway
	const QSize size(canvas.width, canvas.height);
	QRegion part = region & QRect(QPoint(), size);
	// A picture that is late for another resize must not undo the padding of the newer size.
	const bool resized = fStore.size() != size && (size == this->size() || fStore.size().isEmpty());
	if (resized || (canvas.scale != fStoreScale && canvas.scale == devicePixelRatio())) {
		fStore.resize(size); // in device pixels, also when the logical size is the same
		fStoreScale = canvas.scale;
		part = QRect(QPoint(), size);
	}
	part &= QRect(QPoint(), fStore.size());
	if (part.isEmpty())
		return;
	fStore.beginPaint(part);
	if (IsNewStore())
		part = QRect(QPoint(), fStore.size());
	CopyPixels(canvas, part);
	if (!inverted.isEmpty())
		InvertPixels(part & inverted);
	fStore.endPaint();
	if (size == this->size() && fLatePicture.isActive()) {
		fLatePicture.stop();
		FlushAll();
	} else if (isExposed()) {
		fStore.flush(part);
	}
}

// Whether the picture that is being painted lost the old one's pixels: on Wayland a decoration that
// comes or goes needs memory of another size, which Qt leaves empty. Seen by the length of rows.
bool
PeerWindow::IsNewStore()
{
	const QImage* image = StoreImage();
	const qsizetype rowLength = image != nullptr ? image->bytesPerLine() : 0;
	return std::exchange(fStoreRowLength, rowLength) != rowLength;
}

void
PeerWindow::CopyPixels(const CanvasData& canvas, const QRegion& region)
{
	QImage* target = StoreImage();
	// A window that has just come to another screen may still get a picture for the last one.
	if (target == nullptr || !HasFullPixels(*target) ||
		target->devicePixelRatio() != canvas.scale) {
		QPainter painter(fStore.paintDevice());
		painter.setCompositionMode(QPainter::CompositionMode_Source);
		QImage source = canvas.image;
		source.setDevicePixelRatio(canvas.scale);
		painter.setClipRegion(region);
		painter.drawImage(0, 0, source);
		return;
	}
	const QRect both = target->rect() & QRect(0, 0, canvas.deviceWidth, canvas.deviceHeight);
	uchar* const bits = target->bits();
	for (const QRect& rect : region) {
		const QRect part = canvas.ToDevice(rect) & both;
		const size_t bytes = size_t(part.width()) * sizeof(uint32);
		for (int32 y = part.top(); y <= part.bottom(); y++)
			std::memcpy(bits + y * target->bytesPerLine() + part.left() * 4,
				canvas.Row(y) + part.left(), bytes);
	}
}

void
PeerWindow::InvertPixels(const QRegion& region)
{
	QPainter painter(fStore.paintDevice());
	painter.setCompositionMode(QPainter::CompositionMode_Difference);
	for (const QRect& rect : region)
		painter.fillRect(rect, Qt::white);
}

void
PeerWindow::FlushAll()
{
	if (isExposed())
		fStore.flush(QRect(QPoint(), size()));
}

// Fills what the last picture lacks of the window.
void
PeerWindow::PadPicture()
{
	if (fStore.size() == size() || fStore.size().isEmpty())
		return;
	const QImage old = Picture();
	fStore.resize(size());
	fStore.beginPaint(QRect(QPoint(), size()));
	if (QPaintDevice* device = fStore.paintDevice()) {
		QPainter painter(device);
		painter.fillRect(QRect(QPoint(), size()), QColor(kPadding));
		painter.drawImage(0, 0, old);
	}
	fStore.endPaint();
	FlushAll();
}

QImage
PeerWindow::Picture()
{
	const QImage* image = StoreImage();
	return image != nullptr && !fStore.size().isEmpty() ? image->copy() : QImage();
}

void
PeerWindow::paintEvent(QPaintEvent* event)
{
	TellSize();
	if (!isExposed())
		return;
	if (fStore.size() == size()) {
		fStore.flush(event->region());
	} else if (!fLatePicture.isActive()) {
		// The picture of the new size is on its way. Until then the old pixels stay where they
		// are; showing them once more would only tell the window manager that we are ready.
		fLatePicture.start(kPictureDelay, this);
	}
}

void
PeerWindow::timerEvent(QTimerEvent* event)
{
	if (event->timerId() != fLatePicture.timerId()) {
		QWindow::timerEvent(event);
		return;
	}
	fLatePicture.stop();
	PadPicture();
}

void
PeerWindow::TellSize()
{
	const double scale = devicePixelRatio();
	if (size() == fToldSize && scale == fToldScale)
		return;
	fToldSize = size();
	fToldScale = scale;
	fClient.WindowResized(width(), height(), scale);
}

void
PeerWindow::resizeEvent(QResizeEvent*)
{
	TellSize();
}

void
PeerWindow::moveEvent(QMoveEvent* event)
{
	TellSize(); // another screen may have another scale
	fClient.WindowMoved(event->pos().x(), event->pos().y());
}

} // namespace desktop
