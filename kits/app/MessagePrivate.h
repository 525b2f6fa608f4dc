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

// Whether `length` bytes can be an item of the type, so that the typed Finds need not ask. Errors
// as of BMessage::AddData().
status_t CheckItem(type_code type, const void* data, ssize_t length);

// The head of a flattened message, before its body.
struct ImageHead {
	uint32 magic;
	uint32 check; // of all that follows
	uint32 size;  // of head and body
};

// Writes the head of an image whose body is in place.
void SealImage(char* image, size_t size);

// Nothing of this is copied with a message except the dropped state.
struct MessageAccess {
	static void SetDropped(BMessage& message, bool dropped) { message.fDropped = dropped; }
	static bool& PrefersFocus(BMessage& message) { return message.fPrefersFocus; }
	static int64& Target(BMessage& message) { return message.fTarget; }
	static std::shared_ptr<ReplySlot>& Reply(BMessage& message) { return message.fReply; }
	static std::shared_ptr<BMessenger>& ReplyTo(BMessage& message) { return message.fReplyTo; }
	static const MessageFields& Fields(const BMessage& message) { return message.fFields; }
	static MessageFields& Fields(BMessage& message) { return message.fFields; }
};

} // namespace BPrivate
