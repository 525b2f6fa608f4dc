// SPDX-License-Identifier: MIT

#include "Inject.h"

#include "kits/desktop/WindowPeer.h"
#include "tests/support/Waiting.h"

#include <desktop/GuiThread.h>
#include <kernel/OS.h>

#include <private/qdnd_p.h>
#include <private/qhighdpiscaling_p.h>
#include <private/qsimpledrag_p.h>
#include <qpa/qplatformdrag.h>
#include <qpa/qwindowsysteminterface.h>

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

using namespace desktop;

namespace {

using Deliver = QWindowSystemInterface::SynchronousDelivery;

Qt::KeyboardModifiers
ToQt(uint32 modifiers)
{
	Qt::KeyboardModifiers result;
	result.setFlag(Qt::ShiftModifier, (modifiers & B_SHIFT_KEY) != 0);
	result.setFlag(Qt::AltModifier, (modifiers & B_COMMAND_KEY) != 0);
	result.setFlag(Qt::ControlModifier, (modifiers & B_CONTROL_KEY) != 0);
	result.setFlag(Qt::MetaModifier, (modifiers & B_OPTION_KEY) != 0);
	return result;
}

Qt::MouseButtons
ButtonsToQt(uint32 buttons)
{
	Qt::MouseButtons result;
	result.setFlag(Qt::LeftButton, (buttons & B_PRIMARY_MOUSE_BUTTON) != 0);
	result.setFlag(Qt::RightButton, (buttons & B_SECONDARY_MOUSE_BUTTON) != 0);
	result.setFlag(Qt::MiddleButton, (buttons & B_TERTIARY_MOUSE_BUTTON) != 0);
	return result;
}

struct QtKey {
	int key;
	QString text;
};

const std::map<char, QtKey> kKeys = {
	{B_HOME, {Qt::Key_Home, {}}},
	{B_END, {Qt::Key_End, {}}},
	{B_INSERT, {Qt::Key_Insert, {}}},
	{B_BACKSPACE, {Qt::Key_Backspace, "\b"}},
	{B_TAB, {Qt::Key_Tab, "\t"}},
	{B_ENTER, {Qt::Key_Return, "\r"}},
	{B_PAGE_UP, {Qt::Key_PageUp, {}}},
	{B_PAGE_DOWN, {Qt::Key_PageDown, {}}},
	{B_FUNCTION_KEY, {Qt::Key_F1, {}}},
	{B_ESCAPE, {Qt::Key_Escape, "\x1b"}},
	{B_LEFT_ARROW, {Qt::Key_Left, {}}},
	{B_RIGHT_ARROW, {Qt::Key_Right, {}}},
	{B_UP_ARROW, {Qt::Key_Up, {}}},
	{B_DOWN_ARROW, {Qt::Key_Down, {}}},
	{B_DELETE, {Qt::Key_Delete, "\x7f"}},
};

QtKey
KeyFor(const std::string& bytes, uint32 modifiers)
{
	if (bytes == "\t" && (modifiers & B_SHIFT_KEY) != 0)
		return {Qt::Key_Backtab, "\t"};
	if (bytes.size() == 1 && kKeys.contains(bytes[0]))
		return kKeys.at(bytes[0]);
	QString text = QString::fromStdString(bytes);
	const int key = text.isEmpty() ? int(Qt::Key_unknown) : text[0].toUpper().unicode();
	if ((modifiers & B_CONTROL_KEY) != 0 && key >= '@' && key <= '_')
		text = QString(QChar(key & 0x1f)); // as X11 does
	return {key, text};
}

struct SidedKey {
	uint32 side;
	int key;
	quint32 keySym;
};

constexpr SidedKey kSidedKeys[] = {
	{B_LEFT_SHIFT_KEY, Qt::Key_Shift, 0xffe1},
	{B_RIGHT_SHIFT_KEY, Qt::Key_Shift, 0xffe2},
	{B_LEFT_CONTROL_KEY, Qt::Key_Control, 0xffe3},
	{B_RIGHT_CONTROL_KEY, Qt::Key_Control, 0xffe4},
	{B_LEFT_COMMAND_KEY, Qt::Key_Alt, 0xffe9},
	{B_RIGHT_COMMAND_KEY, Qt::Key_Alt, 0xffea},
	{B_LEFT_OPTION_KEY, Qt::Key_Meta, 0xffeb},
	{B_RIGHT_OPTION_KEY, Qt::Key_Meta, 0xffec},
	{B_MENU_KEY, Qt::Key_Menu, 0xff67},
	{B_SCROLL_LOCK, Qt::Key_ScrollLock, 0xff14},
};

// The offscreen platform has no drags, but Qt has some for platforms that leave them to it. Who
// does them is private to Qt's manager; naming it in an instantiation is allowed.
template <auto Member>
struct Opened {
	friend auto PlatformDragOf(QDragManager& manager) -> QPlatformDrag*& { return manager.*Member; }
};
auto PlatformDragOf(QDragManager& manager) -> QPlatformDrag*&;
template struct Opened<&QDragManager::m_platformDrag>;

// QMimeData's own would read lists of files, and write them anew.
class TextsMimeData : public QMimeData {
public:
	explicit TextsMimeData(const InjectedUser::Texts& texts, bigtime_t delay = 0) :
		fTexts(texts), fDelay(delay)
	{}

