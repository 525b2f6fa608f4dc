// SPDX-License-Identifier: MIT

#include "xfer/FileXFer.h"

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include <string>

namespace NFileXFer {

namespace {

bool
MoveToTrash(BEntry* entry, const char* ownName)
{
	BPath path;
	if (find_directory(B_TRASH_DIRECTORY, &path, false, nullptr) != B_OK)
		return false;
	BDirectory trash(path.Path());
	const std::string name = ownName; // the entry's changes with its place
	status_t status = entry->MoveTo(&trash);
	for (uint16 number = 1; status == B_FILE_EXISTS && number != 0; number++)
		status = entry->MoveTo(&trash, (name + " " + std::to_string(number)).c_str());
	return status == B_OK;
}

} // namespace

bool
DeleteFile(const entry_ref* ref, bool toTrash)
{
	BEntry entry(ref);
	if (entry.InitCheck() != B_OK)
		return false;
	return toTrash ? MoveToTrash(&entry, ref->name) : entry.Remove() == B_OK;
}

} // namespace NFileXFer
