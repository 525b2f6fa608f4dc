// SPDX-License-Identifier: MIT

#include <kernel/WakeUp.h>

#include "kits/kernel/ThreadRecord.h"

using namespace BPrivate::KernelKit;

namespace BPrivate {

void
WakeUp::Wait(bigtime_t deadline)
{
	Thread* self = CurrentThread();
	KernelLock lock(TheKernel().mutex);
	Checkpoint(self, lock);
	status_t result = B_OK;
	if (!fWoken) {
		Waiter waiter(self);
		fWaiter = &waiter;
		result = KernelKit::Wait(waiter, lock, deadline);
		fWaiter = nullptr;
	}
	if (result == B_CANCELED) {
		lock.unlock();
		EndCaller();
	}
	fWoken = false;
	StopWhileSuspended(self, lock);
}

void
WakeUp::Wake()
{
	KernelLock lock(TheKernel().mutex);
	fWoken = true;
	if (fWaiter == nullptr)
		return;
	fWaiter->served = true;
	fWaiter->thread->wake.notify_one();
}

} // namespace BPrivate
