// SPDX-License-Identifier: MIT

// The contents pane against the disk: whatever others do in the folder that is shown, its rows end
// up as a fresh listing has them.

#include "app/Messages.h"
#include "panes/ItemColumns.h"

#include <storage/NodeMonitor.h>

#include "kits/app/LooperCore.h"

#include "tests/panes/ItemListWindow.h"
#include "tests/support/LongRun.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

// Random changes of the folder $2, as people and programs make them, with $3 outside it.
constexpr const char* kChanges = R"(
import os, random, sys, time
random.seed(int(sys.argv[1]))
folder, outside, steps = sys.argv[2], sys.argv[3], int(sys.argv[4])
out = 0
names = [f'f{i}' for i in range(10)] + ['n' * 255, '\udcff\n'] # the last ones as they may be
def write(path, mode):
    with open(path, mode) as file:
        file.write('x' * random.randrange(100))
for _ in range(steps):
    path = f'{folder}/{random.choice(names)}'
    other = f'{folder}/{random.choice(names)}'
    try:
        step = random.randrange(12)
        if step == 0: write(path, 'w')
        elif step == 1: write(path, 'a')
        elif step == 2: os.symlink(random.choice(names), path)
        elif step in (3, 4): os.rename(path, other)
        elif step == 5:
            out += 1
            os.rename(path, f'{outside}/{out}')
        elif step == 6: os.rename(f'{outside}/{out}', path)
        elif step == 7: os.unlink(path)
        elif step == 8: os.rmdir(path)
        elif step == 9: os.mkdir(path)
        elif step == 10: os.link(path, other, follow_symlinks=False)
        else: os.chmod(path, random.choice((0o600, 0o644, 0o755)))
    except OSError:
        pass
    if random.randrange(20) == 0: time.sleep(random.random() / 100)
)";

// So many events of the folder $1 that none is like the one before it, and then a file.
constexpr const char* kFlood = R"(
import os, sys
pair = [f'{sys.argv[1]}/one', f'{sys.argv[1]}/other']
for path in pair: open(path, 'w').close()
for i in range(int(sys.argv[2])): os.chmod(pair[i % 2], 0o640)
open(f'{sys.argv[1]}/late', 'w').close()
)";

// By a process of its own, which is fast whatever this one is made with.
void
RunScript(const char* script, const std::string& arguments)
{
	setenv("SCRIPT", script, 1);
	ASSERT_EQ(system(("python3 -c \"$SCRIPT\" " + arguments).c_str()), 0);
	unsetenv("SCRIPT");
}

// In words, how the rows differ from what is on the disk; empty when they do not.
std::string
Difference(ItemListWindow& it, const entry_ref& folder)
{
	// Without the window: what is listed with its lock the pane is taken to know.
	BDirectory directory(&folder);
	std::vector<entry_ref> refs(static_cast<size_t>(directory.CountEntries()));
	directory.Rewind();
	for (entry_ref& ref : refs)
		directory.GetNextRef(&ref);
	return it.window.Under([&]() -> std::string {
		if (it.list->CountItems() != static_cast<int32>(refs.size()))
			return std::to_string(it.list->CountItems()) + " rows of " +
				std::to_string(refs.size());
		std::vector<const ItemListItem*> rows;
		for (int32 i = 0; i < it.list->CountItems(); i++) {
			rows.push_back(it.list->RowAt(i));
			if (i > 0 && ItemListItem::CompareFiles(rows[rows.size() - 2], rows.back(), 1) > 0)
				return std::string(rows.back()->Name()) + " is not sorted";
		}
		std::sort(rows.begin(), rows.end(), [](const ItemListItem* a, const ItemListItem* b) {
			return strcmp(a->Name(), b->Name()) < 0;
		});
		for (size_t i = 0; i < refs.size(); i++) {
			ItemListItem fresh;
			fresh.SetRef(new entry_ref(refs[i]));
			if (*rows[i]->GetRef() != refs[i])
				return std::string(rows[i]->Name()) + " instead of " + refs[i].name;
			if (rows[i]->GetINode() != fresh.GetINode())
				return std::string(rows[i]->Name()) + " has another inode";
			// Not the last one, which goes by the status' time: nobody is told when that changes
			// because another name of the file has come or gone.
			for (int32 column = kKindColumn; column < kCreatedColumn; column++) {
				if (ItemListItem::CompareFiles(rows[i], &fresh, column) != 0)
					return std::string(rows[i]->Name()) + " is old in column " +
						std::to_string(column);
			}
		}
		return {};
	});
}

