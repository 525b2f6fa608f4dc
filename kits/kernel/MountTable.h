// SPDX-License-Identifier: MIT

// What is mounted where, as the kernel lists it; read again only when that has changed.
// Any thread may call.

#pragma once

#include <support/SupportDefs.h>

#include <memory>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace BPrivate {

struct Mount {
	uint64 id; // the kernel's, as in STATX_MNT_ID
	dev_t device;
	std::string root;  // what of the file system is mounted, "/" for all
	std::string point; // absolute path
	std::string type;  // "ext4"
	std::string upper; // where an overlay puts what changes
	bool isForGuests;  // where people take volumes away again, or a kind that they do that with

	bool IsShared() const;
	bool IsPersistent() const;
	bool IsRemovable() const;
};

typedef std::vector<Mount> Mounts;

class MountTable {
public:
	static MountTable& Instance(); // lives as long as the process

	// All mounts, those on top of others after them.
	std::shared_ptr<const Mounts> Current();

private:
	MountTable();

	std::mutex fLock;
	int fDescriptor; // -1 without /proc
	std::shared_ptr<const Mounts> fMounts;
};

// The mount through which the root of a device's file system is seen, else any of the device.
// B_BAD_VALUE when there is none.
status_t FindMount(dev_t device, Mount* mount, struct stat* root);

} // namespace BPrivate
