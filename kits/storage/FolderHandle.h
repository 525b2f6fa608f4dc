// SPDX-License-Identifier: MIT

// An open folder that several objects share. The descriptor is O_PATH: good as the base of
// openat() and its kin, not for reading; no permission to read the folder is needed.

#pragma once

#include <storage/EntryRef.h>
#include <storage/FileDescriptor.h>

#include <memory>

namespace BPrivate {

class OpenFolder {
public:
	OpenFolder(FileDescriptor descriptor, const node_ref& node, uint64 mount) :
		fDescriptor(std::move(descriptor)), fNode(node), fMount(mount)
	{}

	int Descriptor() const { return fDescriptor.Get(); }
	const node_ref& Node() const { return fNode; }
	uint64 Mount() const { return fMount; } // the kernel's id of the mount it was reached through

private:
	FileDescriptor fDescriptor;
	node_ref fNode;
	uint64 fMount;
};

typedef std::shared_ptr<const OpenFolder> FolderHandle;

} // namespace BPrivate
