// SPDX-License-Identifier: MIT

// Benaphore: a lock that costs one atomic addition while nobody else wants it, and a wait at a
// semaphore otherwise. Not recursive. When a waiter is killed the lock goes on working, but every
// later Lock() goes by way of the semaphore.

#pragma once

#include <kernel/OS.h>

#include <atomic>

constexpr char k_benaphore_default_name[] = "Benaphore";

class Benaphore {
public:
	Benaphore(const char* name = k_benaphore_default_name);
	~Benaphore(); // nobody may hold it or wait for it any more
	Benaphore(const Benaphore&) = delete;
	Benaphore& operator=(const Benaphore&) = delete;

	// B_OK when locked; else the error of creating the semaphore or of waiting at it. After a
	// failed wait every later call fails with B_ERROR.
	status_t Lock();
	void Unlock();

private:
	sem_id fSemaphore;
	std::atomic<bool> fValid; // the semaphore can be waited at
	int32 fCount = 0;         // holder and waiters
};
