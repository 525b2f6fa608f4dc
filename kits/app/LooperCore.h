// SPDX-License-Identifier: MIT

// LooperCore: the part of a looper that outlives it, and the registry of living loopers.
//
// Messengers and threads that wait for a lock share the core; it answers "gone" once the looper is.
// For the sources of this kit and the windows only.

#pragma once

#include <app/Message.h>
#include <app/Messenger.h>
#include <kernel/FairLock.h>
#include <kernel/WakeUp.h>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

class BHandler;
class BLooper;

namespace BPrivate {

class LooperCore {
public:
	explicit LooperCore(BLooper* owner) : fLooper(owner) {}

	FairLock& Lock() { return fLock; }
	// The lock held and the core not closed: the looper lives.
	BLooper* Looper() const { return fLooper; }

	// Any thread, no lock needed. False when closed; the message is then destroyed.
	bool Post(std::unique_ptr<BMessage> message);
	// The same, before all that wait already. Loops that run may have taken one.
	bool PostFirst(std::unique_ptr<BMessage> message);
	// Makes the loop look at its wake-up time and its end again.
	void Wake();
	// Returns when a message waits, Wake() was called, or `deadline` (system_time()) has come. A
	// kill ends the caller here.
	void Wait(bigtime_t deadline);
	// For a hook that blocks the loop: returns when a message was posted or Wake() called since the
	// last time, whatever waits in the queue already, or at the deadline.
	void WaitForChange(bigtime_t deadline);
	// Takes the oldest message, or null. With the lock held: who holds the lock sees a queue that
	// nobody takes from.
	std::unique_ptr<BMessage> Take();
	bool QueueIsEmpty() const;
	// Takes the oldest message of that kind out of the queue, or null.
	std::unique_ptr<BMessage> TakeFirst(const std::function<bool(const BMessage&)>& wanted);
	// Looks at the queued messages in order until `visit` returns true. It must not post.
	void Visit(const std::function<bool(BMessage&)>& visit) const;

	bool IsClosed() const { return fClosed; }
	// The lock held: later posts and locks fail, waiting lockers and senders are told.
	void Close();

	// The loop ends at its next turn, and the looper's thread deletes it.
	std::atomic<bool> quitNow = false;
	std::atomic<thread_id> thread = -1;
	std::atomic<bool> isWindow = false;

	// Guarded by the lock: handlers by token.
	std::unordered_map<int64, BHandler*> handlers;

private:
	bool Enqueue(std::unique_ptr<BMessage> message, bool first);
	void WaitUntil(
		std::unique_lock<std::mutex>& lock, bigtime_t deadline, const std::function<bool()>& ready);

	FairLock fLock;
	BLooper* fLooper;
	std::atomic<bool> fClosed = false;
	mutable std::mutex fQueueMutex;
	WakeUp fWakeUp;
	std::deque<std::unique_ptr<BMessage>> fQueue;
	bool fWoken = false;
	bool fPosted = false;  // since the last WaitForChange()
	bool fWaiting = false; // and nobody has woken it yet
};

// Every looper from its construction to the start of its destruction, by address, so that calls
// through a stale pointer fail instead of touching freed memory. Any thread.
class LooperRegistry {
public:
	// Locked by the caller before anybody finds it: a stale pointer may name the very address.
	static std::shared_ptr<LooperCore> Add(BLooper* looper);
	static void Remove(BLooper* looper);
	static std::shared_ptr<LooperCore> Find(const BLooper* looper);
	static std::vector<std::shared_ptr<LooperCore>> All();

	// Threads of loopers count from their first instruction to their last.
	static void ThreadStarted();
	static void ThreadEnded();
	static bool WaitForThreads(bigtime_t timeout); // false: some are left
};

// The next handler token, never given twice.
int64 NewHandlerToken();

// Ends what a handler that is going away watches.
void EndWatching(int64 handlerToken);

// What the interface kit wants done before the application asks its windows to close: open alerts
// and menus hold their windows' locks.
void SetQuitPreparation(void (*prepare)());
void PrepareToQuit();

// What other threads may know of the application, whose own members go with it.
void SetRunningApplication(const char* signature, const BMessenger& messenger);
// The application of this process when it has that signature, else unset.
BMessenger RunningApplication(const char* signature);

} // namespace BPrivate
