// SPDX-License-Identifier: MIT

// The contents pane on real folders, also on those that are hard to show.

#include "tests/panes/ItemListWindow.h"

#include "app/Messages.h"

#include "tests/support/Denied.h"
#include "tests/support/LongRun.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <fstream>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <thread>
#include <unistd.h>

TEST(ItemView, OpensSortedByName)
{
	TempTree tree{{"b", Text()}, {"C", Text()}, {"a", Dir()}, {"A", Text()}};
	ItemListWindow it(tree);
	// Equal but for case: in byte order, as they were read.
	EXPECT_EQ(it.Names(), (std::vector<std::string>{"A", "a", "b", "C"}));
	it.Do([&] { it.list->ReverseSortMode(kNameColumn); });
	EXPECT_EQ(it.Names(), (std::vector<std::string>{"C", "b", "A", "a"}));
}

TEST(ItemView, ReadsAFolderAgainOnlyWhenForced)
{
	TempTree tree{{"one/1", Text()}, {"two/2", Text()}};
	ItemListWindow it(tree);
	entry_ref one = tree.Ref("one"), missing = tree.Ref("one");
	missing.set_name("missing");
	it.Do([&] { it.pane->SetFolder(&one, false); });
	EXPECT_EQ(it.Names(), std::vector<std::string>{"1"});
	it.Do([&] { // and with the window locked: it does not hear yet of what is new
		tree.Add("one/more", Text());
		it.pane->SetFolder(&one, false);
		EXPECT_EQ(it.list->CountItems(), 1);
		it.pane->Refresh();
		EXPECT_EQ(it.list->CountItems(), 2);
	});
	EXPECT_EQ(it.Names(), (std::vector<std::string>{"1", "more"}));
	// What cannot be opened leaves the rows as they are.
	it.Do([&] { it.pane->SetFolder(&missing, false); });
	EXPECT_EQ(it.Names(), (std::vector<std::string>{"1", "more"}));
}

// Neither waits for somebody at the other end of a pipe nor goes round in a circle.
TEST(ItemView, ShowsEntriesAndFoldersThatCannotBeRead)
{
	TempTree tree{{"broken", Link("none")}, {"loop", Link("loop")}, {"self", Link(".")},
		{"secret", Text("x").Mode(0)}, {"\xff\n", Text()}, {std::string(255, 'n'), Text()},
		{"closed/inside", Text()}, {"no search/inside", Text()}, {"no list/inside", Text()}};
	const int folder = open(tree.Path().c_str(), O_PATH | O_CLOEXEC);
	EXPECT_EQ(mknodat(folder, "pipe", S_IFIFO | 0600, 0), 0);
	EXPECT_EQ(mknodat(folder, "socket", S_IFSOCK | 0600, 0), 0);
	mknodat(folder, "null", S_IFCHR | 0600, makedev(1, 3)); // root only
	close(folder);
	tree.SetMode(".", 0755);
	tree.SetMode("closed", 0);
	tree.SetMode("no search", 0444);
	tree.SetMode("no list", 0111);
	std::optional<AsNobody> nobody(std::in_place);
	ItemListWindow it(tree);
	nobody.reset(); // but the window's thread remains nobody's
	auto send = [&](BMessage message) {
		it.window->PostMessage(&message, it.pane);
		it.window.Settle();
		return Names(it.Names());
	};
	auto show = [&](const char* name) {
		const entry_ref ref = tree.Ref(name);
		BMessage message(kMSG_SetFolder);
		message.AddRef(kName_Folder, &ref);
		return send(message);
	};
	EXPECT_EQ(Names(it.Names()), tree.List());
	EXPECT_EQ(show("loop"), tree.List()); // the rows stay
	EXPECT_EQ(show("closed"), Names({}));
	EXPECT_EQ(show("no list"), Names({}));
	EXPECT_EQ(show("no search"), Names({"inside"}));
	EXPECT_EQ(it.list->RowAt(0)->GetINode(), 0);
	tree.SetMode("no search", 0755);
	send(BMessage(kMSG_Refresh));
	EXPECT_NE(it.list->RowAt(0)->GetINode(), 0);
	EXPECT_EQ(show("self"), tree.List());
	tree.Add("self/new", Text());
	EXPECT_TRUE(WaitUntil([&] { return Names(it.Names()) == tree.List(); }));
	for (const char* name : {"closed", "no search", "no list"})
		tree.SetMode(name, 0700);
}

TEST(ItemView, ShowsFoldersThatCannotBeFollowed)
{
	if (!InMountNamespace()) // limits are its own, too
		return;
	auto allow = [](const std::string& what, int count) {
		std::ofstream file("/proc/sys/user/max_inotify_" + what);
		file << count << std::flush;
		EXPECT_TRUE(file.good());
	};
	TempTree tree{{"shown/a", Text()}};
	testing::internal::CaptureStderr();
	allow("instances", 0);
	ItemListWindow it(tree);
	EXPECT_EQ(it.Names(), Names({"shown"}));
	allow("instances", 10);
	allow("watches", 0);
	entry_ref shown = tree.Ref("shown");
	it.Do([&] { it.pane->SetFolder(&shown, false); });
	tree.Add("shown/b", Text());
	it.Do([&] { it.pane->Refresh(); });
	EXPECT_EQ(it.Names(), Names({"a", "b"}));
	const std::string warnings = testing::internal::GetCapturedStderr();
	size_t count = 0, at = 0;
	for (const std::string warning = "Warning: Cannot initate node watcher: B_NO_MEMORY";
		 (at = warnings.find(warning, at)) != std::string::npos; at++)
		count++;
	EXPECT_EQ(count, 3u) << warnings;
	allow("watches", 10);
	it.Do([&] { it.pane->Refresh(); });
	tree.Add("shown/c", Text());
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == Names({"a", "b", "c"}); }));
}

