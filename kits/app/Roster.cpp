// SPDX-License-Identifier: MIT

#include <app/Roster.h>

#include <app/Messenger.h>
#include <desktop/Launch.h>
#include <desktop/Types.h>
#include <storage/Entry.h>
#include <storage/File.h>
#include <storage/FindDirectory.h>
#include <storage/NodeInfo.h>
#include <storage/Path.h>
#include <storage/UriList.h>

#include <cstring>
#include <unistd.h>

namespace {

const BRoster sRoster;

// B_UNKNOWN_MIME_TYPE for what is neither file nor folder.
status_t
GetType(const entry_ref& ref, const struct stat& status, std::string* type)
{
	BNode node(&ref);
	char text[B_MIME_TYPE_LENGTH];
	if (BNodeInfo(&node).GetType(text) == B_OK)
		*type = text;
	else if (S_ISDIR(status.st_mode))
		*type = desktop::kFolderType;
	else
		return B_UNKNOWN_MIME_TYPE;
	return B_OK;
}

bool
NamesInterpreter(const entry_ref& ref)
{
	char start[2];
	return BFile(&ref, B_READ_ONLY).Read(start, sizeof(start)) == ssize_t(sizeof(start)) &&
		std::memcmp(start, "#!", sizeof(start)) == 0;
}

bool
IsProgram(const entry_ref& ref, const std::string& type)
{
	return desktop::IsProgramType(type) || (desktop::IsTextType(type) && NamesInterpreter(ref));
}

bool
IsInTrash(const std::string& path)
{
	BPath trash;
	return find_directory(B_TRASH_DIRECTORY, &trash) == B_OK &&
		path.starts_with(std::string(trash.Path()) + "/");
}

status_t
OpenDocument(const std::string& path, const std::string& type, team_id* team)
{
	std::string program;
	const status_t status = desktop::FindDefaultProgram(type, &program);
	if (status == B_LAUNCH_FAILED_NO_PREFERRED_APP && type == desktop::kUnknownType)
		return B_UNKNOWN_MIME_TYPE;
	if (status != B_OK)
		return status;
	if (IsInTrash(program))
		return B_LAUNCH_FAILED_APP_IN_TRASH;
	return desktop::OpenByDefault(BPrivate::UriOf(path), type, team);
}

// The entry that a chain of links leads to.
status_t
Resolve(const entry_ref& ref, entry_ref* target, struct stat* status)
{
	const BEntry entry(&ref);
	if (entry.InitCheck() != B_OK)
		return entry.InitCheck();
	status_t error = entry.GetStat(status);
	if (error != B_OK || !S_ISLNK(status->st_mode)) {
		*target = ref;
		return error;
	}
	const BEntry resolved(&ref, true);
	return resolved.GetRef(target) == B_OK && resolved.GetStat(status) == B_OK
		? B_OK
		: B_LAUNCH_FAILED_NO_RESOLVE_LINK;
}

} // namespace

const BRoster* be_roster = &sRoster;

bool
BRoster::IsRunning(const char* signature) const
{
	return BMessenger(signature).IsValid();
}

status_t
BRoster::Launch(const entry_ref* ref, const BMessage*, team_id* team) const
{
	if (ref == nullptr)
		return B_BAD_VALUE;
	entry_ref target;
	struct stat status;
	std::string type;
	status_t error = Resolve(*ref, &target, &status);
	if (error == B_OK)
		error = GetType(target, status, &type);
	if (error != B_OK)
		return error;
	const BPath place(&target);
	if (place.InitCheck() != B_OK)
		return place.InitCheck();
	const std::string path = place.Path();
	// Whether *we* may run it: a mark for others, or on a volume without programs, is none.
	if (S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0) {
		if (desktop::IsDesktopFileType(type))
			return desktop::RunDesktopFile(path, team);
		if (IsProgram(target, type))
			return desktop::RunProgram(path, team);
	}
	return OpenDocument(path, type, team);
}
