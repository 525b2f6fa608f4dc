// SPDX-License-Identifier: MIT

#include <interface/Rect.h>

#include <cstdio>

void
BRect::PrintToStream() const
{
	printf("BRect(%.1f, %.1f, %.1f, %.1f)\n", left, top, right, bottom);
}
