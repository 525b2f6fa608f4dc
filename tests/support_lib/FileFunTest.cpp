// SPDX-License-Identifier: MIT

#include "support/FileFun.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// Buffers of exactly the promised sizes, so that the sanitizer sees a byte too many.
std::string
SizeText(off_t size)
{
	auto buf = std::make_unique<char[]>(21);
	NFileFunction::MakeFileSizeString(buf.get(), size);
	return buf.get();
}

std::string
PermissionsText(mode_t mode)
{
	auto buf = std::make_unique<char[]>(12);
	NFileFunction::MakePermissionsString(buf.get(), mode);
	return buf.get();
}

off_t
Times(double count, off_t unit)
{
	return static_cast<off_t>(count * static_cast<double>(unit));
}

} // namespace

TEST(FileSize, IsShownInTheLargestUnitBelowIt)
{
	const struct {
		off_t size;
		const char* text;
	} cases[] = {
		// Units begin one byte above their powers.
		{0, "0"},
		{1023, "1023"},
		{kKilo, "1024"},
		{kKilo + 1, "1k"},
		{kMeg, "1025k"},
		{kMeg + 1, "1M"},
		{kGig, "1025M"},
		{kGig + 1, "1G"},
		// Small values have a decimal unless its truncation is zero.
		{1536, "1.5k"},
		{10240, "10k"},
		{Times(2.04, kMeg), "2M"},
		{Times(2.09, kMeg), "2M"},   // rounding would give 2.1
		{Times(2.96, kMeg), "3.0M"}, // cut it is 2.9, so the decimal stays
		{Times(50.96, kKilo), "51.0k"},
		{Times(50.04, kGig), "50G"},
		// Large ones go up by more than a half.
		{51 * kKilo, "52k"},
		{Times(51.4, kMeg), "52M"},
		{Times(51.5, kMeg), "52M"},
		{Times(51.6, kMeg), "53M"},
		{1023 * kKilo + 1023, "1025k"},
		{INT64_MAX, "8589934593G"},
		// Negative ones show as their unsigned value.
		{-1, "18446744073709551615"},
		{INT64_MIN, "9223372036854775808"},
	};
	for (const auto& each : cases)
		EXPECT_EQ(SizeText(each.size), each.text);
}

TEST(Permissions, EachBitHasItsLetter)
{
	const std::string all = "rwx rwx rwx";
	EXPECT_EQ(PermissionsText(0), "--- --- ---");
	EXPECT_EQ(PermissionsText(0777), all);
	EXPECT_EQ(PermissionsText(0755), "rwx r-x r-x");
	size_t place = 0;
	for (mode_t bit = 0400; bit != 0; bit >>= 1, place++) {
		if (all[place] == ' ')
			place++;
		std::string expected = "--- --- ---";
		expected[place] = all[place];
		EXPECT_EQ(PermissionsText(bit), expected);
	}
	EXPECT_EQ(PermissionsText(0107640), "rw- r-- ---"); // kind, set-id and sticky bits
}
