// SPDX-License-Identifier: MIT

#include "support/dprint.h"

DPrinter Debug;

void
DPrinter::StdOut(uint32, const char*, ...)
{}

void
DPrinter::Print(uint32, const BMessage*)
{}
