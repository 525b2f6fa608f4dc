// SPDX-License-Identifier: MIT

#include <storage/FolderChanges.h>

#include <storage/FolderPath.h>
#include <storage/NodeMonitor.h>

#include <algorithm>
#include <sys/stat.h>

namespace BPrivate {

namespace {

constexpr bigtime_t kHoldTime = 20000;        // microseconds that the other half of a move may take
constexpr bigtime_t kStatusInterval = 250000; // between two notices of one entry's status
constexpr bigtime_t kFreshTime =
	100000; // that a listing is as good as a new one, if nothing happens

constexpr bigtime_t kCheckInterval = 500000;
constexpr bigtime_t kCheckShare = 50; // of the time that goes into checks: one in so many

} // namespace

FolderChanges::FolderChanges(FolderHandle folder, uint32 flags) :
	fFolder(std::move(folder)), fFlags(flags)
{
	GetFolderEntry(fFolder, &fParent, &fName);
}

void
FolderChanges::Mark(const std::string& name, uint32 what, bigtime_t now)
{
	auto [mentioned, isNew] = fMentions.try_emplace(name, Mention{0, B_INFINITE_TIMEOUT, 0});
	Mention& mention = mentioned->second;
	if (isNew)
		mention.order = ++fLastOrder;
	fListing.reset();
	bigtime_t due = now;
	if ((what & kEntry) == 0) {
		if (auto told = fTold.find(name); told != fTold.end())
			due = std::max(due, told->second + kStatusInterval);
	}
	bool isEarlier = due < mention.due || fHeld.count(name) != 0;
	if (isEarlier && !isNew)
		Unschedule(*mentioned);
	mention.what |= what;
	if (isEarlier) {
		mention.due = std::min(due, mention.due);
		Schedule(*mentioned);
	}
}

void
FolderChanges::Schedule(MentionMap::value_type& mentioned)
{
	const Mention& mention = mentioned.second;
	fSchedule.emplace(std::make_pair(mention.due, mention.order), mentioned.first);
}

void
FolderChanges::Unschedule(const MentionMap::value_type& mentioned)
{
	fSchedule.erase({mentioned.second.due, mentioned.second.order});
	fHeld.erase(mentioned.first);
}

void
FolderChanges::MarkDifferences(int64 since, bigtime_t now)
{
	if ((fFlags & B_WATCH_DIRECTORY) == 0)
		return;
	DirectorySnapshot listing;
	listing.Read(fFolder->Descriptor()); // after an error it is empty, as the folder may be
	std::vector<std::string> gone;
	fKnown.ForEach([&](const char* name) {
		if (listing.Find(name) == nullptr)
			gone.push_back(name);
	});
	for (const std::string& name : gone)
		Mark(name, kEntry | kMovedAway, now);
	for (size_t i = 0; i < listing.Count(); i++) {
		const std::string name = listing.At(i).d_name;
		int64 changed = 0;
		std::optional<FileIdentity> present =
			IdentityAt(fFolder->Descriptor(), name.c_str(), &changed);
		std::optional<FileIdentity> known = fKnown.Find(name);
		if (!present || !known || !known->Matches(*present))
			Mark(name, kEntry, now);
		else if (changed >= since)
			Mark(name, kStatus | kAttributes, now);
	}
}

void
FolderChanges::CheckPlace(std::vector<Notice>* notices)
{
	if ((fFlags & B_WATCH_NAME) == 0)
		return;
	const node_ref& node = Node();
	FolderHandle parent;
	std::string name;
	struct stat status;
	if (fParent == nullptr)
		return;
	const ino_t before = fParent->Node().node;
	if (fstat(fFolder->Descriptor(), &status) != 0 || status.st_nlink == 0) {
		notices->push_back({B_ENTRY_REMOVED, node.device, before, 0, node.node, fName});
		fParent.reset();
	} else if (GetFolderEntry(fFolder, &parent, &name) == B_OK &&
		(parent->Node().node != before || name != fName)) {
		notices->push_back(
			{B_ENTRY_MOVED, node.device, before, parent->Node().node, node.node, name, fName});
		fParent = std::move(parent);
		fName = std::move(name);
	}
}

void
FolderChanges::EndListing(std::shared_ptr<const DirectorySnapshot> listing)
{
	fIsBeingListed = false;
	if (listing != nullptr) {
		fListing = listing;
		fListed = system_time();
		fKnown.SetTo(std::move(listing), FileTime());
		fTold.clear();
	}
}

void
FolderChanges::MarkDoubts(const DirectorySnapshot& listing, bigtime_t now)
{
	if (fKnown.IsAsListed(listing))
		return;
	std::vector<std::string> doubts;
	fKnown.ForEach([&](const char* name) {
		if (listing.Find(name) == nullptr)
			doubts.push_back(name);
	});
	for (size_t i = 0; i < listing.Count(); i++) {
		const dirent64& entry = listing.At(i);
		std::optional<FileIdentity> known = fKnown.Find(entry.d_name);
		if (!known || known->node != entry.d_ino)
			doubts.push_back(entry.d_name);
	}
	for (const std::string& name : doubts)
		Mark(name, kEntry | kDoubtful, now);
}

bigtime_t
FolderChanges::NextDue() const
{
	if (fIsBeingListed)
		return B_INFINITE_TIMEOUT;
	bigtime_t due = fCheckDue;
	if (!fSchedule.empty())
		due = std::min(due, fSchedule.begin()->first.first);
	return due;
}

std::shared_ptr<const DirectorySnapshot>
FolderChanges::FreshListing(bigtime_t now) const
{
	return now - fListed < kFreshTime && !fIsBeingListed ? fListing : nullptr;
}

void
FolderChanges::Collect(bigtime_t now, size_t most, ChangeBatch* batch)
{
	if (NextDue() > now)
		return;
	SweepTold(now);
	if (fCheckDue <= now) {
		fCheckDue = B_INFINITE_TIMEOUT;
		MarkDifferences(fCheckSince, now);
		fCheckTime = system_time() - now;
	}
	for (; most > 0 && !fSchedule.empty() && fSchedule.begin()->first.first <= now; most--)
		Examine(fMentions.find(fSchedule.begin()->second), batch);
}

void
FolderChanges::CollectHeld(size_t most, ChangeBatch* batch)
{
	for (; most > 0 && !fHeld.empty() && !fIsBeingListed; most--)
		Examine(fMentions.find(*fHeld.begin()), batch);
}

void
FolderChanges::Examine(MentionMap::iterator mentioned, ChangeBatch* batch)
{
	Unschedule(*mentioned);
	const std::string name = mentioned->first;
	const Mention mention = mentioned->second;
	fMentions.erase(mentioned);
	if (name.empty()) {
		TellStatus(name, Node().node, mention.what, batch);
		return;
	}
	std::optional<FileIdentity> known = fKnown.Find(name);
	std::optional<FileIdentity> present = IdentityAt(fFolder->Descriptor(), name.c_str());
	if ((mention.what & kDoubtful) != 0) {
		// Whatever the target has of that name goes.
		FileIdentity any;
		any.node = static_cast<ino_t>(-1);
		batch->departures.push_back({this, name, any, 0});
		if (present)
			batch->arrivals.push_back({this, name, *present, 0});
		return;
	}
	if (known && present && known->Matches(*present)) {
		TellStatus(name, known->node, mention.what, batch);
		return;
	}
	// It may have been written to, and have another name here.
	if (known)
		TellStatus(name, known->node, mention.what, batch);
	else if (!present && (mention.what & kStatus) != 0)
		CheckLater();
	if (known) {
		bool mayBeElsewhere = (mention.what & kMovedAway) != 0 && !present;
		bigtime_t holdUntil = mention.due + (mention.wasHeld ? 0 : kHoldTime);
		batch->departures.push_back({this, name, *known, mayBeElsewhere ? holdUntil : 0});
	}
	if (present)
		batch->arrivals.push_back({this, name, *present, 0});
}

// A name that came, was written to and went again may have been that of a file with other names
// here, and nobody can say any more of which.
void
FolderChanges::CheckLater()
{
	if (fCheckDue != B_INFINITE_TIMEOUT)
		return;
	fCheckDue = system_time() + std::max(kCheckInterval, fCheckTime * kCheckShare);
	fCheckSince = FileTime() - 1000 * kCheckInterval;
}

void
FolderChanges::TellStatus(const std::string& name, ino_t node, uint32 what, ChangeBatch* batch)
{
	if ((what & (kStatus | kAttributes)) != 0)
		Told(name, system_time());
	if ((what & kStatus) != 0 && (fFlags & B_WATCH_STAT) != 0)
		batch->others.push_back({B_STAT_CHANGED, Node().device, Node().node, 0, node, name});
	if ((what & kAttributes) != 0 && (fFlags & B_WATCH_ATTR) != 0)
		batch->others.push_back({B_ATTR_CHANGED, Node().device, Node().node, 0, node, name});
}

// Kept for a while: the event of its new place may be the next to be read.
void
FolderChanges::Hold(const EntryChange& departure)
{
	auto [mentioned, isNew] = fMentions.try_emplace(
		departure.name, Mention{kEntry | kMovedAway, departure.holdUntil, ++fLastOrder, true});
	if (!isNew)
		return;
	Schedule(*mentioned);
	fHeld.insert(departure.name);
}

void
FolderChanges::SweepTold(bigtime_t now)
{
	if (now - fLastSweep < kStatusInterval)
		return;
	fLastSweep = now;
	std::erase_if(fTold, [now](const auto& told) { return told.second + kStatusInterval <= now; });
}

namespace {

struct Move {
	const EntryChange* from;
	const EntryChange* to;
};

Notice
Removal(const EntryChange& departure)
{
	const node_ref& folder = departure.folder->Node();
	return {
		B_ENTRY_REMOVED, folder.device, folder.node, 0, departure.identity.node, departure.name};
}

Notice
Creation(const EntryChange& arrival)
{
	const node_ref& folder = arrival.folder->Node();
	return {B_ENTRY_CREATED, folder.device, folder.node, 0, arrival.identity.node, arrival.name};
}

Notice
MoveNotice(const Move& move)
{
	const node_ref& folder = move.to->folder->Node();
	return {B_ENTRY_MOVED, folder.device, move.from->folder->Node().node, folder.node,
		move.to->identity.node, move.to->name, move.from->name};
}

// Appends the moves so that each name is free when something moves there: who follows them by
// name is never wrong. Files that changed their names in a ring cannot: one of them goes and comes.
void
OrderMoves(
	const std::vector<Move>& moves, std::vector<Notice>* notices, std::vector<Notice>* created)
{
	std::map<std::pair<FolderChanges*, std::string>, size_t> occupied; // by the move from there
	for (size_t i = 0; i < moves.size(); i++)
		occupied[{moves[i].from->folder, moves[i].from->name}] = i;
	while (!occupied.empty()) {
		// Along the chain from any of them: where it ends, or comes to itself.
		std::vector<size_t> chain{occupied.begin()->second};
		auto next = occupied.end();
		for (;;) {
			const Move& last = moves[chain.back()];
			next = occupied.find({last.to->folder, last.to->name});
			if (next == occupied.end() || next->second == chain.front())
				break;
			chain.push_back(next->second);
		}
		if (next != occupied.end()) {
			const Move& broken = moves[chain.front()];
			notices->push_back(Removal(*broken.from));
			created->push_back(Creation(*broken.to));
			occupied.erase({broken.from->folder, broken.from->name});
			chain.erase(chain.begin());
		}
		for (auto at = chain.rbegin(); at != chain.rend(); ++at) {
			notices->push_back(MoveNotice(moves[*at]));
			occupied.erase({moves[*at].from->folder, moves[*at].from->name});
		}
	}
}

} // namespace

std::vector<Notice>
ChangeBatch::Settle(bigtime_t now)
{
	std::vector<Notice> removed;
	std::vector<Move> moved;
	std::vector<Notice> created;
	std::unordered_multimap<ino_t, size_t> left;
	for (size_t i = 0; i < departures.size(); i++)
		left.emplace(departures[i].identity.node, i);

	std::vector<const EntryChange*> origins(arrivals.size(), nullptr);
	std::vector<bool> isTaken(departures.size(), false);
	for (size_t i = 0; i < arrivals.size(); i++) {
		const EntryChange& arrival = arrivals[i];
		// One of several names of a file is not told from another by the file's number.
		if (arrival.identity.hasLinks)
			continue;
		auto [from, to] = left.equal_range(arrival.identity.node);
		auto origin = std::find_if(from, to, [&](const auto& candidate) {
			const EntryChange& departure = departures[candidate.second];
			return !isTaken[candidate.second] &&
				SameDevice(departure.folder->Node().device, arrival.folder->Node().device) &&
				departure.identity.Matches(arrival.identity);
		});
		if (origin == to)
			continue;
		isTaken[origin->second] = true;
		origins[i] = &departures[origin->second];
	}

	for (size_t i = 0; i < departures.size(); i++) {
		const EntryChange& departure = departures[i];
		if (!isTaken[i] && departure.holdUntil > now) {
			departure.folder->Hold(departure);
			continue;
		}
		departure.folder->Known().Forget(departure.name);
		if (!isTaken[i])
			removed.push_back(Removal(departure));
	}
	for (size_t i = 0; i < arrivals.size(); i++) {
		const EntryChange& arrival = arrivals[i];
		arrival.folder->Known().Set(arrival.name, arrival.identity);
		arrival.folder->Told(arrival.name, now);
		if (origins[i] != nullptr)
			moved.push_back({origins[i], &arrival});
		else
			created.push_back(Creation(arrival));
	}
	OrderMoves(moved, &removed, &created);
	removed.insert(removed.end(), created.begin(), created.end());
	removed.insert(removed.end(), others.begin(), others.end());
	return removed;
}

} // namespace BPrivate
