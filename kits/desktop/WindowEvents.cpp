// SPDX-License-Identifier: MIT

// The desktop's side of a window: what the user does with it.

#include "WindowPeer.h"

#include "Drag.h"
#include "Keys.h"

#include <kernel/OS.h>

#include <QGuiApplication>
#include <QInputMethod>

#include <utility>

namespace desktop {

bool
PeerWindow::event(QEvent* event)
{
	switch (event->type()) {
		case QEvent::Close:
			// The client decides, and ends the window in its own time.
			event->ignore();
			fClient.WindowCloseRequested();
			return true;
		case QEvent::DragEnter:
		case QEvent::DragMove:
		case QEvent::DragLeave:
		case QEvent::Drop:
			return TakeDragEvent(*event);
		case QEvent::Enter: {
			if (IsDragging())
				break;
			const auto* enter = static_cast<QEnterEvent*>(event);
			TellMouse(MouseEvent::kMoved, enter->position(), enter->globalPosition(),
				CurrentInput().buttons);
			break;
		}
		case QEvent::Leave: {
			if (IsDragging())
				break;
			const InputState input = CurrentInput();
			const QPointF screen(input.x, input.y);
			TellMouse(MouseEvent::kLeft, mapFromGlobal(screen), screen, input.buttons);
			break;
		}
		case QEvent::InputMethodQuery:
			AnswerInputMethod(static_cast<QInputMethodQueryEvent&>(*event));
			return true;
		case QEvent::InputMethod:
			TellComposedText(static_cast<QInputMethodEvent&>(*event));
			return true;
		default:
			break;
	}
	return QWindow::event(event);
}

void
PeerWindow::SetTextInput(bool wanted, const QRect& caret)
{
	if (fComposing && !wanted) {
		fComposing = false;
		QGuiApplication::inputMethod()->reset();
	}
	fTextInput = wanted;
	fCaret = caret;
	if (isActive())
		QGuiApplication::inputMethod()->update(Qt::ImEnabled | Qt::ImCursorRectangle);
}

void
PeerWindow::AnswerInputMethod(QInputMethodQueryEvent& query) const
{
	if (query.queries() & Qt::ImEnabled)
		query.setValue(Qt::ImEnabled, fTextInput);
	if (query.queries() & Qt::ImCursorRectangle)
		query.setValue(Qt::ImCursorRectangle, fCaret);
	query.accept();
}

void
PeerWindow::TellComposedText(const QInputMethodEvent& event)
{
	const QString& composing = event.preeditString();
	if (fComposing || !composing.isEmpty()) {
		fComposing = !composing.isEmpty();
		qsizetype caret = composing.size();
		for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
			if (attribute.type == QInputMethodEvent::Cursor)
				caret = attribute.start;
		}
		fClient.WindowComposing(
			composing.toStdString(), size_t(composing.left(caret).toUtf8().size()));
	}
	if (event.commitString().isEmpty())
		return;
	// Text is text, also when the keys that have made it are still held.
	const uint32 modifiers = CurrentInput().modifiers & ~uint32(B_COMMAND_KEY | B_CONTROL_KEY);
	fClient.WindowKey(
		{true, false, 0, 0, event.commitString().toStdString(), modifiers, system_time()});
}

void
PeerWindow::TellModifiers()
{
	const uint32 modifiers = CurrentInput().modifiers;
	if (modifiers == fToldModifiers)
		return;
	fToldModifiers = modifiers;
	fClient.WindowModifiers(modifiers, system_time());
}

void
PeerWindow::TellMouse(MouseEvent::Kind kind, const QPointF& where, const QPointF& screen,
	uint32 buttons, uint32 button, int32 clicks)
{
	TellModifiers();
	fClient.WindowMouse({kind, float(where.x()), float(where.y()), float(screen.x()),
		float(screen.y()), buttons, button, clicks, fToldModifiers, system_time()});
}

