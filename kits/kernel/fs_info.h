// SPDX-License-Identifier: MIT

// What there is to know about a mounted volume.

#pragma once

#include <support/SupportDefs.h>

enum : uint32 {
	B_FS_IS_READONLY = 0x1,
	B_FS_IS_REMOVABLE = 0x2,  // its disk can be taken out
	B_FS_IS_PERSISTENT = 0x4, // survives a restart of the machine
	B_FS_IS_SHARED = 0x8,     // comes over a network
	B_FS_HAS_ATTR = 0x20000,
};

struct fs_info {
	dev_t dev;
	ino_t root; // of the volume's root folder
	uint32 flags;
	off_t block_size; // bytes
	off_t total_blocks;
	off_t free_blocks; // that the user may fill
	char volume_name[256];
	char fsh_name[32]; // of the file system, as "ext4"
};

// 0, or B_BAD_VALUE for a device that is not mounted where we could see it. Any thread. Asks the
// file system: waits for the server of a network volume.
int fs_stat_dev(dev_t device, fs_info* info);
