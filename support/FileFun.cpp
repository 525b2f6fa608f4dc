// SPDX-License-Identifier: MIT

#include "support/FileFun.h"

#include <cmath>
#include <cstdio>

namespace {

constexpr size_t kSizeTextBytes = 21; // the largest unsigned 64-bit number and a zero

} // namespace

void
NFileFunction::MakeFileSizeString(char* buf, off_t size)
{
	double value;
	char letter;
	if (size > kGig) {
		value = static_cast<double>(size) / kGig;
		letter = 'G';
	} else if (size > kMeg) {
		value = static_cast<double>(size) / kMeg;
		letter = 'M';
	} else if (size > kKilo) {
		value = static_cast<double>(size) / kKilo;
		letter = 'k';
	} else {
		// A negative size shows as what it is: a number that no file can have.
		std::snprintf(buf, kSizeTextBytes, "%llu", static_cast<unsigned long long>(size));
		return;
	}

	if (static_cast<long>(value) <= 50) {
		// The decimal is cut here but rounded in the text, so 2.04 shows as "2k" and 2.96 as
		// "3.0k". That is meant.
		bool whole = static_cast<long>(value * 10) % 10 == 0;
		std::snprintf(buf, kSizeTextBytes, whole ? "%.0f%c" : "%.1f%c", value, letter);
	} else {
		// Up by more than a half: 51.0 shows as 52. Sizes are meant to err on the large side.
		std::snprintf(
			buf, kSizeTextBytes, "%ld%c", static_cast<long>(std::ceil(value + 0.5)), letter);
	}
}

void
NFileFunction::MakePermissionsString(char* buf, mode_t mode)
{
	mode_t mask = 0400; // the owner's read bit
	for (const char* letter = "rwx rwx rwx"; mask != 0; letter++) {
		if (*letter == ' ')
			*buf++ = ' ';
		else {
			*buf++ = (mode & mask) != 0 ? *letter : '-';
			mask >>= 1;
		}
	}
	*buf = '\0';
}
