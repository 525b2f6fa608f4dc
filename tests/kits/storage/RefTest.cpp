// SPDX-License-Identifier: MIT

// What refs promise: they name a folder, not a path.

#include <storage/Entry.h>
#include <storage/Path.h>

#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <sys/stat.h>

namespace {

constexpr int kMoreThanTheTableHolds = 1100;

// So many other folders become known that those seen before are closed.
void
ForgetDescriptors(TempTree& tree)
{
	for (int i = 0; i < kMoreThanTheTableHolds; i++) {
		std::string name = "other/" + std::to_string(i);
		tree.Add(name, Dir());
		node_ref node;
		ASSERT_EQ(tree.Folder(name).GetNodeRef(&node), B_OK);
	}
}

status_t
StatusOf(const entry_ref& ref)
{
	BEntry entry(&ref);
	struct stat status;
	return entry.InitCheck() == B_OK ? entry.GetStat(&status) : entry.InitCheck();
}

std::string
PathOf(const entry_ref& ref)
{
	BPath path(&ref);
	return path.InitCheck() == B_OK ? path.Path() : "";
}

size_t
OpenDescriptors()
{
	std::filesystem::directory_iterator all("/proc/self/fd");
	return std::distance(begin(all), end(all));
}

} // namespace

TEST(EntryRef, OwnsItsName)
{
	entry_ref ref(1, 2, "a name");
	EXPECT_EQ(ref.set_name(ref.name + 2), B_OK);
	entry_ref copy(ref);
	ref.set_name(nullptr);
	copy = *&copy;
	EXPECT_EQ(copy, entry_ref(1, 2, "name"));
	EXPECT_NE(copy, entry_ref(1, 2, "Name"));
	// As it comes back from a message, which keeps 32 bits.
	EXPECT_EQ(entry_ref(0xfff00001, 2, "a"), entry_ref(int32(0xfff00001), 2, "a"));
}

