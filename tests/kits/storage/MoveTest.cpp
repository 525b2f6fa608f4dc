// SPDX-License-Identifier: MIT

// Rename, MoveTo and Remove: what they answer and what the disk holds afterwards, with the
// kernel's own exclusive rename and without it.

#include <storage/Entry.h>
#include <storage/Path.h>

#include "tests/support/Denied.h"
#include "tests/support/LongRun.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/Processes.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sys/stat.h>
#include <thread>

namespace {

enum Kind { kNone, kFile, kFolder, kFullFolder, kLink, kBrokenLink, kHardLink };
constexpr Kind kKinds[] = {kNone, kFile, kFolder, kFullFolder, kLink, kBrokenLink};
constexpr Denial kDenials[] = {Denial::kNothing, Denial::kExclusiveRename, Denial::kAndHardLinks};

bool
IsFolder(Kind kind)
{
	return kind == kFolder || kind == kFullFolder;
}

void
Make(TempTree& tree, const std::string& path, Kind kind, const std::string& mark)
{
	if (kind == kFile)
		tree.Add(path, Text(mark));
	else if (kind == kFolder)
		tree.Add(path, Dir());
	else if (kind == kFullFolder)
		tree.Add(path + "/" + mark, Text());
	else if (kind == kLink)
		tree.Add(path, Link(tree.Path("other/" + mark)));
	else if (kind == kBrokenLink)
		tree.Add(path, Link("none/" + mark));
	else if (kind == kHardLink &&
		link(tree.Path("to/target").c_str(), tree.Path(path).c_str()) != 0)
		ADD_FAILURE() << path;
}

// All that matters about what is at a path.
std::string
Describe(const TempTree& tree, const std::string& path)
{
	struct stat status;
	if (lstat(tree.Path(path).c_str(), &status) != 0)
		return "nothing";
	std::string text = std::to_string(status.st_ino) + " ";
	if (!S_ISDIR(status.st_mode))
		return text + (S_ISLNK(status.st_mode) ? "link " : "file ") + tree.Read(path);
	for (const std::string& name : tree.List(path))
		text.append(name).append(1, '/');
	return text;
}

status_t
Expected(Kind source, Kind target, bool clobber)
{
	if (source == kNone)
		return B_ENTRY_NOT_FOUND;
	if (target == kNone)
		return B_OK;
	if (!clobber)
		return B_FILE_EXISTS;
	if (IsFolder(source) != IsFolder(target))
		return IsFolder(source) ? B_NOT_A_DIRECTORY : B_IS_A_DIRECTORY;
	return target == kFullFolder ? B_DIRECTORY_NOT_EMPTY : B_OK;
}

std::string
PathOf(const BEntry& entry)
{
	BPath path(&entry);
	return path.InitCheck() == B_OK ? path.Path() : "";
}

typedef std::function<status_t(TempTree& tree, BEntry& entry, bool clobber)> Move;

// One move from `from` to "to/target" in all combinations.
void
Sweep(const std::string& from, const Move& move)
{
	for (Kind source : {kNone, kFile, kFolder, kFullFolder, kLink, kBrokenLink, kHardLink}) {
		for (Kind target : kKinds) {
			if (source == kHardLink && target != kFile)
				continue;
			for (bool clobber : {false, true}) {
				SCOPED_TRACE(testing::Message() << from << ": " << source << " to " << target
												<< (clobber ? ", clobbering" : ""));
				TempTree tree{{"other/source", Text()}, {"other/target", Text()}, {"from", Dir()},
					{"to", Dir()}};
				Make(tree, "to/target", target, "target");
				Make(tree, from, source, "source");
				std::string sourceBefore = Describe(tree, from);
				std::string targetBefore = Describe(tree, "to/target");
				BEntry entry(tree.Path(from).c_str());
				status_t status = move(tree, entry, clobber);
				EXPECT_EQ(status, Expected(source, target, clobber));
				bool isMoved = status == B_OK;
				EXPECT_EQ(Describe(tree, from), isMoved ? "nothing" : sourceBefore);
				EXPECT_EQ(Describe(tree, "to/target"), isMoved ? sourceBefore : targetBefore);
				EXPECT_EQ(PathOf(entry), tree.Path(isMoved ? "to/target" : from));
				EXPECT_EQ(tree.List("from").size() + tree.List("to").size(),
					(source != kNone) + (target != kNone) - (isMoved && target != kNone));
				EXPECT_EQ(tree.List("other").size(), 2U);
			}
		}
	}
}

// What a thread is denied, it is denied for good.
void
WithDenials(const std::function<void()>& test)
{
	for (Denial denial : kDenials) {
		SCOPED_TRACE(static_cast<int>(denial));
		std::thread([&] {
			Deny(denial);
			test();
		}).join();
	}
}

} // namespace

