// SPDX-License-Identifier: MIT

// What one target of the node monitor is still to be told of one folder.
//
// Events only mark names. What to tell comes from the difference between what the target knows
// and what is there when it can be told: so lost, doubled and outdated events do no harm, and
// however many there were, a name is told of once.
//
// Not for use by two threads at once.

#pragma once

#include <kernel/OS.h>
#include <storage/FolderHandle.h>
#include <storage/KnownNames.h>

#include <map>
#include <set>
#include <vector>

namespace BPrivate {

struct Notice {
	int32 opcode;
	dev_t device;
	ino_t directory;   // the folder of the entry; of a moved one, where it was
	ino_t toDirectory; // of a moved one
	ino_t node;
	std::string name;          // empty: the status of the folder itself
	std::string fromName = {}; // of a moved one
};

class FolderChanges;

// An entry of a folder that the target knows differently.
struct EntryChange {
	FolderChanges* folder;
	std::string name;
	FileIdentity identity; // that left, or that came
	bigtime_t holdUntil;   // it may turn up in another place until then
};

// What was collected for one target from all its folders.
struct ChangeBatch {
	std::vector<EntryChange> departures;
	std::vector<EntryChange> arrivals;
	std::vector<Notice> others;

	// Makes notices of all, in the order in which a list of rows can follow them; what one folder
	// lost and another gained is one move. The folders' knowledge is brought up to them.
	std::vector<Notice> Settle(bigtime_t now);
};

class FolderChanges {
public:
	// What an event says about a name.
	enum {
		kEntry = 1,     // it may be there, or not, or be another file
		kMovedAway = 2, // it may have another place
		kStatus = 4,
		kAttributes = 8,
		kDoubtful = 16 // nobody can say what the target takes it for
	};

	// Knows nothing until a listing was given. `flags` are B_WATCH_*.
	FolderChanges(FolderHandle folder, uint32 flags);

	const FolderHandle& Folder() const { return fFolder; }
	const node_ref& Node() const { return fFolder->Node(); }
	uint32 Flags() const { return fFlags; } // B_WATCH_*
	void SetFlags(uint32 flags) { fFlags = flags; }
	KnownNames& Known() { return fKnown; }

	// `now` is system_time() everywhere. The empty name is the folder itself.
	void Mark(const std::string& name, uint32 what, bigtime_t now);
	// After events were lost: marks what differs from what is known, and what changed its status
	// at or after `since` (FileTime()).
	void MarkDifferences(int64 since, bigtime_t now);
	// The folder itself may have been moved or removed.
	void CheckPlace(std::vector<Notice>* notices);
	const FolderHandle& Parent() const { return fParent; } // NULL when removed, or of "/"
	const std::string& Name() const { return fName; }

	// Whether the next listing by the target's thread is the target's own: the first one after it
	// asked to watch. Later ones may be anybody's.
	void SetAwaitsListing(bool awaits) { fAwaitsListing = awaits; }
	bool AwaitsListing() const { return fAwaitsListing; }
	// Between these two nothing is collected, for the target lists the folder. The listing is NULL
	// when that failed.
	void BeginListing() { fIsBeingListed = true; }
	bool IsBeingListed() const { return fIsBeingListed; }
	void EndListing(std::shared_ptr<const DirectorySnapshot> listing);
	// The target may know this listing, or not: what differs is told so that it is right for both.
	void MarkDoubts(const DirectorySnapshot& listing, bigtime_t now);
	// The listing that the target knows, if it is from just now and nothing has happened since.
	std::shared_ptr<const DirectorySnapshot> FreshListing(bigtime_t now) const;

	// When there is something to collect; B_INFINITE_TIMEOUT for never.
	bigtime_t NextDue() const;
	void Collect(bigtime_t now, size_t most, ChangeBatch* batch);
	// Names that left and are held, when others have come that they may be.
	void CollectHeld(size_t most, ChangeBatch* batch);
	void Hold(const EntryChange& departure);
	void Told(const std::string& name, bigtime_t now) { fTold[name] = now; }

private:
	struct Mention {
		uint32 what;
		bigtime_t due;
		int64 order;
		bool wasHeld = false;
	};
	typedef std::unordered_map<std::string, Mention> MentionMap;

	void Examine(MentionMap::iterator mentioned, ChangeBatch* batch);
	void TellStatus(const std::string& name, ino_t node, uint32 what, ChangeBatch* batch);
	void CheckLater();
	void Schedule(MentionMap::value_type& mentioned);
	void Unschedule(const MentionMap::value_type& mentioned);
	void SweepTold(bigtime_t now);

	FolderHandle fFolder;
	uint32 fFlags;
	FolderHandle fParent; // where the folder itself was when last looked at
	std::string fName;
	KnownNames fKnown;
	std::shared_ptr<const DirectorySnapshot> fListing; // while nothing has happened since
	bigtime_t fListed = 0;                             // system_time() of it
	bool fAwaitsListing = false;
	bool fIsBeingListed = false;
	MentionMap fMentions;
	std::map<std::pair<bigtime_t, int64>, std::string> fSchedule; // of the mentions, by due time
	std::set<std::string> fHeld;
	int64 fLastOrder = 0;
	std::unordered_map<std::string, bigtime_t> fTold; // when a name was told of lately
	bigtime_t fLastSweep = 0;
	bigtime_t fCheckDue = B_INFINITE_TIMEOUT; // when to look for differences
	int64 fCheckSince = 0;
	bigtime_t fCheckTime = 0; // that it took last
};

} // namespace BPrivate
