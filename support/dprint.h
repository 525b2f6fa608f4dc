// SPDX-License-Identifier: MIT

// The debug printer: calls stay in the code as notes of what is worth tracing, and print nothing.

#pragma once

#include <support/SupportDefs.h>

class BMessage;

class DPrinter {
public:
	void StdOut(uint32 code, const char* format, ...);
	void Print(uint32 code, const BMessage* message);
};

extern DPrinter Debug;
