// SPDX-License-Identifier: MIT

// What the process's main function needs of the clipboard. Internal to this folder.

#pragma once

namespace desktop {

class X11Selection;

// Counts changes of the clipboard from now on. GUI thread; the application object must exist.
void WatchClipboard();

// What the middle button pastes, on X11; null elsewhere. After WaitForDesktop().
X11Selection* PrimarySelection();

} // namespace desktop