void
ExpectSameAsDisk(ItemListWindow& it, const entry_ref& folder)
{
	if (!WaitUntil([&] { return Difference(it, folder).empty(); }))
		ADD_FAILURE() << Difference(it, folder);
}

// Makes the monitor's thread stand still once something happens in a folder: somebody looks at the
// queue that it wants to put the notice into, for as long as this lives.
class Obstacle {
public:
	explicit Obstacle(const std::string& folder) :
		fLooper(new BLooper), fCore(BPrivate::LooperRegistry::Find(fLooper))
	{
		node_ref node;
		BDirectory(folder.c_str()).GetNodeRef(&node);
		EXPECT_EQ(watch_node(&node, B_WATCH_DIRECTORY, fLooper), B_OK);
		fLooper->PostMessage('look'); // it never runs
		fThread = std::thread([this] {
			fCore->Visit([this](BMessage&) {
				fLooks = true;
				EXPECT_TRUE(WaitUntil([this] { return fDone.load(); }));
				return true;
			});
		});
		EXPECT_TRUE(WaitUntil([this] { return fLooks.load(); }));
	}
	~Obstacle()
	{
		fDone = true;
		fThread.join();
		fLooper->Lock();
		fLooper->Quit();
	}

private:
	BLooper* fLooper;
	std::shared_ptr<BPrivate::LooperCore> fCore;
	std::thread fThread;
	std::atomic<bool> fLooks = false;
	std::atomic<bool> fDone = false;
};

class FollowFolder : public testing::Test {
protected:
	TempTree tree{{"shown", Dir()}, {"outside", Dir()}};
	entry_ref shown = tree.Ref("shown");
	ItemListWindow it{tree};

	void RunChanges(unsigned seed, int steps)
	{
		RunScript(kChanges,
			std::to_string(seed) + " " + tree.Path("shown") + " " + tree.Path("outside") + " " +
				std::to_string(steps));
	}
	void Show(entry_ref folder)
	{
		it.Do([&] { it.pane->SetFolder(&folder, false); });
	}
};

} // namespace

TEST_F(FollowFolder, RowsFollowRandomChangesOfAnotherProcess)
{
	const unsigned seed = 20261121;
	printf("seeds from %u\n", seed);
	Show(shown);
	for (int round = 0; round < Rounds(8, 100) && !HasFailure(); round++) {
		RunChanges(seed + static_cast<unsigned>(round), 400);
		ExpectSameAsDisk(it, shown);
	}
}

TEST_F(FollowFolder, RowsAreRightAgainAfterTheKernelLostEvents)
{
	Show(shown);
	RunChanges(1, 200);
	ExpectSameAsDisk(it, shown);
	int most = 0;
	std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
	ASSERT_GT(most, 0);
	{
		Obstacle obstacle(tree.Path("outside"));
		tree.Add("outside/stop", Text());
		RunScript(kFlood, tree.Path("shown") + " " + std::to_string(most));
		RunChanges(2, 200);
		const std::vector<std::string> names = it.Names();
		ASSERT_EQ(std::count(names.begin(), names.end(), "late"), 0); // the events wait
	}
	ExpectSameAsDisk(it, shown);
}

