// SPDX-License-Identifier: MIT

#include "kits/app/FileManager.h"

#include <app/AppDefs.h>
#include <app/Message.h>
#include <app/Roster.h>
#include <desktop/FileManager.h>
#include <storage/Entry.h>
#include <storage/Path.h>
#include <storage/UriList.h>

#include <strings.h>

namespace BPrivate {

namespace {

bool
IsFolder(const entry_ref& ref)
{
	struct stat status;
	return BEntry(&ref, true).GetStat(&status) == B_OK && S_ISDIR(status.st_mode);
}

} // namespace

bool
IsFileManagerSignature(const char* signature)
{
	return signature != nullptr && strcasecmp(signature, "application/x-vnd.Be-TRAK") == 0;
}

bool
FileManagerIsRunning()
{
	return desktop::HasFileManager();
}

status_t
SendToFileManager(const BMessage& message)
{
	if (message.what != B_REFS_RECEIVED)
		return B_OK;
	std::vector<std::string> uris;
	entry_ref ref;
	for (int32 i = 0; message.FindRef("refs", i, &ref) == B_OK; i++) {
		if (!IsFolder(ref)) {
			be_roster->Launch(&ref);
			continue;
		}
		// A folder that is shown by a link keeps the link's name.
		const BPath path(&ref);
		if (path.InitCheck() == B_OK)
			uris.push_back(UriOf(path.Path()));
	}
	if (!uris.empty())
		desktop::ShowFolders(uris);
	return B_OK;
}

} // namespace BPrivate
