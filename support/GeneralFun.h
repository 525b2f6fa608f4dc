// SPDX-License-Identifier: MIT

// Small helpers without a subject of their own, and status codes as text.

#pragma once

#include "support/Benaphore.h"

class NGeneralFunction {
public:
	// "B_ENTRY_NOT_FOUND (-2147459069) : No such file or directory". `buf` must have room for the
	// longest name, the number and the system's text: 256 bytes do. Returns `buf`.
	static char* ErrorString(char* buf, status_t code);

	static int intcmp(int a, int b); // -1, 0 or 1
	static char* StrEnd(char* s);    // the terminating zero

	static double min(double a, double b) { return b < a ? b : a; }
	static double max(double a, double b) { return a < b ? b : a; }
	static long min(long a, long b) { return b < a ? b : a; }
	static long max(long a, long b) { return a < b ? b : a; }

	// Held while a system's error text is asked for and copied; transfers may do so at the same
	// time.
	static Benaphore fStrErrorLock;
};
