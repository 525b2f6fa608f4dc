// SPDX-License-Identifier: MIT

// The table of threads, adoption of foreign ones, and waiting.

#include "kits/kernel/ThreadRecord.h"

#include <kernel/DeferKill.h>

#include <chrono>
#include <climits>
#include <exception>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>

namespace BPrivate::KernelKit {

// A plain pointer needs no destructor, so it can be read at any time of a thread's life.
static thread_local Thread* tCurrent = nullptr;

void
WaiterQueue::Append(Waiter* waiter)
{
	waiter->previous = fLast;
	waiter->next = nullptr;
	(fLast != nullptr ? fLast->next : fFirst) = waiter;
	fLast = waiter;
}

void
WaiterQueue::Remove(Waiter* waiter)
{
	(waiter->previous != nullptr ? waiter->previous->next : fFirst) = waiter->next;
	(waiter->next != nullptr ? waiter->next->previous : fLast) = waiter->previous;
}

void
WaiterQueue::ServeFirst(status_t result)
{
	Waiter* waiter = fFirst;
	Remove(waiter);
	waiter->result = result;
	waiter->served = true;
	waiter->thread->wake.notify_one();
}

void
WaiterQueue::ServeAll(status_t result)
{
	while (fFirst != nullptr)
		ServeFirst(result);
}

// The destructors of a thread's data run in rounds, in any order, as long as one has set its own
// again. Those of the toolkit delete what must not outlive the process's main thread, so the record
// lets them go first. The very last round is the sanitizers'.
constexpr int32 kRoundOfRecord = PTHREAD_DESTRUCTOR_ITERATIONS - 1;

extern "C" {
static void
EndRecord(void* data)
{
	Kernel& kernel = TheKernel();
	Thread* thread = static_cast<Thread*>(data);
	if (++thread->endingRounds < kRoundOfRecord && pthread_setspecific(kernel.endKey, thread) == 0)
		return;
	KernelLock lock(kernel.mutex);
	kernel.End(thread);
	tCurrent = nullptr;
}
}

Kernel::Kernel() : baseNice(getpriority(PRIO_PROCESS, static_cast<id_t>(getpid())))
{
	pthread_key_create(&endKey, EndRecord);
}

Kernel&
TheKernel()
{
	static Kernel* const kernel = new Kernel;
	return *kernel;
}

Thread*
Kernel::Find(thread_id id) const
{
	auto found = threads.find(id);
	return found == threads.end() ? nullptr : found->second.get();
}

std::shared_ptr<Thread>
Kernel::Share(thread_id id) const
{
	auto found = threads.find(id);
	return found == threads.end() ? nullptr : found->second;
}

void
Kernel::Add(std::shared_ptr<Thread> thread)
{
	do
		lastId = lastId == INT32_MAX ? 1 : lastId + 1;
	while (threads.contains(lastId));
	thread->id = lastId;
	threads.emplace(lastId, std::move(thread));
}

void
Kernel::End(Thread* thread)
{
	thread->life = Thread::Life::kEnded;
	thread->joiners.ServeAll(B_OK);
	thread->senders.ServeAll(B_BAD_THREAD_ID);
	threads.erase(thread->id);
	TellFinisher();
}

void
Kernel::TellFinisher()
{
	if (finisher != nullptr)
		finisher->notify_one();
}

Thread*
KnownCurrentThread()
{
	return tCurrent;
}

static Thread*
AdoptCaller()
{
	auto thread = std::make_shared<Thread>();
	thread->life = Thread::Life::kStarted;
	pthread_getname_np(pthread_self(), thread->name, sizeof(thread->name));
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	kernel.Add(thread);
	BecomeThread(thread.get());
	return thread.get();
}

Thread*
CurrentThread()
{
	return tCurrent != nullptr ? tCurrent : AdoptCaller();
}

void
BecomeThread(Thread* thread)
{
	tCurrent = thread;
	pthread_setspecific(TheKernel().endKey, thread);
}

bool
MustEnd(const Thread* self)
{
	return self->killed && self->heldLocks == 0 && self->deferrals == 0 &&
		std::uncaught_exceptions() == 0;
}

void
StopWhileSuspended(Thread* self, KernelLock& lock)
{
	self->stopped = true;
	while (self->suspended) {
		TheKernel().TellFinisher();
		self->wake.wait(lock);
	}
	self->stopped = false;
}

void
Checkpoint(Thread* self, KernelLock& lock)
{
	StopWhileSuspended(self, lock);
	if (MustEnd(self)) {
		lock.unlock();
		EndCaller();
	}
}

bigtime_t
DeadlineAfter(bigtime_t timeout)
{
	// Beyond thirty years nobody counts, and the sum must not overflow, not even in nanoseconds.
	constexpr bigtime_t kLongest = 1'000'000'000'000'000;
	return timeout >= kLongest ? kNever : system_time() + (timeout > 0 ? timeout : 0);
}

// Seen by FinishThreads() for as long as it lives; with the kernel's mutex held.
class Rest {
public:
	explicit Rest(Waiter& waiter) : fThread(waiter.thread)
	{
		fThread->resting = &waiter;
		fThread->mayEnd =
			fThread->heldLocks == 0 && fThread->deferrals == 0 && std::uncaught_exceptions() == 0;
		TheKernel().TellFinisher();
	}
	~Rest() { fThread->resting = nullptr; }
	Rest(const Rest&) = delete;
	Rest& operator=(const Rest&) = delete;

private:
	Thread* const fThread;
};

status_t
Wait(Waiter& waiter, KernelLock& lock, bigtime_t deadline)
{
	Thread* self = waiter.thread;
	std::optional<Rest> rest;
	if (deadline == kNever)
		rest.emplace(waiter);
	std::chrono::steady_clock::time_point end{
		std::chrono::microseconds(deadline == kNever ? 0 : deadline)};
	while (!waiter.served) {
		if (MustEnd(self))
			return B_CANCELED;
		if (deadline == kNever)
			self->wake.wait(lock);
		else if (self->wake.wait_until(lock, end) == std::cv_status::timeout && !waiter.served)
			return MustEnd(self) ? B_CANCELED : B_TIMED_OUT;
	}
	return waiter.result;
}

void
EndCaller()
{
	throw ThreadExit{B_INTERRUPTED};
}

} // namespace BPrivate::KernelKit

BPrivate::DeferKill::DeferKill()
{
	KernelKit::CurrentThread()->deferrals++;
}

BPrivate::DeferKill::~DeferKill()
{
	KernelKit::KnownCurrentThread()->deferrals--;
}
