// SPDX-License-Identifier: MIT

// Entries that come into the trash, leave it and move inside: each has its record, and no record
// stays behind. Beside the desktop's own tool, both ways.

#include <storage/Trash.h>

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "tests/support/Denied.h"
#include "tests/support/LongRun.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/Processes.h"
#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

// A user of his own with an empty trash.
class User {
public:
	User() :
		fData("XDG_DATA_HOME", tree.Path("data").c_str()), fHome("HOME", tree.Path("home").c_str())
	{
		BPath path;
		EXPECT_EQ(find_directory(B_TRASH_DIRECTORY, &path), B_OK);
		EXPECT_EQ(trash.SetTo(path.Path()), B_OK);
	}

	std::vector<std::string> Files() const { return tree.List("data/Trash/files"); }

	// Without their suffixes.
	std::vector<std::string> Records() const
	{
		std::vector<std::string> names;
		for (const std::string& file : tree.List("data/Trash/info")) {
			size_t end = file.rfind(".trashinfo");
			EXPECT_NE(end, file.npos) << file;
			names.push_back(file.substr(0, end));
		}
		return Names(std::move(names));
	}

	std::string Record(const std::string& name) const
	{
		return tree.Read("data/Trash/info/" + name + ".trashinfo");
	}

	BEntry Entry(const std::string& path) const { return BEntry(tree.Path(path).c_str()); }
	BEntry Trashed(const std::string& name) const { return Entry("data/Trash/files/" + name); }

	TempTree tree{{"home", Dir()}, {"data", Dir()}};
	BDirectory trash;

private:
	Variable fData;
	Variable fHome;
};

std::string
PathLine(const std::string& path)
{
	return "\nPath=" + path + "\n";
}

bool
Has(const std::string& text, const std::string& part)
{
	return text.find(part) != text.npos;
}

} // namespace

TEST(Trash, RecordsSpellPathsAsTheStandardSays)
{
	Variable zone("TZ", "UTC");
	tzset();
	EXPECT_EQ(BPrivate::TrashRecord("/home/a b\n\xc3\xa4%~", 0),
		"[Trash Info]\nPath=/home/a%20b%0A%C3%A4%25~\nDeletionDate=1970-01-01T00:00:00\n");
}

TEST(Trash, WhatComesHasARecordAndWhatGoesHasNone)
{
	for (Denial denial : {Denial::kNothing, Denial::kExclusiveRename, Denial::kAndHardLinks}) {
		std::thread([denial] {
			Deny(denial);
			User user;
			user.tree.Add("home/a", Text("one"));
			user.tree.Add("home/full folder/below", Text("two"));
			user.tree.Add("home/link", Link("nowhere"));
			for (const char* name : {"a", "full folder", "link"}) {
				BEntry entry = user.Entry(std::string("home/") + name);
				EXPECT_EQ(entry.MoveTo(&user.trash), B_OK) << name;
			}
			EXPECT_EQ(user.Files(), Names({"a", "full folder", "link"}));
			EXPECT_EQ(user.Records(), user.Files());
			EXPECT_TRUE(Has(
				user.Record("full folder"), PathLine(user.tree.Path("home") + "/full%20folder")));

			// Below a folder of the trash nothing has a record of its own.
			BEntry below = user.Trashed("full folder/below");
			BDirectory home = user.tree.Folder("home");
			EXPECT_EQ(below.MoveTo(&home), B_OK);
			EXPECT_EQ(user.Records(), user.Files());

			BEntry inside = user.Trashed("a");
			EXPECT_EQ(inside.Rename("b"), B_OK);
			EXPECT_EQ(user.Records(), Names({"b", "full folder", "link"}));
			EXPECT_TRUE(Has(user.Record("b"), PathLine(user.tree.Path("home/a"))));
			EXPECT_EQ(inside.MoveTo(&home, "back"), B_OK);
			EXPECT_EQ(user.Trashed("link").Remove(), B_OK);
			EXPECT_EQ(user.Records(), Names({"full folder"}));
			EXPECT_EQ(user.Files(), user.Records());
			EXPECT_EQ(user.tree.Read("home/back"), "one");
		}).join();
	}
}

