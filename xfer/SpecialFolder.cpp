// SPDX-License-Identifier: MIT

#include "xfer/FileXFer.h"

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>
#include <storage/Volume.h>

namespace NFileXFer {

bool
IsSpecialFolder(BEntry& entry)
{
	constexpr struct {
		int32 first;
		int32 last;
	} kSpecial[] = {
		{B_BEOS_DIRECTORY, B_BEOS_SOUNDS_DIRECTORY},
		{B_USER_DIRECTORY, B_USER_SOUNDS_DIRECTORY},
		{B_APPS_DIRECTORY, B_UTILITIES_DIRECTORY},
	};
	entry_ref ref;
	BPath path;
	if (BDirectory(&entry).InitCheck() != B_OK || entry.GetRef(&ref) != B_OK ||
		entry.GetPath(&path) != B_OK)
		return false;
	BVolume volume(ref.device);
	for (const auto& range : kSpecial) {
		for (int32 which = range.first; which <= range.last; which++) {
			BPath special;
			if (find_directory(static_cast<directory_which>(which), &special, false, &volume) ==
					B_OK &&
				special == path)
				return true;
		}
	}
	return false;
}

} // namespace NFileXFer
