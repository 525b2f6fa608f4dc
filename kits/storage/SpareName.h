// SPDX-License-Identifier: MIT

// A name that nobody else uses: as random as a name can be.

#pragma once

#include <support/SupportDefs.h>

#include <cerrno>
#include <cstdio>
#include <sys/random.h>

namespace BPrivate {

class SpareName {
public:
	SpareName()
	{
		uint64 random[2] = {};
		while (getrandom(random, sizeof(random), 0) < 0 && errno == EINTR) {
		}
		snprintf(fText, sizeof(fText), ".korva-%016llx%016llx",
			static_cast<unsigned long long>(random[0]), static_cast<unsigned long long>(random[1]));
	}

	const char* Text() const { return fText; }

private:
	char fText[48];
};

} // namespace BPrivate
