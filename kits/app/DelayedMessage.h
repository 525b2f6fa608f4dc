// SPDX-License-Identifier: MIT

// DelayedMessage: sends one message at a later time, for blinking carets and repeating buttons.
//
// Thread: each object one at a time, as its owner is. All share one timer thread, which starts with
//   the first use and takes no looper's lock.

#pragma once

#include <app/Message.h>
#include <app/Messenger.h>

namespace BPrivate {

class DelayedMessage {
public:
	DelayedMessage() = default;
	~DelayedMessage() { Cancel(); }
	DelayedMessage(const DelayedMessage&) = delete;
	DelayedMessage& operator=(const DelayedMessage&) = delete;

	// `delay` in microseconds. A message of this object that was not sent yet is given up.
	void Post(const BMessenger& target, const BMessage& message, bigtime_t delay);
	// A message that has just been sent may still arrive.
	void Cancel();

private:
	int64 fTicket = 0; // of the message that waits, or 0
};

} // namespace BPrivate
