// SPDX-License-Identifier: MIT

#include "xfer/PathText.h"

#include <app/Message.h>
#include <storage/Entry.h>
#include <storage/Path.h>
#include <support/TypeConstants.h>

#include <string_view>

namespace NFileXFer {

namespace {

bool
IsPlain(std::string_view name)
{
	return name != "." && name != ".." && name.find('/') == name.npos;
}

} // namespace

void
PathTexts::AddTo(BMessage* message, const entry_ref* ref)
{
	std::string text;
	if (!fFolder.empty() && ref->name != nullptr && ref->directory == fLast.directory &&
		ref->device == fLast.device && IsPlain(ref->name)) {
		text = fFolder + ref->name;
	} else {
		BPath path;
		if (BEntry(ref, false).GetPath(&path) == B_OK)
			text = path.Path();
		fLast = *ref;
		fFolder = text.substr(0, text.rfind('/') + 1);
	}
	message->AddData(kPathText, B_MIME_TYPE, text.c_str(), static_cast<ssize_t>(text.size()) + 1);
}

} // namespace NFileXFer
