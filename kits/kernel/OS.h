// SPDX-License-Identifier: MIT

// Threads, semaphores and time.
//
// Any thread may call all of this. One that spawn_thread did not make (the process's first one,
// the toolkit's) gets an id at its first call and keeps it until it ends.
//
// A thread that was killed ends by a C++ exception out of the kit call in which it waits: do not
// swallow it with catch (...). A destructor or another noexcept function that waits in the kits
// holds a BPrivate::DeferKill meanwhile (kernel/DeferKill.h).

#pragma once

#include <support/SupportDefs.h>

typedef int32 thread_id;
typedef int32 sem_id;
typedef int32 team_id;
typedef int32 (*thread_func)(void*);

enum {
	B_LOW_PRIORITY = 5,
	B_NORMAL_PRIORITY = 10,
	B_DISPLAY_PRIORITY = 15,
	B_URGENT_DISPLAY_PRIORITY = 20,
	B_REAL_TIME_DISPLAY_PRIORITY = 100,
	B_REAL_TIME_PRIORITY = 120,
};

enum {
	B_RELATIVE_TIMEOUT = 8,
	B_TIMEOUT = B_RELATIVE_TIMEOUT,
};

// Makes a suspended thread that will run func(data); `name` is cut to 31 bytes.
// Returns an id above 0, B_BAD_VALUE (no function) or B_NO_MEMORY. All signals but those that a
// thread causes itself are blocked in it. Where the system has no further thread to give, one
// that was resumed starts when another ends.
thread_id spawn_thread(thread_func func, const char* name, int32 priority, void* data);

// Starts or continues a thread. B_BAD_THREAD_ID when it is unknown or ended. On a thread that is
// not suspended: B_BAD_THREAD_STATE, and a permit stays (at most one) that makes the thread's next
// suspend_thread() on itself return at once, so that no wake-up is lost.
status_t resume_thread(thread_id thread);

// Stops a thread until it is resumed. A thread other than the caller stops at its next wait in
// the kits.
status_t suspend_thread(thread_id thread);

// Ends a thread: at once when it never ran or is suspended, else where it next waits in the kits
// while it holds no looper's lock, by unwinding its stack; its result is B_INTERRUPTED. Returns
// only when it runs no more; B_BAD_THREAD_ID when it is gone already, B_NOT_ALLOWED when
// spawn_thread did not make it. On the caller itself it does not return.
status_t kill_thread(thread_id thread);

// Waits for the thread's end; a thread that never ran is started by this. B_BAD_THREAD_ID when
// unknown or ended, B_NOT_ALLOWED for the caller itself.
status_t wait_for_thread(thread_id thread, status_t* result = nullptr);

// Ends the calling thread by unwinding its stack, also while it holds a looper's lock. For
// threads made by spawn_thread; others end as by pthread_exit().
[[noreturn]] void exit_thread(status_t result);

// NULL: the calling thread, any thread. Else the first living thread of that name, or
// B_NAME_NOT_FOUND.
thread_id find_thread(const char* name);

// Copies a message into the receiver's one-message slot, waiting while that is full. Works on a
// thread that was not resumed yet. B_BAD_THREAD_ID (also when it ends during the wait),
// B_NO_MEMORY, B_BAD_VALUE (no buffer for a size above 0).
status_t send_data(thread_id thread, int32 code, const void* buffer, size_t size);

// Waits for a message and returns its code; what does not fit into `size` bytes is lost.
int32 receive_data(thread_id* sender, void* buffer, size_t size);

// Sleeps; zero or less returns at once.
status_t snooze(bigtime_t microseconds);

// Monotonic microseconds since boot.
bigtime_t system_time();

// Semaphores may be used by any thread, before main() too; waiters are served first come, first
// served. create_sem: an id of 0 or more, B_BAD_VALUE (count below 0) or B_NO_MEMORY.
sem_id create_sem(int32 count, const char* name);
status_t delete_sem(sem_id sem); // wakes its waiters with B_BAD_SEM_ID
status_t acquire_sem(sem_id sem);
// flags B_RELATIVE_TIMEOUT: waits at most `timeout` microseconds, then B_TIMED_OUT (B_WOULD_BLOCK
// for a timeout of zero or less). `count` is the number of units taken, at least 1.
status_t acquire_sem_etc(sem_id sem, int32 count, uint32 flags, bigtime_t timeout);
status_t release_sem(sem_id sem);
