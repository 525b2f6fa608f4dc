// SPDX-License-Identifier: MIT

// Nodes and their attributes, and links.

#include <storage/Entry.h>
#include <storage/Node.h>
#include <storage/SymLink.h>

#include <support/TypeConstants.h>

#include "tests/support/Denied.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

// True where the tests' folder knows attributes; else the running test is skipped.
bool
KnowsAttributes(const TempTree& tree)
{
	if (setxattr(tree.Path().c_str(), "user.probe", "", 0, 0) == 0) {
		removexattr(tree.Path().c_str(), "user.probe");
		return true;
	}
	[] { GTEST_SKIP() << "the folder for temporary files is on a file system without them"; }();
	return false;
}

ssize_t
Write(BNode& node, const char* name, const std::string& value, uint32 type = B_STRING_TYPE,
	off_t offset = 0)
{
	return node.WriteAttr(name, type, offset, value.data(), value.size());
}

// The value with its type in front, or the status code.
std::string
Read(const BNode& node, const char* name)
{
	attr_info info;
	status_t status = node.GetAttrInfo(name, &info);
	if (status != B_OK)
		return strerror(status);
	std::string value(info.size + 1, '\0');
	ssize_t length = node.ReadAttr(name, info.type, 0, value.data(), value.size());
	value.resize(std::max<ssize_t>(length, 0));
	std::string type;
	for (int shift = 24; shift >= 0; shift -= 8)
		type += static_cast<char>(info.type >> shift);
	return length == info.size ? type + ":" + value : "sizes differ";
}

std::vector<std::string>
AttrNames(BNode& node)
{
	std::vector<std::string> names;
	char name[256];
	node.RewindAttrs();
	while (node.GetNextAttrName(name) == B_OK)
		names.push_back(name);
	return Names(names);
}

const std::string kNotFound = strerror(B_ENTRY_NOT_FOUND);

} // namespace

