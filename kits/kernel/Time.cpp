// SPDX-License-Identifier: MIT

// The clock, and sleeping by it.

#include "kits/kernel/ThreadRecord.h"

#include <time.h>

using namespace BPrivate::KernelKit;

bigtime_t
system_time()
{
	timespec now;
	clock_gettime(CLOCK_MONOTONIC, &now);
	return now.tv_sec * bigtime_t{1'000'000} + now.tv_nsec / 1000;
}

status_t
snooze(bigtime_t microseconds)
{
	if (microseconds <= 0)
		return B_OK;
	bigtime_t deadline = DeadlineAfter(microseconds);
	Thread* self = CurrentThread();
	KernelLock lock(TheKernel().mutex);
	Checkpoint(self, lock);
	Waiter waiter(self); // in no queue: nobody serves it
	if (Wait(waiter, lock, deadline) == B_CANCELED) {
		lock.unlock();
		EndCaller();
	}
	StopWhileSuspended(self, lock);
	return B_OK;
}
