// SPDX-License-Identifier: MIT

// BDirectory: a folder and a walk through its entries, in the byte order of their names.
//
// The walk goes over a snapshot taken at its first step, so that a folder which changes meanwhile
// neither repeats nor invents entries. CountEntries() takes a new snapshot; Rewind() directly
// after it keeps that one, so count and walk agree, and drops it after a read. The snapshot is
// freed with the last entry. Not for use by two threads at once; copies walk on their own.

#pragma once

#include <storage/EntryRef.h>
#include <storage/FolderHandle.h>
#include <storage/Statable.h>

#include <climits>
#include <dirent.h>
#include <memory>

class BEntry;
class BFile;
class BSymLink;

namespace BPrivate {
class DirectorySnapshot;
}

class BDirectory : public BStatable {
public:
	BDirectory();
	explicit BDirectory(const entry_ref* ref);
	explicit BDirectory(const node_ref* ref);
	explicit BDirectory(const BEntry* entry);
	explicit BDirectory(const char* path);
	BDirectory(const BDirectory* folder, const char* path);
	BDirectory(const BDirectory& other);
	~BDirectory() override;

	BDirectory& operator=(const BDirectory& other);

	// A link to a folder is followed. B_NOT_A_DIRECTORY, B_ENTRY_NOT_FOUND, B_BAD_VALUE. A folder
	// that may not be read can be set; its walk fails with B_PERMISSION_DENIED.
	status_t SetTo(const entry_ref* ref);
	status_t SetTo(const node_ref* ref); // the folder must be known by an earlier ref or node_ref
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const char* path);
	status_t SetTo(const BDirectory* folder, const char* path);
	void Unset();
	status_t InitCheck() const { return fStatus; }

	// One walk for all three; B_ENTRY_NOT_FOUND at its end, the result is then unset.
	status_t GetNextRef(entry_ref* ref);
	status_t GetNextEntry(BEntry* entry, bool traverse = false);
	// Fills in as many whole records as fit, with "." and ".." first. Their number, 0 at the end,
	// B_BAD_VALUE when not even one fits.
	int32 GetNextDirents(dirent* buffer, size_t length, int32 count = INT_MAX);
	status_t Rewind();
	int32 CountEntries(); // without "." and ".."; leaves the walk at its end

	status_t GetEntry(BEntry* entry) const;
	bool IsRootDirectory() const; // of its volume
	// The entry of an existing file below the folder; an absolute path does not need the folder.
	status_t FindEntry(const char* path, BEntry* entry, bool traverse = false) const;

	// New entries below the folder; an absolute path does not need it. The result, unset after an
	// error, may be NULL. B_FILE_EXISTS for a taken name, but CreateFile() empties a file that is
	// there already unless told to fail. It opens for reading and writing.
	status_t CreateFile(const char* path, BFile* file, bool failIfExists = false);
	status_t CreateSymLink(const char* path, const char* target, BSymLink* link);
	status_t CreateDirectory(const char* path, BDirectory* folder);

protected:
	// BStatable
	status_t GetLocation(Location* location) const override;

private:
	friend class BEntry;
	friend class BPath;

	status_t Locate(const char* path, BEntry* entry) const;
	status_t Open(int base, const char* path);
	status_t SetTo(BPrivate::FolderHandle folder);
	status_t Fail(status_t status);
	status_t NextName(const char** name);
	status_t PrepareWalk();
	void Advance();
	void DropSnapshot();
	ino_t NumberAt(size_t position) const;

	BPrivate::FolderHandle fFolder; // null unless initialised
	std::shared_ptr<const BPrivate::DirectorySnapshot> fSnapshot;
	size_t fPosition = 0;  // 0 is ".", 1 is "..", 2 the snapshot's first
	bool fAtEnd = false;   // the snapshot is gone because all of it was read
	bool fHasRead = false; // since the last count
	status_t fStatus = B_NO_INIT;
};
