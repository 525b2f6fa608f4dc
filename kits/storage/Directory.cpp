// SPDX-License-Identifier: MIT

#include <storage/Directory.h>

#include <storage/DirectorySnapshot.h>
#include <storage/DirectoryTable.h>
#include <storage/Entry.h>
#include <storage/File.h>
#include <storage/FolderMonitor.h>
#include <storage/FolderPath.h>
#include <storage/SymLink.h>

#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <string_view>

using namespace BPrivate;

namespace {

constexpr size_t kDots = 2; // positions before the snapshot's first

// Writes one record if it fits; returns its length or 0.
size_t
PutDirent(char* to, size_t room, ino_t number, unsigned char type, std::string_view name)
{
	size_t length = offsetof(dirent, d_name) + name.size() + 1;
	length = (length + alignof(dirent) - 1) & ~(alignof(dirent) - 1);
	if (length > room)
		return 0;
	dirent* entry = reinterpret_cast<dirent*>(to);
	entry->d_ino = number;
	entry->d_off = 0;
	entry->d_reclen = static_cast<unsigned short>(length);
	entry->d_type = type;
	memcpy(to + offsetof(dirent, d_name), name.data(), name.size());
	memset(to + offsetof(dirent, d_name) + name.size(), 0,
		length - offsetof(dirent, d_name) - name.size());
	return length;
}

} // namespace

BDirectory::BDirectory() = default;

BDirectory::BDirectory(const entry_ref* ref)
{
	SetTo(ref);
}

BDirectory::BDirectory(const node_ref* ref)
{
	SetTo(ref);
}

BDirectory::BDirectory(const BEntry* entry)
{
	SetTo(entry);
}

BDirectory::BDirectory(const char* path)
{
	SetTo(path);
}

BDirectory::BDirectory(const BDirectory* folder, const char* path)
{
	SetTo(folder, path);
}

BDirectory::BDirectory(const BDirectory& other) :
	BStatable(other), fFolder(other.fFolder), fStatus(other.fStatus)
{}

BDirectory::~BDirectory() = default;

BDirectory&
BDirectory::operator=(const BDirectory& other)
{
	if (this != &other) {
		Unset();
		fFolder = other.fFolder;
		fStatus = other.fStatus;
	}
	return *this;
}

status_t
BDirectory::SetTo(const entry_ref* ref)
{
	BEntry entry(ref);
	return SetTo(&entry);
}

status_t
BDirectory::SetTo(const node_ref* ref)
{
	if (ref == nullptr || *ref == node_ref())
		return Fail(B_BAD_VALUE);
	FolderHandle folder;
	status_t status = DirectoryTable::Instance().Find(ref->device, ref->node, &folder);
	return status == B_OK ? SetTo(std::move(folder)) : Fail(status);
}

status_t
BDirectory::SetTo(const BEntry* entry)
{
	if (entry == nullptr)
		return Fail(B_BAD_VALUE);
	if (entry->InitCheck() != B_OK)
		return Fail(entry->InitCheck());
	return Open(entry->fFolder->Descriptor(), entry->fRef.name);
}

status_t
BDirectory::SetTo(const char* path)
{
	return path == nullptr ? Fail(B_BAD_VALUE) : Open(AT_FDCWD, path);
}

status_t
BDirectory::SetTo(const BDirectory* folder, const char* path)
{
	if (folder == nullptr || path == nullptr)
		return Fail(B_BAD_VALUE);
	if (path[0] == '/')
		return Open(AT_FDCWD, path);
	if (folder->InitCheck() != B_OK)
		return Fail(B_BAD_VALUE);
	// The folder may be this object: its descriptor stays open until the new one is.
	return Open(folder->fFolder->Descriptor(), path);
}

status_t
BDirectory::Open(int base, const char* path)
{
	FolderHandle folder;
	status_t status = DirectoryTable::Instance().Open(base, path, &folder);
	return status == B_OK ? SetTo(std::move(folder)) : Fail(status);
}

