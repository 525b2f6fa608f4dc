// SPDX-License-Identifier: MIT

// Threads: making, starting, stopping and ending them.

#include "kits/kernel/ThreadRecord.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <signal.h>
#include <sys/resource.h>
#include <time.h>

using namespace BPrivate::KernelKit;

static void
CopyName(char (&to)[B_OS_NAME_LENGTH], const char* from)
{
	std::strncpy(to, from != nullptr ? from : "thread", sizeof(to) - 1);
	to[sizeof(to) - 1] = '\0';
}

// Only nice values above the process's own are used: they need no privilege. What the system
// refuses does not matter.
static void
ApplyNameAndPriority(const Thread* thread)
{
	char shortName[16] = "";
	std::memcpy(shortName, thread->name, sizeof(shortName) - 1);
	pthread_setname_np(pthread_self(), shortName);
	int offset = std::max(0, B_NORMAL_PRIORITY - thread->priority);
	int nice = TheKernel().baseNice + offset;
	if (getpriority(PRIO_PROCESS, 0) != nice)
		setpriority(PRIO_PROCESS, 0, nice);
}

static status_t
RunFunction(Thread* thread)
{
	try {
		Kernel& kernel = TheKernel();
		{
			KernelLock lock(kernel.mutex);
			Checkpoint(thread, lock);
		}
		return thread->function(thread->data);
	} catch (const ThreadExit& exit) {
		return exit.result;
	}
}

static void
RunThread(Thread* thread)
{
	BecomeThread(thread);
	ApplyNameAndPriority(thread);
	status_t result = RunFunction(thread);
	KernelLock lock(TheKernel().mutex);
	thread->result = result;
}

// Where the system gave no thread to one that was resumed, this one serves it at its own end.
static Thread*
NextFromStartQueue(Thread* finished)
{
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	if (kernel.startQueue.empty()) {
		kernel.runningNatives--;
		return nullptr;
	}
	Thread* next = kernel.startQueue.front();
	kernel.startQueue.pop_front();
	next->life = Thread::Life::kStarted;
	kernel.End(finished);
	return next;
}

extern "C" {
// The record of the last one ends with the native thread, see Kernel::endKey.
static void*
ThreadEntry(void* argument)
{
	Thread* thread = static_cast<Thread*>(argument);
	while (thread != nullptr) {
		RunThread(thread);
		thread = NextFromStartQueue(thread);
	}
	return nullptr;
}
}

// Signals meant for the process go to the threads that the program set up for them, so all but
// those that a thread causes itself are blocked from its first instruction on.
static int
CreateNativeThread(Thread* thread)
{
	pthread_attr_t attributes;
	if (pthread_attr_init(&attributes) != 0)
		return EAGAIN;
	pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
	sigset_t blocked;
	sigfillset(&blocked);
	for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
		sigdelset(&blocked, signal);
	sigset_t before;
	pthread_sigmask(SIG_SETMASK, &blocked, &before);
	pthread_t native;
	int error = pthread_create(&native, &attributes, ThreadEntry, thread);
	pthread_sigmask(SIG_SETMASK, &before, nullptr);
	pthread_attr_destroy(&attributes);
	return error;
}

// Starts a thread whose life is kStarted already, so that nobody else does. When the system has
// none to give it waits for another thread of ours to end; only when there is none to wait for
// does the caller wait for better times.
static void
StartThread(Thread* thread, KernelLock& lock)
{
	Kernel& kernel = TheKernel();
	for (;;) {
		kernel.runningNatives++;
		lock.unlock();
		int error = CreateNativeThread(thread);
		if (error == 0) {
			lock.lock();
			return;
		}
		lock.lock();
		kernel.runningNatives--;
		if (thread->killed) {
			kernel.End(thread);
			return;
		}
		if (kernel.runningNatives > 0) {
			thread->life = Thread::Life::kQueued;
			kernel.startQueue.push_back(thread);
			return;
		}
		lock.unlock();
		timespec pause = {0, 1'000'000};
		nanosleep(&pause, nullptr);
		lock.lock();
	}
}

