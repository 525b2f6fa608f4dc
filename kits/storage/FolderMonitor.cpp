// SPDX-License-Identifier: MIT

#include <storage/FolderMonitor.h>

#include <storage/DirectoryTable.h>
#include <storage/NodeMonitor.h>

#include <algorithm>
#include <climits>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <thread>

namespace BPrivate {

namespace {

constexpr int32 kMostUnhandled = 64; // a key press has to wait for no more notices than that
constexpr int32 kFewUnhandled = 16;
constexpr size_t kBatch = 128;
constexpr bigtime_t kReadInterval = 5000; // what happens within it is told of as one
constexpr int kMostReads = 64;            // blocks of events in one turn

status_t
WatchError(int error)
{
	// The user's watches or inotify descriptors are used up, not the disk.
	return error == ENOSPC || error == EMFILE || error == ENFILE
		? static_cast<status_t>(B_NO_MEMORY)
		: StatusFromErrno(error);
}

uint32
KernelMask(uint32 flags)
{
	uint32 mask = 0;
	if ((flags & (B_WATCH_STAT | B_WATCH_ATTR)) != 0)
		mask |= IN_ATTRIB;
	if ((flags & B_WATCH_DIRECTORY) != 0) {
		mask |= IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
		if ((mask & IN_ATTRIB) != 0)
			mask |= IN_MODIFY | IN_CLOSE_WRITE; // mapped files tell at their end only
	}
	if ((flags & B_WATCH_NAME) != 0)
		mask |= IN_MOVE_SELF;
	return mask;
}

uint32
MeaningOf(uint32 event)
{
	uint32 what = 0;
	if ((event & (IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO)) != 0)
		what |= FolderChanges::kEntry;
	if ((event & IN_MOVED_FROM) != 0)
		what |= FolderChanges::kMovedAway;
	if ((event & (IN_ATTRIB | IN_MODIFY | IN_CLOSE_WRITE)) != 0)
		what |= FolderChanges::kStatus;
	if ((event & IN_ATTRIB) != 0)
		what |= FolderChanges::kAttributes;
	return what;
}

} // namespace

FolderMonitor&
FolderMonitor::Instance()
{
	// Never destroyed: its thread runs until the process ends.
	static FolderMonitor* sMonitor = new FolderMonitor;
	return *sMonitor;
}

FolderChanges*
FolderMonitor::Receiver::Find(const node_ref& node) const
{
	for (const auto& folder : folders) {
		if (folder->Node() == node)
			return folder.get();
	}
	return nullptr;
}

FolderMonitor::Receiver*
FolderMonitor::Find(const NoticeTarget& target) const
{
	for (const auto& receiver : fReceivers) {
		if (receiver->address->Equals(target))
			return receiver.get();
	}
	return nullptr;
}

status_t
FolderMonitor::Start()
{
	if (fInotify.IsOpen())
		return B_OK;
	FileDescriptor inotify(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
	if (!inotify.IsOpen())
		return WatchError(errno);
	FileDescriptor wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
	if (!wakeUp.IsOpen())
		return WatchError(errno);
	fInotify = std::move(inotify);
	fWakeUp = std::make_shared<FileDescriptor>(std::move(wakeUp));
	fLastEmpty = FileTime();
	fIsUsed = true;

	// Signals are for other threads.
	sigset_t all, before;
	sigfillset(&all);
	pthread_sigmask(SIG_SETMASK, &all, &before);
	std::thread([this] { Run(); }).detach();
	pthread_sigmask(SIG_SETMASK, &before, nullptr);
	return B_OK;
}

void
FolderMonitor::WakeUp() const
{
	uint64 one = 1;
	// It fails only when the counter is full, and then the reader is awake.
	[[maybe_unused]] ssize_t written = write(fWakeUp->Get(), &one, sizeof(one));
}

status_t
FolderMonitor::Watch(const node_ref& node, uint32 flags, std::unique_ptr<NoticeTarget> target)
{
	if (node == node_ref() || flags == 0 || (flags & ~static_cast<uint32>(B_WATCH_ALL)) != 0)
		return B_BAD_VALUE;
	FolderHandle folder;
	status_t status = DirectoryTable::Instance().Find(node.device, node.node, &folder);
	if (status != B_OK)
		return status;
	std::lock_guard<std::mutex> lock(fLock);
	if (status = Start(); status != B_OK)
		return status;
	Receiver* receiver = Find(*target);
	if (receiver == nullptr) {
		fReceivers.push_back(std::make_unique<Receiver>());
		receiver = fReceivers.back().get();
		receiver->address = std::move(target);
	}
	FolderChanges* changes = receiver->Find(node);
	const bool isNew = changes == nullptr;
	if (isNew) {
		receiver->folders.push_back(std::make_unique<FolderChanges>(folder, flags));
		changes = receiver->folders.back().get();
	}
	const bool listedBefore = !isNew && (changes->Flags() & B_WATCH_DIRECTORY) != 0;
	changes->SetFlags(flags);
	status = UpdateKernelWatch(folder);
	changes->SetAwaitsListing(true);
	if (status == B_OK && !listedBefore && (flags & B_WATCH_DIRECTORY) != 0) {
		// After the watch began: what happens meanwhile will show as a difference.
		auto listing = std::make_shared<DirectorySnapshot>();
		status = listing->Read(folder->Descriptor());
		changes->EndListing(std::move(listing));
	}
	// Without the parent the removal of the folder is not seen, the rest is.
	if ((flags & B_WATCH_NAME) != 0 && changes->Parent() != nullptr)
		UpdateKernelWatch(changes->Parent());
	if (status != B_OK && isNew) {
		std::vector<std::unique_ptr<FolderChanges>> dropped;
		dropped.push_back(std::move(receiver->folders.back()));
		receiver->folders.pop_back();
		if (receiver->folders.empty())
			std::erase_if(fReceivers, [=](const auto& each) { return each.get() == receiver; });
		Drop(std::move(dropped));
	}
	return status;
}

status_t
FolderMonitor::Stop(const node_ref& node, const NoticeTarget& target)
{
	std::lock_guard<std::mutex> lock(fLock);
	Receiver* receiver = Find(target);
	if (receiver == nullptr || receiver->Find(node) == nullptr)
		return B_ENTRY_NOT_FOUND;
	TakeBack(*receiver, node);
	auto found = std::find_if(receiver->folders.begin(), receiver->folders.end(),
		[&](const auto& folder) { return folder->Node() == node; });
	std::vector<std::unique_ptr<FolderChanges>> dropped;
	dropped.push_back(std::move(*found));
	receiver->folders.erase(found);
	if (receiver->folders.empty())
		std::erase_if(fReceivers, [=](const auto& each) { return each.get() == receiver; });
	Drop(std::move(dropped));
	return B_OK;
}

status_t
FolderMonitor::StopAll(const NoticeTarget& target)
{
	std::lock_guard<std::mutex> lock(fLock);
	Receiver* receiver = Find(target);
	if (receiver == nullptr)
		return B_ENTRY_NOT_FOUND;
	for (const auto& folder : receiver->folders)
		receiver->address->TakeBack(folder->Node());
	std::vector<std::unique_ptr<FolderChanges>> dropped = std::move(receiver->folders);
	std::erase_if(fReceivers, [=](const auto& each) { return each.get() == receiver; });
	Drop(std::move(dropped));
	return B_OK;
}

// With the lock: after they were taken from their receiver.
void
FolderMonitor::Drop(std::vector<std::unique_ptr<FolderChanges>> folders)
{
	for (const auto& folder : folders) {
		UpdateKernelWatch(folder->Folder());
		if (folder->Parent() != nullptr)
			UpdateKernelWatch(folder->Parent());
	}
}

// Of all that anybody wants of the folder: the kernel has one watch for it.
uint32
FolderMonitor::KernelMask(const node_ref& node) const
{
	uint32 mask = 0;
	for (const auto& receiver : fReceivers) {
		for (const auto& folder : receiver->folders) {
			if (folder->Node() == node)
				mask |= BPrivate::KernelMask(folder->Flags());
			// A folder that somebody holds open does not tell of its own end.
			if ((folder->Flags() & B_WATCH_NAME) != 0 && folder->Parent() != nullptr &&
				folder->Parent()->Node() == node)
				mask |= IN_DELETE;
		}
	}
	return mask;
}

status_t
FolderMonitor::UpdateKernelWatch(const FolderHandle& folder)
{
	uint32 mask = KernelMask(folder->Node());
	auto found = std::find_if(fWatches.begin(), fWatches.end(),
		[&](const auto& watch) { return watch.second->Node() == folder->Node(); });
	if (mask == 0) {
		if (found != fWatches.end()) {
			inotify_rm_watch(fInotify.Get(), found->first);
			fWatches.erase(found);
		}
		return B_OK;
	}
	const std::string path = "/proc/self/fd/" + std::to_string(folder->Descriptor());
	int number = inotify_add_watch(fInotify.Get(), path.c_str(), mask | IN_ONLYDIR);
	if (number < 0)
		return WatchError(errno);
	fWatches[number] = folder;
	return B_OK;
}

// With the lock: what was not handled yet of a folder is taken back. Half of a move between two
// folders is news to the other one all the same.
void
FolderMonitor::TakeBack(Receiver& receiver, const node_ref& node)
{
	std::vector<Notice> taken = receiver.address->TakeBack(node);
	std::erase_if(receiver.ready, [&](const Notice& notice) {
		bool isOf = SameDevice(notice.device, node.device) &&
			(notice.directory == node.node ||
				(notice.opcode == B_ENTRY_MOVED && notice.toDirectory == node.node));
		if (isOf)
			taken.push_back(notice);
		return isOf;
	});
	for (Notice& notice : taken) {
		if (notice.opcode != B_ENTRY_MOVED || notice.directory == notice.toDirectory)
			continue;
		node_ref other = node;
		other.node = notice.directory == node.node ? notice.toDirectory : notice.directory;
		FolderChanges* changes = receiver.Find(other);
		if (changes == nullptr)
			continue;
		if (other.node == notice.toDirectory) {
			changes->Known().Forget(notice.name);
			changes->Mark(notice.name, FolderChanges::kEntry, system_time());
		} else {
			notice.opcode = B_ENTRY_REMOVED;
			notice.name = notice.fromName;
			receiver.ready.push_front(std::move(notice));
		}
	}
}

std::vector<FolderMonitor::Receiver*>
FolderMonitor::OfCallingThread(const node_ref& node) const
{
	std::vector<Receiver*> receivers;
	for (const auto& receiver : fReceivers) {
		if (receiver->Find(node) != nullptr && receiver->address->IsCallingThread())
			receivers.push_back(receiver.get());
	}
	return receivers;
}

status_t
FolderMonitor::List(const FolderHandle& folder, std::shared_ptr<const DirectorySnapshot>* listing)
{
	const node_ref node = folder->Node();
	bool isWatched = false;
	if (IsUsed()) {
		std::lock_guard<std::mutex> lock(fLock);
		ReadEvents(system_time());
		WakeUp(); // for what has happened elsewhere
		const std::vector<Receiver*> receivers = OfCallingThread(node);
		for (Receiver* receiver : receivers) {
			if (*listing == nullptr)
				*listing = receiver->Find(node)->FreshListing(system_time());
		}
		for (Receiver* receiver : receivers) {
			FolderChanges* changes = receiver->Find(node);
			if (*listing == nullptr && changes->AwaitsListing())
				changes->BeginListing();
			changes->SetAwaitsListing(false);
		}
		if (*listing != nullptr)
			return B_OK;
		isWatched = !receivers.empty();
	}
	auto snapshot = std::make_shared<DirectorySnapshot>();
	status_t status = snapshot->Read(folder->Descriptor());
	if (isWatched) {
		std::lock_guard<std::mutex> lock(fLock);
		for (Receiver* receiver : OfCallingThread(node)) {
			FolderChanges* changes = receiver->Find(node);
			if (changes->IsBeingListed()) {
				if (status == B_OK)
					TakeBack(*receiver, node);
				changes->EndListing(status == B_OK ? snapshot : nullptr);
			} else if (status == B_OK) {
				changes->MarkDoubts(*snapshot, system_time());
			}
		}
		WakeUp();
	}
	*listing = std::move(snapshot);
	return status;
}

void
FolderMonitor::Run()
{
	pthread_setname_np(pthread_self(), "node monitor");
	bigtime_t due = 0;
	bigtime_t nextRead = 0;
	for (;;) {
		bigtime_t now = system_time();
		const bool reads = nextRead <= now;
		if (!reads)
			due = std::min(due, nextRead);
		int timeout = due == B_INFINITE_TIMEOUT
			? -1
			: static_cast<int>(std::clamp<bigtime_t>((due - now + 999) / 1000, 0, INT_MAX));
		pollfd sources[] = {{fWakeUp->Get(), POLLIN, 0}, {fInotify.Get(), POLLIN, 0}};
		poll(sources, reads ? 2 : 1, timeout);
		uint64 count;
		[[maybe_unused]] ssize_t size = read(fWakeUp->Get(), &count, sizeof(count));

		std::lock_guard<std::mutex> lock(fLock);
		now = system_time();
		if (sources[1].revents != 0) {
			ReadEvents(now);
			nextRead = now + kReadInterval;
		}
		due = Turn(now);
	}
}

// Hands out what is due; when to come again.
bigtime_t
FolderMonitor::Turn(bigtime_t now)
{
	std::vector<std::unique_ptr<FolderChanges>> dropped;
	std::erase_if(fReceivers, [&](const auto& receiver) {
		if (Deliver(*receiver, now))
			return false;
		std::move(receiver->folders.begin(), receiver->folders.end(), std::back_inserter(dropped));
		return true;
	});
	Drop(std::move(dropped));

	bigtime_t due = B_INFINITE_TIMEOUT;
	for (const auto& receiver : fReceivers) {
		if (!receiver->ready.empty())
			continue; // a receipt wakes the reader
		for (const auto& folder : receiver->folders)
			due = std::min(due, folder->NextDue());
	}
	return due;
}

void
FolderMonitor::ReadEvents(bigtime_t now)
{
	alignas(inotify_event) char block[65536];
	for (int i = 0; i < kMostReads; i++) {
		const int64 before = FileTime();
		ssize_t size = Retry([&] { return read(fInotify.Get(), block, sizeof(block)); });
		if (size <= 0) {
			if (fHasLostEvents) {
				fHasLostEvents = false;
				for (const auto& receiver : fReceivers) {
					for (const auto& folder : receiver->folders) {
						folder->MarkDifferences(fLastEmpty - kFileTimeLag, now);
						CheckPlace(*receiver, *folder);
					}
				}
			}
			fLastEmpty = before;
			return;
		}
		for (ssize_t at = 0; at < size;) {
			const auto* event = reinterpret_cast<const inotify_event*>(block + at);
			at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
			Dispatch(*event, now);
		}
	}
}

void
FolderMonitor::Dispatch(const inotify_event& event, bigtime_t now)
{
	if ((event.mask & IN_Q_OVERFLOW) != 0) {
		fHasLostEvents = true;
		return;
	}
	auto watch = fWatches.find(event.wd);
	if (watch == fWatches.end())
		return; // of a watch that ended meanwhile
	if ((event.mask & IN_IGNORED) != 0) {
		fWatches.erase(watch); // unmounted
		return;
	}
	const node_ref node = watch->second->Node();
	const std::string name = event.len > 0 ? event.name : "";
	const uint32 what = MeaningOf(event.mask);
	for (const auto& receiver : fReceivers) {
		for (const auto& folder : receiver->folders) {
			if (folder->Node() == node) {
				if ((event.mask & IN_MOVE_SELF) != 0)
					CheckPlace(*receiver, *folder);
				else if (what != 0 && (name.empty() || (folder->Flags() & B_WATCH_DIRECTORY) != 0))
					folder->Mark(name, what, now);
			} else if ((event.mask & IN_DELETE) != 0 && folder->Name() == name &&
				folder->Parent() != nullptr && folder->Parent()->Node() == node) {
				CheckPlace(*receiver, *folder);
			}
		}
	}
}

void
FolderMonitor::CheckPlace(Receiver& receiver, FolderChanges& folder)
{
	const FolderHandle before = folder.Parent();
	std::vector<Notice> notices;
	folder.CheckPlace(&notices);
	receiver.ready.insert(receiver.ready.end(), notices.begin(), notices.end());
	if (folder.Parent() == before)
		return;
	UpdateKernelWatch(before);
	if (folder.Parent() != nullptr)
		UpdateKernelWatch(folder.Parent());
}

// False when the target is gone.
bool
FolderMonitor::Deliver(Receiver& receiver, bigtime_t now)
{
	for (;;) {
		while (!receiver.ready.empty() && *receiver.unhandled < kMostUnhandled) {
			++*receiver.unhandled;
			std::shared_ptr<void> receipt(
				nullptr, [unhandled = receiver.unhandled, wakeUp = fWakeUp](void*) {
					uint64 one = 1;
					if (--*unhandled == kFewUnhandled) [[maybe_unused]]
						ssize_t size = write(wakeUp->Get(), &one, sizeof(one));
				});
			if (!receiver.address->Send(receiver.ready.front(), std::move(receipt)))
				return false;
			receiver.ready.pop_front();
		}
		if (!receiver.ready.empty())
			return true;
		ChangeBatch batch;
		for (const auto& folder : receiver.folders)
			folder->Collect(now, kBatch, &batch);
		if (!batch.arrivals.empty()) {
			for (const auto& folder : receiver.folders)
				folder->CollectHeld(kBatch, &batch);
		}
		std::vector<Notice> notices = batch.Settle(now);
		if (notices.empty())
			return true;
		receiver.ready.insert(receiver.ready.end(), std::make_move_iterator(notices.begin()),
			std::make_move_iterator(notices.end()));
	}
}

} // namespace BPrivate
