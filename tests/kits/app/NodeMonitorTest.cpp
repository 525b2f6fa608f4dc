// SPDX-License-Identifier: MIT

// The node monitor's messages, as a handler in a looper gets them.

#include <app/AppDefs.h>
#include <app/Handler.h>
#include <app/Looper.h>
#include <app/Message.h>
#include <app/Messenger.h>
#include <storage/NodeMonitor.h>
#include <storage/Statable.h>

#include "tests/support/Denied.h"
#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <random>
#include <set>
#include <unistd.h>

namespace {

constexpr uint32 kList = 'list'; // lists the folder in the looper's thread

// Writes down what it is told, and lists the folder when asked to.
class Watcher : public BHandler {
public:
	explicit Watcher(const std::string& folder) : fFolder(folder) {}

	void MessageReceived(BMessage* message) override
	{
		std::lock_guard lock(fLock);
		if (message->what == kList) {
			fTold.clear();
			fListed.clear();
			BDirectory folder(fFolder.c_str());
			entry_ref ref;
			while (folder.GetNextRef(&ref) == B_OK)
				fListed.push_back(ref.name);
			fLists++;
		} else if (message->what == B_NODE_MONITOR)
			fTold.push_back(Text(*message));
	}

	std::vector<std::string> Told() const
	{
		std::lock_guard lock(fLock);
		return fTold;
	}
	std::vector<std::string> Listed() const
	{
		std::lock_guard lock(fLock);
		return fListed;
	}
	int Lists() const { return fLists; }
	void Forget()
	{
		std::lock_guard lock(fLock);
		fTold.clear();
	}
	// What somebody knows of the folder who knew these names before the notices.
	std::set<std::string> Follow(std::set<std::string> names) const
	{
		for (const std::string& told : Told()) {
			const size_t move = told.find('>');
			names.erase(told[0] == '-' ? told.substr(1) : told.substr(0, move));
			if (told[0] != '-')
				names.insert(told.substr(move == std::string::npos ? 1 : move + 1));
		}
		return names;
	}

private:
	static std::string Text(const BMessage& message)
	{
		int32 opcode = 0;
		const char* name;
		const char* fromName;
		int64 from = 0, to = 0;
		message.FindInt32("opcode", &opcode);
		if (message.FindString("name", &name) != B_OK)
			name = ""; // the folder itself
		if (message.FindString("from name", &fromName) != B_OK)
			fromName = "";
		message.FindInt64("from directory", &from);
		message.FindInt64("to directory", &to);
		switch (opcode) {
			case B_ENTRY_CREATED:
				return std::string("+") + name;
			case B_ENTRY_REMOVED:
				return std::string("-") + name;
			case B_ENTRY_MOVED:
				return std::string(fromName) + (from == to ? ">" : ">>") + name;
			case B_STAT_CHANGED:
				return std::string("s") + name;
			case B_ATTR_CHANGED:
				return std::string("a") + name;
		}
		return "opcode " + std::to_string(opcode);
	}

	const std::string fFolder;
	mutable std::mutex fLock;
	std::vector<std::string> fTold;
	std::vector<std::string> fListed;
	std::atomic<int> fLists = 0;
};

class NodeMonitorTest : public testing::Test {
protected:
	NodeMonitorTest()
	{
		looper->AddHandler(watcher);
		looper->Run();
	}
	~NodeMonitorTest() override
	{
		looper->Lock();
		looper->Quit();
		delete watcher;
	}

	node_ref NodeOf(const std::string& path) const
	{
		node_ref node;
		tree.Folder(path).GetNodeRef(&node);
		return node;
	}
	status_t Watch(const std::string& path, uint32 flags)
	{
		node_ref node = NodeOf(path);
		return watch_node(&node, flags, watcher);
	}
	// All of `told` and nothing else, in that order.
	void Expect(const std::vector<std::string>& told)
	{
		if (!WaitUntil([&] { return watcher->Told().size() >= told.size(); })) {
			EXPECT_EQ(watcher->Told(), told);
			return;
		}
		tree.Add("shown/zz-last", Text());
		std::vector<std::string> all = told;
		all.push_back("+zz-last");
		EXPECT_TRUE(WaitUntil([&] { return watcher->Told().size() >= all.size(); }));
		EXPECT_EQ(watcher->Told(), all);
	}