thread_id
spawn_thread(thread_func func, const char* name, int32 priority, void* data)
{
	if (func == nullptr)
		return B_BAD_VALUE;
	try {
		auto thread = std::make_shared<Thread>();
		CopyName(thread->name, name);
		thread->priority = priority;
		thread->function = func;
		thread->data = data;
		Kernel& kernel = TheKernel();
		KernelLock lock(kernel.mutex);
		kernel.Add(thread);
		return thread->id;
	} catch (const std::bad_alloc&) {
		return B_NO_MEMORY;
	}
}

status_t
resume_thread(thread_id id)
{
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	Thread* thread = kernel.Find(id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	if (thread->life == Thread::Life::kNew) {
		thread->life = Thread::Life::kStarted;
		StartThread(thread, lock);
		return B_OK;
	}
	if (!thread->suspended) {
		thread->permit = true;
		return B_BAD_THREAD_STATE;
	}
	thread->suspended = false;
	thread->wake.notify_one();
	return B_OK;
}

status_t
suspend_thread(thread_id id)
{
	Thread* self = CurrentThread();
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	Thread* thread = kernel.Find(id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	if (thread != self) {
		// One that is to end must not be stopped on its way.
		if (thread->life != Thread::Life::kNew && !thread->killed)
			thread->suspended = true;
		return B_OK;
	}
	Checkpoint(self, lock);
	if (self->permit) {
		self->permit = false;
		return B_OK;
	}
	if (self->killed)
		return B_INTERRUPTED;
	self->suspended = true;
	Checkpoint(self, lock);
	return B_OK;
}

// Waits until `thread` runs no more.
static void
WaitForEnd(Thread* self, Thread* thread, KernelLock& lock)
{
	if (thread->life == Thread::Life::kEnded)
		return;
	Waiter waiter(self);
	thread->joiners.Append(&waiter);
	if (Wait(waiter, lock, kNever) == B_CANCELED) {
		thread->joiners.Remove(&waiter);
		lock.unlock();
		EndCaller();
	}
}

status_t
kill_thread(thread_id id)
{
	Thread* self = CurrentThread();
	Kernel& kernel = TheKernel();
	// Declared before the lock, so that a last reference goes after it.
	std::shared_ptr<Thread> thread;
	KernelLock lock(kernel.mutex);
	thread = kernel.Share(id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	if (thread->function == nullptr)
		return B_NOT_ALLOWED;
	if (thread.get() == self) {
		lock.unlock();
		EndCaller();
	}
	if (thread->life == Thread::Life::kQueued)
		std::erase(kernel.startQueue, thread.get());
	if (thread->life == Thread::Life::kNew || thread->life == Thread::Life::kQueued) {
		kernel.End(thread.get());
		return B_OK;
	}
	thread->killed = true;
	thread->suspended = false;
	thread->wake.notify_one();
	WaitForEnd(self, thread.get(), lock);
	return B_OK;
}

status_t
wait_for_thread(thread_id id, status_t* result)
{
	Thread* self = CurrentThread();
	Kernel& kernel = TheKernel();
	std::shared_ptr<Thread> thread;
	KernelLock lock(kernel.mutex);
	Checkpoint(self, lock);
	thread = kernel.Share(id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	if (thread.get() == self)
		return B_NOT_ALLOWED;
	if (thread->life == Thread::Life::kNew) {
		thread->life = Thread::Life::kStarted;
		StartThread(thread.get(), lock);
	}
	WaitForEnd(self, thread.get(), lock);
	if (result != nullptr)
		*result = thread->result;
	return B_OK;
}

void
exit_thread(status_t result)
{
	if (CurrentThread()->function == nullptr)
		pthread_exit(nullptr);
	throw ThreadExit{result};
}

thread_id
find_thread(const char* name)
{
	if (name == nullptr)
		return CurrentThread()->id;
	char wanted[B_OS_NAME_LENGTH];
	CopyName(wanted, name);
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	for (const auto& [id, thread] : kernel.threads) {
		if (std::strcmp(thread->name, wanted) == 0)
			return id;
	}
	return B_NAME_NOT_FOUND;
}
