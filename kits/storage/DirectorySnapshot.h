// SPDX-License-Identifier: MIT

// The names in a folder at one moment, sorted byte by byte.
//
// Cost: one getdents64() per 64 KiB of names, 16 bytes and the kernel's own record per name.

#pragma once

#include <support/SupportDefs.h>

#include <dirent.h>
#include <memory>
#include <vector>

namespace BPrivate {

class DirectorySnapshot {
public:
	// Replaces the contents by those of a folder, given by any descriptor of it. The snapshot is
	// empty after an error.
	status_t Read(int folder);

	// "." and ".." are left out. Of d_ino and d_type: numbers of mount points are those of the
	// folders below, and types may be DT_UNKNOWN.
	size_t Count() const { return fItems.size(); }
	const dirent64& At(size_t index) const { return *fItems[index].entry; }
	const dirent64* Find(const char* name) const; // NULL when there is none

private:
	struct Item {
		uint64 key; // eight bytes of the name behind what all names begin with, the first highest
		const dirent64* entry;
	};

	status_t ReadBlocks(int descriptor);
	void AddItems(char* block, size_t size);
	void Sort();

	std::vector<std::unique_ptr<char[]>> fBlocks; // what the items point into
	std::vector<Item> fItems;
};

} // namespace BPrivate
