// SPDX-License-Identifier: MIT

#include <storage/Entry.h>
#include <storage/Path.h>

#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>

namespace {

// Longer than PATH_MAX, with names that are long themselves.
std::string
DeepPath()
{
	std::string path = "deep";
	for (int i = 0; i < 60; i++)
		path.append(1, '/').append(std::to_string(i)).append(200, 'd');
	return path;
}

} // namespace

TEST(Entry, StatesAreToldApart)
{
	TempTree tree{{"a/file", Text("12345")}, {"broken", Link("a/none")}, {"far", Link("none/none")},
		{"loop", Link("loop")}, {"through", Link("a/file/x")}};
	struct {
		const char* path;
		bool traverse;
		status_t init;
		bool exists;
	} cases[] = {
		{"a/file", false, B_OK, true},
		{"a", false, B_OK, true},
		{"a/none", false, B_OK, false},
		{"none/file", false, B_ENTRY_NOT_FOUND, false},
		{"a/file/x", false, B_NOT_A_DIRECTORY, false},
		{"broken", false, B_OK, true},
		{"broken", true, B_OK, false},
		{"far", false, B_OK, true},
		{"far", true, B_ENTRY_NOT_FOUND, false},
		{"loop", false, B_OK, true},
		{"loop", true, B_LINK_LIMIT, false},
		{"loop/x", false, B_LINK_LIMIT, false},
		{"through", true, B_NOT_A_DIRECTORY, false},
	};
	for (const auto& test : cases) {
		BEntry entry(tree.Path(test.path).c_str(), test.traverse);
		struct stat status;
		entry_ref ref;
		EXPECT_EQ(entry.InitCheck(), test.init) << test.path;
		EXPECT_EQ(entry.Exists(), test.exists) << test.path;
		EXPECT_EQ(entry.GetRef(&ref), test.init == B_OK ? B_OK : B_NO_INIT) << test.path;
		EXPECT_EQ(entry.GetStat(&status),
			test.exists             ? B_OK
				: test.init == B_OK ? B_ENTRY_NOT_FOUND
									: B_NO_INIT)
			<< test.path;
	}
}

TEST(Entry, WithoutAFileAnswersNoInit)
{
	BEntry entry;
	entry_ref ref;
	BPath path("/usr");
	BDirectory folder("/usr");
	BEntry parent("/usr");
	EXPECT_EQ(entry.GetRef(&ref), B_NO_INIT);
	EXPECT_EQ(entry.GetPath(&path), B_NO_INIT);
	EXPECT_EQ(path.Path(), nullptr);
	EXPECT_EQ(entry.GetParent(&parent), B_NO_INIT);
	EXPECT_EQ(parent.InitCheck(), B_NO_INIT);
	EXPECT_EQ(entry.GetParent(&folder), B_NO_INIT);
	EXPECT_EQ(folder.InitCheck(), B_NO_INIT);
	EXPECT_FALSE(entry.IsFile() || entry.IsDirectory() || entry.IsSymLink());
	EXPECT_EQ(entry, BEntry());
	EXPECT_NE(entry, BEntry("/usr"));
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BEntry(static_cast<char*>(nullptr)).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BEntry(&folder, "x").InitCheck(), B_BAD_VALUE);
}

TEST(Entry, FollowsChainsOfLinksFromWhereTheyLie)
{
	TempTree tree{{"a/file", Text("1")}, {"a/one", Link("file")}, {"b/two", Link("../a/one")},
		{"three", Link(".//b/two")}, {"up", Link("a/..")}, {"slash", Link("a/")}};
	tree.Add("absolute", Link(tree.Path("three")));
	BDirectory top = tree.Folder();
	for (const char* name : {"absolute", "three", "b/two", "a/one", "a/file"}) {
		BEntry entry(&top, name, true);
		EXPECT_EQ(entry, BEntry(tree.Path("a/file").c_str())) << name;
		EXPECT_TRUE(entry.IsFile());
	}
	entry_ref ref = tree.Ref("absolute");
	EXPECT_TRUE(BEntry(&ref).IsSymLink());
	EXPECT_TRUE(BEntry(&ref, true).IsFile());
	EXPECT_EQ(BEntry(&top, "up", true), BEntry(tree.Path().c_str()));
	EXPECT_EQ(BEntry(&top, "slash", true), BEntry(&top, "a"));
	EXPECT_EQ(BEntry(&top, "/usr"), BEntry("/usr"));
}

