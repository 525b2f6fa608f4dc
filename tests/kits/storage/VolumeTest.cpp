// SPDX-License-Identifier: MIT

// Volumes: what is told about them, and that nothing here keeps them from being unmounted.

#include <kernel/fs_info.h>
#include <storage/DirectoryTable.h>
#include <storage/Entry.h>
#include <storage/Node.h>
#include <storage/Path.h>
#include <storage/Volume.h>

#include "tests/support/MountNamespace.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

struct stat
StatusOf(const std::string& path)
{
	struct stat status = {};
	stat(path.c_str(), &status);
	return status;
}

// Uses a folder in the ways that make it known.
entry_ref
Visit(const std::string& path)
{
	BEntry entry((path + "/file").c_str());
	BDirectory folder(path.c_str());
	entry_ref ref;
	folder.GetNextRef(&ref);
	node_ref node;
	folder.GetNodeRef(&node);
	EXPECT_EQ(BDirectory(&node).InitCheck(), B_OK);
	return ref;
}

} // namespace

TEST(Volume, DescribesTheRoot)
{
	fs_info info;
	const struct stat root = StatusOf("/");
	struct statvfs status;
	ASSERT_EQ(statvfs("/", &status), 0);
	ASSERT_EQ(fs_stat_dev(root.st_dev, &info), 0);
	EXPECT_EQ(info.dev, root.st_dev);
	EXPECT_EQ(info.root, root.st_ino);
	EXPECT_EQ(info.block_size, static_cast<off_t>(status.f_frsize));
	EXPECT_EQ(info.total_blocks, static_cast<off_t>(status.f_blocks));
	// Messages carry no more than these bits of a device.
	EXPECT_EQ(fs_stat_dev(static_cast<uint32>(root.st_dev), &info), 0);
	BVolume volume;
	BDirectory folder;
	EXPECT_EQ(BEntry("/usr/bin/env").GetVolume(&volume), B_OK);
	EXPECT_EQ(volume.GetRootDirectory(&folder), B_OK);
	EXPECT_TRUE(folder.IsRootDirectory());
}

TEST(Volume, UnknownOnesAreRefused)
{
	fs_info info;
	EXPECT_EQ(fs_stat_dev(static_cast<dev_t>(0xfffff), &info), B_BAD_VALUE);
	BVolume volume(static_cast<dev_t>(-1));
	BDirectory folder("/");
	EXPECT_EQ(volume.InitCheck(), B_BAD_VALUE);
	EXPECT_FALSE(
		volume.IsPersistent() || volume.IsShared() || volume.IsRemovable() || volume.IsReadOnly());
	EXPECT_EQ(volume.GetRootDirectory(&folder), B_NO_INIT);
	EXPECT_EQ(folder.InitCheck(), B_NO_INIT);
}

TEST(Volume, ComesAndGoesWithItsMount)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"a \\b", Dir()}, {"outer", Dir()}};
	std::string path = tree.Path("a \\b");
	fs_info info;
	ASSERT_EQ(fs_stat_dev(StatusOf("/").st_dev, &info), 0); // the list is read
	MemoryVolume outer(tree.Path("outer"), "size=1m");
	MemoryVolume disk(path, "size=2m");
	struct stat root = StatusOf(path);
	BVolume volume(root.st_dev);
	EXPECT_EQ(volume.InitCheck(), B_OK);
	EXPECT_EQ(volume.Device(), root.st_dev);
	EXPECT_FALSE(volume.IsPersistent() || volume.IsReadOnly());
	ASSERT_EQ(fs_stat_dev(root.st_dev, &info), 0);
	EXPECT_EQ(info.root, root.st_ino);
	EXPECT_EQ(info.block_size * info.total_blocks, 2 << 20);
	EXPECT_STREQ(info.volume_name, "a \\b");
	EXPECT_STREQ(info.fsh_name, "tmpfs");
	disk.MakeReadOnly();
	EXPECT_TRUE(BVolume(root.st_dev).IsReadOnly());
	BDirectory folder;
	ASSERT_EQ(volume.GetRootDirectory(&folder), B_OK);
	EXPECT_EQ(BPath(&folder), path.c_str());
	folder.Unset();
	BPrivate::DirectoryTable::Instance().CloseUnused(root.st_dev);
	ASSERT_TRUE(disk.Unmount());
	EXPECT_EQ(fs_stat_dev(root.st_dev, &info), B_BAD_VALUE);
	EXPECT_EQ(volume.GetRootDirectory(&folder), B_BAD_VALUE);
}

TEST(Folder, IsWhereItWasReachedLast)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"disk/a", Dir()}, {"again", Dir()}};
	BDirectory held(tree.Path("disk/a").c_str());
	ASSERT_EQ(
		mount(tree.Path("disk").c_str(), tree.Path("again").c_str(), "", MS_BIND, nullptr), 0);
	for (const char* path : {"again/a", "disk/a"}) {
		BDirectory folder(tree.Path(path).c_str());
		EXPECT_EQ(BPath(&folder), tree.Path(path).c_str());
	}
	EXPECT_EQ(BPath(&held), tree.Path("disk/a").c_str());
	umount2(tree.Path("again").c_str(), MNT_DETACH);
}

TEST(Unmounting, IsHinderedByNothingUnused)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"disk", Dir()}};
	struct {
		std::string path;
		bool isForGuests;
	} cases[] = {{"/mnt", true}, {tree.Path("disk"), false}};
	for (const auto& test : cases) {
		SCOPED_TRACE(test.path);
		MemoryVolume disk(test.path);
		mkdir((test.path + "/a").c_str(), 0755);
		mkdir((test.path + "/a/b").c_str(), 0755);
		close(open((test.path + "/a/b/file").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
		entry_ref ref = Visit(test.path + "/a/b");
		{
			// Held handles follow the folder, and what is remembered of it is where it went.
			BEntry held(&ref);
			BEntry outer((test.path + "/a").c_str());
			EXPECT_EQ(outer.Rename("renamed"), B_OK);
			EXPECT_FALSE(disk.Unmount());
		}
		BEntry again(&ref);
		EXPECT_TRUE(again.Exists());
		EXPECT_EQ(BPath(&again), (test.path + "/renamed/b/file").c_str());
		again.Unset();
		if (!test.isForGuests)
			BPrivate::DirectoryTable::Instance().CloseUnused(StatusOf(test.path).st_dev);
		EXPECT_TRUE(disk.Unmount());
		EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	}
}
