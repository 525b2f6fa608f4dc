// SPDX-License-Identifier: MIT

#pragma once

#include <cstdlib>

// How often a test repeats: few times by default, many when KORVA_LONG=1 asks for patience.
inline int
Rounds(int few, int many)
{
	const char* value = std::getenv("KORVA_LONG");
	return value != nullptr && value[0] == '1' ? many : few;
}
