// SPDX-License-Identifier: MIT

// What the process's main function needs of the clipboard. Internal to this folder.

#pragma once

namespace desktop {

// Counts changes of the clipboard from now on. GUI thread; the application object must exist.
void WatchClipboard();

} // namespace desktop
