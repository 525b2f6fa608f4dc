// SPDX-License-Identifier: MIT

#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

std::string
Find(int which, bool create = false)
{
	BPath path("/unchanged");
	status_t status = find_directory(static_cast<directory_which>(which), &path, create);
	if (status != B_OK) {
		EXPECT_EQ(path.Path(), nullptr);
		return std::to_string(status);
	}
	return path.Path();
}

std::string
Failed(status_t status)
{
	return std::to_string(status);
}

} // namespace

TEST(FindDirectory, FollowsTheUsersEnvironment)
{
	TempTree tree{{"real/.config/user-dirs.dirs",
					  Text("# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreib\\\"tisch\"\n")},
		{"home", Link("real")}, {"data", Dir()}};
	std::string home = tree.Path("home");
	std::string data = tree.Path("data");
	Variable userHome("HOME", home.c_str());
	Variable userConfig("XDG_CONFIG_HOME", nullptr);
	Variable userData("XDG_DATA_HOME", data.c_str());
	std::string real = tree.Path("real"); // what comes back has no links in it
	EXPECT_EQ(Find(B_USER_DIRECTORY), real);
	EXPECT_EQ(Find(B_USER_CONFIG_DIRECTORY), real + "/.config");
	EXPECT_EQ(Find(B_USER_BOOT_DIRECTORY), real + "/.config/autostart");
	EXPECT_EQ(Find(B_USER_LIB_DIRECTORY), real + "/.local/lib");
	EXPECT_EQ(Find(B_USER_FONTS_DIRECTORY), data + "/fonts");
	EXPECT_EQ(Find(B_TRASH_DIRECTORY), data + "/Trash/files");
	EXPECT_EQ(Find(B_DESKTOP_DIRECTORY), real + "/Schreib\"tisch");

	tree.Remove("real/.config/user-dirs.dirs");
	EXPECT_EQ(Find(B_DESKTOP_DIRECTORY), real + "/Desktop");
	Variable relative("XDG_DATA_HOME", "not/absolute");
	EXPECT_EQ(Find(B_USER_ADDONS_DIRECTORY), real + "/.local/share");
}

TEST(FindDirectory, MakesFoldersOnlyWhenAsked)
{
	TempTree tree{{"home", Dir()}};
	std::string home = tree.Path("home");
	Variable userHome("HOME", home.c_str());
	Variable userData("XDG_DATA_HOME", nullptr);
	Variable userConfig("XDG_CONFIG_HOME", nullptr);
	Find(B_USER_ADDONS_DIRECTORY);
	EXPECT_EQ(tree.List("home"), Names({}));
	// But for the trash, which callers expect to be there.
	EXPECT_EQ(Find(B_TRASH_DIRECTORY), home + "/.local/share/Trash/files");
	EXPECT_EQ(tree.List("home/.local/share/Trash"), Names({"files", "info"}));
	struct stat status;
	ASSERT_EQ(stat((home + "/.local/share/Trash/info").c_str(), &status), 0);
	EXPECT_EQ(status.st_mode & 0777, 0700U);
	EXPECT_EQ(Find(B_TRASH_DIRECTORY, true), home + "/.local/share/Trash/files");

	tree.Add("home/.config", Text());
	EXPECT_EQ(Find(B_USER_CONFIG_DIRECTORY, true), Failed(B_NOT_A_DIRECTORY));
	EXPECT_EQ(Find(B_USER_BOOT_DIRECTORY, true), Failed(B_NOT_A_DIRECTORY));
}

TEST(FindDirectory, KnowsTheSystemsFolders)
{
	EXPECT_EQ(Find(B_BEOS_DIRECTORY), "/usr");
	EXPECT_EQ(Find(1013), Failed(B_ENTRY_NOT_FOUND));
	for (int unknown : {-1, 2, 999, 1015, 2999, 3012, 4003})
		EXPECT_EQ(Find(unknown), Failed(B_BAD_VALUE)) << unknown;
}