TEST(Node, StaysWithItsFileAndFollowsNoLink)
{
	TempTree tree{{"file", Text("12345")}, {"broken", Link("none")}, {"other", Text()}};
	entry_ref ref = tree.Ref("file");
	BEntry entry(&ref);
	BDirectory folder = tree.Folder();
	off_t size;
	for (const BNode& node :
		{BNode(&ref), BNode(&entry), BNode(tree.Path("file").c_str()), BNode(&folder, "file")})
		EXPECT_TRUE(node.IsFile());
	BNode node(&ref);
	tree.Rename("other", "file");
	EXPECT_EQ(node.GetSize(&size), B_OK);
	EXPECT_EQ(size, 5);
	EXPECT_TRUE(BNode(tree.Path("broken").c_str()).IsSymLink());
	EXPECT_EQ(node.SetTo(tree.Path("none").c_str()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(node.GetSize(&size), B_NO_INIT);
	EXPECT_EQ(node.ReadAttr("a", B_RAW_TYPE, 0, &size, 1), B_NO_INIT);

	char target[16];
	BSymLink link(tree.Path("broken").c_str());
	EXPECT_EQ(link.ReadLink(target, sizeof(target)), 4);
	EXPECT_STREQ(target, "none");
	EXPECT_EQ(link.ReadLink(target, 2), 2);
	EXPECT_EQ(BSymLink(tree.Path("file").c_str()).ReadLink(target, sizeof(target)), B_BAD_VALUE);
}

TEST(Attributes, KeepTypeAndValue)
{
	TempTree tree{{"file", Text()}, {"folder", Dir()}};
	if (!KnowsAttributes(tree))
		return;
	const std::string bytes("\0\xff binary", 9);
	for (const char* path : {"file", "folder"}) {
		BNode node(tree.Path(path).c_str());
		EXPECT_EQ(Write(node, "BEOS:TYPE", "text/plain", B_MIME_STRING_TYPE), 10);
		EXPECT_EQ(Write(node, "raw", bytes, B_RAW_TYPE), 9);
		EXPECT_EQ(Write(node, "empty", "", B_INT32_TYPE), 0);
		BNode again(tree.Path(path).c_str());
		EXPECT_EQ(Read(again, "BEOS:TYPE"), "MIMS:text/plain");
		EXPECT_EQ(Read(again, "raw"), "RAWT:" + bytes);
		EXPECT_EQ(Read(again, "empty"), "LONG:");
		EXPECT_EQ(AttrNames(again), Names({"BEOS:TYPE", "empty", "raw"}));

		EXPECT_EQ(Write(node, "BEOS:TYPE", "new", B_RAW_TYPE), 3);
		EXPECT_EQ(Read(node, "BEOS:TYPE"), "RAWT:new");
		EXPECT_EQ(node.RemoveAttr("empty"), B_OK);
		EXPECT_EQ(node.RemoveAttr("empty"), B_ENTRY_NOT_FOUND);
		EXPECT_EQ(Read(node, "empty"), kNotFound);
		EXPECT_EQ(Write(node, "empty", "", B_RAW_TYPE), 0);
		EXPECT_EQ(Read(node, "empty"), "RAWT:"); // and not of the type that it had
		EXPECT_EQ(AttrNames(node), Names({"BEOS:TYPE", "empty", "raw"}));
	}
}

TEST(Attributes, OfOtherProgramsAreRawAndStayTheirs)
{
	TempTree tree{{"file", Text()}};
	if (!KnowsAttributes(tree))
		return;
	std::string path = tree.Path("file");
	ASSERT_EQ(setxattr(path.c_str(), "user.xdg.origin.url", "http://x", 8, 0), 0);
	BNode node(path.c_str());
	EXPECT_EQ(Read(node, "xdg.origin.url"), "RAWT:http://x");
	EXPECT_EQ(Write(node, "xdg.origin.url", "y", B_RAW_TYPE), 1);
	char names[256];
	ASSERT_EQ(listxattr(path.c_str(), names, sizeof(names)), 20);
	EXPECT_STREQ(names, "user.xdg.origin.url");
}

TEST(Attributes, AreReadAndWrittenInParts)
{
	TempTree tree{{"file", Text()}};
	if (!KnowsAttributes(tree))
		return;
	BNode node(tree.Path("file").c_str());
	char buffer[16] = {};
	ASSERT_EQ(Write(node, "a", "0123456789"), 10);
	EXPECT_EQ(node.ReadAttr("a", B_ANY_TYPE, 0, buffer, 4), 4);
	EXPECT_EQ(std::string(buffer, 4), "0123");
	EXPECT_EQ(node.ReadAttr("a", B_ANY_TYPE, 7, buffer, sizeof(buffer)), 3);
	EXPECT_EQ(std::string(buffer, 3), "789");
	EXPECT_EQ(node.ReadAttr("a", B_ANY_TYPE, 10, buffer, sizeof(buffer)), 0);
	EXPECT_EQ(node.ReadAttr("a", B_ANY_TYPE, -1, buffer, 1), B_BAD_VALUE);
	EXPECT_EQ(node.ReadAttr("none", B_ANY_TYPE, 3, buffer, 1), B_ENTRY_NOT_FOUND);

	EXPECT_EQ(Write(node, "a", "xy", B_STRING_TYPE, 4), 2);
	EXPECT_EQ(Read(node, "a"), "CSTR:0123xy6789");
	EXPECT_EQ(Write(node, "a", "z", B_STRING_TYPE, 12), 1);
	EXPECT_EQ(Read(node, "a"), std::string("CSTR:0123xy6789\0\0z", 18));
	EXPECT_EQ(Write(node, "b", "1", B_STRING_TYPE, 1), 1);
	EXPECT_EQ(Read(node, "b"), std::string("CSTR:\0001", 7));
}

TEST(Attributes, TooLargeOnesAndBadNamesAreRefused)
{
	TempTree tree{{"file", Text()}};
	if (!KnowsAttributes(tree))
		return;
	BNode node(tree.Path("file").c_str());
	ASSERT_EQ(Write(node, "a", "old"), 3);
	EXPECT_EQ(Write(node, "a", std::string(65537, 'x')), B_DEVICE_FULL);
	EXPECT_EQ(Write(node, "a", "x", B_STRING_TYPE, 65536), B_DEVICE_FULL);
	EXPECT_EQ(Read(node, "a"), "CSTR:old");
	std::string longest(250, 'n');
	EXPECT_EQ(Write(node, longest.c_str(), "1", B_RAW_TYPE), 1);
	EXPECT_EQ(Read(node, longest.c_str()), "RAWT:1");
	EXPECT_EQ(Write(node, longest.c_str(), "1", B_STRING_TYPE), B_NAME_TOO_LONG);
	EXPECT_EQ(Write(node, (longest + "n").c_str(), "1", B_RAW_TYPE), B_NAME_TOO_LONG);
	EXPECT_EQ(Write(node, "", "1"), B_BAD_VALUE);
	EXPECT_EQ(Write(node, "a.korva:type", "1"), B_BAD_VALUE);
	EXPECT_EQ(AttrNames(node), Names({"a", longest}));
}

TEST(Attributes, AreNotForAllFilesAndFileSystems)
{
	TempTree tree{{"link", Link("none")}};
	ASSERT_EQ(mkfifo(tree.Path("pipe").c_str(), 0644), 0);
	for (const char* path : {"link", "pipe"}) {
		BNode node(tree.Path(path).c_str());
		for (int i = 0; i < 3; i++) { // not by the first way alone
			EXPECT_EQ(Read(node, "a"), kNotFound);
			EXPECT_EQ(Write(node, "a", "1"), B_NOT_ALLOWED);
		}
		EXPECT_EQ(AttrNames(node), Names({}));
	}
	BNode node("/proc/self/comm");
	char buffer[16];
	EXPECT_EQ(node.ReadAttr("a", B_RAW_TYPE, 0, buffer, sizeof(buffer)), B_UNSUPPORTED);
	EXPECT_EQ(Write(node, "a", "1"), B_UNSUPPORTED);
	EXPECT_EQ(AttrNames(node), Names({}));
}

TEST(Attributes, NeedTheRightToReadOrWriteTheFile)
{
	TempTree tree{
		{"secret", Text().Mode(0600)}, {"fixed", Text().Mode(0444)}, {"open", Text().Mode(0666)}};
	if (!KnowsAttributes(tree))
		return;
	if (geteuid() != 0)
		GTEST_SKIP() << "only root can make files that belong to somebody else";
	tree.SetMode(".", 0755);
	AsNobody nobody;
	BNode secret(tree.Path("secret").c_str());
	BNode fixed(tree.Path("fixed").c_str());
	BNode open(tree.Path("open").c_str());
	for (int i = 0; i < 3; i++) {
		EXPECT_EQ(Read(secret, "a"), strerror(B_PERMISSION_DENIED));
		EXPECT_EQ(Write(fixed, "a", "1"), B_PERMISSION_DENIED);
		EXPECT_EQ(Read(fixed, "a"), kNotFound);
		EXPECT_EQ(Write(open, "a", "1"), 1);
		EXPECT_EQ(Read(open, "a"), "CSTR:1");
	}
}