status_t
BDirectory::SetTo(FolderHandle folder)
{
	Unset();
	fFolder = std::move(folder);
	return fStatus = B_OK;
}

status_t
BDirectory::Fail(status_t status)
{
	Unset();
	return fStatus = status;
}

void
BDirectory::Unset()
{
	fFolder.reset();
	DropSnapshot();
	fStatus = B_NO_INIT;
}

void
BDirectory::DropSnapshot()
{
	fSnapshot.reset();
	fPosition = 0;
	fAtEnd = false;
	fHasRead = false;
}

// Takes a snapshot if none is there. B_ENTRY_NOT_FOUND when the walk is over.
status_t
BDirectory::PrepareWalk()
{
	if (fFolder == nullptr)
		return B_NO_INIT;
	if (fSnapshot == nullptr && !fAtEnd) {
		// By way of the node monitor: who lists what it watches need not be told of it.
		std::shared_ptr<const DirectorySnapshot> snapshot;
		status_t status = FolderMonitor::Instance().List(fFolder, &snapshot);
		if (status != B_OK)
			return status;
		fSnapshot = std::move(snapshot);
	}
	fHasRead = true;
	return fAtEnd || fPosition >= fSnapshot->Count() + kDots ? B_ENTRY_NOT_FOUND : B_OK;
}

// The next name that is none of the dots; good until Advance().
status_t
BDirectory::NextName(const char** name)
{
	if (status_t status = PrepareWalk(); status != B_OK)
		return status;
	if (fPosition < kDots)
		fPosition = kDots;
	if (fSnapshot->Count() == 0)
		return B_ENTRY_NOT_FOUND;
	*name = fSnapshot->At(fPosition - kDots).d_name;
	return B_OK;
}

void
BDirectory::Advance()
{
	fPosition++;
	if (fPosition == fSnapshot->Count() + kDots) {
		fSnapshot.reset();
		fAtEnd = true;
	}
}

status_t
BDirectory::GetNextRef(entry_ref* ref)
{
	if (ref == nullptr)
		return B_BAD_VALUE;
	const char* name;
	status_t status = NextName(&name);
	if (status != B_OK) {
		*ref = entry_ref();
		return status;
	}
	ref->device = fFolder->Node().device;
	ref->directory = fFolder->Node().node;
	status = ref->set_name(name);
	Advance();
	return status;
}

status_t
BDirectory::GetNextEntry(BEntry* entry, bool traverse)
{
	if (entry == nullptr)
		return B_BAD_VALUE;
	const char* name;
	status_t status = NextName(&name);
	if (status != B_OK)
		return entry->Fail(status);
	status = entry->SetTo(FolderHandle(fFolder), name, traverse);
	Advance();
	return status;
}

ino_t
BDirectory::NumberAt(size_t position) const
{
	struct stat status;
	if (position >= kDots)
		return fSnapshot->At(position - kDots).d_ino;
	if (position == 1 && fstatat(fFolder->Descriptor(), "..", &status, 0) == 0)
		return status.st_ino;
	return fFolder->Node().node;
}

int32
BDirectory::GetNextDirents(dirent* buffer, size_t length, int32 count)
{
	if (buffer == nullptr || count < 0)
		return B_BAD_VALUE;
	size_t used = 0;
	int32 filled = 0;
	while (filled < count) {
		status_t status = PrepareWalk();
		if (status == B_ENTRY_NOT_FOUND && (fSnapshot != nullptr || fAtEnd))
			break;
		if (status != B_OK)
			return status;
		bool isDots = fPosition < kDots;
		const dirent64* entry = isDots ? nullptr : &fSnapshot->At(fPosition - kDots);
		size_t written = PutDirent(reinterpret_cast<char*>(buffer) + used, length - used,
			NumberAt(fPosition), isDots ? static_cast<unsigned char>(DT_DIR) : entry->d_type,
			isDots ? &".."[1 - fPosition] : entry->d_name);
		if (written == 0)
			return filled > 0 ? filled : B_BAD_VALUE;
		used += written;
		filled++;
		Advance();
	}
	return filled;
}

