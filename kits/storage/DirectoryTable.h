// SPDX-License-Identifier: MIT

// The folders that this process has seen. A ref names its folder by device and inode, and the
// kernel has no way from an inode to a folder: this table is that way.
//
// Folders used lately are kept open, a quarter of the descriptors that the process may have and
// at most 1024; a handle that somebody holds is never closed. Of older ones only the path stays;
// they are opened again on use, and are B_ENTRY_NOT_FOUND when another folder is there now.
//
// An open descriptor keeps a volume from being unmounted. On volumes that come and go (in the
// places for removable media, over a network) the table therefore keeps none of its own: a folder
// there is open as long as somebody holds its handle and is opened again by its last path after
// that, which costs some system calls a time. The volumes of "/" and of the user's home are never
// among those. For any other, CloseUnused() lets go before an attempt to unmount it.
//
// Any thread may call. Cost of finding an open folder: one lock and one hash look-up.

#pragma once

#include <storage/FolderHandle.h>

#include <list>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unordered_map>

namespace BPrivate {

class DirectoryTable {
public:
	static DirectoryTable& Instance(); // lives as long as the process

	// The folder with these numbers, opened again if need be. B_ENTRY_NOT_FOUND when it was never
	// seen or is gone from where it was.
	status_t Find(dev_t device, ino_t node, FolderHandle* handle);

	// The folder that a path leads to, made known; `base` as OpenFolderAt() takes it.
	status_t Open(int base, const std::string& path, FolderHandle* handle);

	// Takes over a descriptor of a folder and makes it known. B_NOT_A_DIRECTORY.
	status_t Add(FileDescriptor descriptor, FolderHandle* handle);

	// Closes what nobody uses on a device.
	void CloseUnused(dev_t device);

	// True for the numbers of "/", which is its own parent.
	bool IsRoot(const node_ref& node) const { return node == fRoot; }

private:
	struct Record {
		node_ref node;
		FolderHandle handle; // null while the folder is closed or `guest` holds it
		std::weak_ptr<const OpenFolder> guest; // on a volume that comes and goes
		std::string path;                      // where it was when it was closed or last seen
		statx_timestamp birth = {};

		FolderHandle Handle() const { return handle != nullptr ? handle : guest.lock(); }
	};
	struct Hash {
		size_t operator()(const node_ref& node) const;
	};
	typedef std::list<Record> RecordList;

	DirectoryTable();
	FolderHandle FindOpen(const struct statx& status);
	status_t AddKnown(FileDescriptor descriptor, const struct statx& status, FolderHandle* handle);
	status_t Reopen(const Record& closed, FolderHandle* handle);
	bool IsForGuests(uint64 mount) const;
	void LetGo(OpenFolder* guest);
	FolderHandle NextVictim();
	void Close(const FolderHandle& victim);
	void ForgetOldest();
	void Trim();

	std::mutex fLock; // guards the lists and the index
	RecordList fOpen; // latest use first, as fClosed
	RecordList fClosed;
	std::unordered_map<node_ref, RecordList::iterator, Hash> fIndex;
	size_t fMaxOpen;
	node_ref fRoot;
	uint64 fRootMount = 0;
	uint64 fHomeMount = 0;
};

} // namespace BPrivate