	QStringList formats() const override
	{
		QStringList formats;
		for (const auto& each : fTexts)
			formats.append(QString::fromStdString(each.first));
		return formats;
	}

protected:
	QVariant retrieveData(const QString& format, QMetaType) const override
	{
		snooze(fDelay);
		const auto found = fTexts.find(format.toStdString());
		return found != fTexts.end() ? QByteArray::fromStdString(found->second) : QVariant();
	}

private:
	const InjectedUser::Texts fTexts;
	const bigtime_t fDelay;
};

} // namespace

InjectedUser::InjectedUser(NativeWindow& window)
{
	CallGui([&] { fWindow = NativeWindowAccess::Peer(window).window; });
}

InjectedUser::InjectedUser(const std::string& title)
{
	const bool appeared = WaitUntil([&] {
		CallGui([&] {
			for (QWindow* window : QGuiApplication::topLevelWindows()) {
				if (window->isExposed() && window->title().toStdString() == title)
					fWindow = window;
			}
		});
		return fWindow != nullptr;
	});
	if (!appeared) {
		ADD_FAILURE() << "no window \"" << title << "\"";
		std::abort();
	}
}

void
InjectedUser::Mouse(int type, float x, float y, bool onScreen, uint32 button, uint32 modifiers)
{
	if (type == QEvent::MouseButtonPress)
		fButtons |= button;
	else if (type == QEvent::MouseButtonRelease)
		fButtons &= ~button;
	CallGui([&] {
		QPointF where(x, y);
		QPointF screen = fWindow->mapToGlobal(where);
		if (onScreen) {
			screen = where;
			where = fWindow->mapFromGlobal(screen);
		}
		if (fMovesCursor)
			QCursor::setPos(screen.toPoint());
		const int changed = button != 0 ? int(ButtonsToQt(button)) : 0;
		QWindowSystemInterface::handleMouseEvent<Deliver>(fWindow, where, screen,
			ButtonsToQt(fButtons), Qt::MouseButton(changed), QEvent::Type(type), ToQt(modifiers));
	});
}

void
InjectedUser::Press(float x, float y, uint32 button, uint32 modifiers)
{
	Mouse(QEvent::MouseButtonPress, x, y, false, button, modifiers);
}

void
InjectedUser::Release(float x, float y, uint32 button, uint32 modifiers)
{
	Mouse(QEvent::MouseButtonRelease, x, y, false, button, modifiers);
}

void
InjectedUser::Move(float x, float y, uint32 modifiers)
{
	Mouse(QEvent::MouseMove, x, y, false, 0, modifiers);
}

void
InjectedUser::MoveOnScreen(float screenX, float screenY, uint32 modifiers)
{
	Mouse(QEvent::MouseMove, screenX, screenY, true, 0, modifiers);
}

void
InjectedUser::Enter(float x, float y)
{
	CallGui([&] {
		const QPointF where(x, y);
		QWindowSystemInterface::handleEnterEvent<Deliver>(
			fWindow, where, fWindow->mapToGlobal(where));
	});
}

void
InjectedUser::Leave()
{
	CallGui([&] { QWindowSystemInterface::handleLeaveEvent<Deliver>(fWindow); });
}

void
InjectedUser::AllowDrags()
{
	CallGui([&] {
		static QSimpleDrag* const sDrag = new QSimpleDrag;
		PlatformDragOf(*QDragManager::self()) = sDrag;
	});
	fMovesCursor = true;
}