TEST(Move, AnswersAndDiskAgreeInAllCombinations)
{
	WithDenials([] {
		Sweep("to/source",
			[](TempTree&, BEntry& entry, bool clobber) { return entry.Rename("target", clobber); });
		Sweep("from/source", [](TempTree& tree, BEntry& entry, bool clobber) {
			BDirectory folder = tree.Folder("to");
			return entry.MoveTo(&folder, "target", clobber);
		});
		Sweep("from/target", [](TempTree& tree, BEntry& entry, bool clobber) {
			BDirectory folder = tree.Folder("to");
			return entry.MoveTo(&folder, nullptr, clobber);
		});
		Sweep("from/source", [](TempTree& tree, BEntry& entry, bool clobber) {
			return entry.Rename(tree.Path("from/../to//target").c_str(), clobber);
		});
	});
}

TEST(Move, OntoItselfChangesNothing)
{
	WithDenials([] {
		TempTree tree{{"file", Text("1")}, {"folder/below", Dir()}, {"link", Link("file")}};
		link(tree.Path("link").c_str(), tree.Path("LINK").c_str());
		std::vector<std::string> before = tree.List();
		for (const char* name : {"file", "folder", "link"}) {
			BEntry entry(tree.Path(name).c_str());
			std::string description = Describe(tree, name);
			EXPECT_EQ(entry.Rename(name), B_FILE_EXISTS);
			EXPECT_EQ(entry.Rename(name, true), B_OK);
			EXPECT_EQ(Describe(tree, name), description);
		}
		// Hard links whose names differ in case alone are still two entries here.
		BEntry link(tree.Path("link").c_str());
		EXPECT_EQ(link.Rename("LINK"), B_FILE_EXISTS);
		EXPECT_EQ(tree.List(), before);

		BEntry folder(tree.Path("folder").c_str());
		for (bool clobber : {false, true}) {
			EXPECT_EQ(folder.Rename("folder/new", clobber), B_BAD_VALUE);
			EXPECT_EQ(folder.Rename("folder/below/new", clobber), B_BAD_VALUE);
			EXPECT_EQ(PathOf(folder), tree.Path("folder"));
		}
		BEntry below(tree.Path("folder/below").c_str());
		EXPECT_EQ(below.Rename("..", true), B_DIRECTORY_NOT_EMPTY);
		EXPECT_EQ(tree.List("folder"), Names({"below"}));
	});
}

TEST(Move, RefusesWhatIsNoPlace)
{
	TempTree tree{{"file", Text("1")}, {"gone", Dir()}};
	BEntry entry(tree.Path("file").c_str());
	BEntry unset;
	BDirectory top = tree.Folder();
	BDirectory gone = tree.Folder("gone");
	BDirectory missing = tree.Folder("none");
	tree.Remove("gone");
	EXPECT_EQ(unset.MoveTo(&top), B_NO_INIT);
	EXPECT_EQ(unset.Remove(), B_NO_INIT);
	EXPECT_EQ(entry.Rename(nullptr), B_BAD_VALUE);
	EXPECT_EQ(entry.MoveTo(&gone), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.MoveTo(&missing), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.Rename(""), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.Rename("none/x"), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.Rename("file/x"), B_NOT_A_DIRECTORY);
	EXPECT_EQ(entry.Rename(std::string(256, 'n').c_str()), B_NAME_TOO_LONG);
	EXPECT_EQ(PathOf(entry), tree.Path("file"));

	std::string longest(255, 'n');
	EXPECT_EQ(entry.Rename(longest.c_str()), B_OK);
	EXPECT_EQ(PathOf(entry), tree.Path(longest));
	EXPECT_EQ(tree.List(), Names({longest}));
	tree.Remove(longest);
	EXPECT_EQ(entry.Rename("x"), B_ENTRY_NOT_FOUND);
}

TEST(Move, NeedsTheRightToChangeBothFolders)
{
	WithDenials([] {
		TempTree tree{{"closed/file", Text("1")}, {"open/file", Text("2")}};
		tree.SetMode(".", 0755);
		tree.SetMode("open", 0777);
		tree.SetMode("closed", 0555);
		BDirectory closed = tree.Folder("closed");
		BDirectory open = tree.Folder("open");
		BEntry inClosed(&closed, "file");
		BEntry inOpen(&open, "file");
		{
			AsNobody nobody;
			for (bool clobber : {false, true}) {
				EXPECT_EQ(inClosed.Rename("new", clobber), B_PERMISSION_DENIED);
				EXPECT_EQ(inClosed.MoveTo(&open, "new", clobber), B_PERMISSION_DENIED);
				EXPECT_EQ(inOpen.MoveTo(&closed, "new", clobber), B_PERMISSION_DENIED);
				EXPECT_EQ(inClosed.Remove(), B_PERMISSION_DENIED);
			}
		}
		EXPECT_EQ(tree.List("closed"), Names({"file"}));
		EXPECT_EQ(tree.List("open"), Names({"file"}));
	});
}

