// SPDX-License-Identifier: MIT

// The order in which an exchange sort leaves its items, found without its n²/2 comparisons.
//
// The sort meant is this one; it decides which of several equal items comes first:
//
//	for i from 0, for j from i + 1: if compare(items[i], items[j]) == 1, swap the two
//
// compare() gets the numbers of two items. For answers of -1, 0 and 1 that agree with each other
// it is called about n log n times. Other answers (anything positive but 1 swaps nothing) and
// contradictions are noticed, and then the plain sort itself decides, at its own cost.
//
// Returns the number of the item that comes first, second, ...

#pragma once

#include <support/SupportDefs.h>

#include <functional>
#include <vector>

typedef std::function<int(int32 a, int32 b)> NumberedCompare;

std::vector<int32> ExchangeOrder(int32 count, const NumberedCompare& compare);
