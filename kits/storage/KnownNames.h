// SPDX-License-Identifier: MIT

// What somebody knows of a folder: its names, and which file each of them was.
//
// A listing and what has changed since. It costs nothing to take a listing over; each change
// costs a hash table's entry. Not for use by two threads at once.

#pragma once

#include <storage/DirectorySnapshot.h>

#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <unordered_map>

namespace BPrivate {

// Which file it is. Inode numbers are used again, so the time of birth belongs to it; a listing
// does not tell that, only that it was not later than the listing.
struct FileIdentity {
	ino_t node = 0;
	uint8 type = 0;        // DT_*, DT_UNKNOWN
	bool hasLinks = false; // another name may be the same file
	int64 birth = 0;       // nanoseconds of the wall clock; 0: not known
	int64 bornBefore = 0;  // if that is not known; 0: neither

	// Whether a file that is there now can be this one.
	bool Matches(const FileIdentity& now) const;
};

// The file of that name in a folder (O_PATH); none if there is none. `changed` is set to the time
// of its last change of status, in nanoseconds of the wall clock. May be NULL.
std::optional<FileIdentity> IdentityAt(int folder, const char* name, int64* changed = nullptr);

// The wall clock in nanoseconds. The times that file systems write may lag behind by kFileTimeLag.
int64 FileTime();
constexpr int64 kFileTimeLag = 10000000;

class KnownNames {
public:
	// Replaces all; `time` is FileTime() of when the listing was taken or later.
	void SetTo(std::shared_ptr<const DirectorySnapshot> listing, int64 time);
	void Set(const std::string& name, const FileIdentity& identity);
	void Forget(const std::string& name);

	std::optional<FileIdentity> Find(const std::string& name) const;
	// Whether a listing tells nothing else than the one that was given. Fast, without look-ups.
	bool IsAsListed(const DirectorySnapshot& listing) const;

	// Calls `visit` with every known name, in no order. It must not change anything here.
	template <typename Visit>
	void ForEach(Visit visit) const
	{
		for (size_t i = 0; fListing != nullptr && i < fListing->Count(); i++) {
			if (fChanged.empty() || fChanged.count(fListing->At(i).d_name) == 0)
				visit(fListing->At(i).d_name);
		}
		for (const auto& [name, identity] : fChanged) {
			if (identity)
				visit(name.c_str());
		}
	}

private:
	std::shared_ptr<const DirectorySnapshot> fListing;
	int64 fListingTime = 0;
	std::unordered_map<std::string, std::optional<FileIdentity>> fChanged; // none: it is gone
};

} // namespace BPrivate
