// SPDX-License-Identifier: MIT

// The screen, its cursor and its bell.

#include <desktop/GuiThread.h>
#include <desktop/Pixels.h>

#include "PixelRegionAccess.h"

#include <QBitmap>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <array>
#include <cmath>
#include <cstring>
#include <dlfcn.h>

struct xcb_connection_t;

namespace desktop {

namespace {

constexpr int32 kCursorSize = 16;
constexpr size_t kCursorBytes = 68;
constexpr bigtime_t kClickSpeed = 500000;

using CursorData = std::array<unsigned char, kCursorBytes>;

bool
IsOnX11()
{
	return QGuiApplication::platformName() == QLatin1String("xcb");
}

QImage
CursorImage(const CursorData& data)
{
	QImage image(kCursorSize, kCursorSize, QImage::Format_ARGB32_Premultiplied);
	for (int32 y = 0; y < kCursorSize; y++) {
		for (int32 x = 0; x < kCursorSize; x++) {
			const size_t byte = 4 + size_t(y) * 2 + size_t(x) / 8;
			const int bit = 0x80 >> (x & 7);
			const bool black = (data[byte] & bit) != 0;
			const bool visible = (data[byte + 32] & bit) != 0;
			image.setPixel(x, y, visible ? (black ? 0xff000000 : 0xffffffff) : 0);
		}
	}
	return image;
}

void
ShowCursor(const CursorData& data)
{
	const int factor = std::max(1, int(std::lround(qGuiApp->devicePixelRatio())));
	const QImage image = CursorImage(data).scaled(kCursorSize * factor, kCursorSize * factor);
	QPixmap pixmap = QPixmap::fromImage(image);
	pixmap.setDevicePixelRatio(factor);
	// Qt's X11 plugin takes the place of the hot spot for one in the pixmap's own pixels.
	const int hotFactor = IsOnX11() ? factor : 1;
	const QCursor cursor(pixmap, data[3] * hotFactor, data[2] * hotFactor);
	if (QGuiApplication::overrideCursor() != nullptr)
		QGuiApplication::changeOverrideCursor(cursor);
	else
		QGuiApplication::setOverrideCursor(cursor);
}

} // namespace

PixelRect
ScreenFrame()
{
	PixelRect frame{0, 0, 1023, 767};
	CallGui([&frame] {
		if (const QScreen* screen = QGuiApplication::primaryScreen())
			frame = FromQt(screen->geometry());
	});
	return frame;
}

bigtime_t
ClickSpeed()
{
	return kClickSpeed;
}

void
Beep()
{
	PostGui([] {
		// Qt Gui has no call for the bell; the library is loaded already by Qt's X11 plugin.
		// The offscreen platform answers too, with a connection that is none.
		const auto* x11 =
			IsOnX11() ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
		void* library = x11 ? dlopen("libxcb.so.1", RTLD_LAZY | RTLD_NOLOAD) : nullptr;
		if (library == nullptr)
			return;
		using Cookie = struct {
			unsigned int sequence;
		};
		const auto bell = reinterpret_cast<Cookie (*)(xcb_connection_t*, signed char)>(
			dlsym(library, "xcb_bell"));
		const auto flush =
			reinterpret_cast<int (*)(xcb_connection_t*)>(dlsym(library, "xcb_flush"));
		if (bell != nullptr && flush != nullptr) {
			bell(x11->connection(), 0);
			flush(x11->connection());
		}
		dlclose(library);
	});
}

void
SetCursor(const unsigned char* data)
{
	if (data == nullptr) {
		PostGui([] { QGuiApplication::restoreOverrideCursor(); });
		return;
	}
	CursorData copy;
	std::memcpy(copy.data(), data, kCursorBytes);
	PostGui([copy] { ShowCursor(copy); });
}

} // namespace desktop
