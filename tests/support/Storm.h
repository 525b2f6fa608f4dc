// SPDX-License-Identifier: MIT

// Randomness for tests that try many orders of events: the seed is fixed and printed, the number
// of rounds small unless the environment says KORVA_LONG=1.

#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

inline int
StormRounds(int few, int many)
{
	const char* value = std::getenv("KORVA_LONG");
	return value != nullptr && std::string(value) == "1" ? many : few;
}

// One for each thread.
class Dice {
public:
	explicit Dice(unsigned seed) : fRandom(seed) { std::printf("[     seed ] %u\n", seed); }

	int operator()(int sides) { return static_cast<int>(fRandom() % static_cast<unsigned>(sides)); }

private:
	std::mt19937 fRandom;
};