status_t
BDirectory::Rewind()
{
	if (fFolder == nullptr)
		return B_NO_INIT;
	if (fHasRead)
		DropSnapshot();
	fPosition = 0;
	return B_OK;
}

int32
BDirectory::CountEntries()
{
	DropSnapshot();
	if (status_t status = PrepareWalk(); status != B_OK)
		return status;
	fHasRead = false;
	fPosition = fSnapshot->Count() + kDots;
	return static_cast<int32>(fSnapshot->Count());
}

status_t
BDirectory::GetEntry(BEntry* entry) const
{
	if (entry == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr)
		return entry->Fail(B_NO_INIT);
	FolderHandle parent;
	std::string name;
	status_t status = GetFolderEntry(fFolder, &parent, &name);
	if (status != B_OK)
		return entry->Fail(status);
	return entry->SetTo(std::move(parent), name.c_str(), false);
}

bool
BDirectory::IsRootDirectory() const
{
	struct stat above;
	if (fFolder == nullptr || fstatat(fFolder->Descriptor(), "..", &above, 0) != 0)
		return false;
	const node_ref& node = fFolder->Node();
	return !SameDevice(above.st_dev, node.device) || above.st_ino == node.node;
}

status_t
BDirectory::FindEntry(const char* path, BEntry* entry, bool traverse) const
{
	if (path == nullptr || entry == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr && path[0] != '/')
		return entry->Fail(B_NO_INIT);
	struct stat status;
	status_t result = entry->SetTo(this, path, traverse);
	if (result == B_OK)
		result = entry->GetStat(&status);
	return result == B_OK ? B_OK : entry->Fail(result);
}

// Where something new is to be.
status_t
BDirectory::Locate(const char* path, BEntry* entry) const
{
	if (path == nullptr)
		return B_BAD_VALUE;
	if (fFolder == nullptr && path[0] != '/')
		return B_NO_INIT;
	return entry->SetTo(this, path);
}

status_t
BDirectory::CreateFile(const char* path, BFile* file, bool failIfExists)
{
	BFile unwanted;
	BEntry place;
	if (file == nullptr)
		file = &unwanted;
	status_t status = Locate(path, &place);
	if (status != B_OK) {
		file->Unset();
		return status;
	}
	return file->SetTo(
		&place, B_READ_WRITE | B_CREATE_FILE | (failIfExists ? B_FAIL_IF_EXISTS : B_ERASE_FILE));
}

status_t
BDirectory::CreateSymLink(const char* path, const char* target, BSymLink* link)
{
	if (link != nullptr)
		link->Unset();
	if (target == nullptr)
		return B_BAD_VALUE;
	BEntry place;
	if (status_t status = Locate(path, &place); status != B_OK)
		return status;
	int result =
		Retry([&] { return symlinkat(target, place.fFolder->Descriptor(), place.fRef.name); });
	if (result != 0)
		return StatusFromErrno(errno);
	return link != nullptr ? link->SetTo(&place) : B_OK;
}

status_t
BDirectory::CreateDirectory(const char* path, BDirectory* folder)
{
	BEntry place;
	status_t status = Locate(path, &place); // before the result changes: it may be this object
	if (status == B_OK) {
		int folderOfPlace = place.fFolder->Descriptor();
		if (Retry([&] { return mkdirat(folderOfPlace, place.fRef.name, 0777); }) != 0)
			status = StatusFromErrno(errno);
	}
	if (folder == nullptr)
		return status;
	return status == B_OK ? folder->SetTo(&place) : folder->Fail(status);
}

status_t
BDirectory::GetLocation(Location* location) const
{
	if (fFolder == nullptr)
		return B_NO_INIT;
	location->folder = fFolder->Descriptor();
	location->name = "";
	location->node = &fFolder->Node();
	return B_OK;
}
