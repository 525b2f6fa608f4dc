// SPDX-License-Identifier: MIT

#include <storage/MoveEntry.h>

#include <storage/DirectorySnapshot.h>
#include <storage/FileDescriptor.h>
#include <storage/SpareName.h>

#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace BPrivate {

namespace {

// These helpers return the kernel's error numbers, 0 for success.

int
Rename(const EntryPlace& from, const EntryPlace& to, unsigned flags)
{
	int result =
		Retry([&] { return renameat2(from.folder, from.name, to.folder, to.name, flags); });
	return result == 0 ? 0 : errno;
}

int
Unlink(const EntryPlace& place, int flags = 0)
{
	return Retry([&] { return unlinkat(place.folder, place.name, flags); }) == 0 ? 0 : errno;
}

int
ReadStatus(const EntryPlace& place, struct stat* status)
{
	int result =
		Retry([&] { return fstatat(place.folder, place.name, status, AT_SYMLINK_NOFOLLOW); });
	return result == 0 ? 0 : errno;
}

bool
IsSame(const struct stat& a, const struct stat& b)
{
	return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

int MoveToFree(const EntryPlace& from, const EntryPlace& to);

// What stands under a name can be looked at safely when nobody else knows the name: it is moved
// aside and, unless it is `node`, put back. ENOENT then.
int
MoveAside(const EntryPlace& from, const EntryPlace& aside, const struct stat& node)
{
	if (int error = Rename(from, aside, 0); error != 0)
		return error;
	struct stat status;
	int error = ReadStatus(aside, &status);
	if (error == 0 && !IsSame(status, node))
		error = ENOENT;
	if (error != 0)
		MoveToFree(aside, from);
	return error;
}

// Removes one of a file's names, and nothing that was put there in the meantime.
int
RemoveName(const EntryPlace& place, const struct stat& node)
{
	SpareName spare;
	EntryPlace aside = {place.folder, spare.Text()};
	int error = MoveAside(place, aside, node);
	return error == 0 ? Unlink(aside) : error;
}

// Leaves `to` alone of two names for one node, be they hard links or spellings of one name.
int
Unite(const EntryPlace& from, const EntryPlace& to, const struct stat& node)
{
	SpareName spare;
	EntryPlace aside = {from.folder, spare.Text()};
	if (int error = MoveAside(from, aside, node); error != 0)
		return error;
	struct stat left;
	if (ReadStatus(to, &left) == 0 && IsSame(left, node) && !S_ISDIR(left.st_mode))
		return Unlink(aside);
	int error = MoveToFree(aside, to);
	if (error != 0)
		MoveToFree(aside, from);
	return error;
}

// For what cannot be a folder, where the file system has hard links: their making is exclusive.
int
MoveByLink(const EntryPlace& from, const EntryPlace& to, const struct stat& node)
{
	int result = Retry([&] { return linkat(from.folder, from.name, to.folder, to.name, 0); });
	if (result != 0)
		return errno;
	int error = Unite(from, to, node);
	if (error == 0)
		return 0;
	// Undone, unless our name is the file's last by now. Somebody who took the old name away at
	// the same moment has the file under another one, or wanted it gone.
	struct stat status;
	if (ReadStatus(to, &status) == 0 && IsSame(status, node) && status.st_nlink < 2)
		return 0;
	RemoveName(to, node);
	return error;
}

// Keeps other programs that move as we do out of a folder, if it may be read.
class FolderLock {
public:
	explicit FolderLock(int folder) :
		fFolder(Retry([&] { return openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }))
	{
		if (fFolder.IsOpen())
			Retry([&] { return flock(fFolder.Get(), LOCK_EX); });
	}

private:
	FileDescriptor fFolder;
};

// An empty file reserves the name and is then replaced in one step. With both folders locked: a
// reservation that another program took for the file itself and moved on would leave the name
// open to a third, whose file the step would replace.
int
ReserveAndRename(const EntryPlace& from, const EntryPlace& to, FileDescriptor* reserved)
{
	struct stat source;
	struct stat target;
	if (fstat(from.folder, &source) != 0 || fstat(to.folder, &target) != 0)
		return errno;
	// In one order for all, so that no two programs wait for each other.
	bool isTargetFirst =
		std::pair(target.st_dev, target.st_ino) < std::pair(source.st_dev, source.st_ino);
	FolderLock first(isTargetFirst ? to.folder : from.folder);
	std::optional<FolderLock> second;
	if (!IsSame(source, target))
		second.emplace(isTargetFirst ? from.folder : to.folder);

	*reserved = FileDescriptor(Retry(
		[&] { return openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600); }));
	return reserved->IsOpen() ? Rename(from, to, 0) : errno;
}

// The last resort for such.
int
MoveByReserving(const EntryPlace& from, const EntryPlace& to)
{
	FileDescriptor reserved;
	int error = ReserveAndRename(from, to, &reserved);
	struct stat status;
	if (error != 0 && reserved.IsOpen() && fstat(reserved.Get(), &status) == 0 &&
		status.st_size == 0)
		RemoveName(to, status);
	return error;
}

int
MoveWithoutKernel(const EntryPlace& from, const EntryPlace& to)
{
	struct stat node;
	if (int error = ReadStatus(from, &node); error != 0)
		return error;
	if (S_ISDIR(node.st_mode)) {
		// Nothing is lost between the two calls: a folder can replace no more than an empty folder.
		struct stat taken;
		if (int error = ReadStatus(to, &taken); error != ENOENT)
			return error == 0 ? EEXIST : error;
		return Rename(from, to, 0);
	}
	int error = MoveByLink(from, to, node);
	// FAT answers EPERM, others say plainly that they have no links.
	if (error == EPERM || error == ENOTSUP || error == ENOSYS || error == EMLINK || error == EINVAL)
		return MoveByReserving(from, to);
	return error;
}

// EEXIST for a taken name.
int
MoveToFree(const EntryPlace& from, const EntryPlace& to)
{
	int error = Rename(from, to, RENAME_NOREPLACE);
	// From file systems that cannot do this, and from all for a folder moved into itself: the
	// plain call tells those apart.
	if (error == EINVAL || error == ENOSYS || error == ENOTSUP)
		return MoveWithoutKernel(from, to);
	return error;
}

// False as well when it cannot be told.
bool
IsNotListed(int folder, const char* name)
{
	DirectorySnapshot snapshot;
	if (snapshot.Read(folder) != B_OK)
		return false;
	for (size_t i = 0; i < snapshot.Count(); i++) {
		if (strcmp(snapshot.At(i).d_name, name) == 0)
			return false;
	}
	return true;
}

bool
IsSameFolder(int a, int b)
{
	struct stat first;
	struct stat second;
	return a == b || (fstat(a, &first) == 0 && fstat(b, &second) == 0 && IsSame(first, second));
}

bool
IsSameNode(const EntryPlace& from, const EntryPlace& to, struct stat* node)
{
	struct stat other;
	return ReadStatus(from, node) == 0 && ReadStatus(to, &other) == 0 && IsSame(*node, other);
}

// Where case or accents make no difference one entry has many names, and the listing one of them.
bool
IsOtherSpelling(const EntryPlace& from, const EntryPlace& to)
{
	struct stat node;
	return IsSameNode(from, to, &node) && IsSameFolder(from.folder, to.folder) &&
		strcmp(from.name, to.name) != 0 && IsNotListed(to.folder, to.name);
}

status_t
MoveToTaken(const EntryPlace& from, const EntryPlace& to)
{
	int error = Rename(from, to, 0);
	if (error != 0)
		return error == EEXIST ? B_DIRECTORY_NOT_EMPTY : StatusFromErrno(error);
	// Between two names of one node the kernel has done nothing.
	struct stat node;
	if (!IsSameNode(from, to, &node) ||
		(strcmp(from.name, to.name) == 0 && IsSameFolder(from.folder, to.folder)))
		return B_OK;
	error = Unite(from, to, node);
	return error == ENOENT ? B_OK : StatusFromErrno(error);
}

} // namespace

status_t
MoveEntry(const EntryPlace& from, const EntryPlace& to, bool clobber)
{
	if (clobber)
		return MoveToTaken(from, to);
	int error = MoveToFree(from, to);
	struct stat node;
	if (error == EEXIST && IsOtherSpelling(from, to) && ReadStatus(from, &node) == 0)
		error = Unite(from, to, node);
	return StatusFromErrno(error);
}

status_t
RemoveEntry(const EntryPlace& place)
{
	int error = Unlink(place);
	if (error == EISDIR)
		error = Unlink(place, AT_REMOVEDIR);
	return error == EEXIST ? B_DIRECTORY_NOT_EMPTY : StatusFromErrno(error);
}

} // namespace BPrivate
