// SPDX-License-Identifier: MIT

#include <storage/Statable.h>

#include <storage/DirectoryTable.h>
#include <storage/Volume.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/sysmacros.h>

using BPrivate::Retry;
using BPrivate::StatusFromErrno;

namespace {

constexpr int kStatFlags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH | AT_NO_AUTOMOUNT;

timespec
ToTimespec(const statx_timestamp& time)
{
	timespec result = {};
	result.tv_sec = time.tv_sec;
	result.tv_nsec = time.tv_nsec;
	return result;
}

void
ToStat(const struct statx& from, struct stat* to)
{
	*to = {};
	to->st_dev = makedev(from.stx_dev_major, from.stx_dev_minor);
	to->st_ino = from.stx_ino;
	to->st_mode = from.stx_mode;
	to->st_nlink = from.stx_nlink;
	to->st_uid = from.stx_uid;
	to->st_gid = from.stx_gid;
	to->st_rdev = makedev(from.stx_rdev_major, from.stx_rdev_minor);
	to->st_size = from.stx_size;
	to->st_blksize = from.stx_blksize;
	to->st_blocks = from.stx_blocks;
	to->st_atim = ToTimespec(from.stx_atime);
	to->st_mtim = ToTimespec(from.stx_mtime);
	to->st_ctim = ToTimespec(from.stx_ctime);
}

time_t
CreationTime(const struct statx& status)
{
	// File systems that were made by a tool may hold a zero for "unknown".
	if ((status.stx_mask & STATX_BTIME) != 0 && status.stx_btime.tv_sec != 0)
		return status.stx_btime.tv_sec;
	return std::min(status.stx_mtime.tv_sec, status.stx_ctime.tv_sec);
}

} // namespace

status_t
BStatable::GetStat(struct stat* status) const
{
	if (status == nullptr)
		return B_BAD_VALUE;
	Location where;
	if (status_t error = GetLocation(&where); error != B_OK)
		return error;
	int result = Retry([&] { return fstatat(where.folder, where.name, status, kStatFlags); });
	return result == 0 ? B_OK : StatusFromErrno(errno);
}

status_t
BStatable::GetStat(struct stat* status, time_t* creation) const
{
	if (status == nullptr || creation == nullptr)
		return B_BAD_VALUE;
	Location where;
	if (status_t error = GetLocation(&where); error != B_OK)
		return error;
	struct statx read;
	int result = Retry([&] {
		return statx(where.folder, where.name, kStatFlags, STATX_BASIC_STATS | STATX_BTIME, &read);
	});
	if (result != 0)
		return StatusFromErrno(errno);
	ToStat(read, status);
	*creation = CreationTime(read);
	return B_OK;
}

bool
BStatable::HasType(mode_t type) const
{
	struct stat status;
	return GetStat(&status) == B_OK && (status.st_mode & S_IFMT) == type;
}

bool
BStatable::IsFile() const
{
	return HasType(S_IFREG);
}

bool
BStatable::IsDirectory() const
{
	return HasType(S_IFDIR);
}

bool
BStatable::IsSymLink() const
{
	return HasType(S_IFLNK);
}

status_t
BStatable::GetNodeRef(node_ref* ref) const
{
	Location where;
	if (ref == nullptr)
		return B_BAD_VALUE;
	if (status_t error = GetLocation(&where); error != B_OK)
		return error;
	if (where.node != nullptr) {
		*ref = *where.node;
		return B_OK;
	}
	struct stat status;
	if (status_t error = GetStat(&status); error != B_OK)
		return error;

	BPrivate::FolderHandle handle;
	if (S_ISDIR(status.st_mode)) {
		const char* name = where.name[0] == '\0' ? "." : where.name;
		BPrivate::FileDescriptor folder(Retry([&] {
			return openat(where.folder, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
		}));
		if (folder.IsOpen())
			BPrivate::DirectoryTable::Instance().Add(std::move(folder), &handle);
	}
	if (handle != nullptr) {
		*ref = handle->Node();
	} else {
		// No folder, or one that cannot be opened: the numbers are good as such.
		ref->device = status.st_dev;
		ref->node = status.st_ino;
	}
	return B_OK;
}

status_t
BStatable::GetSize(off_t* size) const
{
	struct stat status;
	if (size == nullptr)
		return B_BAD_VALUE;
	status_t error = GetStat(&status);
	if (error == B_OK)
		*size = status.st_size;
	return error;
}

status_t
BStatable::GetCreationTime(time_t* time) const
{
	struct stat status;
	return GetStat(&status, time);
}

status_t
BStatable::GetVolume(BVolume* volume) const
{
	struct stat status;
	if (volume == nullptr)
		return B_BAD_VALUE;
	if (status_t error = GetStat(&status); error != B_OK) {
		volume->Unset();
		return error;
	}
	return volume->SetTo(status.st_dev);
}