// Releases that another program's grab has kept from us, seen by what the pointer holds now.
void
PeerWindow::TellLostReleases(const QMouseEvent& event)
{
	const uint32 changed = ToButtons(event.button());
	const uint32 now = ToButtons(event.buttons()) | changed;
	for (uint32 button = B_PRIMARY_MOUSE_BUTTON; button <= B_TERTIARY_MOUSE_BUTTON; button <<= 1) {
		if ((fHeldButtons & button) == 0 || (now & button) != 0)
			continue;
		fHeldButtons &= ~button;
		TellMouse(MouseEvent::kUp, event.position(), event.globalPosition(), fHeldButtons, button);
	}
}

void
PeerWindow::ReleaseButtons()
{
	fClicks = {}; // the next press follows one elsewhere
	const uint32 held = std::exchange(fHeldButtons, 0);
	if (held == 0)
		return;
	const InputState input = CurrentInput();
	const QPointF screen(input.x, input.y);
	TellMouse(MouseEvent::kUp, mapFromGlobal(screen), screen, 0, held);
}

void
PeerWindow::TakePopUpInput(QEvent& event)
{
	if (event.type() == QEvent::KeyPress || event.type() == QEvent::KeyRelease) {
		Key(static_cast<QKeyEvent*>(&event));
		return;
	}
	if (event.type() == QEvent::Wheel) {
		wheelEvent(static_cast<QWheelEvent*>(&event));
		return;
	}
	const auto& mouse = static_cast<const QMouseEvent&>(event);
	const uint32 button = ToButtons(mouse.button());
	MouseEvent::Kind kind = MouseEvent::kMoved;
	if (event.type() != QEvent::MouseMove) {
		if (button == 0)
			return;
		kind = event.type() == QEvent::MouseButtonPress ? MouseEvent::kDown : MouseEvent::kUp;
	}
	const QPointF screen = mouse.globalPosition();
	TellMouse(kind, mapFromGlobal(screen), screen, ToButtons(mouse.buttons()), button,
		kind == MouseEvent::kDown ? 1 : 0);
}

void
PeerWindow::mousePressEvent(QMouseEvent* event)
{
	const uint32 button = ToButtons(event->button());
	if (button == 0)
		return;
	TellLostReleases(*event);
	fReleasedByDrag = 0;
	fHeldButtons = ToButtons(event->buttons());
	const int32 clicks =
		fClicks.Press(button, event->globalPosition(), bigtime_t(event->timestamp()) * 1000);
	TellMouse(MouseEvent::kDown, event->position(), event->globalPosition(), fHeldButtons, button,
		clicks);
}

void
PeerWindow::mouseReleaseEvent(QMouseEvent* event)
{
	const uint32 button = ToButtons(event->button());
	if (button == 0 || IsDragging()) // the drag's end tells it
		return;
	if ((fReleasedByDrag & button) != 0) {
		fReleasedByDrag &= ~button;
		return;
	}
	TellLostReleases(*event);
	fHeldButtons = ToButtons(event->buttons());
	TellMouse(MouseEvent::kUp, event->position(), event->globalPosition(), fHeldButtons, button);
}

void
PeerWindow::mouseMoveEvent(QMouseEvent* event)
{
	TellLostReleases(*event);
	fHeldButtons = ToButtons(event->buttons());
	TellMouse(MouseEvent::kMoved, event->position(), event->globalPosition(), fHeldButtons);
}

void
PeerWindow::wheelEvent(QWheelEvent* event)
{
	TellModifiers();
	const WheelEvent wheel = TranslateWheel(*event, fToldModifiers, system_time());
	if (wheel.deltaX != 0 || wheel.deltaY != 0) // the ends of gestures have none
		fClient.WindowWheel(wheel);
}

void
PeerWindow::Key(QKeyEvent* event)
{
	TellModifiers();
	if (!IsModifierKey(event->key()))
		fClient.WindowKey(TranslateKey(*event, fToldModifiers, system_time()));
}

void
PeerWindow::keyPressEvent(QKeyEvent* event)
{
	Key(event);
}

void
PeerWindow::keyReleaseEvent(QKeyEvent* event)
{
	Key(event);
}

void
PeerWindow::focusInEvent(QFocusEvent*)
{
	fClient.WindowActivated(true);
}

void
PeerWindow::focusOutEvent(QFocusEvent*)
{
	TellModifiers();
	fClient.WindowActivated(false);
}

} // namespace desktop
