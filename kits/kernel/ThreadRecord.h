// SPDX-License-Identifier: MIT

// What the kernel kit knows of each thread, and the one way in which threads wait. For the
// sources of this kit only.
//
// One mutex guards every record, semaphore and queue of waiters: what happens under it is a few
// dozen instructions, and with a single lock "served", "killed" and "suspended" cannot cross.
// Each thread sleeps on a condition variable of its own.

#pragma once

#include <kernel/OS.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <pthread.h>

namespace BPrivate::KernelKit {

using KernelLock = std::unique_lock<std::mutex>;

struct Thread;

// Bytes on their way from send_data() to receive_data().
struct ThreadMessage {
	thread_id sender = -1;
	int32 code = 0;
	size_t size = 0;
	std::unique_ptr<char[]> bytes;
};

// One wait of one thread; lives on its stack. Who serves it sets the result under the kernel's
// mutex and does not touch it afterwards.
struct Waiter {
	explicit Waiter(Thread* waiting) : thread(waiting) {}

	Thread* const thread;
	Waiter* previous = nullptr;
	Waiter* next = nullptr;
	bool served = false;
	status_t result = B_OK;
	int32 count = 1;                  // of a semaphore's units
	ThreadMessage* message = nullptr; // a sender's
};

// Waiters in the order of their coming.
class WaiterQueue {
public:
	Waiter* First() const { return fFirst; }
	void Append(Waiter* waiter);
	void Remove(Waiter* waiter);
	void ServeFirst(status_t result);
	void ServeAll(status_t result);

private:
	Waiter* fFirst = nullptr;
	Waiter* fLast = nullptr;
};

struct Thread {
	enum class Life { kNew, kQueued, kStarted, kEnded };

	thread_id id = -1;
	char name[B_OS_NAME_LENGTH] = "";
	int32 priority = B_NORMAL_PRIORITY;
	thread_func function = nullptr; // null for a thread that this kit did not make
	void* data = nullptr;

	std::condition_variable wake;
	Life life = Life::kNew;
	std::atomic<bool> killed = false; // written under the kernel's mutex
	bool suspended = false;
	bool permit = false;             // a wake-up that its next suspension of itself consumes
	bool stopped = false;            // sleeps because it is suspended
	const Waiter* resting = nullptr; // its wait that has no end of its own
	bool mayEnd = false;             // while it rests: a kill would end it there
	status_t result = B_INTERRUPTED;
	WaiterQueue joiners;

	bool hasMessage = false;
	ThreadMessage message;
	Waiter* receiver = nullptr; // its own wait for a message
	WaiterQueue senders;

	// The thread's own business: nobody else reads them.
	int32 heldLocks = 0;
	int32 deferrals = 0;    // living DeferKill objects
	int32 endingRounds = 0; // of the destructors of its data
};

// The process-wide table. It is never destroyed: static objects use the kit before main() and
// after its end.
struct Kernel {
	Kernel();

	Thread* Find(thread_id id) const;
	std::shared_ptr<Thread> Share(thread_id id) const;
	void Add(std::shared_ptr<Thread> thread); // gives it its id
	void End(Thread* thread);                 // wakes all who wait for it and forgets it
	void TellFinisher();                      // a thread ended, or is about to rest

	std::mutex mutex;
	std::map<thread_id, std::shared_ptr<Thread>> threads;
	std::deque<Thread*> startQueue;              // resumed, but the system had no thread to give
	int32 runningNatives = 0;                    // threads of ours that will look into startQueue
	std::condition_variable* finisher = nullptr; // of the caller of FinishThreads()
	thread_id lastId = 0;
	pthread_key_t endKey; // its destructor ends a record after all other code of the thread
	int baseNice = 0;     // of the process; priorities are relative to it
};

Kernel& TheKernel();

// The calling thread's record; a thread not made by this kit gets one at its first call.
Thread* CurrentThread();
// The same, or null for a thread that has none yet. Cheap.
Thread* KnownCurrentThread();
void BecomeThread(Thread* thread);

// What unwinds a thread that ends before its function returns.
struct ThreadExit {
	status_t result;
};

// True when the thread has to end and may do so here: it holds no lock of a looper, is not
// unwinding already, and no DeferKill lives.
bool MustEnd(const Thread* self);

void StopWhileSuspended(Thread* self, KernelLock& lock);

// What every call that may wait does first: stops the calling thread while it is suspended, and
// ends it if it was killed.
void Checkpoint(Thread* self, KernelLock& lock);

constexpr bigtime_t kNever = B_INFINITE_TIMEOUT;
bigtime_t DeadlineAfter(bigtime_t timeout);

// Waits until the waiter is served: its result. B_TIMED_OUT at the deadline, B_CANCELED when the
// thread must end; in both cases the caller takes the waiter out of its queue, and after
// B_CANCELED calls EndCaller().
status_t Wait(Waiter& waiter, KernelLock& lock, bigtime_t deadline);
[[noreturn]] void EndCaller();

} // namespace BPrivate::KernelKit
