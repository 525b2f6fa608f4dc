// SPDX-License-Identifier: MIT

#include <interface/Point.h>

#include <cstdio>

void
BPoint::PrintToStream() const
{
	printf("BPoint(%.1f, %.1f)\n", x, y);
}