TEST(Trash, ARefusedMoveLeavesTheRecordsAsTheyWere)
{
	User user;
	user.tree.Add("home/a", Text("one"));
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_OK);
	std::string first = user.Record("a");
	user.tree.Add("home/other/a", Text("two"));
	user.tree.Add("data/Trash/files/stray", Text("without a record"));
	user.tree.Add("home/stray", Text("three"));
	user.tree.Add("data/Trash/files/full/below", Text());
	std::string longest(255, 'n');
	user.tree.Add("home/" + longest, Text());

	EXPECT_EQ(user.Entry("home/other/a").MoveTo(&user.trash), B_FILE_EXISTS);
	EXPECT_EQ(user.Entry("home/stray").MoveTo(&user.trash), B_FILE_EXISTS);
	EXPECT_EQ(user.Entry("home/missing").MoveTo(&user.trash), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(user.Entry("home/missing").MoveTo(&user.trash, "a", true), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(user.Entry("home/other").MoveTo(&user.trash, "full", true), B_DIRECTORY_NOT_EMPTY);
	EXPECT_EQ(user.Entry("home/" + longest).MoveTo(&user.trash), B_NAME_TOO_LONG);
	EXPECT_EQ(user.Trashed("a").Rename("a"), B_FILE_EXISTS);
	EXPECT_EQ(user.Trashed("a").Rename("a", true), B_OK);
	EXPECT_EQ(user.Trashed("full").Remove(), B_DIRECTORY_NOT_EMPTY);
	EXPECT_EQ(user.Records(), Names({"a"}));
	EXPECT_EQ(user.Record("a"), first);
	EXPECT_EQ(user.tree.Read("data/Trash/files/a"), "one");

	// Replacing makes the record that of what has come.
	EXPECT_EQ(user.Entry("home/other/a").MoveTo(&user.trash, nullptr, true), B_OK);
	EXPECT_TRUE(Has(user.Record("a"), PathLine(user.tree.Path("home/other/a"))));
	EXPECT_EQ(user.tree.Read("data/Trash/files/a"), "two");
}

TEST(Trash, ARecordWithoutItsEntryIsKeptForAMomentOnly)
{
	User user;
	user.tree.Add("home/a", Text("one"));
	// Another program that is about to move its own file of this name.
	user.tree.Add("data/Trash/info/a.trashinfo", Text("[Trash Info]\n"));
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_FILE_EXISTS);
	EXPECT_EQ(user.Record("a"), "[Trash Info]\n");
	user.tree.Remove("data/Trash/info/a.trashinfo");
	user.tree.Add("data/Trash/info/a.trashinfo", Text("[Trash Info]\n").Time(time(nullptr) - 60));
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_OK);
	EXPECT_TRUE(Has(user.Record("a"), PathLine(user.tree.Path("home/a"))));
	EXPECT_EQ(user.Records(), Names({"a"}));
}

TEST(Trash, NothingMovesWithoutARecord)
{
	if (!InMountNamespace())
		return;
	User user;
	user.tree.Add("home/a", Text("one"));
	user.tree.Add("home/other", Dir());
	{
		MemoryVolume other(user.tree.Path("home/other"));
		user.tree.Add("home/other/b", Text("two"));
		EXPECT_EQ(user.Entry("home/other/b").MoveTo(&user.trash), B_CROSS_DEVICE_LINK);
		EXPECT_EQ(user.Records(), Names({}));
		EXPECT_EQ(user.tree.Read("home/other/b"), "two");
	}
	MemoryVolume full(user.tree.Path("data/Trash/info"), "size=4k,nr_inodes=2");
	user.tree.Add("data/Trash/info/x", Text(std::string(4096, 'x')));
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_DEVICE_FULL);
	user.tree.Remove("data/Trash/info/x");
	user.tree.Add("data/Trash/info/x", Text());
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_DEVICE_FULL);
	full.MakeReadOnly();
	EXPECT_EQ(user.Entry("home/a").MoveTo(&user.trash), B_READ_ONLY_DEVICE);
	EXPECT_EQ(user.tree.List("data/Trash/info"), Names({"x"}));
	EXPECT_EQ(user.Files(), Names({}));
	EXPECT_EQ(user.tree.Read("home/a"), "one");
}

