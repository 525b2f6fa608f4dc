// SPDX-License-Identifier: MIT

// The desktop's own file manager, whichever it is, on the session bus.
//
// Any thread. A bus or a file manager that hangs holds up nobody.

#pragma once

#include <string>
#include <vector>

namespace desktop {

// Whether it runs or would be started when it is needed. Asks the bus; what it does not answer
// within 150 ms is no, and at once until it has answered.
bool HasFileManager();

// A window for each folder, given as a URI. Returns before that has happened, or failed.
void ShowFolders(const std::vector<std::string>& uris);

} // namespace desktop
