// SPDX-License-Identifier: MIT

#include <storage/Entry.h>

#include <storage/Directory.h>
#include <storage/DirectoryTable.h>
#include <storage/FolderPath.h>
#include <storage/Path.h>
#include <storage/Trash.h>

#include <climits>
#include <cstring>
#include <fcntl.h>

using namespace BPrivate;

namespace {

constexpr int kMostLinks = 40; // as many as the kernel follows

} // namespace

BEntry::BEntry(const entry_ref* ref, bool traverse)
{
	SetTo(ref, traverse);
}

BEntry::BEntry(const char* path, bool traverse)
{
	SetTo(path, traverse);
}

BEntry::BEntry(const BDirectory* folder, const char* path, bool traverse)
{
	SetTo(folder, path, traverse);
}

status_t
BEntry::SetTo(const entry_ref* ref, bool traverse)
{
	if (ref == nullptr || ref->name == nullptr)
		return Fail(B_BAD_VALUE);
	DirectoryTable& table = DirectoryTable::Instance();
	FolderHandle folder;
	status_t status = table.Find(ref->device, ref->directory, &folder);
	if (status != B_OK)
		return Fail(status);
	bool isRoot = strcmp(ref->name, "/") == 0 && table.IsRoot(folder->Node());
	if (!isRoot && !IsLeafName(ref->name))
		return Fail(B_BAD_VALUE);
	if (strlen(ref->name) >= B_FILE_NAME_LENGTH)
		return Fail(B_NAME_TOO_LONG);
	return SetTo(std::move(folder), ref->name, traverse);
}

status_t
BEntry::SetTo(const char* path, bool traverse)
{
	return path == nullptr ? Fail(B_BAD_VALUE) : Locate(AT_FDCWD, path, traverse);
}

status_t
BEntry::SetTo(const BDirectory* folder, const char* path, bool traverse)
{
	if (folder == nullptr || path == nullptr)
		return Fail(B_BAD_VALUE);
	if (path[0] == '/')
		return Locate(AT_FDCWD, path, traverse);
	if (folder->InitCheck() != B_OK)
		return Fail(B_BAD_VALUE);
	return Locate(folder->fFolder->Descriptor(), path, traverse);
}

status_t
BEntry::Locate(int base, const char* path, bool traverse)
{
	FolderHandle folder;
	std::string name;
	status_t status = LocateEntry(base, path, &folder, &name);
	if (status != B_OK)
		return Fail(status);
	return SetTo(std::move(folder), name.c_str(), traverse);
}

status_t
BEntry::SetTo(FolderHandle folder, const char* name, bool traverse)
{
	if (fRef.set_name(name) != B_OK)
		return Fail(B_NO_MEMORY);
	fFolder = std::move(folder);
	fStatus = B_OK;
	if (traverse) {
		if (status_t status = Follow(); status != B_OK)
			return Fail(status);
	}
	fRef.device = fFolder->Node().device;
	fRef.directory = fFolder->Node().node;
	return B_OK;
}

// Follows links from folder and name; leaves the numbers to the caller.
status_t
BEntry::Follow()
{
	for (int links = 0;; links++) {
		char target[PATH_MAX];
		ssize_t length = Retry(
			[&] { return readlinkat(fFolder->Descriptor(), fRef.name, target, sizeof(target)); });
		if (length < 0)
			return errno == EINVAL || errno == ENOENT ? B_OK : StatusFromErrno(errno);
		if (links == kMostLinks)
			return B_LINK_LIMIT;
		FolderHandle folder;
		std::string name;
		std::string_view path(target, length);
		status_t status = LocateEntry(fFolder->Descriptor(), path, &folder, &name);
		if (status != B_OK)
			return status;
		if (fRef.set_name(name.c_str()) != B_OK)
			return B_NO_MEMORY;
		fFolder = std::move(folder);
	}
}

status_t
BEntry::Fail(status_t status)
{
	Unset();
	return fStatus = status;
}

void
BEntry::Unset()
{
	fFolder.reset();
	fRef = entry_ref();
	fStatus = B_NO_INIT;
}

bool
BEntry::Exists() const
{
	struct stat status;
	return GetStat(&status) == B_OK;
}

status_t
BEntry::GetRef(entry_ref* ref) const
{
	if (ref == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return B_NO_INIT;
	*ref = fRef;
	return ref->name != nullptr ? B_OK : B_NO_MEMORY;
}

status_t
BEntry::GetName(char* buffer) const
{
	if (buffer == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return B_NO_INIT;
	strcpy(buffer, fRef.name);
	return B_OK;
}

status_t
BEntry::GetPath(BPath* path) const
{
	return path == nullptr ? B_BAD_VALUE : path->SetTo(this);
}

status_t
BEntry::GetParent(BEntry* entry) const
{
	if (entry == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return entry->Fail(B_NO_INIT);
	if (!IsLeafName(fRef.name))
		return entry->Fail(B_ENTRY_NOT_FOUND);
	FolderHandle parent;
	std::string name;
	status_t status = GetFolderEntry(fFolder, &parent, &name);
	if (status != B_OK)
		return entry->Fail(status);
	return entry->SetTo(std::move(parent), name.c_str(), false);
}

status_t
BEntry::GetParent(BDirectory* folder) const
{
	if (folder == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return folder->Fail(B_NO_INIT);
	if (!IsLeafName(fRef.name))
		return folder->Fail(B_ENTRY_NOT_FOUND);
	return folder->SetTo(FolderHandle(fFolder));
}

status_t
BEntry::Rename(const char* path, bool clobber)
{
	if (path == nullptr)
		return B_BAD_VALUE;
	return fFolder == nullptr ? B_NO_INIT : MoveTo(fFolder, path, clobber);
}

status_t
BEntry::MoveTo(BDirectory* folder, const char* path, bool clobber)
{
	if (folder == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return B_NO_INIT;
	if (folder->InitCheck() != B_OK)
		return folder->InitCheck();
	return MoveTo(folder->fFolder, path != nullptr ? path : fRef.name, clobber);
}

status_t
BEntry::MoveTo(const FolderHandle& base, const char* path, bool clobber)
{
	// Nothing may fail any more once the entry is moved: its new place is made up before.
	BEntry target;
	if (IsLeafName(path) && strlen(path) < B_FILE_NAME_LENGTH)
		target.SetTo(base, path, false);
	else
		target.Locate(base->Descriptor(), path, false);
	if (target.InitCheck() != B_OK)
		return target.InitCheck();
	status_t status =
		MoveWithRecord({fFolder, fRef.name}, {target.fFolder, target.fRef.name}, clobber);
	if (status == B_OK)
		*this = std::move(target);
	return status;
}

status_t
BEntry::Remove()
{
	if (fFolder == nullptr)
		return B_NO_INIT;
	return RemoveWithRecord({fFolder, fRef.name});
}

status_t
BEntry::GetLocation(Location* location) const
{
	if (fFolder == nullptr)
		return B_NO_INIT;
	location->folder = fFolder->Descriptor();
	location->name = fRef.name;
	return B_OK;
}

status_t
get_ref_for_path(const char* path, entry_ref* ref)
{
	if (path == nullptr || ref == nullptr)
		return B_BAD_VALUE;
	BEntry entry;
	if (status_t status = entry.SetTo(path); status != B_OK)
		return status;
	struct stat status;
	if (status_t error = entry.GetStat(&status); error != B_OK)
		return error;
	return entry.GetRef(ref);
}
