// SPDX-License-Identifier: MIT

// The process's first thread, in which the desktop's event loop runs, and the jobs that other
// threads give to it. The GUI thread never takes a looper's lock and never waits for a looper.

#pragma once

#include <support/SupportDefs.h>

#include <functional>
#include <string>
#include <vector>

namespace desktop {

// Runs `job` in the GUI thread and waits for its end; at once when called there. Jobs given before
// the desktop is up wait for it. False, job not run, when the desktop is gone (display lost or the
// process at its end). May be called with looper locks held.
bool CallGui(const std::function<void()>& job);

// The same without waiting; jobs of one thread keep their order, also with CallGui.
bool PostGui(std::function<void()> job);

bool OnGuiThread();

// Waits until fonts and screens can be asked for; false when there is no desktop.
bool WaitForDesktop();

// The main screen in logical pixels.
struct PixelRect ScreenFrame();
// What a pop-up of this size that is wanted at the point has to keep inside: the screen there. On
// Wayland, where nobody knows how far the screen reaches, the window that the pop-up belongs to,
// if it is large enough.
struct PixelRect PopUpArea(int32 x, int32 y, int32 width, int32 height);

// How long two presses may be apart to count as a double click; microseconds.
bigtime_t ClickSpeed();

void Beep();

// A 68-byte cursor (see B_HAND_CURSOR), or NULL for the desktop's arrow; in force for all our
// windows until the next call. Any thread; the data is copied.
void SetCursor(const unsigned char* data);

// The pointer, the buttons held and the modifier keys (B_*_MOUSE_BUTTON, B_*_KEY bits) as last
// told by the display server. Screen position in logical pixels. Any thread, never waits for the
// GUI thread.
struct InputState {
	float x = 0;
	float y = 0;
	uint32 buttons = 0;
	uint32 modifiers = 0;
};
InputState CurrentInput();

// What the program was started with, its own name first; empty in a program whose main function is
// not the kits'. Any thread.
const std::vector<std::string>& ProgramArguments();

// Called in the GUI thread (must not block) when the process is asked to end: SIGTERM, SIGHUP,
// SIGINT or a display that went away. Set by BApplication; an empty function unsets.
void SetQuitHandler(std::function<void()> handler);

// True once the program's main function has returned, while threads may still be at work.
bool ProgramHasEnded();
// Called in the program's thread when that has become true.
void SetEndHandler(void (*handler)());

} // namespace desktop
