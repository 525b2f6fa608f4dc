// SPDX-License-Identifier: MIT

// What the delivery of messages needs to know of a BMessage and programs do not.

#pragma once

#include <app/Message.h>
#include <app/Messenger.h>
#include <kernel/OS.h>

#include <mutex>

namespace BPrivate {

// One awaited answer. The waiting sender and the delivered message share it.
//
// Thread: Wait() once, by the sender; all else from any thread.
struct ReplySlot {
	ReplySlot();
	~ReplySlot();
	ReplySlot(const ReplySlot&) = delete;
	ReplySlot& operator=(const ReplySlot&) = delete;

	// The first call wins and wakes the waiter; later ones get B_DUPLICATE_REPLY. B_BAD_REPLY when
	// the sender has given up, by time-out or because its thread was killed.
	status_t Deliver(const BMessage& reply);

	// Waits at most `timeout` microseconds; false when no answer came. A killed thread leaves by
	// unwinding.
	bool Wait(BMessage* reply, bigtime_t timeout);

	bool IsAwaited() const;

private:
	enum class State { kAwaited, kAnswered, kGivenUp };

	mutable std::mutex fMutex;
	sem_id fSemaphore;
	State fState = State::kAwaited;
	BMessage fAnswer;
};

// Nothing of this is copied with a message except the dropped state.
struct MessageAccess {
	static void SetDropped(BMessage& message, bool dropped) { message.fDropped = dropped; }
	static bool& PrefersFocus(BMessage& message) { return message.fPrefersFocus; }
	static int64& Target(BMessage& message) { return message.fTarget; }
	static std::shared_ptr<ReplySlot>& Reply(BMessage& message) { return message.fReply; }
	static std::shared_ptr<BMessenger>& ReplyTo(BMessage& message) { return message.fReplyTo; }
	static const MessageFields& Fields(const BMessage& message) { return message.fFields; }
};

} // namespace BPrivate