bool
InjectedUser::DragOver(float x, float y, const Texts& texts, uint32 modifiers)
{
	bool accepted = false;
	CallGui([&] {
		const TextsMimeData data(texts);
		const QPlatformDragQtResponse response =
			QWindowSystemInterface::handleDrag(fWindow, &data, QPoint(int(x), int(y)),
				Qt::CopyAction | Qt::MoveAction, ButtonsToQt(fButtons), ToQt(modifiers));
		accepted = response.isAccepted() && response.acceptedAction() == Qt::CopyAction;
	});
	return accepted;
}

bool
InjectedUser::Drop(float x, float y, const Texts& texts, uint32 modifiers)
{
	bool accepted = false;
	CallGui([&] {
		const TextsMimeData data(texts);
		// As X11 does it: without buttons.
		const QPlatformDropQtResponse response = QWindowSystemInterface::handleDrop(fWindow, &data,
			QPoint(int(x), int(y)), Qt::CopyAction | Qt::MoveAction, Qt::NoButton, ToQt(modifiers));
		accepted = response.isAccepted() && response.acceptedAction() == Qt::CopyAction;
	});
	fButtons = 0;
	return accepted;
}

void
InjectedUser::DragLeaves()
{
	CallGui([&] {
		QWindowSystemInterface::handleDrag(fWindow, nullptr, QPoint(), Qt::IgnoreAction, {}, {});
	});
}

void
InjectedUser::PutOnClipboard(const Texts& texts, bigtime_t delay)
{
	CallGui([&] { QGuiApplication::clipboard()->setMimeData(new TextsMimeData(texts, delay)); });
}

InjectedUser::Texts
InjectedUser::Clipboard()
{
	Texts texts;
	CallGui([&] {
		const QMimeData* data = QGuiApplication::clipboard()->mimeData();
		const QStringList formats = data != nullptr ? data->formats() : QStringList();
		for (const QString& format : formats)
			texts[format.toStdString()] = data->data(format).toStdString();
	});
	return texts;
}

void
InjectedUser::Wheel(float x, float y, float deltaX, float deltaY, uint32 modifiers)
{
	CallGui([&] {
		const QPointF where(x, y);
		const QPoint angle(qRound(-deltaX * 120), qRound(-deltaY * 120));
		QWindowSystemInterface::handleWheelEvent(
			fWindow, where, fWindow->mapToGlobal(where), QPoint(), angle, ToQt(modifiers));
		QWindowSystemInterface::flushWindowSystemEvents();
	});
}

void
InjectedUser::KeyDown(const std::string& bytes, uint32 modifiers, bool repeat)
{
	CallGui([&] {
		const QtKey key = KeyFor(bytes, modifiers);
		QWindowSystemInterface::handleKeyEvent<Deliver>(
			fWindow, QEvent::KeyPress, key.key, ToQt(modifiers), key.text, repeat);
	});
}

void
InjectedUser::KeyUp(const std::string& bytes, uint32 modifiers)
{
	CallGui([&] {
		// The press may have closed it.
		if (!QGuiApplication::allWindows().contains(fWindow))
			return;
		const QtKey key = KeyFor(bytes, modifiers);
		QWindowSystemInterface::handleKeyEvent<Deliver>(
			fWindow, QEvent::KeyRelease, key.key, ToQt(modifiers), key.text);
	});
}

void
InjectedUser::ModifierKey(uint32 sidedKey, bool down, uint32 modifiers)
{
	for (const SidedKey& key : kSidedKeys) {
		if (key.side != sidedKey)
			continue;
		CallGui([&] {
			QWindowSystemInterface::handleExtendedKeyEvent(fWindow,
				down ? QEvent::KeyPress : QEvent::KeyRelease, key.key, ToQt(modifiers), 0,
				key.keySym, 0);
			QWindowSystemInterface::flushWindowSystemEvents();
		});
	}
}

static bool
SendInputMethodEvent(QWindow* window, QInputMethodEvent& event)
{
	QInputMethodQueryEvent query(Qt::ImEnabled);
	QCoreApplication::sendEvent(window, &query);
	const bool taken = query.value(Qt::ImEnabled).toBool();
	if (taken)
		QCoreApplication::sendEvent(window, &event);
	return taken;
}

