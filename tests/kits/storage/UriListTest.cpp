// SPDX-License-Identifier: MIT

#include <storage/UriList.h>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace BPrivate;

namespace {

typedef std::vector<std::string> Paths;

std::string
PathOr(const std::string& uri)
{
	std::string path;
	return PathOfUri(uri, &path) ? path : "none";
}

} // namespace

TEST(UriList, EveryNameThatADiskCanHoldMakesTheRoundTrip)
{
	std::string all = "/";
	for (int byte = 1; byte < 256; byte++)
		all += static_cast<char>(byte);
	EXPECT_EQ("file:///a%20b%25%23%3F%0A%0D%FF%7F", UriOf("/a b%#?\n\r\xff\x7f"));
	EXPECT_EQ("file:///caf%C3%A9/~x-_.!$&'()*+,=:@", UriOf("/caf\xc3\xa9/~x-_.!$&'()*+,=:@"));
	const Paths paths = {all, "/", all + all};
	EXPECT_EQ(paths, ReadUriList(MakeUriList(paths)));
	for (const bool cut : {false, true}) {
		CopiedFiles files;
		ASSERT_TRUE(ReadCopiedFiles(MakeCopiedFiles({cut, paths}), &files));
		EXPECT_EQ(cut, files.cut);
		EXPECT_EQ(paths, files.paths);
	}
}

TEST(UriList, LocalFilesAreKnownInTheirUsualForms)
{
	char host[256] = "";
	gethostname(host, sizeof(host) - 1);
	EXPECT_EQ("/a", PathOr("file:///a"));
	EXPECT_EQ("/a", PathOr("FILE://LocalHost/a"));
	EXPECT_EQ("/a", PathOr("file:/a"));
	EXPECT_EQ("/a", PathOr("file://" + std::string(host) + "/a"));
	EXPECT_EQ("/", PathOr("file:///"));
	EXPECT_EQ("/a b\xc3\xa9", PathOr("file:///a b\xc3\xa9")) << "not encoded, as some do";
	EXPECT_EQ(Paths({"/a", "/b", "/c"}),
		ReadUriList(std::string("#x\r\nfile:///a\nfile:///b\rfile:///c\0\0", 34)));
}

TEST(UriList, WhatNamesNoLocalFileIsLeftOut)
{
	for (const char* uri :
		{"", "file", "file:", "file://", "file://localhost", "file:a", "http://x/y",
			"file://elsewhere/a", "/a", "file:///a%", "file:///a%4", "file:///a%zz", "file:///a%00",
			"file:///a%2fb", "file:///a#b", "file:///a?b", " file:///a", "#file:///a"})
		EXPECT_EQ("none", PathOr(uri)) << uri;
	EXPECT_EQ("none", PathOr(std::string("file:///a\0b", 11)));
	EXPECT_EQ(Paths({"/b"}), ReadUriList("ftp://a\r\n\r\nfile:///b\r\nfile:///%0"));
}

TEST(UriList, ClipboardTextsAreReadStrictly)
{
	CopiedFiles files;
	EXPECT_TRUE(ReadCopiedFiles("cut", &files));
	EXPECT_TRUE(files.cut && files.paths.empty());
	for (const char* text : {"", "Cut\nfile:///a", "move\nfile:///a", "file:///a", "\ncut"})
		EXPECT_FALSE(ReadCopiedFiles(text, &files)) << text;
	EXPECT_TRUE(ReadCutSelection("1"));
	EXPECT_FALSE(ReadCutSelection("0"));
	EXPECT_FALSE(ReadCutSelection(""));
	EXPECT_EQ("a\xc3\xa9\xf0\x9f\x98\x80", MakeUtf8("a\xc3\xa9\xf0\x9f\x98\x80"));
	const std::string mark = "\xef\xbf\xbd";
	EXPECT_EQ(mark + mark + "a",
		MakeUtf8("\xc0\xaf"
				 "a"))
		<< "longer than needed";
	EXPECT_EQ(mark + mark + mark, MakeUtf8("\xed\xa0\x80")) << "half a character";
	EXPECT_EQ("x" + mark, MakeUtf8("x\xe2")) << "cut off";
}
