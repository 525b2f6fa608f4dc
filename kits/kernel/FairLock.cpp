// SPDX-License-Identifier: MIT

// FairLock: one atomic word while nobody waits, the kernel's queue of waiters when somebody does.

#include <kernel/FairLock.h>

#include "kits/kernel/ThreadRecord.h"

#include <atomic>
#include <cassert>

using namespace BPrivate::KernelKit;

namespace BPrivate {

// With waiters the lock stays held all the time: Unlock() hands it to the first of them.
static constexpr uint32 kFree = 0;
static constexpr uint32 kHeld = 1;
static constexpr uint32 kHasWaiters = 2;
static constexpr uint32 kClosed = 4;

struct FairLock::State {
	std::atomic<uint32> word = kFree;
	std::atomic<thread_id> holder = -1;
	int32 depth = 0; // the holder's

	// The kernel's mutex guards the queue and all that follows.
	WaiterQueue waiters;
	bool TakeOrAnnounce();
	void HandOver();
};

// Takes the free lock, or else marks it as waited for and returns false; so for a closed one.
bool
FairLock::State::TakeOrAnnounce()
{
	uint32 now = word.load(std::memory_order_relaxed);
	for (;;) {
		if ((now & kClosed) != 0)
			return false;
		uint32 wanted = now == kFree ? kHeld : now | kHasWaiters;
		if (word.compare_exchange_weak(
				now, wanted, std::memory_order_acquire, std::memory_order_relaxed))
			return now == kFree;
	}
}

// The end of an Unlock() that found waiters or a closed lock.
void
FairLock::State::HandOver()
{
	Waiter* next = waiters.First();
	if (next == nullptr) {
		word.fetch_and(~(kHeld | kHasWaiters), std::memory_order_release);
		return;
	}
	holder.store(next->thread->id, std::memory_order_relaxed);
	waiters.ServeFirst(B_OK);
	if (waiters.First() == nullptr)
		word.fetch_and(~kHasWaiters, std::memory_order_relaxed);
}

FairLock::FairLock() : fState(std::make_unique<State>()) {}

FairLock::~FairLock()
{
	if (IsLockedByCaller())
		KnownCurrentThread()->heldLocks--;
}

status_t
FairLock::Lock(bigtime_t timeout)
{
	State& state = *fState;
	Thread* self = CurrentThread();
	if (state.holder.load(std::memory_order_relaxed) == self->id) {
		if ((state.word.load(std::memory_order_relaxed) & kClosed) != 0)
			return B_BAD_VALUE;
		state.depth++;
		return B_OK;
	}
	// Without this a thread that never finds the lock taken could not be ended.
	if (self->killed && MustEnd(self))
		EndCaller();

	uint32 expected = kFree;
	if (!state.word.compare_exchange_strong(
			expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed)) {
		status_t status = LockSlowly(self, timeout);
		if (status != B_OK)
			return status;
	}
	state.holder.store(self->id, std::memory_order_relaxed);
	state.depth = 1;
	self->heldLocks++;
	return B_OK;
}

status_t
FairLock::LockSlowly(Thread* self, bigtime_t timeout)
{
	State& state = *fState;
	KernelLock lock(TheKernel().mutex);
	Checkpoint(self, lock);
	if (state.TakeOrAnnounce())
		return B_OK;
	if ((state.word.load(std::memory_order_relaxed) & kClosed) != 0)
		return B_BAD_VALUE;
	Waiter waiter(self);
	state.waiters.Append(&waiter);
	status_t status = Wait(waiter, lock, DeadlineAfter(timeout));
	// Once served the lock may be gone: its last holder closed it.
	if (waiter.served)
		return status;
	state.waiters.Remove(&waiter); // kHasWaiters may stay: the next Unlock() looks and clears it
	if (status == B_CANCELED) {
		lock.unlock();
		EndCaller();
	}
	return status;
}

void
FairLock::Unlock()
{
	assert(IsLockedByCaller());
	State& state = *fState;
	if (--state.depth > 0)
		return;
	KnownCurrentThread()->heldLocks--;
	state.holder.store(-1, std::memory_order_relaxed);
	uint32 expected = kHeld;
	if (state.word.compare_exchange_strong(
			expected, kFree, std::memory_order_release, std::memory_order_relaxed))
		return;
	KernelLock lock(TheKernel().mutex);
	state.HandOver();
}

bool
FairLock::IsLockedByCaller() const
{
	const Thread* self = KnownCurrentThread();
	return self != nullptr && Holder() == self->id;
}

thread_id
FairLock::Holder() const
{
	return fState->holder.load(std::memory_order_relaxed);
}

int32
FairLock::Depth() const
{
	return fState->depth;
}

void
FairLock::Close()
{
	KernelLock lock(TheKernel().mutex);
	fState->word.fetch_or(kClosed, std::memory_order_relaxed);
	fState->word.fetch_and(~kHasWaiters, std::memory_order_relaxed);
	fState->waiters.ServeAll(B_BAD_VALUE);
}

bool
HoldsAnyLock()
{
	const Thread* self = KnownCurrentThread();
	return self != nullptr && self->heldLocks > 0;
}

} // namespace BPrivate
