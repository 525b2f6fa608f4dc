// SPDX-License-Identifier: MIT

// The path of an entry as text in a message, for programs that take text.

#pragma once

#include <storage/EntryRef.h>

class BMessage;

namespace NFileXFer {

constexpr const char* kPathText = "text/plain"; // the field

// Adds it with its NUL; a link's own path, and nothing but the NUL for an entry
// that has none, so that texts and entries stay in step.
void AddPathText(BMessage* message, const entry_ref* ref);

} // namespace NFileXFer
