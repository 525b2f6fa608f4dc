// SPDX-License-Identifier: MIT

// Counting semaphores, by number.

#include "kits/kernel/ThreadRecord.h"

#include <new>
#include <unordered_map>

using namespace BPrivate::KernelKit;

namespace {

struct Semaphore {
	// Units go to the first waiter only, however few the next one wants.
	void ServeWaiters();

	int32 units = 0;
	WaiterQueue waiters;
};

// Guarded by the kernel's mutex, and as immortal as the kernel.
struct SemaphoreTable {
	Semaphore* Find(sem_id id);

	std::unordered_map<sem_id, Semaphore> semaphores;
	sem_id lastId = 0;
};

} // namespace

static SemaphoreTable&
Table()
{
	static SemaphoreTable* const table = new SemaphoreTable;
	return *table;
}

void
Semaphore::ServeWaiters()
{
	while (waiters.First() != nullptr && waiters.First()->count <= units) {
		units -= waiters.First()->count;
		waiters.ServeFirst(B_OK);
	}
}

Semaphore*
SemaphoreTable::Find(sem_id id)
{
	auto found = semaphores.find(id);
	return found == semaphores.end() ? nullptr : &found->second;
}

sem_id
create_sem(int32 count, const char*)
{
	if (count < 0)
		return B_BAD_VALUE;
	KernelLock lock(TheKernel().mutex);
	SemaphoreTable& table = Table();
	try {
		do
			table.lastId = table.lastId == INT32_MAX ? 1 : table.lastId + 1;
		while (table.semaphores.contains(table.lastId));
		table.semaphores[table.lastId].units = count;
	} catch (const std::bad_alloc&) {
		return B_NO_MEMORY;
	}
	return table.lastId;
}

status_t
delete_sem(sem_id id)
{
	KernelLock lock(TheKernel().mutex);
	Semaphore* semaphore = Table().Find(id);
	if (semaphore == nullptr)
		return B_BAD_SEM_ID;
	semaphore->waiters.ServeAll(B_BAD_SEM_ID);
	Table().semaphores.erase(id);
	return B_OK;
}

// Takes the units, waiting until the deadline.
static status_t
Acquire(sem_id id, int32 count, bigtime_t deadline)
{
	Thread* self = CurrentThread();
	KernelLock lock(TheKernel().mutex);
	Checkpoint(self, lock);
	Semaphore* semaphore = Table().Find(id);
	if (semaphore == nullptr)
		return B_BAD_SEM_ID;
	if (semaphore->waiters.First() == nullptr && semaphore->units >= count) {
		semaphore->units -= count;
		return B_OK;
	}
	if (deadline <= 0)
		return B_WOULD_BLOCK;

	Waiter waiter(self);
	waiter.count = count;
	semaphore->waiters.Append(&waiter);
	status_t result = Wait(waiter, lock, deadline);
	if (!waiter.served) {
		// The semaphore lives: its deletion would have served this wait. Others may have waited
		// only because this one, which wanted more, was before them.
		semaphore->waiters.Remove(&waiter);
		semaphore->ServeWaiters();
		if (result == B_CANCELED) {
			lock.unlock();
			EndCaller();
		}
	}
	StopWhileSuspended(self, lock);
	return result;
}

status_t
acquire_sem(sem_id id)
{
	return Acquire(id, 1, kNever);
}

status_t
acquire_sem_etc(sem_id id, int32 count, uint32 flags, bigtime_t timeout)
{
	if (count < 1)
		return B_BAD_VALUE;
	if ((flags & B_RELATIVE_TIMEOUT) == 0)
		return Acquire(id, count, kNever);
	return Acquire(id, count, timeout > 0 ? DeadlineAfter(timeout) : 0);
}

status_t
release_sem(sem_id id)
{
	KernelLock lock(TheKernel().mutex);
	Semaphore* semaphore = Table().Find(id);
	if (semaphore == nullptr)
		return B_BAD_SEM_ID;
	if (semaphore->units == INT32_MAX)
		return B_BAD_VALUE;
	semaphore->units++;
	semaphore->ServeWaiters();
	return B_OK;
}