bool
InjectedUser::Compose(const std::string& text)
{
	bool taken = false;
	CallGui([&] {
		QInputMethodEvent event;
		event.setCommitString(QString::fromStdString(text));
		taken = SendInputMethodEvent(fWindow, event);
	});
	return taken;
}

bool
InjectedUser::ShowComposing(const std::string& text, int32 caret)
{
	bool taken = false;
	CallGui([&] {
		QInputMethodEvent event(
			QString::fromStdString(text), {{QInputMethodEvent::Cursor, caret, 1, QVariant()}});
		taken = SendInputMethodEvent(fWindow, event);
	});
	return taken;
}

PixelRect
InjectedUser::InputCaret() const
{
	PixelRect caret;
	CallGui([&] {
		QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImCursorRectangle);
		QCoreApplication::sendEvent(fWindow, &query);
		const QRect rect = query.value(Qt::ImCursorRectangle).toRect();
		if (query.value(Qt::ImEnabled).toBool())
			caret = {rect.left(), rect.top(), rect.right(), rect.bottom()};
	});
	return caret;
}

void
InjectedUser::Close()
{
	CallGui([&] { QWindowSystemInterface::handleCloseEvent<Deliver>(fWindow); });
}

void
InjectedUser::Activate()
{
	CallGui([&] { QWindowSystemInterface::handleWindowActivated<Deliver>(fWindow); });
}

void
InjectedUser::Deactivate()
{
	CallGui([&] { QWindowSystemInterface::handleWindowActivated<Deliver>(nullptr); });
}

void
InjectedUser::Resize(int32 width, int32 height)
{
	CallGui([&] {
		fWindow->resize(width, height);
		QWindowSystemInterface::flushWindowSystemEvents();
	});
}

void
InjectedUser::Rescale(double factor)
{
	CallGui([&] {
		// Windows keep their logical size, as compositors do it.
		const QSize size = fWindow->size();
		QHighDpiScaling::setScreenFactor(fWindow->screen(), factor);
		fWindow->resize(size);
		const QRect all(QPoint(), size);
		QWindowSystemInterface::handleExposeEvent<Deliver>(fWindow, all);
	});
}

uint32
InjectedUser::Picture::At(int32 x, int32 y) const
{
	if (x < 0 || x >= width || y < 0 || y >= height)
		return 0;
	return pixels[size_t(y) * size_t(width) + size_t(x)];
}

int32
InjectedUser::Picture::Count(uint32 colour) const
{
	return static_cast<int32>(std::count(pixels.begin(), pixels.end(), colour));
}

PixelRect
InjectedUser::Picture::BoundsOf(uint32 colour) const
{
	PixelRect bounds = {width, height, -1, -1};
	for (int32 y = 0; y < height; y++) {
		for (int32 x = 0; x < width; x++) {
			if (At(x, y) == colour) {
				bounds = {std::min(bounds.left, x), std::min(bounds.top, y),
					std::max(bounds.right, x), y};
			}
		}
	}
	return bounds;
}

void
InjectedUser::ClickAnyWindow(uint32 which, float x, float y)
{
	CallGui([&] {
		QWindowList windows = QGuiApplication::topLevelWindows();
		windows.removeIf([](QWindow* window) { return !window->isExposed(); });
		if (windows.isEmpty())
			return;
		QWindow* window = windows[which % size_t(windows.size())];
		const QPointF where(x, y);
		const QPointF screen = window->mapToGlobal(where);
		for (QEvent::Type type :
			{QEvent::MouseMove, QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
			const bool down = type == QEvent::MouseButtonPress;
			QWindowSystemInterface::handleMouseEvent<Deliver>(window, where, screen,
				down ? Qt::LeftButton : Qt::NoButton,
				type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, type);
		}
	});
}

InjectedUser::Picture
InjectedUser::Snapshot() const
{
	Picture picture;
	CallGui([&] {
		QWindowSystemInterface::flushWindowSystemEvents();
		const QImage image =
			static_cast<PeerWindow*>(fWindow)->Picture().convertToFormat(QImage::Format_RGB32);
		picture.width = image.width();
		picture.height = image.height();
		picture.pixels.resize(size_t(image.width()) * size_t(image.height()));
		for (int32 y = 0; y < picture.height; y++)
			std::memcpy(picture.pixels.data() + size_t(y) * size_t(picture.width),
				image.constScanLine(y), size_t(picture.width) * 4);
	});
	for (uint32& pixel : picture.pixels)
		pixel |= 0xff000000;
	return picture;
}
