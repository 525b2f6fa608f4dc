// SPDX-License-Identifier: MIT

#include "bench/User.h"

#include "bench/BenchWindow.h"

#include <desktop/GuiThread.h>
#include <interface/InterfaceDefs.h>

#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPixmap>
#include <QScreen>
#include <QWindow>

#include <set>

using desktop::CallGui;

namespace {

constexpr int kLeastMark = 13; // pixels from top to bottom
constexpr int kMostMark = 20;
constexpr int kLeft = 10; // where names are
constexpr int kWidth = 160;
constexpr bigtime_t kInterval = 1000;

int
QtKey(char key)
{
	switch (key) {
		case B_UP_ARROW:
			return Qt::Key_Up;
		case B_DOWN_ARROW:
			return Qt::Key_Down;
	}
	return Qt::Key_unknown;
}

} // namespace

User::User(const char* title, uint32 mark) : fMark(mark)
{
	CallGui([&] {
		for (QWindow* window : QGuiApplication::topLevelWindows()) {
			if (window->title() == QLatin1String(title))
				fWindow = window;
		}
	});
	if (fWindow == nullptr || Selected().size() != 1) {
		fprintf(stderr, "%s shows no selected row\n", title);
		exit(1);
	}
}

void
User::SendKey(char key) const
{
	CallGui([&] {
		for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
			QKeyEvent event(type, QtKey(key), Qt::NoModifier);
			QCoreApplication::sendEvent(fWindow, &event);
		}
	});
}

// Tops of what has the colour of a mark and its height, which no letter has. Of rows cut by an edge
// less is seen.
User::Rows
User::Selected() const
{
	QImage image;
	CallGui([&] {
		image = fWindow->screen()
					->grabWindow(fWindow->winId(), kLeft, 0, kWidth, fWindow->height())
					.toImage()
					.convertToFormat(QImage::Format_RGB32);
	});
	std::set<int> tops;
	std::vector<int> lengths(static_cast<size_t>(image.width())); // of the runs so far
	for (int y = 0; y < image.height(); y++) {
		const QRgb* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
		for (int& length : lengths) {
			if (*line++ == fMark) {
				length++;
				continue;
			}
			if (length >= kLeastMark && length <= kMostMark)
				tops.insert(y - length);
			length = 0;
		}
	}
	return Rows(tops.begin(), tops.end());
}

double
User::Press(char key, const std::function<bool(const Rows&)>& isShown) const
{
	const bigtime_t start = system_time();
	SendKey(key);
	while (!isShown(Selected())) {
		if (Milliseconds(start) > kNever)
			return kNever;
		snooze(kInterval);
	}
	return Milliseconds(start);
}
