// SPDX-License-Identifier: MIT

// Windows that take all input of the program while they are shown: menus. Internal to this folder;
// GUI thread.
//
// Qt's own pop-ups get no keys and do not end by a press elsewhere. Ours take, through the watcher
// of all input, whatever the mouse does over any of our windows, and every key; on X11 both are
// grabbed, so that the rest of the screen counts too. Of a menu with submenus the first pop-up is
// told, with places relative to itself.

#pragma once

#include <support/SupportDefs.h>

class QEvent;
class QWindow;

namespace desktop {

class PeerWindow;

// The window that a pop-up belongs to: the last one opened, else the window last pressed in.
QWindow* PopUpParent();

// After it was shown. Windows in which a button is held get their release: they see no other.
void PopUpOpened(PeerWindow& window);
// It was hidden, or is about to be deleted; nothing when that is known. Those opened after it are
// hidden too.
void PopUpClosed(PeerWindow& window);

// True when the event was for a pop-up and the receiver must not get it.
bool RouteToPopUps(QWindow& receiver, QEvent& event);

} // namespace desktop
