// SPDX-License-Identifier: MIT

#include "panes/ReadFolders.h"

#include "panes/FolderItem.h"

#include <storage/Directory.h>
#include <storage/Entry.h>

#include <cstring>

namespace {

constexpr size_t kReadBytes = 32768;

// Most file systems tell entries and folders apart without being asked for each one.
bool
IsFolder(const BDirectory& folder, const dirent& entry)
{
	if (strcmp(entry.d_name, ".") == 0 || strcmp(entry.d_name, "..") == 0)
		return false;
	return entry.d_type == DT_DIR ||
		(entry.d_type == DT_UNKNOWN && BEntry(&folder, entry.d_name).IsDirectory());
}

} // namespace

FolderItems
ReadFolders(const entry_ref& ref, uint32 level, const std::atomic<bool>& stop)
{
	FolderItems items;
	BDirectory folder(&ref);
	node_ref node;
	folder.GetNodeRef(&node);
	const std::unique_ptr<char[]> buffer(new char[kReadBytes]); // aligned for anything
	int32 count;
	while (
		(count = folder.GetNextDirents(reinterpret_cast<dirent*>(buffer.get()), kReadBytes)) > 0) {
		const char* next = buffer.get();
		for (int32 i = 0; i < count; i++) {
			const dirent& entry = *reinterpret_cast<const dirent*>(next);
			next += entry.d_reclen;
			if (stop)
				return items;
			if (!IsFolder(folder, entry))
				continue;
			items.push_back(
				std::make_unique<FolderItem>(new entry_ref(node.device, node.node, entry.d_name)));
			items.back()->SetOutlineLevel(level);
		}
	}
	return items;
}
