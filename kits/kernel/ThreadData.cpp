// SPDX-License-Identifier: MIT

// The one-message slot of each thread.

#include "kits/kernel/ThreadRecord.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace BPrivate::KernelKit;

static void
PutMessage(Thread* thread, ThreadMessage&& message)
{
	thread->message = std::move(message);
	thread->hasMessage = true;
}

status_t
send_data(thread_id id, int32 code, const void* buffer, size_t size)
{
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	Thread* self = CurrentThread();
	ThreadMessage message{self->id, code, size, nullptr};
	if (size > 0) {
		message.bytes.reset(new (std::nothrow) char[size]);
		if (message.bytes == nullptr)
			return B_NO_MEMORY;
		std::memcpy(message.bytes.get(), buffer, size);
	}

	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	Checkpoint(self, lock);
	Thread* receiver = kernel.Find(id);
	if (receiver == nullptr)
		return B_BAD_THREAD_ID;
	if (!receiver->hasMessage) {
		PutMessage(receiver, std::move(message));
		if (receiver->receiver != nullptr) {
			receiver->receiver->served = true;
			receiver->wake.notify_one();
		}
		return B_OK;
	}

	Waiter waiter(self);
	waiter.message = &message;
	receiver->senders.Append(&waiter);
	status_t result = Wait(waiter, lock, kNever);
	if (result == B_CANCELED) {
		// The receiver cannot have ended: that would have served this wait.
		receiver->senders.Remove(&waiter);
		lock.unlock();
		EndCaller();
	}
	StopWhileSuspended(self, lock);
	return result;
}

// Waits until the slot of the calling thread is full.
static void
WaitForMessage(Thread* self, KernelLock& lock)
{
	if (self->hasMessage)
		return;
	Waiter waiter(self);
	self->receiver = &waiter;
	status_t result = Wait(waiter, lock, kNever);
	self->receiver = nullptr;
	if (result == B_CANCELED) {
		lock.unlock();
		EndCaller();
	}
	StopWhileSuspended(self, lock);
}

int32
receive_data(thread_id* sender, void* buffer, size_t size)
{
	Thread* self = CurrentThread();
	Kernel& kernel = TheKernel();
	KernelLock lock(kernel.mutex);
	Checkpoint(self, lock);
	WaitForMessage(self, lock);
	ThreadMessage message = std::move(self->message);
	self->hasMessage = false;
	// The slot goes straight to the sender who waited longest.
	if (Waiter* next = self->senders.First(); next != nullptr) {
		PutMessage(self, std::move(*next->message));
		self->senders.ServeFirst(B_OK);
	}
	lock.unlock();

	if (sender != nullptr)
		*sender = message.sender;
	if (size_t taken = std::min(size, message.size); buffer != nullptr && taken > 0)
		std::memcpy(buffer, message.bytes.get(), taken);
	return message.code;
}
