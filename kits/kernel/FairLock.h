// SPDX-License-Identifier: MIT

// FairLock: the lock of a looper. Recursive, granted first come first served, and able to die
// under its waiters.
//
// A thread that waits here ends when it is killed, unless it holds another FairLock; a thread
// that holds any FairLock is never ended by kill_thread (see OS.h).
//
// Cost: an uncontended Lock() and Unlock() are a few dozen nanoseconds.

#pragma once

#include <kernel/OS.h>

#include <memory>

namespace BPrivate {

namespace KernelKit {
struct Thread;
}

class FairLock {
public:
	FairLock();
	~FairLock(); // free, or held by the caller; nobody may be waiting, see Close()
	FairLock(const FairLock&) = delete;
	FairLock& operator=(const FairLock&) = delete;

	// B_OK; B_TIMED_OUT after `timeout` microseconds; B_BAD_VALUE when the lock is closed, also
	// when that happens during the wait.
	status_t Lock(bigtime_t timeout = B_INFINITE_TIMEOUT);
	void Unlock();

	bool IsLockedByCaller() const;
	thread_id Holder() const; // -1 when free
	int32 Depth() const;      // nesting of the holder's Lock() calls; caller must hold it

	// The holder only. Every waiter and every later Lock(), the holder's own too, gets B_BAD_VALUE;
	// those who waited do not touch the lock again, so it may be deleted afterwards.
	void Close();

private:
	struct State;

	status_t LockSlowly(KernelKit::Thread* self, bigtime_t timeout);

	std::unique_ptr<State> fState;
};

// True when the calling thread holds any FairLock.
bool HoldsAnyLock();

} // namespace BPrivate
