// SPDX-License-Identifier: MIT

// BStatable: what entries and nodes have in common, their status. Nothing is remembered between
// calls: each asks the file system anew.

#pragma once

#include <storage/EntryRef.h>

#include <ctime>
#include <sys/stat.h>

class BVolume;

class BStatable {
public:
	virtual ~BStatable() = default;

	// Of the object itself, never of what a link points to. B_NO_INIT, B_ENTRY_NOT_FOUND.
	status_t GetStat(struct stat* status) const;
	// Status and creation time from one system call; rows of lists read themselves so.
	status_t GetStat(struct stat* status, time_t* creation) const;

	bool IsFile() const;
	bool IsDirectory() const;
	bool IsSymLink() const;

	// A folder becomes known by this: it can then be opened by its numbers alone.
	status_t GetNodeRef(node_ref* ref) const;
	status_t GetSize(off_t* size) const;
	// Where the file system keeps none: the earlier of modification and change time.
	status_t GetCreationTime(time_t* time) const;
	status_t GetVolume(BVolume* volume) const; // unset after an error

protected:
	struct Location {
		int folder = -1;
		const char* name = "";          // below the folder; "" is the folder itself
		const node_ref* node = nullptr; // set for a folder that is open
	};

	// Where the object is; what it points to is good until the object changes. B_NO_INIT.
	virtual status_t GetLocation(Location* location) const = 0;

private:
	bool HasType(mode_t type) const;
};
