// SPDX-License-Identifier: MIT

// A handler that keeps the codes of what it gets, to be put into any looper.

#pragma once

#include <app/Handler.h>
#include <app/Message.h>

#include "tests/support/Waiting.h"

#include <mutex>
#include <vector>

class Collector : public BHandler {
public:
	Collector() : BHandler("collector") {}

	void MessageReceived(BMessage* message) override
	{
		std::lock_guard lock(fGuard);
		fCodes.push_back(message->what);
	}

	// All so far, in order.
	std::vector<uint32> Codes() const
	{
		std::lock_guard lock(fGuard);
		return fCodes;
	}
	// Whether there are as many in time.
	bool Gets(size_t count) const
	{
		return WaitUntil([&] { return Codes().size() >= count; });
	}

private:
	mutable std::mutex fGuard;
	std::vector<uint32> fCodes;
};
