// SPDX-License-Identifier: MIT

#include "PopUps.h"

#include "PixelRegionAccess.h"
#include "WindowPeer.h"

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace desktop {

namespace {

// A window manager holds the mouse for a moment after a press; then the grab is refused.
constexpr int kGrabTries = 25;
constexpr int kGrabInterval = 20; // ms

struct PopUps {
	std::vector<PeerWindow*> open;
	QPointer<QWindow> lastPressed;
	// Still thinks to be active though a pop-up has the focus.
	QPointer<QWindow> ownerOfFocus;
};

PopUps&
State()
{
	static PopUps* sState = new PopUps;
	return *sState;
}

bool
IsPopUp(const QWindow* window)
{
	const auto& open = State().open;
	return std::find(open.begin(), open.end(), window) != open.end();
}

bool
PlatformIs(const char* name)
{
	return QGuiApplication::platformName().startsWith(QLatin1String(name));
}

void
Grab(PeerWindow& window, int tries)
{
	if (!IsPopUp(&window))
		return;
	const bool hasMouse = window.setMouseGrabEnabled(true);
	const bool hasKeyboard = window.setKeyboardGrabEnabled(true);
	if ((!hasMouse || !hasKeyboard) && tries > 1) {
		QTimer::singleShot(kGrabInterval, &window, [&window, tries] { Grab(window, tries - 1); });
	}
}

// Keeps a window active while a pop-up has the focus. True: it is not told.
bool
RouteFocusOut(QWindow& receiver, QEvent& event)
{
	PopUps& state = State();
	QWindow* now = QGuiApplication::focusWindow();
	if (!IsPopUp(&receiver)) {
		if (IsPopUp(now)) {
			state.ownerOfFocus = &receiver;
			return true;
		}
		state.open.front()->CloseByDesktop();
		return false;
	}
	if (!IsPopUp(now)) {
		QWindow* owner = state.ownerOfFocus;
		state.ownerOfFocus = nullptr;
		if (owner != nullptr && owner != now) {
			state.open.front()->CloseByDesktop();
			QCoreApplication::sendEvent(owner, &event);
		}
	}
	return true;
}

} // namespace

PixelRect
PopUpArea(int32 x, int32 y, int32 width, int32 height)
{
	PixelRect area = ScreenFrame();
	CallGui([&] {
		const QWindow* parent = PopUpParent();
		if (PlatformIs("wayland") && parent != nullptr && parent->width() >= width &&
			parent->height() >= height)
			area = FromQt(parent->geometry());
		else if (const QScreen* screen = QGuiApplication::screenAt({x, y}))
			area = FromQt(screen->geometry());
	});
	return area;
}

QWindow*
PopUpParent()
{
	PopUps& state = State();
	if (!state.open.empty())
		return state.open.back();
	return state.lastPressed != nullptr && state.lastPressed->isVisible() ? state.lastPressed.data()
																		  : nullptr;
}

void
PopUpOpened(PeerWindow& window)
{
	State().open.push_back(&window);
	// Without one of its own some X servers show none of its parent's, but their very first one,
	// from the release of a button that was held while the mouse was grabbed.
	window.setCursor(Qt::ArrowCursor);
	if (State().open.size() > 1)
		return;
	for (QWindow* other : QGuiApplication::topLevelWindows()) {
		auto* peer = dynamic_cast<PeerWindow*>(other); // Qt has some of its own
		if (peer != nullptr && peer != &window)
			peer->ReleaseButtons();
	}
	// A Wayland compositor gives pop-ups the input itself.
	if (PlatformIs("xcb"))
		Grab(window, kGrabTries);
}

void
PopUpClosed(PeerWindow& window)
{
	PopUps& state = State();
	const auto found = std::find(state.open.begin(), state.open.end(), &window);
	if (found == state.open.end())
		return;
	const std::vector<PeerWindow*> above(found + 1, state.open.end());
	state.open.erase(found, state.open.end());
	for (PeerWindow* other : above)
		other->hide();
	if (!state.open.empty())
		return;
	IgnoreHeldButtons();
	QWindow* owner = state.ownerOfFocus;
	state.ownerOfFocus = nullptr;
	// A compositor gives the focus back by itself.
	if (owner != nullptr && !PlatformIs("wayland"))
		owner->requestActivate();
}

bool
RouteToPopUps(QWindow& receiver, QEvent& event)
{
	PopUps& state = State();
	if (state.open.empty()) {
		if (event.type() == QEvent::MouseButtonPress)
			state.lastPressed = &receiver;
		return false;
	}
	switch (event.type()) {
		case QEvent::MouseButtonPress:
		case QEvent::MouseButtonRelease:
		case QEvent::MouseMove:
		case QEvent::Wheel:
		case QEvent::KeyPress:
		case QEvent::KeyRelease:
			state.open.front()->TakePopUpInput(event);
			return true;
		case QEvent::Enter:
		case QEvent::Leave:
		case QEvent::FocusIn:
			return IsPopUp(&receiver);
		case QEvent::FocusOut:
			return RouteFocusOut(receiver, event);
		default:
			return false;
	}
}

} // namespace desktop
