// SPDX-License-Identifier: MIT

// Starting other programs, and which of them opens what, by the desktop's database.
//
// Any thread. Programs are not waited for and never become zombies; they get the environment and
// the signals that we were started with, standard output and error, and no other descriptor.
// `team`: where the process's number goes, may be null.

#pragma once

#include <kernel/OS.h>

#include <string>

namespace desktop {

// Whether files of that type are run when they are marked executable. Plain text is so only when
// its first line names an interpreter.
bool IsProgramType(const std::string& type);
bool IsTextType(const std::string& type);
bool IsDesktopFileType(const std::string& type);

// Absolute path. B_LAUNCH_FAILED_EXECUTABLE.
status_t RunProgram(const std::string& path, team_id* team);
// What a .desktop file tells. B_LAUNCH_FAILED_EXECUTABLE, B_LAUNCH_FAILED (it tells nothing).
status_t RunDesktopFile(const std::string& path, team_id* team);

// The path of the program that opens files of that type by default.
// B_LAUNCH_FAILED_NO_PREFERRED_APP, B_LAUNCH_FAILED_FILES_APP_NOT_FOUND.
status_t FindDefaultProgram(const std::string& type, std::string* program);
// Errors as of FindDefaultProgram(), and B_LAUNCH_FAILED.
status_t OpenByDefault(const std::string& uri, const std::string& type, team_id* team);

} // namespace desktop
