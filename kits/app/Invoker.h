// SPDX-License-Identifier: MIT

// BInvoker: a message and the target it is sent to.

#pragma once

#include <app/Message.h>
#include <app/Messenger.h>

#include <memory>

class BInvoker {
public:
	BInvoker() = default;
	BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper = nullptr);
	BInvoker(BMessage* message, const BMessenger& target);
	virtual ~BInvoker();
	BInvoker(const BInvoker&) = delete;
	BInvoker& operator=(const BInvoker&) = delete;

	virtual status_t SetMessage(BMessage* message); // owned from now on; the old one is deleted
	BMessage* Message() const { return fMessage.get(); }
	uint32 Command() const { return fMessage ? fMessage->what : 0; }

	virtual status_t SetTarget(const BHandler* handler, const BLooper* looper = nullptr);
	virtual status_t SetTarget(const BMessenger& messenger);
	BHandler* Target(BLooper** looper = nullptr) const { return fMessenger.Target(looper); }
	const BMessenger& Messenger() const { return fMessenger; }
	bool HasTarget() const { return fHasTarget; } // SetTarget was called with success

	// Sends a copy of `message`, or of the own one when null. B_BAD_VALUE when there is none.
	virtual status_t Invoke(BMessage* message = nullptr);

private:
	std::unique_ptr<BMessage> fMessage;
	BMessenger fMessenger;
	bool fHasTarget = false;
};
