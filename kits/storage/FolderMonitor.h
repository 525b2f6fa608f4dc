// SPDX-License-Identifier: MIT

// The node monitor below its messages: inotify, one thread that reads it, and the targets.
//
// One kernel watch serves all targets of a folder. Calls come from any thread; the lock is held
// during system calls on watched folders and while notices are handed out, so targets must take
// no locks that somebody holds around a call of this class, loopers' locks in particular.

#pragma once

#include <storage/FolderChanges.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <unordered_map>

struct inotify_event;

namespace BPrivate {

// Who is told. Called with the monitor's lock held.
class NoticeTarget {
public:
	virtual ~NoticeTarget() = default;

	virtual bool Equals(const NoticeTarget& other) const = 0;
	// Whether the calling thread is the one that handles the notices, or keeps it from that.
	virtual bool IsCallingThread() const = 0;
	// False when the target is gone. The receipt goes when the notice was handled or dropped.
	virtual bool Send(const Notice& notice, std::shared_ptr<void> receipt) = 0;
	// Takes back what was not handled yet of a folder's notices.
	virtual std::vector<Notice> TakeBack(const node_ref& folder) = 0;
};

class FolderMonitor {
public:
	static FolderMonitor& Instance(); // lives as long as the process

	// As watch_node() and stop_watching() of <storage/NodeMonitor.h>.
	status_t Watch(const node_ref& node, uint32 flags, std::unique_ptr<NoticeTarget> target);
	status_t Stop(const node_ref& node, const NoticeTarget& target);
	status_t StopAll(const NoticeTarget& target);

	// Lists an open folder into an empty pointer. The first listing by a target's thread after it
	// asked to watch the folder is what the target knows from then on. Of later ones nobody can say
	// whether the target knows them: it is told of the differences.
	status_t List(const FolderHandle& folder, std::shared_ptr<const DirectorySnapshot>* listing);

	// False as long as nobody ever watched anything. Without the lock.
	bool IsUsed() const { return fIsUsed.load(std::memory_order_relaxed); }

private:
	struct Receiver {
		std::unique_ptr<NoticeTarget> address;
		std::vector<std::unique_ptr<FolderChanges>> folders;
		std::deque<Notice> ready; // not sent yet
		std::shared_ptr<std::atomic<int32>> unhandled = std::make_shared<std::atomic<int32>>(0);

		FolderChanges* Find(const node_ref& node) const;
	};
	FolderMonitor() = default;
	status_t Start();
	status_t UpdateKernelWatch(const FolderHandle& folder);
	uint32 KernelMask(const node_ref& node) const;
	void TakeBack(Receiver& receiver, const node_ref& node);
	Receiver* Find(const NoticeTarget& target) const;
	void Drop(std::vector<std::unique_ptr<FolderChanges>> folders);

	void Run();
	bigtime_t Turn(bigtime_t now);
	void ReadEvents(bigtime_t now);
	void Dispatch(const inotify_event& event, bigtime_t now);
	void CheckPlace(Receiver& receiver, FolderChanges& folder);
	std::vector<Receiver*> OfCallingThread(const node_ref& node) const;
	bool Deliver(Receiver& receiver, bigtime_t now);
	void WakeUp() const;

	std::atomic<bool> fIsUsed = false;
	std::mutex fLock; // guards all below
	FileDescriptor fInotify;
	std::shared_ptr<FileDescriptor> fWakeUp; // an eventfd, shared with receipts
	std::vector<std::unique_ptr<Receiver>> fReceivers;
	std::unordered_map<int, FolderHandle> fWatches; // by the kernel's number
	int64 fLastEmpty = 0;                           // FileTime() when the queue was last empty
	bool fHasLostEvents = false;
};

} // namespace BPrivate