TEST(Entry, StatusIsItsOwn)
{
	TempTree tree{{"file", Text("12345").Mode(0640).Time(86400)}, {"link", Link("file")}};
	BEntry file(tree.Path("file").c_str());
	struct stat expected, read;
	time_t creation, alone;
	off_t size;
	ASSERT_EQ(stat(tree.Path("file").c_str(), &expected), 0);
	for (time_t* also : {static_cast<time_t*>(nullptr), &creation}) {
		ASSERT_EQ(also == nullptr ? file.GetStat(&read) : file.GetStat(&read, also), B_OK);
		EXPECT_EQ(read.st_dev, expected.st_dev);
		EXPECT_EQ(read.st_ino, expected.st_ino);
		EXPECT_EQ(read.st_mode, static_cast<mode_t>(S_IFREG | 0640));
		EXPECT_EQ(read.st_nlink, 1U);
		EXPECT_EQ(read.st_size, 5);
		EXPECT_EQ(read.st_mtime, 86400);
		EXPECT_EQ(read.st_ctim.tv_nsec, expected.st_ctim.tv_nsec);
		EXPECT_EQ(read.st_blocks, expected.st_blocks);
	}
	EXPECT_EQ(file.GetCreationTime(&alone), B_OK);
	EXPECT_EQ(alone, creation);
	EXPECT_GE(creation, 86400);
	EXPECT_LE(creation, read.st_ctime);
	EXPECT_TRUE(BEntry(tree.Path("link").c_str()).IsSymLink());

	// Asked anew each time.
	tree.Remove("file");
	EXPECT_EQ(file.GetCreationTime(&alone), B_ENTRY_NOT_FOUND);
	tree.Add("file", Text("1"));
	EXPECT_EQ(file.GetSize(&size), B_OK);
	EXPECT_EQ(size, 1);
}

TEST(Entry, ParentsLeadToTheRoot)
{
	TempTree tree{{"a/b/file", Text()}};
	BEntry entry(tree.Path("a/b/file").c_str());
	BPath path;
	BPath expected(tree.Path("a/b/file").c_str());
	while (expected.GetParent(&expected) == B_OK) {
		BDirectory folder;
		ASSERT_EQ(entry.GetParent(&folder), B_OK);
		EXPECT_EQ(BPath(&folder), expected);
		ASSERT_EQ(entry.GetParent(&entry), B_OK);
		ASSERT_EQ(entry.GetPath(&path), B_OK);
		EXPECT_EQ(path, expected);
	}
	char name[B_FILE_NAME_LENGTH];
	EXPECT_EQ(entry.GetName(name), B_OK);
	EXPECT_STREQ(name, "/");
	BDirectory above;
	EXPECT_EQ(entry.GetParent(&above), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.GetParent(&entry), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(Entry, WorksBeyondTheLongestPath)
{
	TempTree tree;
	std::string deep = DeepPath();
	tree.Add(deep + "/file", Text("12345"));
	tree.Add(deep + "/folder", Dir());
	std::string text = tree.Path(deep + "/file");
	ASSERT_GT(text.size(), 2 * 4096U);

	entry_ref ref;
	ASSERT_EQ(get_ref_for_path(text.c_str(), &ref), B_OK);
	BEntry entry(&ref);
	off_t size;
	EXPECT_EQ(entry.GetSize(&size), B_OK);
	EXPECT_EQ(size, 5);
	BPath path;
	ASSERT_EQ(entry.GetPath(&path), B_OK);
	EXPECT_EQ(path, text.c_str());
	EXPECT_EQ(BPath((text + "/").c_str()), path);

	BDirectory folder = tree.Folder(deep);
	EXPECT_EQ(folder.CountEntries(), 2);
	for (std::string expected = text; expected.size() > tree.Path().size();) {
		ASSERT_EQ(entry.GetParent(&entry), B_OK);
		expected.erase(expected.rfind('/'));
		ASSERT_EQ(entry.GetPath(&path), B_OK);
		ASSERT_EQ(path, expected.c_str());
	}

	// Removed folders that deep have no path, as others.
	BDirectory gone = tree.Folder(deep + "/folder");
	tree.Remove(deep + "/folder");
	EXPECT_EQ(BPath(&gone).InitCheck(), B_ENTRY_NOT_FOUND);
	tree.Rename("deep", "renamed");
	EXPECT_EQ(BPath(&ref), tree.Path("renamed" + deep.substr(4) + "/file").c_str());
}
