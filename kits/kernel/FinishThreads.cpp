// SPDX-License-Identifier: MIT

#include <kernel/FinishThreads.h>

#include "kits/kernel/ThreadRecord.h"

using namespace BPrivate::KernelKit;

namespace {

// One that the system had no thread for starts when another ends, be it killed.
bool
Runs(const Thread& thread)
{
	return thread.function != nullptr && thread.life == Thread::Life::kStarted;
}

// Only another thread can make it go on.
bool
Rests(const Thread& thread)
{
	if (thread.suspended)
		return thread.stopped;
	return thread.resting != nullptr && !thread.resting->served &&
		!(thread.killed && thread.mayEnd);
}

enum class Left { kWorking, kKilled, kNone };

// Kills those that rest once all do. Some may rest again afterwards, those that hold a lock.
Left
KillIfAllRest(Kernel& kernel)
{
	for (const auto& [id, thread] : kernel.threads) {
		if (Runs(*thread) && !Rests(*thread))
			return Left::kWorking;
	}
	bool killed = false;
	for (const auto& [id, thread] : kernel.threads) {
		if (!Runs(*thread) || thread->killed)
			continue;
		killed = true;
		thread->killed = true;
		thread->suspended = false;
		thread->wake.notify_one();
	}
	return killed ? Left::kKilled : Left::kNone;
}

} // namespace

void
BPrivate::FinishThreads()
{
	Kernel& kernel = TheKernel();
	std::condition_variable changed;
	KernelLock lock(kernel.mutex);
	kernel.finisher = &changed;
	for (;;) {
		const Left left = KillIfAllRest(kernel);
		if (left == Left::kNone)
			break;
		if (left == Left::kWorking)
			changed.wait(lock);
	}
	kernel.finisher = nullptr;
}