TEST(ItemView, AVolumeMayGoWhileItIsShown)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"volume", Dir()}};
	std::optional<MemoryVolume> volume(std::in_place, tree.Path("volume"));
	tree.Add("volume/there", Text());
	ItemListWindow it(tree);
	entry_ref ref = tree.Ref("volume");
	it.Do([&] { it.pane->SetFolder(&ref, false); });
	volume.reset();                   // out of the tree, as what is pulled out
	tree.Add("volume/below", Text()); // in the folder that it covered
	EXPECT_EQ(it.Names(), Names({"there"}));
	it.Do([&] { it.pane->Refresh(); });
	EXPECT_EQ(it.Names(), Names({"below"}));
	tree.Add("volume/more", Text());
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == Names({"below", "more"}); }));
}

TEST(ItemView, ShowsFoldersWithoutEntriesAndWindowsWithoutRoom)
{
	TempTree tree{{"full/a", Text()}, {"full/b", Text()}};
	ItemListWindow it(tree);
	entry_ref empty = tree.Ref("full"), full = empty;
	tree.Add("empty", Dir());
	empty = tree.Ref("empty");
	it.Do([&] { it.pane->SetFolder(&empty, false); });
	EXPECT_TRUE(it.Names().empty());
	for (const int32 size : {60, 10, 1, 400}) {
		it.window.User().Resize(size, size);
		it.window.Settle();
		it.Do([&] { it.pane->SetFolder(size == 10 ? &empty : &full, true); });
	}
	EXPECT_EQ(it.Names().size(), 2u);
	EXPECT_GT(CountPixels(it.window->Snapshot(), it.Cell(1, kNameColumn), 0xffffffff, false), 3);
}

TEST(ItemView, SelectsAllAndForgetsTheSelectionWithItsFolder)
{
	TempTree tree{{"a", Dir()}, {"b", Text()}, {"c", Text()}};
	ItemListWindow it(tree);
	BMessage selectAll(B_SELECT_ALL);
	it.window->PostMessage(&selectAll, it.pane);
	it.window.Settle();
	EXPECT_TRUE(it.list->IsItemSelected(0) && it.list->IsItemSelected(2));
	entry_ref folder = tree.Ref("a");
	it.Do([&] { it.pane->SetFolder(&folder, false); });
	EXPECT_LT(it.list->CurrentSelection(), 0);
}

// Several threads read such a folder: every entry must have one row, with its own name.
TEST(ItemView, ShowsEveryEntryOfAHugeFolder)
{
	const int count = Rounds(100000, 1000000);
	TempTree tree{{"huge", Dir()}};
	const std::string path = tree.Path("huge");
	const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	std::string file;
	for (int i = 0; i < count; i++) {
		const std::string name = std::to_string(i * 7919L % count) + (i % 3 == 0 ? ".txt" : ".png");
		// Mostly names of one file, which are made faster; it cannot have very many.
		if (i % 20000 == 0) {
			file = name;
			close(openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
		} else {
			ASSERT_EQ(linkat(folder, file.c_str(), folder, name.c_str(), 0), 0);
		}
	}
	close(folder);
	ItemListWindow it(tree);
	entry_ref huge = tree.Ref("huge");
	it.Do([&] { it.pane->SetFolder(&huge, false); });
	ASSERT_EQ(it.list->CountItems(), count);
	std::set<std::string> names;
	for (int32 i = 0; i < count; i++) {
		const ItemListItem* row = it.list->RowAt(i);
		names.insert(row->Name());
		ASSERT_NE(row->GetINode(), 0) << row->Name();
		if (i > 0) {
			ASSERT_EQ(ItemListItem::CompareFiles(it.list->RowAt(i - 1), row, kNameColumn), -1);
		}
	}
	EXPECT_EQ(names.size(), static_cast<size_t>(count));
}

// Entries come and go while the folder is read, over and over.
TEST(ItemView, EntriesMayVanishWhileTheyAreRead)
{
	TempTree tree;
	for (int i = 0; i < 600; i++)
		tree.Add("stays " + std::to_string(i), Text());
	std::atomic<bool> done = false;
	std::thread storm([&] {
		while (!done) {
			for (int i = 0; i < 300; i++)
				tree.Add("goes " + std::to_string(i), i % 2 == 0 ? Text() : Dir());
			for (int i = 0; i < 300; i++)
				tree.Remove("goes " + std::to_string(i));
		}
	});
	{
		ItemListWindow it(tree);
		for (int i = 0; i < Rounds(20, 500); i++) {
			it.Do([&] { it.pane->Refresh(); });
			EXPECT_GE(it.list->CountItems(), 600);
		}
	}
	done = true;
	storm.join();
}
