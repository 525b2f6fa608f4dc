// SPDX-License-Identifier: MIT

// Internal to this folder.

#pragma once

#include <string>

namespace desktop {

// Empty when there is no telling where it is.
std::string SessionBusAddress();

// Keeps a session bus that does not answer from stopping Qt's start (for 40 s): one that stays
// silent for 150 ms is taken out of the environment. Before there is a second thread.
void AvoidHangingBus();

} // namespace desktop
