// SPDX-License-Identifier: MIT

#include <kernel/fs_info.h>

#include <kernel/MountTable.h>

#include <cerrno>
#include <cstdio>
#include <sys/statvfs.h>
#include <sys/xattr.h>

using namespace BPrivate;

namespace {

bool
KnowsAttributes(const char* path)
{
	// A file system without them does not even look for the name.
	return getxattr(path, "user.korva", nullptr, 0) >= 0 || errno == ENODATA;
}

uint32
FlagsOf(const Mount& mount, const struct statvfs& status)
{
	uint32 flags = 0;
	if ((status.f_flag & ST_RDONLY) != 0)
		flags |= B_FS_IS_READONLY;
	if (mount.IsRemovable())
		flags |= B_FS_IS_REMOVABLE;
	if (mount.IsPersistent())
		flags |= B_FS_IS_PERSISTENT;
	if (mount.IsShared())
		flags |= B_FS_IS_SHARED;
	if (KnowsAttributes(mount.point.c_str()))
		flags |= B_FS_HAS_ATTR;
	return flags;
}

} // namespace

int
fs_stat_dev(dev_t device, fs_info* info)
{
	if (info == nullptr)
		return B_BAD_VALUE;
	Mount mount;
	struct stat root;
	if (status_t error = FindMount(device, &mount, &root); error != B_OK)
		return error;
	struct statvfs status;
	int result;
	do
		result = statvfs(mount.point.c_str(), &status);
	while (result != 0 && errno == EINTR);
	if (result != 0)
		return StatusFromErrno(errno);

	*info = {};
	info->dev = root.st_dev;
	info->root = root.st_ino;
	info->flags = FlagsOf(mount, status);
	info->block_size = status.f_frsize;
	info->total_blocks = status.f_blocks;
	info->free_blocks = status.f_bavail;
	size_t leaf = mount.point == "/" ? 0 : mount.point.rfind('/') + 1;
	snprintf(info->volume_name, sizeof(info->volume_name), "%s", mount.point.c_str() + leaf);
	snprintf(info->fsh_name, sizeof(info->fsh_name), "%s", mount.type.c_str());
	return B_OK;
}
