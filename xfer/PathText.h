// SPDX-License-Identifier: MIT

// The paths of entries as texts in a message, for programs that take text.

#pragma once

#include <storage/EntryRef.h>

#include <string>

class BMessage;

namespace NFileXFer {

constexpr const char* kPathText = "text/plain"; // the field

// Thousands of files come from one folder: it is looked up once for all that follow each other.
class PathTexts {
public:
	// Adds it with its NUL; a link's own path, and nothing but the NUL for an entry that has none,
	// so that texts and entries stay in step.
	void AddTo(BMessage* message, const entry_ref* ref);

private:
	entry_ref fLast;     // whose path was looked up
	std::string fFolder; // of that one, with the slash; empty when it had no path
};

} // namespace NFileXFer
