// SPDX-License-Identifier: MIT

// BMessenger: the address of a handler or looper. A value that owns nothing and stays safe when
// its target dies.

#pragma once

#include <kernel/OS.h>

#include <memory>

class BHandler;
class BLooper;
class BMessage;

namespace BPrivate {
class LooperCore;
struct NodeMonitorAccess;
} // namespace BPrivate

class BMessenger {
public:
	BMessenger();
	// Errors, also by *error: B_BAD_VALUE (both null), B_BAD_HANDLER (handler in no looper),
	// B_MISMATCHED_VALUES (handler in another looper than given).
	explicit BMessenger(
		const BHandler* handler, const BLooper* looper = nullptr, status_t* error = nullptr);

	// The application of that signature: that of this process, or the desktop's file manager
	// ("application/x-vnd.Be-TRAK"), which may have to be started by the first message and takes
	// only B_REFS_RECEIVED. `team`: its process, or any by -1. B_BAD_VALUE: none such runs.
	explicit BMessenger(const char* signature, team_id team = -1, status_t* error = nullptr);

	bool IsValid() const; // the target's looper still exists; the file manager was there

	// Locks the target's looper. False without a target or when looper or handler are gone.
	// Undone by Unlock() on the looper from Target().
	bool LockTarget() const;
	BHandler* Target(BLooper** looper) const; // null when gone or when the looper itself is meant

	// Asynchronous; a copy travels. B_BAD_PORT_ID when the target is gone or unset.
	status_t SendMessage(BMessage* message, BHandler* replyTo = nullptr,
		bigtime_t timeout = B_INFINITE_TIMEOUT) const;
	status_t SendMessage(uint32 command, BHandler* replyTo = nullptr) const;

	// Waits for the answer. B_TIMED_OUT. The caller must not hold the target looper's lock.
	status_t SendMessage(BMessage* message, BMessage* reply,
		bigtime_t deliveryTimeout = B_INFINITE_TIMEOUT,
		bigtime_t replyTimeout = B_INFINITE_TIMEOUT) const;

	bool operator==(const BMessenger& other) const;
	bool operator!=(const BMessenger& other) const { return !(*this == other); }

private:
	friend struct BPrivate::NodeMonitorAccess;

	status_t _Send(std::unique_ptr<BMessage> message) const;

	std::shared_ptr<BPrivate::LooperCore> fCore;
	int64 fToken = 0; // the handler's; 0: the looper's preferred handler; -1: the file manager
};
