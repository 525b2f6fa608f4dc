// SPDX-License-Identifier: MIT

// Drags: those that our windows begin, and all that come over them.

#include "Drag.h"

#include "CanvasData.h"
#include "ContentMimeData.h"
#include "Input.h"
#include "WindowPeer.h"

#include <kernel/OS.h>

#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QTimer>

#include <algorithm>
#include <map>

namespace desktop {

namespace {

constexpr int kLargestSide = 600; // of the image
// Instead of more rows, which would cover the screen, and cost three times as much to move.
constexpr int kManyRowsHeight = 100;
constexpr Qt::DropActions kActions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;

struct OwnDrag {
	std::shared_ptr<const Content> content;
	const WindowPeer* source;
};

OwnDrag* sOwn = nullptr; // while one is under way

// What another program drags, as far as we can use it: fetched when it comes, since it may be gone
// when it is looked at.
class ForeignContent : public Content {
public:
	explicit ForeignContent(const QMimeData& data)
	{
		if (Fetch(data, format::kMessage))
			return;
		// Text is what is left of a link to elsewhere.
		if (Fetch(data, format::kUriList) &&
			fBytes[format::kUriList].find("file:") != std::string::npos)
			return;
		Fetch(data, format::kText);
	}

	std::vector<std::string> Formats() const override
	{
		std::vector<std::string> formats;
		for (const auto& entry : fBytes)
			formats.push_back(entry.first);
		return formats;
	}

	std::string Bytes(const std::string& format) const override
	{
		const auto found = fBytes.find(format);
		return found != fBytes.end() ? found->second : std::string();
	}

private:
	bool Fetch(const QMimeData& data, const char* format)
	{
		if (!HasFormat(data, format))
			return false;
		fBytes[format] = BytesOf(data, format);
		return true;
	}

	std::map<std::string, std::string> fBytes;
};

// Every second pixel of the edge, black and white by turns: it shows on any ground, and where the
// server has no translucent windows too.
QImage
Outline(const QSize& size)
{
	QImage image(size, QImage::Format_ARGB32_Premultiplied);
	image.fill(Qt::transparent);
	const auto dot = [&image](int x, int y) {
		image.setPixel(x, y, (x + y) % 4 < 2 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
	};
	for (int x = 0; x < size.width(); x++) {
		dot(x, 0);
		dot(x, size.height() - 1);
	}
	for (int y = 0; y < size.height(); y++) {
		dot(0, y);
		dot(size.width() - 1, y);
	}
	return image;
}

QPixmap
PixmapFor(const DragImage& image)
{
	if (image.picture.IsValid())
		return QPixmap::fromImage(PictureData::ImageOf(image.picture));
	const int height = image.height <= kLargestSide ? image.height : kManyRowsHeight;
	const QSize size(std::min(image.width, kLargestSide), height);
	return size.isEmpty() ? QPixmap() : QPixmap::fromImage(Outline(size));
}

// Programs move and link files themselves. Who is told of a copy deletes nothing.
void
Accept(QDropEvent& event)
{
	if (event.possibleActions() & Qt::CopyAction)
		event.setDropAction(Qt::CopyAction);
	event.accept();
}

} // namespace

bool
IsDragging()
{
	return sOwn != nullptr;
}

void
CancelDragOf(const PeerWindow& window)
{
	if (sOwn != nullptr && sOwn->source->window == &window)
		QDrag::cancel();
}

void
RunDrag(
	const WindowPeer& source, const std::shared_ptr<const Content>& content, const DragImage& image)
{
	if (sOwn != nullptr || source.window == nullptr || CurrentInput().buttons == 0)
		return;
	OwnDrag own{content, &source};
	sOwn = &own;
	auto* drag = new QDrag(qGuiApp); // deleted by Qt
	drag->setMimeData(new ContentMimeData(content));
	drag->setPixmap(PixmapFor(image));
	drag->setHotSpot(QPoint(image.pointerX, image.pointerY));
	// The drag takes all input away from whoever watched it before.
	QTimer::singleShot(0, qGuiApp, WatchInputFirst);
	drag->exec(kActions, Qt::CopyAction);
	sOwn = nullptr;
	ForgetButtons();
	const InputState input = CurrentInput();
	if (source.window != nullptr)
		source.window->TellRelease(QPointF(input.x, input.y));
}

// One for each button; a drag leaves none of them to the window.
void
PeerWindow::TellRelease(const QPointF& screen)
{
	for (uint32 button = B_PRIMARY_MOUSE_BUTTON; button <= B_TERTIARY_MOUSE_BUTTON; button <<= 1) {
		if ((fHeldButtons & button) == 0)
			continue;
		fHeldButtons &= ~button;
		fReleasedByDrag |= button;
		TellMouse(MouseEvent::kUp, mapFromGlobal(screen), screen, fHeldButtons, button);
	}
}

bool
PeerWindow::TakeDragEvent(QEvent& event)
{
	if (event.type() == QEvent::DragLeave) {
		if (fDragged != nullptr)
			TellDrag(DragEvent::kLeft, mapFromGlobal(QPointF(CurrentInput().x, CurrentInput().y)));
		fDragged = nullptr;
		if (!IsDragging())
			ForgetButtons(); // they are another program's business again
		return true;
	}
	auto& drop = static_cast<QDropEvent&>(event);
	if (fDragged == nullptr || event.type() == QEvent::DragEnter) {
		fDragged =
			sOwn != nullptr ? sOwn->content : std::make_shared<ForeignContent>(*drop.mimeData());
	}
	if (fDragged->Formats().empty()) {
		fDragged = nullptr;
		event.ignore();
		return true;
	}
	Accept(drop);
	if (event.type() != QEvent::DragEnter) // a move follows
		TellDrag(DragEvent::kMoved, drop.position());
	if (event.type() != QEvent::Drop)
		return true;
	TellDrag(DragEvent::kDropped, drop.position());
	fDragged = nullptr;
	if (!IsDragging())
		ForgetButtons();
	// The first move without a drag, which the desktop does not tell before the pointer moves.
	TellMouse(MouseEvent::kMoved, drop.position(), mapToGlobal(drop.position()), 0);
	return true;
}

void
PeerWindow::TellDrag(DragEvent::Kind kind, const QPointF& where)
{
	const InputState input = CurrentInput();
	const QPointF screen = mapToGlobal(where);
	TellModifiers();
	fClient.WindowDrag({kind,
		{MouseEvent::kMoved, float(where.x()), float(where.y()), float(screen.x()),
			float(screen.y()), input.buttons, 0, 0, fToldModifiers, system_time()},
		fDragged});
}

} // namespace desktop