	TempTree tree{{"shown/a", Text("one")}, {"shown/b", Text("two")}, {"other", Dir()}};
	BLooper* looper = new BLooper("watching");
	Watcher* watcher = new Watcher(tree.Path("shown"));
};

} // namespace

TEST_F(NodeMonitorTest, EntriesThatComeGoAndMoveAreTold)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	tree.Add("shown/c", Text());
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 1; }));
	tree.Rename("shown/c", "shown/d");
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 2; }));
	tree.Rename("shown/d", "other/d"); // not watched
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 3; }));
	tree.Rename("other/d", "shown/e");
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 4; }));
	tree.Remove("shown/e");
	Expect({"+c", "c>d", "-d", "+e", "-e"});
}

TEST_F(NodeMonitorTest, WhatIsReplacedGoesFirst)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	tree.Rename("shown/a", "shown/b");
	Expect({"-b", "a>b"});
}

TEST_F(NodeMonitorTest, NamesAreFreeBeforeOthersTakeThem)
{
	tree.Add("shown/c", Text());
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	looper->PostMessage(kList, watcher);
	ASSERT_TRUE(WaitUntil([&] { return watcher->Lists() == 1; }));
	looper->Lock();
	tree.Rename("shown/c", "shown/d");
	tree.Rename("shown/b", "shown/c");
	tree.Rename("shown/a", "shown/b");
	looper->Unlock();
	Expect({"c>d", "b>c", "a>b"});
}

TEST_F(NodeMonitorTest, AMoveBetweenTwoWatchedFoldersIsOneMessage)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	ASSERT_EQ(Watch("other", B_WATCH_DIRECTORY), B_OK);
	tree.Rename("shown/a", "other/c");
	Expect({"a>>c"});
}

TEST_F(NodeMonitorTest, WhatTheLooperListsIsNotToldAgain)
{
	for (int round = 0; round < 20; round++) {
		ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
		const int lists = watcher->Lists();
		std::vector<std::string> names{"a", "b"};
		for (int i = 0; i < 30; i++) {
			names.push_back("n" + std::to_string(i));
			tree.Add("shown/" + names.back(), Text());
			if (i == round)
				looper->PostMessage(kList, watcher);
		}
		ASSERT_TRUE(WaitUntil([&] { return watcher->Lists() > lists; }));
		auto known = [&] {
			std::vector<std::string> all = watcher->Listed();
			for (const std::string& told : watcher->Told())
				all.push_back(told.substr(1));
			std::sort(all.begin(), all.end());
			return all;
		};
		std::sort(names.begin(), names.end());
		EXPECT_TRUE(WaitUntil([&] { return known().size() >= names.size(); }));
		EXPECT_EQ(known(), names);
		ASSERT_EQ(Watch("shown", B_STOP_WATCHING), B_OK);
		for (const std::string& name : names) {
			if (name[0] == 'n')
				tree.Remove("shown/" + name);
		}
	}
}

// Whoever lists the folder in the looper's thread may be the target or not: both get it right.
TEST_F(NodeMonitorTest, ListingsOfOthersInTheThreadLoseNothing)
{
	std::mt19937 random(3);
	auto change = [&] {
		for (int i = 0; i < 4; i++) {
			const std::string path = tree.Path("shown/" + std::to_string(random() % 6));
			const std::string other = tree.Path("shown/" + std::to_string(random() % 6));
			if (const size_t what = random() % 4; what == 0)
				unlink(path.c_str());
			else if (what == 1)
				rename(path.c_str(), other.c_str());
			else
				std::ofstream(path) << 'x';
		}
		usleep(random() % 2 * 8000); // the monitor has read of it, or not
	};
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	looper->PostMessage(kList, watcher);
	ASSERT_TRUE(WaitUntil([&] { return watcher->Lists() == 1; }));
	std::set<std::string> target{"a", "b"};
	for (int round = 0; round < 60 && !HasFailure(); round++) {
		watcher->Forget();
		looper->Lock();
		change();
		std::set<std::string> other;
		BDirectory folder = tree.Folder("shown");
		entry_ref ref;
		while (folder.GetNextRef(&ref) == B_OK)
			other.insert(ref.name);
		change();
		looper->Unlock();
		EXPECT_TRUE(WaitUntil([&] {
			const std::vector<std::string> names = tree.List("shown");
			const std::set<std::string> present(names.begin(), names.end());
			return watcher->Follow(target) == present && watcher->Follow(other) == present;
		})) << "round "
			<< round;
		target = watcher->Follow(target);
	}
}

