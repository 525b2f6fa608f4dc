// SPDX-License-Identifier: MIT

// The pointer, the wheel, and what is known of both and the modifier keys at any moment.

#include "Input.h"

#include "Drag.h"
#include "Keys.h"
#include "PopUps.h"

#include <QDropEvent>
#include <QEnterEvent>
#include <QGuiApplication>
#include <QWindow>

#include <cmath>
#include <mutex>

namespace desktop {

namespace {

constexpr qreal kClickDistance = 4;   // pixels
constexpr float kAnglePerNotch = 120; // eighths of a degree
constexpr float kPixelsPerNotch = 40; // for touch pads that tell nothing else

struct InputCache {
	std::mutex lock;
	InputState state;
};

InputCache&
Cache()
{
	static InputCache* sCache = new InputCache;
	return *sCache;
}

uint32 sIgnoredButtons = 0; // GUI thread

class InputWatcher : public QObject {
public:
	explicit InputWatcher(QObject* parent) : QObject(parent) {}

	bool eventFilter(QObject* receiver, QEvent* event) override
	{
		if (!receiver->isWindowType())
			return false;
		QWindow& window = *static_cast<QWindow*>(receiver);
		const bool ignored = IsIgnored(*event);
		Note(window, *event);
		return ignored || RouteToPopUps(window, *event);
	}

private:
	static bool IsIgnored(const QEvent& event);
	void Note(const QWindow& window, const QEvent& event);
	void NotePoint(const QSinglePointEvent& event);
	void NoteDrag(const QWindow& window, const QDropEvent& event);
	void NoteModifiers(uint32 modifiers);

	ModifierTracker fModifiers;
	const bool fKnowsInDrags =
		!QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
};

// Also forgets the ignored buttons that are up again.
bool
InputWatcher::IsIgnored(const QEvent& event)
{
	if (sIgnoredButtons == 0)
		return false;
	switch (event.type()) {
		case QEvent::MouseButtonPress:
			sIgnoredButtons = 0;
			return false;
		case QEvent::MouseMove:
		case QEvent::MouseButtonRelease: {
			const auto& mouse = static_cast<const QMouseEvent&>(event);
			const bool wasIgnored = (sIgnoredButtons & ToButtons(mouse.button())) != 0;
			sIgnoredButtons &= ToButtons(mouse.buttons());
			return wasIgnored || sIgnoredButtons != 0;
		}
		default:
			return false;
	}
}
InputWatcher* sWatcher = nullptr; // the application's

void
InputWatcher::Note(const QWindow& window, const QEvent& event)
{
	switch (event.type()) {
		case QEvent::MouseButtonRelease:
			if (IsDragging())
				break; // a drop finds the buttons held
			[[fallthrough]];
		case QEvent::MouseButtonPress:
		case QEvent::MouseMove:
		case QEvent::Wheel:
			NotePoint(static_cast<const QSinglePointEvent&>(event));
			break;
		case QEvent::Enter: {
			// Says nothing of buttons and modifiers.
			const QPointF where = static_cast<const QEnterEvent&>(event).globalPosition();
			std::lock_guard lock(Cache().lock);
			Cache().state.x = float(where.x());
			Cache().state.y = float(where.y());
			break;
		}
		case QEvent::DragEnter:
		case QEvent::DragMove:
		case QEvent::Drop:
			NoteDrag(window, static_cast<const QDropEvent&>(event));
			break;
		case QEvent::KeyPress:
		case QEvent::KeyRelease:
			NoteModifiers(fModifiers.Key(static_cast<const QKeyEvent&>(event)));
			break;
		case QEvent::FocusOut:
			NoteModifiers(fModifiers.FocusLost());
			break;
		default:
			break;
	}
}

void
InputWatcher::NotePoint(const QSinglePointEvent& event)
{
	const uint32 modifiers = fModifiers.Seen(event.modifiers());
	std::lock_guard lock(Cache().lock);
	InputState& state = Cache().state;
	state.x = float(event.globalPosition().x());
	state.y = float(event.globalPosition().y());
	state.buttons = ToButtons(event.buttons()) & ~sIgnoredButtons;
	state.modifiers = modifiers;
}

void
InputWatcher::NoteDrag(const QWindow& window, const QDropEvent& event)
{
	const QPoint where = window.mapToGlobal(event.position().toPoint());
	// Wayland's compositors do not tell; the keys themselves do.
	const uint32 modifiers =
		fKnowsInDrags ? fModifiers.Seen(event.modifiers()) : CurrentInput().modifiers;
	std::lock_guard lock(Cache().lock);
	InputState& state = Cache().state;
	state.x = float(where.x());
	state.y = float(where.y());
	// A drop comes without: the button that was held counts until the drag's end.
	if (event.buttons() != Qt::NoButton)
		state.buttons = ToButtons(event.buttons());
	state.modifiers = modifiers;
}

void
InputWatcher::NoteModifiers(uint32 modifiers)
{
	std::lock_guard lock(Cache().lock);
	Cache().state.modifiers = modifiers;
}

} // namespace

InputState
CurrentInput()
{
	std::lock_guard lock(Cache().lock);
	return Cache().state;
}

void
WatchInput()
{
	sWatcher = new InputWatcher(qGuiApp);
	WatchInputFirst();
}

void
WatchInputFirst()
{
	qGuiApp->installEventFilter(sWatcher);
}

void
ForgetButtons()
{
	std::lock_guard lock(Cache().lock);
	Cache().state.buttons = 0;
}

void
IgnoreHeldButtons()
{
	sIgnoredButtons = ToButtons(QGuiApplication::mouseButtons());
	std::lock_guard lock(Cache().lock);
	Cache().state.buttons = 0;
}

uint32
ToButtons(Qt::MouseButtons buttons)
{
	uint32 bits = 0;
	if (buttons & Qt::LeftButton)
		bits |= B_PRIMARY_MOUSE_BUTTON;
	if (buttons & Qt::RightButton)
		bits |= B_SECONDARY_MOUSE_BUTTON;
	if (buttons & Qt::MiddleButton)
		bits |= B_TERTIARY_MOUSE_BUTTON;
	return bits;
}

WheelEvent
TranslateWheel(const QWheelEvent& event, uint32 modifiers, bigtime_t when)
{
	// Qt counts turns away from the user and to the left as positive.
	float x = float(-event.angleDelta().x()) / kAnglePerNotch;
	float y = float(-event.angleDelta().y()) / kAnglePerNotch;
	if (event.angleDelta().isNull()) {
		x = float(-event.pixelDelta().x()) / kPixelsPerNotch;
		y = float(-event.pixelDelta().y()) / kPixelsPerNotch;
	}
	return {float(event.position().x()), float(event.position().y()), x, y, modifiers,
		ToButtons(event.buttons()), when};
}

int32
ClickCounter::Press(uint32 button, const QPointF& screen, bigtime_t when)
{
	const QPointF moved = screen - fWhere;
	const bool close = std::fabs(moved.x()) <= kClickDistance &&
		std::fabs(moved.y()) <= kClickDistance && when - fWhen <= ClickSpeed();
	fCount = button == fButton && close ? fCount + 1 : 1;
	fButton = button;
	fWhere = screen;
	fWhen = when;
	return fCount;
}

} // namespace desktop
