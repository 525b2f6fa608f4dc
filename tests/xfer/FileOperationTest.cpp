// SPDX-License-Identifier: MIT

// Copies, moves and links into folders, each in its thread: names, what arrives, who is told.

#include "xfer/FileXFer.h"

#include "app/Messages.h"
#include "panes/FileListView.h"
#include "support/UpdateCounter.h"

#include <app/Clipboard.h>
#include <app/Looper.h>
#include <app/Message.h>
#include <interface/MenuItem.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "kits/desktop/JobQueue.h"
#include "tests/support/Denied.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace NFileXFer;

namespace {

// Hears of the copies that have ended.
class Listener : public BLooper {
public:
	Listener() { Run(); }

	void MessageReceived(BMessage* message) override
	{
		if (message->what != kMSG_CopyComplete)
			return BLooper::MessageReceived(message);
		std::lock_guard lock(fGuard);
		fMessages.push_back(*message);
	}

	size_t Count() const
	{
		std::lock_guard lock(fGuard);
		return fMessages.size();
	}

	BMessage At(size_t index) const
	{
		std::lock_guard lock(fGuard);
		return fMessages[index];
	}

private:
	mutable std::mutex fGuard;
	std::vector<BMessage> fMessages;
};

struct Quitter {
	void operator()(BLooper* looper) const
	{
		looper->Lock();
		looper->Quit();
	}
};

typedef std::unique_ptr<Listener, Quitter> ListenerPtr;

bool
Do(ETransferType type, const entry_ref& ref, const BDirectory& folder,
	const BHandler* handler = nullptr)
{
	auto entry = std::make_unique<BEntry>(&ref);
	auto target = std::make_unique<BDirectory>(folder);
	bool isDone = FileOperation(type, entry.get(), target.get(), handler);
	if (type == eMove && isDone) { // the move's from now on
		entry.release();
		target.release();
	}
	return isDone;
}

// Every thread that moves or copies has ended.
bool
AllEnded()
{
	return WaitUntil(
		[] { return find_thread("move") < 0 && find_thread("cp a") < 0 && gUpdateTolerance == 0; });
}

} // namespace

TEST(FileOperation, CopiesIntoTheirOwnFolderCountUpFreeNames)
{
	TempTree tree{{"a", Text("one")}};
	ListenerPtr listener(new Listener);
	// At once: a name counts as taken before its copy exists.
	for (int i = 0; i < 4; i++)
		EXPECT_TRUE(Do(eCopy, tree.Ref("a"), tree.Folder(), listener.get()));
	ASSERT_TRUE(WaitUntil([&] { return listener->Count() == 4; }));
	EXPECT_EQ(tree.List(), Names({"Copy 2 of a", "Copy 3 of a", "Copy 4 of a", "Copy of a", "a"}));
	for (const std::string& name : tree.List())
		EXPECT_EQ(tree.Read(name), "one") << name;
	tree.Remove("Copy 2 of a");
	EXPECT_TRUE(Do(eCopy, tree.Ref("a"), tree.Folder(), listener.get()));
	EXPECT_TRUE(Do(eCopy, tree.Ref("Copy of a"), tree.Folder(), listener.get()));
	ASSERT_TRUE(WaitUntil([&] { return listener->Count() == 6; }));
	EXPECT_EQ(tree.List(),
		Names(
			{"Copy 2 of a", "Copy 3 of a", "Copy 4 of a", "Copy of Copy of a", "Copy of a", "a"}));
}

// A folder that was unmounted while it was open has no path to copy to.
TEST(FileOperation, ACopyThatCannotBeginLeavesNothing)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"volume", Dir()}};
	BDirectory folder;
	entry_ref source;
	{
		MemoryVolume volume(tree.Path("volume"));
		tree.Add("volume/a", Text("one"));
		folder = tree.Folder("volume");
		source = tree.Ref("volume/a");
	}
	EXPECT_FALSE(Do(eCopy, source, folder));
	EXPECT_EQ(folder.CountEntries(), 1);
}

// Whoever comes first to a name keeps it.
TEST(FileOperation, ACopyTakesNoNameThatIsTakenMeanwhile)
{
	TempTree tree{{"a", Text("one")}};
	const int count = Rounds(100, 1000);
	std::set<std::string> others;
	std::thread other([&] {
		for (int i = 2; i < count; i++) {
			const std::string name = "Copy " + std::to_string(i) + " of a";
			const int file =
				open(tree.Path(name).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
			if (file >= 0) {
				others.insert(name);
				EXPECT_EQ(write(file, "other", 5), 5);
				close(file);
			}
		}
	});
	for (int i = 0; i < count; i++)
		EXPECT_TRUE(Do(eCopy, tree.Ref("a"), tree.Folder()));
	other.join();
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List().size(), static_cast<size_t>(count) + 1 + others.size());
	for (const std::string& name : tree.List())
		EXPECT_EQ(tree.Read(name), others.count(name) != 0 ? "other" : "one") << name;
}