TEST(Ref, SurvivesRenamesAboveIt)
{
	TempTree tree{{"a/b/file", Text("one")}};
	entry_ref ref = tree.Ref("a/b/file");
	BEntry entry(&ref);
	tree.Rename("a", "new");
	EXPECT_EQ(PathOf(ref), tree.Path("new/b/file"));
	EXPECT_TRUE(entry.Exists());

	tree.Rename("new/b", "b");
	EXPECT_EQ(StatusOf(ref), B_OK);
	EXPECT_EQ(ref, tree.Ref("b/file"));

	tree.Rename("b/file", "b/moved");
	EXPECT_EQ(StatusOf(ref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(PathOf(ref), tree.Path("b/file"));
}

TEST(Ref, OfAFolderThatIsGoneFails)
{
	TempTree tree{{"gone/file", Text()}};
	entry_ref ref = tree.Ref("gone/file");
	tree.Remove("gone/file");
	tree.Remove("gone");
	EXPECT_EQ(StatusOf(ref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BPath(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	// Not even when its path exists again.
	tree.Add("gone/file", Text());
	EXPECT_EQ(StatusOf(ref), B_ENTRY_NOT_FOUND);
	EXPECT_NE(ref, tree.Ref("gone/file"));
}

TEST(Ref, TellsAFolderFromOneThatTookItsName)
{
	// The kernel's own mark for a removed folder, here as a name.
	TempTree tree{{"dir (deleted)/file", Text()}};
	entry_ref ref = tree.Ref("dir (deleted)/file");
	EXPECT_EQ(PathOf(ref), tree.Path("dir (deleted)/file"));
	tree.Rename("dir (deleted)", "dir");
	tree.Add("dir (deleted)", Dir());
	EXPECT_EQ(PathOf(ref), tree.Path("dir/file"));
}

TEST(Ref, NumbersThatNobodyHasSeenAreNotFound)
{
	TempTree tree{{"file", Text()}};
	entry_ref ref = tree.Ref("file");
	ref.directory += 1000000007;
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	node_ref node;
	EXPECT_EQ(BDirectory(&node).InitCheck(), B_BAD_VALUE);
	node.device = ref.device;
	node.node = ref.directory;
	EXPECT_EQ(BDirectory(&node).InitCheck(), B_ENTRY_NOT_FOUND);
}

TEST(Ref, NamesThatAreNoNamesAreRefused)
{
	TempTree tree{{"a/file", Text()}};
	for (const char* name : {"", ".", "..", "/", "a/file", "../x", "/etc"}) {
		entry_ref ref = tree.Ref("a");
		ref.set_name(name);
		EXPECT_EQ(BEntry(&ref).InitCheck(), B_BAD_VALUE) << name;
		EXPECT_EQ(BDirectory(&ref).InitCheck(), B_BAD_VALUE) << name;
	}
	entry_ref ref = tree.Ref("a");
	ref.set_name(std::string(256, 'x').c_str());
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_NAME_TOO_LONG);
}

TEST(Ref, FolderFoundByItsEntryCanBeOpenedByItsNumbers)
{
	TempTree tree{{"a/b/file", Text()}};
	node_ref node;
	ASSERT_EQ(BEntry(tree.Path("a/b").c_str()).GetNodeRef(&node), B_OK);
	tree.Rename("a", "c");
	BDirectory folder(&node);
	ASSERT_EQ(folder.InitCheck(), B_OK);
	EXPECT_EQ(BPath(&folder), tree.Path("c/b").c_str());
}

TEST(Table, KeepsMoreFoldersThanDescriptors)
{
	TempTree tree;
	std::vector<entry_ref> refs;
	size_t before = OpenDescriptors();
	for (int i = 0; i < 2 * kMoreThanTheTableHolds; i++) {
		std::string name = std::to_string(i) + "/file";
		tree.Add(name, Text());
		refs.push_back(tree.Ref(name));
	}
	EXPECT_LE(OpenDescriptors(), before + 1024 + 8);
	for (const entry_ref& ref : refs)
		ASSERT_EQ(StatusOf(ref), B_OK);
	EXPECT_LE(OpenDescriptors(), before + 1024 + 8);
}

TEST(Table, VerifiesWhatItOpensAgain)
{
	TempTree tree{{"stays/file", Text()}, {"renamed/file", Text()}, {"swapped/file", Text()},
		{"removed/file", Text()}, {"replaced", Dir()}};
	const entry_ref stays = tree.Ref("stays/file"), renamed = tree.Ref("renamed/file");
	std::vector<entry_ref> gone = {renamed};
	for (const char* path : {"swapped/file", "removed/file", "replaced/file"})
		gone.push_back(tree.Ref(path));
	ForgetDescriptors(tree);

	tree.Rename("renamed", "away");
	tree.Rename("swapped", "kept");
	tree.Add("swapped/file", Text());
	tree.Remove("removed/file");
	tree.Remove("removed");
	// The new folder gets the inode number of the old one on many file systems.
	tree.Remove("replaced");
	tree.Add("replaced/file", Text());

	EXPECT_EQ(StatusOf(stays), B_OK);
	for (const entry_ref& ref : gone)
		EXPECT_EQ(StatusOf(ref), B_ENTRY_NOT_FOUND);
	tree.Rename("away", "renamed");
	EXPECT_EQ(StatusOf(renamed), B_OK);
}

TEST(Table, NeverClosesWhatIsInUse)
{
	TempTree tree{{"entry/file", Text()}, {"folder/file", Text()}};
	BEntry entry(tree.Path("entry/file").c_str());
	BDirectory folder = tree.Folder("folder");
	entry_ref ref = tree.Ref("folder/file");
	ForgetDescriptors(tree);
	tree.Rename("entry", "entry 2");
	tree.Rename("folder", "folder 2");
	EXPECT_TRUE(entry.Exists());
	EXPECT_EQ(BPath(&folder), tree.Path("folder 2").c_str());
	EXPECT_EQ(StatusOf(ref), B_OK);
}

TEST(Table, ServesManyThreads)
{
	TempTree tree;
	constexpr int kFolders = 1500; // enough that folders are closed and opened meanwhile
	for (int i = 0; i < kFolders; i++)
		tree.Add(std::to_string(i) + "/file", Text());
	std::atomic<int> good = 0;
	InThreads(4, [&](int thread) {
		std::vector<std::pair<std::string, entry_ref>> refs;
		for (int i = 0; i < kFolders; i++) {
			const std::string file =
				std::to_string(thread % 2 == 0 ? i : kFolders - 1 - i) + "/file";
			refs.emplace_back(tree.Path(file), tree.Ref(file));
		}
		for (const auto& [path, ref] : refs)
			good += StatusOf(ref) == B_OK && PathOf(ref) == path;
	});
	EXPECT_EQ(good, 4 * kFolders);
}
