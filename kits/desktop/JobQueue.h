// SPDX-License-Identifier: MIT

// What the process's main function needs of the job queue and the quit handler. Internal to this
// folder; GUI thread unless said otherwise.

#pragma once

namespace desktop {

// Declares the calling thread to be the GUI thread. Before any other thread is started.
void EnterGuiThread();

// Before any other thread is started.
void SetProgramArguments(int argc, char** argv);

// From now on jobs run, those given before first. The application object must exist.
void OpenJobQueue();

// Ends the desktop for all threads: jobs that wait or run are given up, their callers go on with
// false. With `displayLost` nothing of Qt may be touched any more, not even to delete it.
void CloseJobQueue(bool displayLost);

// Whether jobs run. Any thread.
bool DesktopIsUp();

// Whether they run no more because the display went away. Any thread.
bool DisplayIsLost();

// The program's main function has returned; in its thread.
void EndProgram();

// Runs the quit handler, or remembers the wish until there is one.
void AskToQuit();

} // namespace desktop