TEST(FileOperation, LinksHoldTheWholePathAndCountUpFreeNames)
{
	TempTree tree{{"a", Text("one")}, {"other", Dir()}, {"Link 2 to a", Link("nowhere")}};
	for (int i = 0; i < 2; i++)
		EXPECT_TRUE(Do(eLink, tree.Ref("a"), tree.Folder()));
	EXPECT_EQ(tree.List(), Names({"Link 2 to a", "Link 3 to a", "Link to a", "a", "other"}));
	EXPECT_EQ(tree.Read("Link 2 to a"), "nowhere");
	EXPECT_EQ(tree.Read("Link 3 to a"), tree.Path("a"));
	EXPECT_TRUE(Do(eLink, tree.Ref("other"), tree.Folder("other")));
	EXPECT_EQ(tree.Read("other/other"), tree.Path("other"));
	EXPECT_FALSE(Do(eLink, tree.Ref("other"), tree.Folder("other")));
}

TEST(FileOperation, TheEndOfACopyIsToldToWhoeverIsLeft)
{
	TempTree tree{{"a", Text("one")}, {"folder/below", Text()}, {"to", Dir()}};
	ListenerPtr listener(new Listener);
	entry_ref source = tree.Ref("a");
	EXPECT_TRUE(Do(eCopy, source, tree.Folder("to"), listener.get()));
	ASSERT_TRUE(WaitUntil([&] { return listener->Count() == 1; }));
	BMessage message = listener->At(0);
	entry_ref told;
	const char* target = nullptr;
	EXPECT_EQ(message.FindRef("source", &told), B_OK);
	EXPECT_EQ(told, source);
	EXPECT_EQ(message.FindString("target", &target), B_OK);
	EXPECT_EQ(target, tree.Path("to/a"));

	// Also when there was nothing to copy: folders are not.
	EXPECT_TRUE(Do(eCopy, tree.Ref("folder"), tree.Folder("to"), listener.get()));
	ASSERT_TRUE(WaitUntil([&] { return listener->Count() == 2; }));
	EXPECT_EQ(tree.List("to"), Names({"a", "folder"}));
	EXPECT_EQ(tree.Read("to/folder"), "");

	// A handler, and a looper, that are gone by then.
	auto* handler = new BHandler("gone");
	listener->Lock();
	listener->AddHandler(handler);
	EXPECT_TRUE(Do(eCopy, source, tree.Folder(), handler));
	EXPECT_TRUE(Do(eCopy, source, tree.Folder(), listener.get()));
	EXPECT_TRUE(Do(eCopy, source, tree.Folder(), nullptr));
	EXPECT_TRUE(WaitUntil([&] { return tree.List().size() == 6; }));
	delete handler;
	listener.release()->Quit();
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List(), Names({"Copy 2 of a", "Copy 3 of a", "Copy of a", "a", "folder", "to"}));
}

TEST(FileOperation, MovesKeepTheNameAndLoseNothingWhenTheyCannot)
{
	TempTree tree{{"a", Text("one")}, {"folder/sub/below", Text("b")}, {"to/full", Text()},
		{"full", Dir()}, {"link", Link("a")}, {"closed", Dir().Mode(0555)}};
	EXPECT_FALSE(Do(eMove, tree.Ref("a"), tree.Folder()));
	EXPECT_TRUE(Do(eCancel, tree.Ref("a"), tree.Folder("to")));
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List(), Names({"a", "closed", "folder", "full", "link", "to"}));

	EXPECT_TRUE(Do(eMove, tree.Ref("link"), tree.Folder("to")));
	EXPECT_TRUE(Do(eMove, tree.Ref("a"), tree.Folder("folder")));
	EXPECT_TRUE(Do(eMove, tree.Ref("folder"), tree.Folder("folder")));
	EXPECT_TRUE(Do(eMove, tree.Ref("folder"), tree.Folder("folder/sub")));
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List(), Names({"closed", "folder", "full", "to"}));
	EXPECT_EQ(tree.List("to"), Names({"full", "link"}));
	EXPECT_EQ(tree.List("folder"), Names({"a", "sub"}));

	entry_ref gone = tree.Ref("folder/a");
	tree.Remove("folder/a");
	EXPECT_TRUE(Do(eMove, gone, tree.Folder("to")));
	BEntry root("/");
	BDirectory to = tree.Folder("to");
	EXPECT_FALSE(FileOperation(eCopy, &root, &to, nullptr));
	EXPECT_FALSE(FileOperation(eLink, &root, &to, nullptr));
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List("to"), Names({"full", "link"}));
	tree.SetMode(".", 0755);
	AsNobody nobody; // for moves in this thread
	BEntry full(tree.Path("full").c_str());
	BDirectory closed = tree.Folder("closed");
	EXPECT_FALSE(MoveFile_(&full, &closed));
	EXPECT_EQ(tree.List(), Names({"closed", "folder", "full", "to"}));
}

