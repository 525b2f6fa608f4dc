// SPDX-License-Identifier: MIT

// WakeUp: the sleep of one thread between two pieces of work that others give to it.
//
// It is a wait of the kits as any other: kill_thread ends the sleeper, suspend_thread stops it.

#pragma once

#include <kernel/OS.h>

namespace BPrivate {

namespace KernelKit {
struct Waiter;
}

class WakeUp {
public:
	WakeUp() = default;
	WakeUp(const WakeUp&) = delete;
	WakeUp& operator=(const WakeUp&) = delete;

	// One thread at a time: returns after the next Wake(), at once when there was one since the
	// last Wait(), or when `deadline` (system_time()) has come.
	void Wait(bigtime_t deadline);
	void Wake(); // any thread

private:
	// Guarded by the kernel's mutex.
	KernelKit::Waiter* fWaiter = nullptr;
	bool fWoken = false;
};

} // namespace BPrivate
