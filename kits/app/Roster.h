// SPDX-License-Identifier: MIT

// BRoster: the programs of this machine, started and asked for. `be_roster` is the only one.
//
// Any thread. No program is waited for; what a call reads from the disk it reads at once.

#pragma once

#include <storage/EntryRef.h>

#include <kernel/OS.h>

class BMessage;

class BRoster {
public:
	// Whether BMessenger(signature) finds it.
	bool IsRunning(const char* signature) const;

	// A program that is marked executable is run, in its folder; a .desktop file that is marked so
	// is done as it says; any other entry is opened by the program that the desktop has for its
	// type. Links are followed. `team`: where the process's number goes. The message is not
	// delivered.
	// B_BAD_VALUE, B_ENTRY_NOT_FOUND; B_LAUNCH_FAILED_NO_RESOLVE_LINK;
	// B_LAUNCH_FAILED_EXECUTABLE; B_UNKNOWN_MIME_TYPE, B_LAUNCH_FAILED_NO_PREFERRED_APP,
	// B_LAUNCH_FAILED_FILES_APP_NOT_FOUND, B_LAUNCH_FAILED_APP_IN_TRASH; B_LAUNCH_FAILED.
	status_t Launch(
		const entry_ref* ref, const BMessage* initial = nullptr, team_id* team = nullptr) const;
};

extern const BRoster* be_roster;
