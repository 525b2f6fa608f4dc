// SPDX-License-Identifier: MIT

// Randomness for tests that try many orders of events: the seed is fixed and printed.

#pragma once

#include "tests/support/LongRun.h"

#include <cstdio>
#include <random>

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
