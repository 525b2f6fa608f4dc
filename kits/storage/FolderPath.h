// SPDX-License-Identifier: MIT

// Between path texts and open folders. Paths may be longer than PATH_MAX; names are bytes.

#pragma once

#include <storage/FolderHandle.h>

#include <string>
#include <string_view>

namespace BPrivate {

// True for what can be an entry's own name: not empty, "." or "..", without a slash.
bool IsLeafName(const char* name);

// Opens a folder (O_PATH), following links; `base` is a folder's descriptor or AT_FDCWD.
status_t OpenFolderAt(int base, std::string_view path, FileDescriptor* folder);

// The folder's absolute path as it is now. B_ENTRY_NOT_FOUND when the folder is removed.
status_t GetFolderPath(int folder, std::string* path);

// The same, but up to 10 ms old as long as it leads there: for what is not kept.
status_t GetFolderPath(const OpenFolder& folder, std::string* path);

// The folder as an entry of its parent. The root folder is "/" in itself.
status_t GetFolderEntry(const FolderHandle& folder, FolderHandle* parent, std::string* name);

// Takes a path apart into the folder, which must exist, and the entry's name, which need not.
// Links are followed in the folder part only; "." and ".." at the end and the root folder come
// out as GetFolderEntry() names them.
status_t LocateEntry(int base, std::string_view path, FolderHandle* folder, std::string* name);

} // namespace BPrivate
