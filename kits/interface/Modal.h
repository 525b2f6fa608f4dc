// SPDX-License-Identifier: MIT

// Which alert has the input. While alerts are open every other window takes none, and of several
// alerts only the newest does. Any thread.

#pragma once

#include <app/Messenger.h>

class BWindow;

namespace BPrivate {

// Posted to alerts.
constexpr uint32 kMsgShowAlert = '_ALS';
constexpr uint32 kMsgCloseAlert = '_ALC';
constexpr uint32 kMsgActivateAlert = '_ALV';

// True when input and the close box of this window must be ignored.
bool InputBlockedBy(const BWindow* window);

// Gives the newest open alert the keys: for a window that was activated and takes none.
void ActivateAlert();

// Every alert, open or waiting, is dismissed with -1. Does not wait for that.
void CloseAllAlerts();

// Shows an alert whose loop runs or will: at once or, when it `queues`, after the queueing ones
// that came before. Undone by AlertGone(), at the latest before the alert is freed.
void AlertReady(const BWindow* alert, const BMessenger& messenger, bool queues);
void AlertGone(const BWindow* alert);

} // namespace BPrivate
