// SPDX-License-Identifier: MIT

// BMessageFilter: looks at messages before their target does, and may drop or redirect them.

#pragma once

#include <app/Handler.h>

enum message_delivery { B_ANY_DELIVERY, B_DROPPED_DELIVERY, B_PROGRAMMED_DELIVERY };
enum message_source { B_ANY_SOURCE, B_REMOTE_SOURCE, B_LOCAL_SOURCE };

class BMessageFilter {
public:
	explicit BMessageFilter(uint32 what, filter_hook hook = nullptr);
	BMessageFilter(message_delivery delivery, message_source source, filter_hook hook = nullptr);
	BMessageFilter(
		message_delivery delivery, message_source source, uint32 what, filter_hook hook = nullptr);
	virtual ~BMessageFilter() = default;

	// Called in the looper's thread, looper locked. *target may be changed to another handler of
	// the same looper. The base calls the hook given at construction.
	virtual filter_result Filter(BMessage* message, BHandler** target);

	bool Accepts(const BMessage& message) const;
	BLooper* Looper() const { return fLooper; }

private:
	friend class BHandler;
	friend class BLooper;

	message_delivery fDelivery = B_ANY_DELIVERY;
	message_source fSource = B_ANY_SOURCE;
	bool fAnyCommand = false;
	uint32 fCommand = 0;
	filter_hook fHook = nullptr;
	BLooper* fLooper = nullptr;
};
