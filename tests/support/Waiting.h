// SPDX-License-Identifier: MIT

// Waiting for something that another thread does.

#pragma once

#include <chrono>
#include <thread>

// True once `happened` is; false, so that the test fails, when it has not been after 20 seconds.
template <typename Condition>
bool
WaitUntil(Condition happened)
{
	auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
	while (!happened()) {
		if (std::chrono::steady_clock::now() > deadline)
			return false;
		std::this_thread::sleep_for(std::chrono::microseconds(200));
	}
	return true;
}