TEST_F(NodeMonitorTest, StoppingTakesBackWhatWaits)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	ASSERT_EQ(Watch("other", B_WATCH_DIRECTORY), B_OK);
	looper->Lock(); // nothing is handled
	for (int i = 0; i < 200; i++)
		tree.Add("shown/n" + std::to_string(i), Text());
	tree.Add("other/x", Text());
	snooze(30000); // some of it waits in the looper's queue by now, whatever the machine's speed
	EXPECT_EQ(Watch("shown", B_STOP_WATCHING), B_OK);
	EXPECT_EQ(Watch("shown", B_STOP_WATCHING), B_ENTRY_NOT_FOUND);
	looper->Unlock();
	EXPECT_TRUE(WaitUntil([&] { return !watcher->Told().empty(); }));
	EXPECT_EQ(watcher->Told(), std::vector<std::string>{"+x"});
}

TEST_F(NodeMonitorTest, AFloodReachesABusyLooperInSmallPortions)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	looper->Lock();
	for (int i = 0; i < 1000; i++)
		tree.Add("shown/n" + std::to_string(i), Text());
	snooze(50000);
	BMessage key(kList); // stands behind the first portion only
	looper->PostMessage(&key, watcher);
	looper->Unlock();
	ASSERT_TRUE(WaitUntil([&] { return watcher->Lists() == 1; }));
	EXPECT_EQ(watcher->Listed().size(), 1002u);
	Expect({});
}

TEST_F(NodeMonitorTest, TheFolderItselfIsToldOf)
{
	tree.Add("outer/inner", Dir());
	node_ref node = NodeOf("outer/inner");
	ASSERT_EQ(watch_node(&node, B_WATCH_NAME | B_WATCH_STAT, watcher), B_OK);
	tree.Rename("outer/inner", "outer/renamed");
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 1; }));
	tree.Rename("outer/renamed", "other/moved");
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 2; }));
	tree.SetMode("other/moved", 0700);
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() == 3; }));
	tree.Remove("other/moved");
	ASSERT_TRUE(WaitUntil([&] { return watcher->Told().size() >= 4; }));
	EXPECT_EQ(watcher->Told(),
		(std::vector<std::string>{"inner>renamed", "renamed>>moved", "s", "-moved"}));
}

TEST_F(NodeMonitorTest, MistakesAreRefused)
{
	node_ref node;
	EXPECT_EQ(watch_node(&node, B_WATCH_ALL, watcher), B_BAD_VALUE);
	EXPECT_EQ(watch_node(nullptr, B_WATCH_ALL, watcher), B_BAD_VALUE);
	node = NodeOf("shown");
	EXPECT_EQ(watch_node(&node, 0x1000, watcher), B_BAD_VALUE);
	EXPECT_EQ(watch_node(&node, B_STOP_WATCHING, watcher), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(stop_watching(watcher), B_ENTRY_NOT_FOUND);
	BHandler loose;
	EXPECT_EQ(watch_node(&node, B_WATCH_ALL, &loose), B_BAD_HANDLER);
	tree.Remove("other");
	node.node += 1000000;
	EXPECT_EQ(watch_node(&node, B_WATCH_ALL, watcher), B_ENTRY_NOT_FOUND);
}

TEST_F(NodeMonitorTest, AHandlerThatIsDeletedWatchesNoMore)
{
	ASSERT_EQ(Watch("shown", B_WATCH_DIRECTORY), B_OK);
	looper->Lock();
	auto* brief = new Watcher(tree.Path("shown"));
	looper->AddHandler(brief);
	const node_ref node = NodeOf("shown");
	ASSERT_EQ(watch_node(&node, B_WATCH_ALL, brief), B_OK);
	tree.Add("shown/c", Text());
	snooze(20000);
	looper->RemoveHandler(brief);
	delete brief;
	looper->Unlock();
	Expect({"+c"});
}
