// SPDX-License-Identifier: MIT

// What a move asks before something would be lost, and that nothing waits for the answer but it.

#include "xfer/FileXFer.h"

#include "app/Messages.h"
#include "support/UpdateCounter.h"

#include <interface/Modal.h>
#include <storage/Directory.h>
#include <storage/Entry.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace NFileXFer;

namespace {

void
Move(const TempTree& tree, const std::string& from, const std::string& folder)
{
	entry_ref ref = tree.Ref(from);
	// The move's from now on.
	ASSERT_TRUE(
		FileOperation(eMove, new BEntry(&ref), new BDirectory(tree.Folder(folder)), nullptr));
}

bool
AllEnded()
{
	return WaitUntil([] { return find_thread("move") < 0; });
}

void
AnswerYes(const char* title)
{
	InjectedUser user(title);
	user.Key(std::string(1, B_TAB)); // to the first button
	user.KeyDown(" ");
}

void
AnswerNo(const char* title)
{
	InjectedUser(title).KeyDown(std::string(1, B_ENTER));
}

int
CountThreads()
{
	const std::filesystem::directory_iterator threads("/proc/self/task");
	return static_cast<int>(std::distance(begin(threads), end(threads)));
}

class Coloured : public BView {
public:
	Coloured() : BView(BRect(0, 0, 200, 200), "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {}
};

} // namespace

TEST(MoveQuestion, YesReplacesAndNoLeavesBoth)
{
	TempTree tree{{"a", Text("new")}, {"to/a", Text("old")}};
	auto* page = new Coloured;
	ListenedWindow window(200, 200, page);
	for (bool isYes : {false, true}) {
		Move(tree, "a", "to");
		InjectedUser question("Delete File?");
		// The file and the window wait for nothing.
		EXPECT_EQ(tree.Read("to/a"), "old");
		const uint8 shade = isYes ? 200 : 100;
		window.Under([&] {
			page->SetViewColor(shade, 0, 0);
			page->Invalidate();
		});
		EXPECT_TRUE(WaitUntil(
			[&] { return window.User().Snapshot().At(100, 100) == 0xff000000u + (shade << 16); }));
		isYes ? AnswerYes("Delete File?") : AnswerNo("Delete File?");
		EXPECT_TRUE(AllEnded());
		EXPECT_EQ(tree.Read("to/a"), isYes ? "new" : "old");
		EXPECT_EQ(tree.List().size(), isYes ? 1u : 2u);
	}
}

TEST(MoveQuestion, YesDoesNotReplaceWhatAMoveCannot)
{
	TempTree tree{{"full/x", Text("1")}, {"to/full/y", Text("2")}, {"file", Text("3")},
		{"to/file/z", Text("4")}};
	for (const char* name : {"full", "file"}) {
		Move(tree, name, "to");
		AnswerYes("Delete File?");
		EXPECT_TRUE(AllEnded());
	}
	EXPECT_EQ(
		tree.Read("full/x") + tree.Read("to/full/y") + tree.Read("file") + tree.Read("to/file/z"),
		"1234");
}

TEST(MoveQuestion, AFolderOfTheSystemMovesOnlyWhenConfirmed)
{
	TempTree tree{{"home/.config", Dir()}, {"to", Dir()}, {"taken/.config/x", Text("1")}};
	Variable home("HOME", tree.Path("home").c_str());
	Variable config("XDG_CONFIG_HOME", nullptr);
	Move(tree, "home/.config", "to");
	AnswerNo("Warning!");
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List("to"), Names({}));
	// Both questions for one move.
	Move(tree, "home/.config", "taken");
	AnswerYes("Warning!");
	AnswerNo("Delete File?");
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List("home"), Names({".config"}));
	Move(tree, "home/.config", "to");
	AnswerYes("Warning!");
	EXPECT_TRUE(AllEnded());
	EXPECT_EQ(tree.List("to"), Names({".config"}));
}

TEST(MoveQuestion, ManyQuestionsHoldNoOtherTransferUpAndCountAsNoWhenClosed)
{
	const int count = Rounds(40, 200);
	TempTree tree{{"from", Dir()}, {"to", Dir()}, {"copies", Dir()}};
	const int threadsBefore = CountThreads();
	for (int i = 0; i < count; i++) {
		std::string name = std::to_string(i);
		tree.Add("from/" + name, Text("new"));
		tree.Add("to/" + name, Text("old"));
		Move(tree, "from/" + name, "to");
	}
	ListenedWindow window(200, 200, new Coloured);
	for (int i = 0; i < count; i++) {
		entry_ref ref = tree.Ref("from/" + std::to_string(i));
		BEntry entry(&ref);
		BDirectory folder = tree.Folder("copies");
		EXPECT_TRUE(FileOperation(eCopy, &entry, &folder, window.Get()));
	}
	int copied = 0;
	EXPECT_TRUE(WaitUntil([&] {
		copied += static_cast<int>(window->Take(kMSG_CopyComplete).size());
		return copied == count;
	}));
	// Those that wait have no window yet.
	EXPECT_LT(CountThreads(), threadsBefore + count + count / 2);
	AnswerNo("Delete File?");
	EXPECT_TRUE(WaitUntil([] {
		BPrivate::CloseAllAlerts(); // again: a move may ask only now
		return find_thread("move") < 0;
	}));
	EXPECT_EQ(tree.List("from").size(), static_cast<size_t>(count));
	EXPECT_EQ(tree.List("copies").size(), static_cast<size_t>(count));
	for (const std::string& name : tree.List("to"))
		EXPECT_EQ(tree.Read("to/" + name), "old");
	EXPECT_TRUE(WaitUntil([] { return gUpdateTolerance == 0; }));
}