// All at once: files come and go in two folders, which are shown in turns, read again and sorted.
TEST_F(FollowFolder, FoldersChangeAmidFloods)
{
	tree.Add("other", Dir());
	entry_ref other = tree.Ref("other");
	std::atomic<bool> done = false;
	std::vector<std::thread> floods;
	for (const std::string folder : {"shown/", "other/"}) {
		floods.emplace_back([&, folder] {
			for (int i = 0; !done; i = (i + 1) % 500) {
				const std::string name = folder + std::to_string(i);
				tree.Add(name, i % 3 == 0 ? Dir() : Text("x"));
				tree.Rename(name, name + " new");
				if (i % 5 != 0)
					tree.Remove(name + " new");
				else
					rename(tree.Path(name + " new").c_str(), tree.Path(folder + "same").c_str());
				if (i % 3 == 0)
					rmdir(tree.Path(folder + "same").c_str());
				else
					unlink(tree.Path(folder + "same").c_str());
			}
		});
	}
	for (int i = 0; i < Rounds(300, 3000); i++) {
		it.Do([&] {
			if (i % 3 == 0)
				it.pane->Refresh();
			else
				it.pane->SetFolder(i % 2 == 0 ? &shown : &other, false);
			if (i % 7 == 0)
				it.list->SetSortKey(1 + i % 6);
		});
	}
	done = true;
	for (std::thread& flood : floods)
		flood.join();
	it.Do([&] {
		it.list->SetSortKey(kNameColumn);
		it.pane->SetFolder(&other, false);
	});
	ExpectSameAsDisk(it, other);
	Show(shown);
	ExpectSameAsDisk(it, shown);
}

// With notices in the queue and a thread that is about to sort.
TEST_F(FollowFolder, PanesMayGoAtAnyTime)
{
	std::atomic<bool> done = false;
	std::thread flood([&] {
		for (int i = 0; !done; i++)
			tree.Add("shown/" + std::to_string(i % 1000), Text(std::string(size_t(i % 9), 'x')));
	});
	for (int i = 0; i < Rounds(20, 400); i++) {
		ItemListWindow brief(tree);
		brief.Do([&] { brief.pane->SetFolder(&shown, false); });
		if (i % 2 == 0)
			brief.Do([&] { // leaves its window and comes back
				brief.pane->RemoveSelf();
				brief.window->AddChild(brief.pane);
			});
		EXPECT_TRUE(WaitUntil([&] { return find_thread("Sort") >= 0; }));
	}
	done = true;
	flood.join();
	EXPECT_TRUE(WaitUntil([] { return find_thread("Sort") < 0; }));
}

TEST_F(FollowFolder, HardLinksAreToldApartAndChangeTogether)
{
	tree.Add("shown/one", Text("x"));
	for (const char* name : {"two", "three"})
		ASSERT_EQ(
			link(tree.Path("shown/one").c_str(), tree.Path(std::string("shown/") + name).c_str()),
			0);
	Show(shown);
	std::ofstream(tree.Path("shown/two"), std::ios::app) << "more";
	ExpectSameAsDisk(it, shown);
	tree.Remove("shown/two");
	ExpectSameAsDisk(it, shown);
	// A rename onto another name of the same file removes that one.
	tree.Rename("shown/one", "shown/one more");
	tree.Remove("shown/three");
	ExpectSameAsDisk(it, shown);
	EXPECT_EQ(it.Names(), std::vector<std::string>{"one more"});
}

TEST_F(FollowFolder, TheFolderItselfMayBeALinkMoveAndGo)
{
	tree.Add("link", Link("shown"));
	tree.Add("shown/shown", Text("named as its folder"));
	entry_ref link = tree.Ref("link");
	Show(link);
	tree.Add("shown/new", Text());
	ExpectSameAsDisk(it, shown);
	// The rows are those of the folder, wherever it is.
	tree.Rename("shown", "elsewhere");
	tree.Add("elsewhere/newer", Text());
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == Names({"new", "newer", "shown"}); }));
	for (const char* name : {"new", "newer", "shown"})
		tree.Remove(std::string("elsewhere/") + name);
	tree.Remove("elsewhere");
	EXPECT_TRUE(WaitUntil([&] { return it.Names().empty(); }));
	// Refreshing does not bring it back, and another one in its place only by being asked for.
	it.Do([&] { it.pane->Refresh(); });
	tree.Add("shown/reborn", Text());
	it.Do([&] { it.pane->Refresh(); });
	EXPECT_EQ(it.Names(), std::vector<std::string>{"reborn"});
}

