// SPDX-License-Identifier: MIT

#include <app/MessagePrivate.h>

namespace BPrivate {

ReplySlot::ReplySlot() : fSemaphore(create_sem(0, "awaited reply")) {}

ReplySlot::~ReplySlot()
{
	delete_sem(fSemaphore);
}

status_t
ReplySlot::Deliver(const BMessage& reply)
{
	BMessage copy(reply);
	{
		std::lock_guard lock(fMutex);
		if (fState == State::kAnswered)
			return B_DUPLICATE_REPLY;
		if (fState == State::kGivenUp)
			return B_BAD_REPLY;
		fState = State::kAnswered;
		fAnswer = std::move(copy);
	}
	release_sem(fSemaphore);
	return B_OK;
}

bool
ReplySlot::Wait(BMessage* reply, bigtime_t timeout)
{
	// On every way out, a kill's unwinding included, nobody waits any more.
	struct GiveUp {
		~GiveUp()
		{
			std::lock_guard lock(slot.fMutex);
			if (slot.fState == State::kAwaited)
				slot.fState = State::kGivenUp;
		}
		ReplySlot& slot;
	} giveUp{*this};

	bigtime_t start = system_time();
	status_t status;
	do {
		if (timeout == B_INFINITE_TIMEOUT)
			status = acquire_sem(fSemaphore);
		else {
			bigtime_t left = timeout - (system_time() - start);
			status = acquire_sem_etc(fSemaphore, 1, B_RELATIVE_TIMEOUT, left);
		}
	} while (status == B_INTERRUPTED);

	// The answer may have come right after the time was up: then it counts.
	std::lock_guard lock(fMutex);
	if (fState != State::kAnswered)
		return false;
	*reply = std::move(fAnswer);
	return true;
}

bool
ReplySlot::IsAwaited() const
{
	std::lock_guard lock(fMutex);
	return fState == State::kAwaited;
}

} // namespace BPrivate
