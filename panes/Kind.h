// SPDX-License-Identifier: MIT

// Kind: what an entry is, as text. One for all entries of a type.
//
// Any thread.

#pragma once

#include <storage/Mime.h>
#include <storage/Statable.h>

#include <memory>
#include <string>

struct Kind {
	BMimeType type; // unset for entries without a type
	std::string text;
};

typedef std::shared_ptr<const Kind> KindRef; // never null

// Of an entry that is gone or has neither type nor a kind of its own: " -- ".
const KindRef& UnknownKind();

// `type` as BNodeInfo has it; may be empty or no valid type's name, then the status decides. A
// folder that is the root of a volume is told by the volume's kind.
KindRef KindOf(const char* type, const struct stat& status);