TEST_F(FollowFolder, ARenamedFolderStaysTheOneThatIsShown)
{
	Show(shown);
	tree.Rename("shown", "elsewhere");
	tree.Add("shown/decoy", Text());
	const entry_ref renamed = tree.Ref("elsewhere");
	EXPECT_TRUE(
		WaitUntil([&] { return it.window.Under([&] { return *it.pane->Folder() == renamed; }); }));
	// So are files pasted there, and a refresh finds it.
	it.Do([&] { it.pane->Refresh(); });
	tree.Add("elsewhere/new", Text());
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == std::vector<std::string>{"new"}; }));
}

TEST_F(FollowFolder, PathsMayBeLongerThanTheSystemTakes)
{
	std::string deep = "shown";
	for (int i = 0; i < 30; i++)
		deep += "/" + std::string(200, static_cast<char>('a' + i % 26));
	tree.Add(deep + "/old", Text("x"));
	const entry_ref ref = tree.Ref(deep);
	Show(ref);
	EXPECT_EQ(it.Names(), std::vector<std::string>{"old"});
	tree.Add(deep + "/new", Text("y"));
	tree.Rename(deep + "/old", deep + "/older");
	ExpectSameAsDisk(it, ref);
	tree.Remove(deep + "/new");
	ExpectSameAsDisk(it, ref);
	EXPECT_EQ(it.Names(), std::vector<std::string>{"older"});
}

TEST_F(FollowFolder, ABurstIsShownTogetherAndTheSelectionStays)
{
	for (int i = 0; i < 100; i++)
		tree.Add("shown/old " + std::to_string(100 + i), Text());
	Show(shown);
	it.Do([&] {
		it.list->Select(50);
		it.list->Select(99, 99, true);
	});
	for (int i = 0; i < 300; i++)
		tree.Add("shown/new " + std::to_string(i), Text());
	for (int i = 0; i < 100; i += 2)
		tree.Remove("shown/old " + std::to_string(100 + i));
	ExpectSameAsDisk(it, shown);
	it.Do([&] {
		std::vector<std::string> selected;
		for (int32 i = 0, index; (index = it.list->CurrentSelection(i)) >= 0; i++)
			selected.push_back(it.list->RowAt(index)->Name());
		EXPECT_EQ(selected, std::vector<std::string>{"old 199"});
	});
}

// Whoever can reach the window can send what the monitor would.
TEST_F(FollowFolder, SenselessNoticesChangeNothing)
{
	for (const char* name : {"shown/a", "shown/b", "shown/c"})
		tree.Add(name, Text());
	Show(shown);
	node_ref node;
	BDirectory(&shown).GetNodeRef(&node);
	std::mt19937 random(5);
	for (int i = 0; i < Rounds(3000, 100000); i++) {
		BMessage notice(B_NODE_MONITOR);
		int32 opcode = static_cast<int32>(random() % 5) + 1;
		if (opcode == B_ENTRY_CREATED) // is believed
			opcode = B_ENTRY_REMOVED;
		notice.AddInt32("opcode", opcode);
		// Never both the right folder and a whole notice of a removal or a move.
		if (random() % 2 == 0)
			notice.AddInt32("device", static_cast<int32>(random()));
		for (const char* field : {"directory", "from directory", "to directory", "node"}) {
			if (random() % 3 == 0)
				notice.AddInt64(field, random() % 2 == 0 ? int64(random()) - 5 : -1);
		}
		for (const char* field : {"name", "from name"}) {
			if (random() % 2 == 0)
				notice.AddString(field, random() % 2 == 0 ? "a" : std::string(300, '/').c_str());
		}
		it.window->PostMessage(&notice, it.pane);
	}
	it.window.Settle();
	tree.Add("shown/d", Text());
	ExpectSameAsDisk(it, shown);
}
