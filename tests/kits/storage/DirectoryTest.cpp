// SPDX-License-Identifier: MIT

#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "tests/support/Denied.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <unistd.h>

namespace {

std::vector<std::string>
RestOf(BDirectory& folder)
{
	std::vector<std::string> names;
	entry_ref ref;
	status_t status;
	while ((status = folder.GetNextRef(&ref)) == B_OK)
		names.push_back(ref.name);
	EXPECT_EQ(status, B_ENTRY_NOT_FOUND);
	EXPECT_EQ(ref, entry_ref());
	return names;
}

} // namespace

TEST(Directory, IsOpenedFromAnythingThatNamesIt)
{
	TempTree tree{{"a/file", Text()}, {"link", Link("a")}, {"broken", Link("none")}};
	std::string path = tree.Path("a");
	BDirectory top = tree.Folder();
	entry_ref ref = tree.Ref("link");
	BEntry entry(path.c_str());
	node_ref node;
	ASSERT_EQ(entry.GetNodeRef(&node), B_OK);
	for (const BDirectory& folder :
		{BDirectory(path.c_str()), BDirectory(&ref), BDirectory(&entry), BDirectory(&node),
			BDirectory(&top, "a"), BDirectory(&top, path.c_str()), BDirectory(&top, "link/")}) {
		ASSERT_EQ(folder.InitCheck(), B_OK);
		BEntry self;
		EXPECT_EQ(folder.GetEntry(&self), B_OK);
		EXPECT_EQ(self, entry);
		node_ref own;
		EXPECT_EQ(folder.GetNodeRef(&own), B_OK);
		EXPECT_EQ(own, node);
	}
	EXPECT_EQ(top.SetTo(&top, "a"), B_OK);
	EXPECT_EQ(BPath(&top), path.c_str());

	EXPECT_EQ(tree.Folder("a/file").InitCheck(), B_NOT_A_DIRECTORY);
	EXPECT_EQ(tree.Folder("none").InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(tree.Folder("broken").InitCheck(), B_ENTRY_NOT_FOUND);
	BDirectory unset;
	EXPECT_EQ(BDirectory(&unset, "a").InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(unset.GetNextRef(&ref), B_NO_INIT);
}

TEST(Directory, ListsInByteOrder)
{
	// Beginnings of all lengths in common, bytes above 127, one name that begins another.
	std::mt19937 random(20240229);
	for (const char* start : {"", "IMG_20", "a long beginning"}) {
		TempTree tree;
		for (int i = 0; i < 600; i++) {
			std::string name = start;
			for (int n = random() % 20 + 1; n > 0; n--)
				name += "ab\xc3\xa4\x7f\xff!Z"[random() % 8];
			tree.Add(name, Text());
		}
		BDirectory folder = tree.Folder();
		std::vector<std::string> names = RestOf(folder);
		EXPECT_EQ(names, tree.List());
		EXPECT_GT(names.size(), 300U);
	}
}

TEST(Directory, WalksASnapshot)
{
	TempTree tree{{"a", Text()}, {"b", Text()}, {"c", Text()}};
	BDirectory folder = tree.Folder();
	entry_ref ref;
	ASSERT_EQ(folder.GetNextRef(&ref), B_OK);
	EXPECT_EQ(ref, tree.Ref("a"));
	tree.Remove("b");
	tree.Add("d", Text());
	BDirectory copy(folder);
	EXPECT_EQ(RestOf(folder), Names({"b", "c"}));
	EXPECT_EQ(RestOf(folder), Names({}));
	EXPECT_EQ(RestOf(copy), Names({"a", "c", "d"}));
	EXPECT_EQ(folder.Rewind(), B_OK);
	EXPECT_EQ(RestOf(folder), Names({"a", "c", "d"}));
}

TEST(Directory, CountAndWalkAgree)
{
	TempTree tree{{"a", Text()}, {"b", Text()}};
	BDirectory folder = tree.Folder();
	EXPECT_EQ(folder.CountEntries(), 2);
	EXPECT_EQ(RestOf(folder), Names({})); // the count has used up the walk

	EXPECT_EQ(folder.CountEntries(), 2);
	tree.Add("c", Text());
	folder.Rewind();
	folder.Rewind();
	EXPECT_EQ(RestOf(folder), Names({"a", "b"}));
	folder.Rewind(); // after reads: a new snapshot
	EXPECT_EQ(RestOf(folder), Names({"a", "b", "c"}));

	entry_ref ref;
	folder.Rewind();
	folder.GetNextRef(&ref);
	tree.Add("d", Text());
	EXPECT_EQ(folder.CountEntries(), 4);
}

TEST(Directory, ThreeWaysShareOneWalk)
{
	TempTree tree{{"a", Text()}, {"b", Link("a")}, {"c", Dir()}, {"d", Text()}};
	BDirectory folder = tree.Folder();
	alignas(dirent) char buffer[1024];
	dirent* entries = reinterpret_cast<dirent*>(buffer);
	ASSERT_EQ(folder.GetNextDirents(entries, sizeof(buffer), 1), 1);
	EXPECT_STREQ(entries->d_name, ".");
	node_ref node;
	ASSERT_EQ(folder.GetNodeRef(&node), B_OK);
	EXPECT_EQ(entries->d_ino, node.node);

	entry_ref ref;
	ASSERT_EQ(folder.GetNextRef(&ref), B_OK); // skips ".."
	EXPECT_STREQ(ref.name, "a");
	BEntry entry;
	ASSERT_EQ(folder.GetNextEntry(&entry, true), B_OK);
	EXPECT_EQ(entry, BEntry(&ref));

	ASSERT_EQ(folder.GetNextDirents(entries, sizeof(buffer)), 2);
	EXPECT_STREQ(entries->d_name, "c");
	EXPECT_TRUE(entries->d_type == DT_DIR || entries->d_type == DT_UNKNOWN);
	entries = reinterpret_cast<dirent*>(buffer + entries->d_reclen);
	EXPECT_STREQ(entries->d_name, "d");
	EXPECT_EQ(folder.GetNextDirents(entries, sizeof(dirent)), 0);
	EXPECT_EQ(folder.GetNextEntry(&entry), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);

	// Room for the first two only; then for none.
	folder.Rewind();
	entries = reinterpret_cast<dirent*>(buffer);
	EXPECT_EQ(folder.GetNextDirents(entries, 48), 2);
	EXPECT_EQ(folder.GetNextDirents(entries, 20), B_BAD_VALUE);
	EXPECT_EQ(RestOf(folder), Names({"a", "b", "c", "d"}));
}

TEST(Directory, FindsEntries)
{
	TempTree tree{{"a/file", Text()}, {"link", Link("a/file")}, {"broken", Link("none")}};
	BDirectory folder = tree.Folder();
	BEntry entry;
	EXPECT_EQ(folder.FindEntry("a/file", &entry), B_OK);
	EXPECT_TRUE(entry.IsFile());
	EXPECT_EQ(folder.FindEntry("link", &entry, true), B_OK);
	EXPECT_EQ(entry, BEntry(tree.Path("a/file").c_str()));
	EXPECT_EQ(folder.FindEntry("broken", &entry, true), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BDirectory().FindEntry("usr", &entry), B_NO_INIT);
	EXPECT_FALSE(folder.IsRootDirectory());
	EXPECT_TRUE(BDirectory("/proc").IsRootDirectory());
}

TEST(Directory, VanishedUnderItsReaderIsNotFound)
{
	TempTree tree{{"gone", Dir()}};
	BDirectory folder = tree.Folder("gone");
	tree.Remove("gone");
	BEntry entry;
	struct stat status;
	EXPECT_EQ(folder.CountEntries(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(RestOf(folder), Names({}));
	EXPECT_EQ(folder.GetEntry(&entry), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(folder.GetStat(&status), B_OK); // the node is there while we hold it
}

TEST(Directory, ThatMayNotBeReadSaysSo)
{
	TempTree tree{{"closed/file", Text()}};
	tree.SetMode(".", 0755);
	tree.SetMode("closed", 0311);
	BDirectory folder = tree.Folder("closed");
	entry_ref ref;
	EXPECT_EQ(folder.InitCheck(), B_OK);
	{
		AsNobody nobody;
		EXPECT_EQ(folder.GetNextRef(&ref), B_PERMISSION_DENIED);
		EXPECT_EQ(folder.CountEntries(), B_PERMISSION_DENIED);
		EXPECT_TRUE(BEntry(&folder, "file").Exists());
	}
	tree.SetMode("closed", 0600);
	AsNobody nobody;
	EXPECT_FALSE(BEntry(&folder, "file").Exists());
}
