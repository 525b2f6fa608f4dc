// SPDX-License-Identifier: MIT

#include "xfer/PathText.h"

#include <app/Message.h>
#include <storage/Entry.h>
#include <storage/Path.h>
#include <support/TypeConstants.h>

#include <cstring>

namespace NFileXFer {

void
AddPathText(BMessage* message, const entry_ref* ref)
{
	BEntry entry(ref, false);
	BPath path;
	const char* text = entry.GetPath(&path) == B_OK ? path.Path() : "";
	message->AddData(kPathText, B_MIME_TYPE, text, strlen(text) + 1);
}

} // namespace NFileXFer
