// SPDX-License-Identifier: MIT

// The desktop's clipboard.
//
// Any thread. On X11 contents of other programs are fetched over a connection of their own, so
// that neither the GUI thread nor the windows wait for a program that holds the clipboard and does
// not answer; the caller waits for kClipboardPatience at most, and for three times as long for one
// that answers little by little. Elsewhere the GUI thread waits, which Qt limits to a second.

#pragma once

#include <desktop/Content.h>
#include <support/SupportDefs.h>

namespace desktop {

constexpr bigtime_t kClipboardPatience = 1000000; // microseconds without any sign

// Puts contents of ours there, or empties the clipboard (null); returns when the desktop knows.
// False without a desktop.
bool OfferClipboard(std::shared_ptr<const Content> content);

// Whose the present contents are. Costs one round trip to the display server.
struct ClipboardLook {
	enum Owner { kUnreachable, kNobody, kUs, kOther };

	Owner owner = kUnreachable;
	uint64 change = 0; // another number, never 0, means other contents of kOther
};
ClipboardLook LookAtClipboard();

// The contents of another program: which of the formats of Content.h there are, and the bytes of
// one. B_TIMED_OUT when it does not answer, B_NAME_NOT_FOUND when it has no such format or nobody
// has anything, B_ERROR without a desktop.
status_t ListClipboard(std::vector<std::string>* formats);
status_t ReadClipboard(const std::string& format, std::string* bytes);

} // namespace desktop
