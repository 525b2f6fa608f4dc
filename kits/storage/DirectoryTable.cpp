// SPDX-License-Identifier: MIT

#include <storage/DirectoryTable.h>

#include <storage/FolderPath.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/sysmacros.h>

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
ReadNode(int descriptor, struct statx* status)
{
	int result = Retry([&] {
		return statx(descriptor, "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT,
			STATX_TYPE | STATX_INO | STATX_BTIME | STATX_MNT_ID, status);
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
	if (Add(FileDescriptor(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC)), &root) == B_OK)
		fRoot = root->Node();
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
	{
		std::lock_guard<std::mutex> lock(fLock);
		auto found = fIndex.find(wanted);
		if (found == fIndex.end())
			return B_ENTRY_NOT_FOUND;
		RecordList::iterator record = found->second;
		if (record->handle != nullptr) {
			if (record != fOpen.begin())
				fOpen.splice(fOpen.begin(), fOpen, record);
			*handle = record->handle;
			return B_OK;
		}
		closed = *record;
	}
	return Reopen(closed, handle);
}

status_t
DirectoryTable::Add(FileDescriptor descriptor, FolderHandle* handle)
{
	struct statx status;
	if (status_t error = ReadNode(descriptor.Get(), &status); error != B_OK)
		return error;
	if (!S_ISDIR(status.stx_mode))
		return B_NOT_A_DIRECTORY;
	return AddKnown(std::move(descriptor), status, handle);
}

status_t
DirectoryTable::AddKnown(
	FileDescriptor descriptor, const struct statx& status, FolderHandle* handle)
{
	uint64 mount = (status.stx_mask & STATX_MNT_ID) != 0 ? status.stx_mnt_id : 0;
	auto opened = std::make_shared<const OpenFolder>(std::move(descriptor), NodeOf(status), mount);
	bool full;
	{
		std::lock_guard<std::mutex> lock(fLock);
		auto [place, isNew] = fIndex.try_emplace(opened->Node());
		if (isNew) {
			fOpen.emplace_front();
			fOpen.front().node = opened->Node();
			place->second = fOpen.begin();
		} else {
			RecordList& from = place->second->handle != nullptr ? fOpen : fClosed;
			fOpen.splice(fOpen.begin(), from, place->second);
		}
		Record& record = fOpen.front();
		// Reached through another mount it has another path: the one used last counts.
		if (record.handle == nullptr || record.handle->Mount() != mount) {
			record.path = {};
			record.birth =
				(status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : statx_timestamp{};
			record.handle.swap(opened);
		}
		*handle = record.handle;
		full = fOpen.size() > fMaxOpen;
	}
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
	if (ReadNode(descriptor.Get(), &status) != B_OK || NodeOf(status) != closed.node)
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
	if (fClosed.size() > kMostClosed) {
		fIndex.erase(fClosed.back().node);
		fClosed.pop_back();
	}
}

void
DirectoryTable::Trim()
{
	while (FolderHandle victim = NextVictim())
		Close(victim);
}

} // namespace BPrivate
