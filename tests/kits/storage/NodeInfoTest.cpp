// SPDX-License-Identifier: MIT

#include <storage/Node.h>
#include <storage/NodeInfo.h>

#include <support/TypeConstants.h>

#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

// "" when there is none; the buffer must then be as it was.
std::string
TypeOf(const std::string& path)
{
	BNode node(path.c_str());
	EXPECT_EQ(node.InitCheck(), B_OK) << path;
	char type[B_MIME_TYPE_LENGTH] = "before";
	status_t status = BNodeInfo(&node).GetType(type);
	if (status == B_OK)
		return type;
	EXPECT_EQ(status, B_ENTRY_NOT_FOUND) << path;
	EXPECT_STREQ(type, "before");
	return "";
}

const std::string kElf("\x7f"
					   "ELF\2\1\1\0\0\0\0\0\0\0\0\0\3\0\x3e\0",
	20);
const std::string kPng("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1", 24);

} // namespace

TEST(NodeInfo, NamesDecideBeforeContents)
{
	const struct {
		const char* path;
		std::string content;
		const char* type;
	} cases[] = {
		{"photo.png", "words", "image/png"},
		{"WORDS.TXT", kPng, "text/plain"},
		{"a.tar.gz", "", "application/x-compressed-tar"},
		{"Makefile", "", "text/x-makefile"},
		{"dir.png/song.mp3", "", "audio/mpeg"},
		// Names that say nothing.
		{"empty", "", "application/x-zerosize"},
		{"words", "some words\n", "text/plain"},
		{"picture", kPng, "image/png"},
		{"script", "#!/bin/sh\n", "application/x-shellscript"},
		{"noise", std::string("\0\1\2\3\xfe\xff", 6), "application/octet-stream"},
		{"program", kElf, "application/x-executable"},
	};
	TempTree tree;
	for (const auto& each : cases) {
		tree.Add(each.path, Text(each.content));
		EXPECT_EQ(TypeOf(tree.Path(each.path)), each.type);
	}
}

TEST(NodeInfo, OnlyRegularFilesHaveTypesWithoutAttributes)
{
	TempTree tree{
		{"folder.txt/x", Text()}, {"link.txt", Link("folder.txt/x")}, {"broken.png", Link("none")}};
	const std::string pipe = tree.Path() + "/pipe.txt";
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	EXPECT_EQ(TypeOf(tree.Path("folder.txt")), "");
	EXPECT_EQ(TypeOf(tree.Path("link.txt")), "");
	EXPECT_EQ(TypeOf(tree.Path("broken.png")), "");
	EXPECT_EQ(TypeOf(pipe), "");
	EXPECT_EQ(TypeOf("/dev/null"), "");
}

TEST(NodeInfo, AttributesDecideBeforeNames)
{
	TempTree tree{{"file.txt", Text("words")}, {"folder/x", Text()}};
	const std::string file = tree.Path("file.txt");
	const std::string folder = tree.Path("folder");
	auto set = [](const std::string& path, const char* name, const std::string& value) {
		return setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
	};
	if (!set(file, "user.mime_type", "image/jpeg"))
		GTEST_SKIP() << "no attributes on the file system of " << file;
	EXPECT_EQ(TypeOf(file), "image/jpeg");

	BNode node(file.c_str());
	const char type[] = "application/x-vnd.Be-Thing";
	ASSERT_EQ(node.WriteAttr("BEOS:TYPE", B_MIME_STRING_TYPE, 0, type, sizeof(type)),
		static_cast<ssize_t>(sizeof(type)));
	EXPECT_EQ(TypeOf(file), type);
	ASSERT_TRUE(set(folder, "user.BEOS:TYPE", "text/x-folder"));
	EXPECT_EQ(TypeOf(folder), "text/x-folder");

	// Values that can be no type are as good as none; many other attributes do not hide it.
	ASSERT_TRUE(set(file, "user.BEOS:TYPE", std::string(1000, 'x')));
	EXPECT_EQ(TypeOf(file), "image/jpeg");
	ASSERT_TRUE(set(file, "user.BEOS:TYPE", ""));
	ASSERT_TRUE(set(file, "user.mime_type", ""));
	EXPECT_EQ(TypeOf(file), "text/plain");
	for (int i = 0; i < 12; i++)
		set(file, ("user." + std::string(100, 'a') + std::to_string(i)).c_str(), "");
	ASSERT_TRUE(set(file, "user.mime_type", "text/html"));
	EXPECT_EQ(TypeOf(file), "text/html");
}
