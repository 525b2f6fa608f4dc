// SPDX-License-Identifier: MIT

#include <storage/DirectoryTable.h>

#include <storage/FolderPath.h>

#include <kernel/MountTable.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/sysmacros.h>
#include <vector>

namespace BPrivate {

namespace {

constexpr size_t kMostOpen = 1024;
constexpr size_t kMostClosed = 65536;

size_t
OpenLimit()
{
	struct rlimit limit;
	if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
		return kMostOpen;
	return std::clamp<size_t>(limit.rlim_cur / 4, 1, kMostOpen);
}

status_t
ReadNode(int base, const char* path, struct statx* status)
{
	int result = Retry([&] {
		return statx(
			base, path, AT_EMPTY_PATH, STATX_TYPE | STATX_INO | STATX_BTIME | STATX_MNT_ID, status);
	});
	return result == 0 ? B_OK : StatusFromErrno(errno);
}

node_ref
NodeOf(const struct statx& status)
{
	node_ref node;
	node.device = makedev(status.stx_dev_major, status.stx_dev_minor);
	node.node = status.stx_ino;
	return node;
}

uint64
MountOf(const struct statx& status)
{
	return (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0;
}

} // namespace

DirectoryTable&
DirectoryTable::Instance()
{
	// Never deleted: threads may still use refs while the process ends.
	static DirectoryTable* table = new DirectoryTable;
	return *table;
}

DirectoryTable::DirectoryTable() : fMaxOpen(OpenLimit())
{
	FolderHandle root;
	if (Add(FileDescriptor(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC)), &root) == B_OK) {
		fRoot = root->Node();
		fRootMount = root->Mount();
	}
	struct statx home;
	const char* path = getenv("HOME");
	if (path != nullptr && statx(AT_FDCWD, path, 0, STATX_MNT_ID, &home) == 0)
		fHomeMount = MountOf(home);
}

size_t
DirectoryTable::Hash::operator()(const node_ref& node) const
{
	return node.node * 0x9e3779b97f4a7c15ULL ^ static_cast<uint32>(node.device);
}

status_t
DirectoryTable::Find(dev_t device, ino_t node, FolderHandle* handle)
{
	node_ref wanted;
	wanted.device = device;
	wanted.node = node;

	Record closed;
	FolderHandle open;
	{
		std::lock_guard<std::mutex> lock(fLock);
		auto found = fIndex.find(wanted);
		if (found == fIndex.end())
			return B_ENTRY_NOT_FOUND;
		RecordList::iterator record = found->second;
		if (record->handle != nullptr && record != fOpen.begin())
			fOpen.splice(fOpen.begin(), fOpen, record);
		open = record->Handle();
		if (open == nullptr)
			closed = *record;
	}
	if (open == nullptr)
		return Reopen(closed, handle);
	*handle = std::move(open);
	return B_OK;
}

// Null when it is not open, or by way of another mount only.
FolderHandle
DirectoryTable::FindOpen(const struct statx& status)
{
	FolderHandle open; // released after the lock
	std::lock_guard<std::mutex> lock(fLock);
	auto found = fIndex.find(NodeOf(status));
	if (found != fIndex.end())
		open = found->second->Handle();
	if (open == nullptr || open->Mount() != MountOf(status))
		return nullptr;
	RecordList& list = found->second->handle != nullptr ? fOpen : fClosed;
	list.splice(list.begin(), list, found->second);
	return open;
}

status_t
DirectoryTable::Open(int base, const std::string& path, FolderHandle* handle)
{
	// Most are open already, which one call shows; to open them again takes three.
	struct statx status;
	if (!path.empty() && ReadNode(base, path.c_str(), &status) == B_OK &&
		S_ISDIR(status.stx_mode)) {
		if (FolderHandle open = FindOpen(status); open != nullptr) {
			*handle = std::move(open);
			return B_OK;
		}
	}
	FileDescriptor descriptor;
	if (status_t error = OpenFolderAt(base, path, &descriptor); error != B_OK)
		return error;
	return Add(std::move(descriptor), handle);
}

status_t
DirectoryTable::Add(FileDescriptor descriptor, FolderHandle* handle)
{
	struct statx status;
	if (status_t error = ReadNode(descriptor.Get(), "", &status); error != B_OK)
		return error;
	if (!S_ISDIR(status.stx_mode))
		return B_NOT_A_DIRECTORY;
	return AddKnown(std::move(descriptor), status, handle);
}

status_t
DirectoryTable::AddKnown(
	FileDescriptor descriptor, const struct statx& status, FolderHandle* handle)
{
	uint64 mount = MountOf(status);
	bool isGuest = IsForGuests(mount);
	std::string path;
	if (isGuest) {
		if (status_t error = GetFolderPath(descriptor.Get(), &path); error != B_OK)
			return error;
	}
	auto folder = std::make_unique<OpenFolder>(std::move(descriptor), NodeOf(status), mount);
	FolderHandle opened = isGuest
		? FolderHandle(folder.release(), [this](OpenFolder* guest) { LetGo(guest); })
		: FolderHandle(std::move(folder));
	FolderHandle known; // released after the lock, as is what `handle` held
	bool full;
	{
		std::lock_guard<std::mutex> lock(fLock);
		auto [place, isNew] = fIndex.try_emplace(opened->Node());
		if (isNew) {
			fClosed.emplace_front();
			fClosed.front().node = opened->Node();
			place->second = fClosed.begin();
		}
		RecordList::iterator record = place->second;
		RecordList& from = record->handle != nullptr ? fOpen : fClosed;
		known = record->Handle();
		// Reached through another mount it has another path: the one used last counts.
		if (known == nullptr || known->Mount() != mount) {
			record->path = std::move(path);
			record->birth =
				(status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : statx_timestamp{};
			record->handle = isGuest ? nullptr : opened;
			record->guest = isGuest ? opened : nullptr;
			known.swap(opened);
		}
		RecordList& to = record->handle != nullptr ? fOpen : fClosed;
		to.splice(to.begin(), from, record);
		ForgetOldest();
		full = fOpen.size() > fMaxOpen;
	}
	*handle = std::move(known);
	if (full)
		Trim();
	return B_OK;
}

status_t
DirectoryTable::Reopen(const Record& closed, FolderHandle* handle)
{
	FileDescriptor descriptor;
	if (status_t error = OpenFolderAt(AT_FDCWD, closed.path, &descriptor); error != B_OK)
		return error == B_NOT_A_DIRECTORY ? B_ENTRY_NOT_FOUND : error;
	struct statx status;
	if (ReadNode(descriptor.Get(), "", &status) != B_OK || NodeOf(status) != closed.node)
		return B_ENTRY_NOT_FOUND;
	// A removed folder's inode number is soon given to a new one: the birth tells them apart.
	if ((status.stx_mask & STATX_BTIME) != 0 &&
		(status.stx_btime.tv_sec != closed.birth.tv_sec ||
			status.stx_btime.tv_nsec != closed.birth.tv_nsec))
		return B_ENTRY_NOT_FOUND;
	return AddKnown(std::move(descriptor), status, handle);
}

// The folder to close next, null when none can be closed or need be.
FolderHandle
DirectoryTable::NextVictim()
{
	std::lock_guard<std::mutex> lock(fLock);
	for (size_t tries = fOpen.size(); tries > 0 && fOpen.size() > fMaxOpen; tries--) {
		RecordList::iterator oldest = std::prev(fOpen.end());
		if (oldest->handle.use_count() == 1)
			return oldest->handle;
		fOpen.splice(fOpen.begin(), fOpen, oldest);
	}
	return nullptr;
}

void
DirectoryTable::Close(const FolderHandle& victim)
{
	// Without the lock: on a slow file system a path may take its time.
	std::string path;
	bool exists = GetFolderPath(victim->Descriptor(), &path) == B_OK;

	std::lock_guard<std::mutex> lock(fLock);
	auto found = fIndex.find(victim->Node());
	// Ours and the record's: otherwise someone came for it meanwhile.
	if (found == fIndex.end() || found->second->handle != victim || victim.use_count() != 2)
		return;
	RecordList::iterator record = found->second;
	if (!exists) {
		fIndex.erase(found);
		fOpen.erase(record);
		return;
	}
	record->path = std::move(path);
	record->handle = nullptr;
	fClosed.splice(fClosed.begin(), fOpen, record);
	ForgetOldest();
}

// With the lock: keeps the number of closed folders in its limit.
void
DirectoryTable::ForgetOldest()
{
	if (fClosed.size() <= kMostClosed)
		return;
	RecordList::iterator oldest = std::prev(fClosed.end());
	if (oldest->guest.expired()) {
		fIndex.erase(oldest->node);
		fClosed.erase(oldest);
	} else {
		fClosed.splice(fClosed.begin(), fClosed, oldest);
	}
}

bool
DirectoryTable::IsForGuests(uint64 id) const
{
	if (id == 0 || id == fRootMount || id == fHomeMount)
		return false;
	std::shared_ptr<const Mounts> mounts = MountTable::Instance().Current();
	auto mount = std::find_if(mounts->begin(), mounts->end(),
		[id](const Mount& candidate) { return candidate.id == id; });
	return mount != mounts->end() && mount->isForGuests;
}

// The last handle of a folder is gone.
void
DirectoryTable::LetGo(OpenFolder* guest)
{
	std::unique_ptr<OpenFolder> folder(guest);
	std::string path;
	if (GetFolderPath(folder->Descriptor(), &path) != B_OK)
		return;
	std::lock_guard<std::mutex> lock(fLock);
	auto found = fIndex.find(folder->Node());
	if (found != fIndex.end() && found->second->handle == nullptr && found->second->guest.expired())
		found->second->path = std::move(path);
}

void
DirectoryTable::CloseUnused(dev_t device)
{
	std::vector<FolderHandle> victims;
	{
		std::lock_guard<std::mutex> lock(fLock);
		for (const Record& record : fOpen) {
			if (SameDevice(record.node.device, device) && record.handle.use_count() == 1)
				victims.push_back(record.handle);
		}
	}
	for (const FolderHandle& victim : victims)
		Close(victim);
}

void
DirectoryTable::Trim()
{
	while (FolderHandle victim = NextVictim())
		Close(victim);
}

} // namespace BPrivate
