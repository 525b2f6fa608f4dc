// SPDX-License-Identifier: MIT

// DeferKill: while one lives, kill_thread does not end the calling thread.
//
// A thread that was killed ends by an exception out of its next wait, which must not leave a
// destructor or another noexcept function: whoever waits there holds one of these. While the
// stack is unwound already nothing is thrown, so no destructor has to care for that case.

#pragma once

namespace BPrivate {

class DeferKill {
public:
	DeferKill();
	~DeferKill();
	DeferKill(const DeferKill&) = delete;
	DeferKill& operator=(const DeferKill&) = delete;
};

} // namespace BPrivate
