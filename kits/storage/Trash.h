// SPDX-License-Identifier: MIT

// The user's trash, as all programs of the desktop keep it: files/ holds what was thrown away, and
// info/ a record for each entry there, which says where it came from and when. An entry without its
// record could not be put back, so the record comes first and goes last, whatever happens between.

#pragma once

#include <storage/FolderHandle.h>

#include <ctime>
#include <string>
#include <string_view>

namespace BPrivate {

// A name in a folder; both are borrowed.
struct NamedEntry {
	const FolderHandle& folder;
	const char* name;
};

// MoveEntry(), and RemoveEntry(), for entries that may be in the trash, or get there, or leave it.
// Other errors are those of writing the record; B_FILE_EXISTS also for a name whose record is
// taken; B_NAME_TOO_LONG for a name that has no room for the record's suffix.
status_t MoveWithRecord(const NamedEntry& from, const NamedEntry& to, bool clobber);
status_t RemoveWithRecord(const NamedEntry& entry);

// The text of a record. The path is bytes as on the disk.
std::string TrashRecord(std::string_view path, time_t when);

} // namespace BPrivate
