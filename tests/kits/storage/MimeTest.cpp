// SPDX-License-Identifier: MIT

#include <storage/Mime.h>

#include <gtest/gtest.h>

#include <string>

TEST(MimeType, NamesAreChecked)
{
	const std::string longest = "text/" + std::string(B_MIME_TYPE_LENGTH - 6, 'x');
	for (const std::string& good : {std::string("text/plain"), std::string("text"),
			 std::string("application/x-vnd.Be-symlink"), std::string("image/svg+xml"),
			 std::string("x/\xc3\xa4"), longest}) {
		BMimeType type(good.c_str());
		EXPECT_EQ(type.InitCheck(), B_OK) << good;
		EXPECT_STREQ(type.Type(), good.c_str());
	}
	for (const std::string& bad :
		{std::string(), std::string("/"), std::string("text/"), std::string("/plain"),
			std::string("a/b/c"), std::string("text/pl ain"), std::string("text/plain\n"),
			std::string("text/\tx"), std::string("text/plain;charset=utf-8"), std::string("a@b/c"),
			std::string("a/(b)"), std::string("a/\"b\""), std::string("a\\b/c"), longest + "x"}) {
		BMimeType type(bad.c_str());
		EXPECT_EQ(type.InitCheck(), B_BAD_VALUE) << bad;
		EXPECT_EQ(type.Type(), nullptr);
	}
	EXPECT_EQ(BMimeType(nullptr).InitCheck(), B_BAD_VALUE);
}

TEST(MimeType, CaseMakesNoDifference)
{
	const BMimeType mixed("TEXT/Plain");
	EXPECT_TRUE(mixed == BMimeType("text/plain"));
	EXPECT_TRUE(mixed == "text/PLAIN");
	EXPECT_FALSE(mixed == "text/html");
	char one[B_MIME_TYPE_LENGTH] = "";
	char other[B_MIME_TYPE_LENGTH] = "";
	EXPECT_EQ(BMimeType("text/plain").GetShortDescription(one), B_OK);
	EXPECT_EQ(mixed.GetShortDescription(other), B_OK);
	EXPECT_STREQ(one, other);
	EXPECT_STRNE(one, "text/plain");
	// Nobody makes one up.
	EXPECT_EQ(BMimeType("no/such").GetShortDescription(one), B_ENTRY_NOT_FOUND);
}