TEST(FileOperation, MovesBetweenVolumesChangeNothing)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"a", Text("one")}, {"folder/below", Text("b")}, {"volume", Dir()}};
	MemoryVolume volume(tree.Path("volume"));
	tree.Add("volume/folder", Text("taken"));
	for (const char* name : {"a", "folder"})
		EXPECT_TRUE(Do(eMove, tree.Ref(name), tree.Folder("volume")));
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.Read("a") + tree.Read("folder/below") + tree.Read("volume/folder"), "onebtaken");
	EXPECT_EQ(tree.List("volume"), Names({"folder"}));
}

TEST(FileOperation, CopiesToOnePathDoNotMix)
{
	const std::string first(3 << 20, '1');
	const std::string second(2 << 20, '2');
	for (int i = 0; i < Rounds(5, 50); i++) {
		TempTree tree{{"1/a", Text(first)}, {"2/a", Text(second)}, {"to", Dir()}};
		ListenerPtr listener(new Listener);
		for (int n = 0; n < 3; n++) {
			for (const char* from : {"1/a", "2/a"})
				EXPECT_TRUE(Do(eCopy, tree.Ref(from), tree.Folder("to"), listener.get()));
		}
		ASSERT_TRUE(WaitUntil([&] { return listener->Count() == 6; }));
		EXPECT_TRUE(tree.Read("to/a") == second); // the last one's
	}
}

TEST(FileOperation, HundredsAtOnceAllArrive)
{
	const int count = Rounds(300, 3000);
	TempTree tree{{"from", Dir()}, {"copies", Dir()}, {"moved", Dir()}};
	for (int i = 0; i < count; i++) {
		for (const char* kind : {"c", "m"})
			tree.Add("from/" + (kind + std::to_string(i)), Text(std::to_string(i)));
	}
	ListenerPtr listener(new Listener);
	listener->Lock(); // as a window is while its menu is open, which holds no copy up
	for (int i = 0; i < count; i++) {
		entry_ref copied = tree.Ref("from/c" + std::to_string(i));
		EXPECT_TRUE(Do(eCopy, copied, tree.Folder("copies"), listener.get()));
		EXPECT_TRUE(Do(eMove, tree.Ref("from/m" + std::to_string(i)), tree.Folder("moved")));
	}
	EXPECT_TRUE(
		WaitUntil([&] { return tree.List("copies").size() == static_cast<size_t>(count); }));
	listener->Unlock();
	auto isDone = [&] {
		return listener->Count() == static_cast<size_t>(count) && find_thread("move") < 0;
	};
	EXPECT_TRUE(WaitUntil(isDone));
	EXPECT_EQ(tree.List("from").size(), static_cast<size_t>(count));
	EXPECT_EQ(tree.List("moved").size(), static_cast<size_t>(count));
	for (int i = 0; i < count; i++) {
		std::string text = std::to_string(i);
		ASSERT_EQ(tree.Read("copies/c" + text), text);
		ASSERT_EQ(tree.Read("moved/m" + text), text);
	}
	EXPECT_TRUE(WaitUntil([] { return gUpdateTolerance == 0; }));
}

TEST(HandleFileMessage, DropsAndPastesNeedNoClipboardAndNoView)
{
	desktop::CloseJobQueue(true); // as when the display went away
	ASSERT_FALSE(be_clipboard->Lock());
	TempTree tree{{"a", Text("one")}, {"to", Dir()}};
	entry_ref source = tree.Ref("a");
	entry_ref folder = tree.Ref("to");
	EXPECT_TRUE(CutCopy(B_CUT, &source));
	BMenuItem paste("Paste", nullptr), link("Paste Link", nullptr);
	TestClipboard(&source, &paste, &link);
	EXPECT_FALSE(paste.IsEnabled() || link.IsEnabled());

	BMessage secondary(kMSG_DragFile); // there is nobody to be asked
	secondary.AddInt32(kName_DragButtons, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_FALSE(HandleFileMessage(&secondary, &source, &folder, nullptr));
	// A paste then is what a drop is.
	const BMessage command(B_PASTE);
	EXPECT_TRUE(HandleFileMessage(&command, &source, &folder, nullptr));
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List("to"), Names({"a"}));
}

