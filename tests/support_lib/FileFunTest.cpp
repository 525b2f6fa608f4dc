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

TEST(FileSize, UnitsBeginOneByteAboveTheirPowers)
{
	EXPECT_EQ(SizeText(0), "0");
	EXPECT_EQ(SizeText(1023), "1023");
	EXPECT_EQ(SizeText(kKilo), "1024");
	EXPECT_EQ(SizeText(kKilo + 1), "1k");
	EXPECT_EQ(SizeText(kMeg), "1025k");
	EXPECT_EQ(SizeText(kMeg + 1), "1M");
	EXPECT_EQ(SizeText(kGig), "1025M");
	EXPECT_EQ(SizeText(kGig + 1), "1G");
}

TEST(FileSize, SmallValuesHaveADecimalUnlessItsTruncationIsZero)
{
	EXPECT_EQ(SizeText(1536), "1.5k");
	EXPECT_EQ(SizeText(10240), "10k");
	EXPECT_EQ(SizeText(Times(2.04, kMeg)), "2M");
	EXPECT_EQ(SizeText(Times(2.09, kMeg)), "2M");   // rounding would give 2.1
	EXPECT_EQ(SizeText(Times(2.96, kMeg)), "3.0M"); // cut it is 2.9, so the decimal stays
	EXPECT_EQ(SizeText(Times(50.96, kKilo)), "51.0k");
	EXPECT_EQ(SizeText(Times(50.04, kGig)), "50G");
}

TEST(FileSize, LargeValuesGoUpByMoreThanAHalf)
{
	EXPECT_EQ(SizeText(51 * kKilo), "52k");
	EXPECT_EQ(SizeText(Times(51.4, kMeg)), "52M");
	EXPECT_EQ(SizeText(Times(51.5, kMeg)), "52M");
	EXPECT_EQ(SizeText(Times(51.6, kMeg)), "53M");
	EXPECT_EQ(SizeText(1023 * kKilo + 1023), "1025k");
	EXPECT_EQ(SizeText(INT64_MAX), "8589934593G");
}

TEST(FileSize, NegativeSizesShowAsTheirUnsignedValue)
{
	EXPECT_EQ(SizeText(-1), "18446744073709551615");
	EXPECT_EQ(SizeText(INT64_MIN), "9223372036854775808");
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