namespace {

// Throws a file of its own away again and again and takes it back from under whatever name.
bool
ThrowAndTakeBack(const User& user, const std::string& own, int rounds)
{
	BDirectory trash(user.trash);
	BDirectory home(user.tree.Path("home/" + own).c_str());
	for (int i = 0; i < rounds; i++) {
		BEntry entry(&home, "file");
		status_t status = entry.MoveTo(&trash);
		for (int n = 1; status == B_FILE_EXISTS; n++)
			status = entry.MoveTo(&trash, ("file " + std::to_string(n)).c_str());
		BPath path(&entry);
		if (status != B_OK || access(path.Path(), F_OK) != 0)
			return false;
		std::string name = path.Leaf();
		if (!Has(user.Record(name), "/" + own + "/file\n"))
			return false;
		if (entry.MoveTo(&home, "file") != B_OK)
			return false;
	}
	return user.tree.Read("home/" + own + "/file") == own;
}

} // namespace

TEST(TrashRace, EntriesKeepTheirOwnRecords)
{
	const int rounds = Rounds(300, 20000);
	User user;
	std::vector<std::function<bool()>> programs;
	for (const char* own : {"0", "1", "2"}) {
		user.tree.Add("home/" + std::string(own) + "/file", Text(own));
		programs.push_back([&user, own, rounds] { return ThrowAndTakeBack(user, own, rounds); });
	}
	EXPECT_TRUE(InProcesses(programs));
	EXPECT_EQ(user.Files(), Names({}));
	EXPECT_EQ(user.Records(), Names({}));
}

namespace {

// The output of a command that has a session bus of its own. Its messages are not for us.
std::string
RunOnBus(const User& user, const std::string& command)
{
	std::string script = user.tree.Path("script");
	FILE* file = fopen(script.c_str(), "w");
	fputs(command.c_str(), file);
	fclose(file);
	std::string line = "XDG_RUNTIME_DIR='" + user.tree.Path("run") +
		"' timeout 60 dbus-run-session -- sh '" + script + "' 2>/dev/null";
	std::string output;
	FILE* pipe = popen(line.c_str(), "r");
	char buffer[4096];
	for (size_t length; (length = fread(buffer, 1, sizeof(buffer), pipe)) > 0;)
		output.append(buffer, length);
	pclose(pipe);
	return output;
}

} // namespace

TEST(Trash, TheDesktopsOwnToolListsAndRestoresWhatWasThrownAwayHere)
{
	User user;
	user.tree.Add("run", Dir().Mode(0700));
	if (!Has(RunOnBus(user, "gio list trash:/// && echo works"), "works"))
		GTEST_SKIP() << "needs gio, gvfs and dbus-run-session";
	const std::vector<std::string> names =
		Names({"plain", "a b%20", "new\nline", "\xc3\xa4", "\xff\xfe", "#?&;", "folder"});
	for (const std::string& name : names) {
		if (name == "folder")
			user.tree.Add("home/folder/below", Text("b"));
		else
			user.tree.Add("home/" + name, Text(name));
		EXPECT_EQ(user.Entry("home/" + name).MoveTo(&user.trash), B_OK);
	}
	EXPECT_EQ(user.Records(), names);
	std::string restored = RunOnBus(user,
		"gio trash --list | wc -l\n"
		"gio list -u trash:/// | while read -r uri; do gio trash --restore \"$uri\"; done\n");
	EXPECT_GE(std::stoi(restored), 7);
	// The tool itself restores such bytes in a spelling of its own, whoever threw the file away.
	EXPECT_EQ(user.tree.List("home"),
		Names({"#?&;", "\\xc3\\xa4", "\\xff\\xfe", "a b%20", "folder", "new\\x0aline", "plain"}));
	EXPECT_EQ(user.tree.Read("home/\\xff\\xfe"), "\xff\xfe");
	EXPECT_EQ(user.tree.Read("home/folder/below"), "b");
	EXPECT_EQ(user.Records(), Names({}));
}

TEST(Trash, WhatOthersThrewAwayIsHereAndCanGo)
{
	User user;
	user.tree.Add("home/a b", Text("one"));
	if (system(("gio trash '" + user.tree.Path("home/a b") + "' 2>/dev/null").c_str()) != 0)
		GTEST_SKIP() << "needs gio";
	ASSERT_EQ(user.Files(), Names({"a b"}));
	BEntry entry = user.Trashed("a b");
	EXPECT_EQ(entry.Rename("c"), B_OK);
	EXPECT_TRUE(Has(user.Record("c"), PathLine(user.tree.Path("home") + "/a%20b")));
	EXPECT_EQ(entry.Remove(), B_OK);
	EXPECT_EQ(user.Records(), Names({}));
}
