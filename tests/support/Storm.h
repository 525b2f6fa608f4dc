// SPDX-License-Identifier: MIT

// For tests that try many orders of events: randomness whose seed is fixed and printed, and
// threads that run side by side.

#pragma once

#include "tests/support/LongRun.h"

#include <cstdio>
#include <random>
#include <thread>
#include <vector>

inline unsigned
PrintedSeed(unsigned seed)
{
	std::printf("[     seed ] %u\n", seed);
	return seed;
}

// One for each thread.
class Dice {
public:
	explicit Dice(unsigned seed) : fRandom(PrintedSeed(seed)) {}

	int operator()(int sides) { return static_cast<int>(fRandom() % static_cast<unsigned>(sides)); }

private:
	std::mt19937 fRandom;
};

// Runs body(0) ... body(count - 1) at the same time; returns when all have.
template <typename Body>
void
InThreads(int count, Body body)
{
	std::vector<std::thread> threads;
	for (int i = 0; i < count; i++)
		threads.emplace_back([&body, i] { body(i); });
	for (std::thread& thread : threads)
		thread.join();
}
