// SPDX-License-Identifier: MIT

// The pointer as the kits know it. Internal to this folder; GUI thread.

#pragma once

#include <desktop/GuiThread.h>
#include <desktop/NativeWindow.h>

#include <QMouseEvent>
#include <QWheelEvent>

namespace desktop {

// Watches the input of all our windows for CurrentInput(), each event before its window gets it.
// Needs the application object, which owns the watcher.
void WatchInput();

// The buttons held now count as released for everybody, and nobody hears of their release: the
// press was for something that is gone. Ended by the next press.
void IgnoreHeldButtons();

// Once more before all other watchers of input.
void WatchInputFirst();

// For CurrentInput(), after a drag: nobody has told of the release.
void ForgetButtons();

uint32 ToButtons(Qt::MouseButtons buttons); // those that we know

WheelEvent TranslateWheel(const QWheelEvent& event, uint32 modifiers, bigtime_t when);

// Counts the presses of one button that are close in time and place.
class ClickCounter {
public:
	int32 Press(uint32 button, const QPointF& screen, bigtime_t when);

private:
	uint32 fButton = 0;
	QPointF fWhere;
	bigtime_t fWhen = 0;
	int32 fCount = 0;
};

} // namespace desktop