TEST(Move, StaysOnItsVolume)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"file", Text("1")}, {"folder", Dir()}, {"other", Dir()}, {"fixed", Dir()}};
	MemoryVolume other(tree.Path("other"));
	MemoryVolume fixed(tree.Path("fixed"));
	for (const char* name : {"other/taken", "fixed/taken"})
		tree.Add(name, Text("2"));
	tree.Add("fixed/folder", Dir());
	fixed.MakeReadOnly();
	for (const char* path : {"file", "folder"}) {
		BEntry entry(tree.Path(path).c_str());
		for (const char* target : {"other/new", "other/taken", "fixed/new"}) {
			for (bool clobber : {false, true})
				EXPECT_EQ(entry.Rename(target, clobber), B_CROSS_DEVICE_LINK) << target;
		}
		EXPECT_EQ(PathOf(entry), tree.Path(path));
	}
	for (const char* path : {"fixed/taken", "fixed/folder"}) {
		BEntry entry(tree.Path(path).c_str());
		EXPECT_EQ(entry.Rename("new"), B_READ_ONLY_DEVICE);
		EXPECT_EQ(entry.Rename("new", true), B_READ_ONLY_DEVICE);
		EXPECT_EQ(entry.Remove(), B_READ_ONLY_DEVICE);
	}
	BEntry point(tree.Path("other").c_str());
	EXPECT_EQ(point.Rename("new"), B_BUSY);
	EXPECT_EQ(point.Remove(), B_BUSY);
	EXPECT_EQ(tree.List(), Names({"file", "fixed", "folder", "other"}));
	EXPECT_EQ(tree.Read("file") + tree.Read("other/taken") + tree.Read("fixed/taken"), "122");
}

TEST(Remove, TakesTheEntryItselfAndNoFullFolder)
{
	for (Kind kind : kKinds) {
		SCOPED_TRACE(kind);
		TempTree tree{{"other/mark", Text()}};
		Make(tree, "entry", kind, "mark");
		std::string before = Describe(tree, "entry");
		BEntry entry(tree.Path("entry").c_str());
		status_t status = entry.Remove();
		EXPECT_EQ(status,
			kind == kNone             ? B_ENTRY_NOT_FOUND
				: kind == kFullFolder ? B_DIRECTORY_NOT_EMPTY
									  : B_OK);
		EXPECT_EQ(Describe(tree, "entry"), status == B_OK ? "nothing" : before);
		EXPECT_EQ(tree.List("other"), Names({"mark"}));
		EXPECT_EQ(entry.InitCheck(), B_OK);
		EXPECT_FALSE(entry.Exists() && status == B_OK);
	}
}

TEST(MoveRace, ForOneNameLosesNoFile)
{
	const int rounds = Rounds(3000, 100000);
	for (Denial denial : kDenials) {
		SCOPED_TRACE(static_cast<int>(denial));
		TempTree tree{{"0", Text("0")}, {"1", Text("1")}};
		auto program = [&](const char* own) {
			Deny(denial);
			BEntry entry(tree.Path(own).c_str());
			for (int won = 0, lost = 0; won < rounds && lost < 1000 * rounds;) {
				status_t status = entry.Rename("goal");
				if (status == B_OK) {
					if (tree.Read("goal") != own || entry.Rename(own) != B_OK)
						return false;
					won++;
				} else if (status == B_FILE_EXISTS) {
					lost++;
				} else {
					return false;
				}
			}
			return true;
		};
		EXPECT_TRUE(InProcesses({[&] { return program("0"); }, [&] { return program("1"); }}));
		EXPECT_EQ(tree.List(), Names({"0", "1"}));
		EXPECT_EQ(tree.Read("0") + tree.Read("1"), "01");
	}
}

TEST(MoveRace, ForOneFileLosesNoFile)
{
	const int rounds = Rounds(3000, 100000);
	for (Denial denial : kDenials) {
		SCOPED_TRACE(static_cast<int>(denial));
		TempTree tree{{"file", Text("content")}};
		auto program = [&](const char* own) {
			Deny(denial);
			BEntry entry(tree.Path("file").c_str());
			for (int i = 0; i < rounds; i++) {
				status_t status = entry.Rename(own);
				if (status == B_OK)
					status = entry.Rename("file");
				if (status != B_OK && status != B_ENTRY_NOT_FOUND && status != B_FILE_EXISTS)
					return false;
				entry.SetTo(tree.Path("file").c_str());
			}
			return true;
		};
		EXPECT_TRUE(InProcesses({[&] { return program("0"); }, [&] { return program("1"); }}));
		// Without the kernel's help one program can take the other's empty reservation away.
		std::vector<std::string> left = tree.List();
		EXPECT_TRUE(std::any_of(left.begin(), left.end(),
			[&](const std::string& name) { return tree.Read(name) == "content"; }));
		if (denial == Denial::kNothing) {
			EXPECT_EQ(left, Names({"file"}));
		}
	}
}
