// SPDX-License-Identifier: MIT

// Moving and removing entries so that no file is ever lost, whoever else is at work in the same
// folders.

#pragma once

#include <support/SupportDefs.h>

namespace BPrivate {

// A name in an open folder; the caller keeps both.
struct EntryPlace {
	int folder;
	const char* name;
};

// Moves within one volume, in one step. Onto a taken name only with `clobber`; a folder takes the
// place of an empty folder alone. An entry's own name in another spelling is not taken, where the
// file system sees no difference; another hard link of the same file is. Clobbering that one leaves
// the new name alone. The errors are those of BEntry::Rename().
status_t MoveEntry(const EntryPlace& from, const EntryPlace& to, bool clobber);

// A folder only when it is empty.
status_t RemoveEntry(const EntryPlace& place);

} // namespace BPrivate
