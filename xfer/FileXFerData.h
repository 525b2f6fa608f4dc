// SPDX-License-Identifier: MIT

// What a thread that copies is given.

#pragma once

#include <app/Messenger.h>
#include <storage/Path.h>

#include <memory>

class BDirectory;
class BEntry;
class BHandler;

namespace NFileXFer {

struct FileXFerData {
	FileXFerData(const entry_ref& source, const BPath& target, const BHandler* handler);
	// The target is the folder's own path, to which the caller appends the new name.
	FileXFerData(const entry_ref& source, const BDirectory* folder, const BHandler* handler);
	FileXFerData(BEntry* source, const BDirectory* folder, const BHandler* handler);

	entry_ref fSource;
	BPath fTarget;
	std::unique_ptr<BMessenger> fMessenger; // to whom the end is told; without target for nobody
};

} // namespace NFileXFer
