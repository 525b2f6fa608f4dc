// SPDX-License-Identifier: MIT

// Reads the folders in a folder for the tree.

#pragma once

#include <support/SupportDefs.h>

#include <atomic>
#include <memory>
#include <vector>

class FolderItem;
struct entry_ref;

typedef std::vector<std::unique_ptr<FolderItem>> FolderItems;

// In the byte order of their names; links to folders are none. Empty for what cannot be read.
// Ends early, with what it has, once `stop` is true. Touches no view: any thread.
FolderItems ReadFolders(const entry_ref& folder, uint32 level, const std::atomic<bool>& stop);