TEST(DeleteFile, RemovesOrThrowsAwayUnderAFreeName)
{
	TempTree tree{{"data", Dir()}, {"1/a", Text("1")}, {"2/a", Text("2")}, {"3/a", Text("3")},
		{"link", Link("1")}, {"full/below", Text()}, {"empty", Dir()}};
	Variable data("XDG_DATA_HOME", tree.Path("data").c_str());
	for (const char* path : {"1/a", "2/a", "3/a"}) {
		entry_ref ref = tree.Ref(path);
		EXPECT_TRUE(DeleteFile(&ref, true)) << path;
	}
	EXPECT_EQ(tree.List("data/Trash/files"), Names({"a", "a 1", "a 2"}));
	EXPECT_EQ(
		tree.List("data/Trash/info"), Names({"a 1.trashinfo", "a 2.trashinfo", "a.trashinfo"}));
	EXPECT_EQ(tree.Read("data/Trash/files/a 2"), "3");

	std::map<std::string, bool> removed = {{"link", true}, {"full", false}, {"empty", true}};
	for (const auto& [path, isRemoved] : removed) {
		entry_ref ref = tree.Ref(path);
		EXPECT_EQ(DeleteFile(&ref, false), isRemoved) << path;
		if (isRemoved) {
			EXPECT_FALSE(DeleteFile(&ref, false)) << path;
			EXPECT_FALSE(DeleteFile(&ref, true)) << path;
		}
	}
	// The folder that holds the trash cannot go into it.
	for (const char* path : {"data", "data/Trash", "data/Trash/files"}) {
		entry_ref ref = tree.Ref(path);
		EXPECT_FALSE(DeleteFile(&ref, true)) << path;
	}
	EXPECT_EQ(tree.List(), Names({"1", "2", "3", "data", "full"}));
	EXPECT_EQ(tree.List("data/Trash/info").size(), 3u);
}

TEST(DeleteFile, WithoutATrashEverythingStays)
{
	TempTree tree{{"a", Text("one")}, {"closed", Dir()}};
	entry_ref file = tree.Ref("a");
	tree.SetMode(".", 0777);
	tree.SetMode("closed", 0555);
	Variable data("XDG_DATA_HOME", tree.Path("closed").c_str());
	AsNobody nobody;
	EXPECT_FALSE(DeleteFile(&file, true));
	EXPECT_EQ(tree.Read("a"), "one");
}

TEST(DeleteFile, TheTrashTakesNothingOfAnotherVolume)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"data", Dir()}, {"volume", Dir()}};
	Variable data("XDG_DATA_HOME", tree.Path("data").c_str());
	MemoryVolume volume(tree.Path("volume"));
	tree.Add("volume/b", Text("two"));
	entry_ref other = tree.Ref("volume/b");
	EXPECT_FALSE(DeleteFile(&other, true));
	EXPECT_EQ(tree.Read("volume/b"), "two");
	EXPECT_EQ(tree.List("data/Trash/info"), Names({}));
}

TEST(SpecialFolder, IsKnownByItsWholePath)
{
	TempTree tree{{"home/.local/lib", Dir()}, {"home/.config/autostart", Dir()},
		{"home/usr/bin", Dir()}, {"home/Desktop", Dir()}, {"link", Link("/usr/bin")}};
	Variable home("HOME", tree.Path("home").c_str());
	Variable data("XDG_DATA_HOME", nullptr);
	Variable config("XDG_CONFIG_HOME", nullptr);
	BPath path;
	find_directory(B_TRASH_DIRECTORY, &path);
	for (const char* special : {"/usr", "/usr/bin", "/etc", "/usr/share/doc"}) {
		BEntry entry(special);
		EXPECT_TRUE(IsSpecialFolder(entry)) << special;
	}
	for (const char* special : {"home", "home/.config", "home/.config/autostart",
			 "home/.local/share", "home/.local/lib"}) {
		BEntry entry(tree.Path(special).c_str());
		EXPECT_TRUE(IsSpecialFolder(entry)) << special;
	}
	for (const char* plain : {".", "home/usr", "home/usr/bin", "home/Desktop", "link",
			 "home/.local", "home/.local/share/Trash/files", "none"}) {
		BEntry entry(tree.Path(plain).c_str());
		EXPECT_FALSE(IsSpecialFolder(entry)) << plain;
	}
	for (const char* plain : {"/", "/usr/local", "/tmp", "/etc/passwd"}) {
		BEntry entry(plain);
		EXPECT_FALSE(IsSpecialFolder(entry)) << plain;
	}
}
