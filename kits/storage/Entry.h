// SPDX-License-Identifier: MIT

// BEntry: a name in an existing folder; the name itself may be missing (an abstract entry).
//
// The object holds its folder open, so that it stays valid when folders above are renamed.
// Not for use by two threads at once. Making one from a ref costs no system call as long as
// the folder is open in this process.

#pragma once

#include <storage/EntryRef.h>
#include <storage/FolderHandle.h>
#include <storage/Statable.h>

class BDirectory;
class BPath;

class BEntry : public BStatable {
public:
	BEntry() = default;
	explicit BEntry(const entry_ref* ref, bool traverse = false);
	explicit BEntry(const char* path, bool traverse = false);
	BEntry(const BDirectory* folder, const char* path, bool traverse = false);

	// With `traverse` links are followed to the last entry, which may be missing; B_LINK_LIMIT.
	// B_BAD_VALUE for NULL, an unset ref or a ref whose name is no entry's name;
	// B_ENTRY_NOT_FOUND for a missing folder or an empty path.
	status_t SetTo(const entry_ref* ref, bool traverse = false);
	status_t SetTo(const char* path, bool traverse = false);
	// An absolute path does not need the folder.
	status_t SetTo(const BDirectory* folder, const char* path, bool traverse = false);
	void Unset();
	status_t InitCheck() const { return fStatus; }

	bool Exists() const;
	status_t GetRef(entry_ref* ref) const;
	status_t GetName(char* buffer) const;    // B_FILE_NAME_LENGTH bytes
	status_t GetPath(BPath* path) const;     // unset on failure
	status_t GetParent(BEntry* entry) const; // B_ENTRY_NOT_FOUND at "/", as the other
	status_t GetParent(BDirectory* folder) const;

	// Both move the entry within its volume, in one step; the object then is at the new place, and
	// stays where it is after an error. A relative path begins at the entry's folder or at the
	// one given, in which the entry keeps its name without a path.
	// B_FILE_EXISTS for a taken name, also its own, unless clobbering. That replaces a file, or an
	// empty folder by a folder: B_DIRECTORY_NOT_EMPTY, B_IS_A_DIRECTORY, B_NOT_A_DIRECTORY.
	// B_CROSS_DEVICE_LINK for another volume, B_BAD_VALUE for a folder's way into itself,
	// B_ENTRY_NOT_FOUND for a missing entry or folder.
	status_t Rename(const char* path, bool clobber = false);
	status_t MoveTo(BDirectory* folder, const char* path = nullptr, bool clobber = false);
	// A link itself, not what it points to; a folder when it is empty, B_DIRECTORY_NOT_EMPTY.
	status_t Remove();

	bool operator==(const BEntry& other) const { return fRef == other.fRef; }
	bool operator!=(const BEntry& other) const { return fRef != other.fRef; }

protected:
	// BStatable
	status_t GetLocation(Location* location) const override;

private:
	friend class BDirectory;
	friend class BFile;
	friend class BNode;
	friend class BPath;

	status_t Locate(int base, const char* path, bool traverse);
	status_t SetTo(BPrivate::FolderHandle folder, const char* name, bool traverse);
	status_t Follow();
	status_t MoveTo(const BPrivate::FolderHandle& base, const char* path, bool clobber);
	status_t Fail(status_t status);

	BPrivate::FolderHandle fFolder; // null unless initialised
	entry_ref fRef;
	status_t fStatus = B_NO_INIT;
};

// The ref of an existing entry; a link at the end is not followed. Errors as of BEntry, and
// B_ENTRY_NOT_FOUND for a missing entry.
status_t get_ref_for_path(const char* path, entry_ref* ref);
