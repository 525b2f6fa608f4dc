// SPDX-License-Identifier: MIT

// The tree of folders on real folders.

#include "panes/OutlineView.h"

#include "app/Messages.h"
#include "panes/FileListView.h"
#include "panes/FolderItem.h"

#include <storage/Entry.h>

#include "tests/panes/ContextMenu.h"
#include "tests/support/ListenedWindow.h"
#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace {

// Each with two blanks a level, and "+" where there is an arrow to open, "-" one to close it.
typedef std::vector<std::string> Lines;

struct OutlineWindow {
	explicit OutlineWindow(const entry_ref& ref) :
		root(ref), pane(new OutlineView(BRect(0, 0, 299, 399), &root)), window(300, 400, pane)
	{
		for (BView* view = pane; list == nullptr; view = view->ChildAt(0))
			list = dynamic_cast<FileListView*>(view->FindView("outline"));
	}

	FolderItem* Row(int32 index) { return static_cast<FolderItem*>(list->FullListItemAt(index)); }
	// With the window locked.
	FolderItem* Find(const std::string& name)
	{
		for (int32 i = 0; i < list->FullListCountItems(); i++) {
			if (Row(i)->Name() == name)
				return Row(i);
		}
		return nullptr;
	}
	Lines Rows()
	{
		return window.Under([&] {
			Lines lines;
			for (int32 i = 0; i < list->CountItems(); i++) {
				const FolderItem* item = static_cast<FolderItem*>(list->ItemAt(i));
				const char* arrow = !item->IsSuperItem() ? "" : item->IsExpanded() ? "-" : "+";
				lines.push_back(std::string(item->OutlineLevel() * 2, ' ') + arrow + item->Name());
			}
			return lines;
		});
	}
	// What is shown once the rows that were drawn have been scanned, which takes its time.
	testing::AssertionResult Shows(const Lines& wanted)
	{
		if (WaitUntil([&] { return Rows() == wanted; }))
			return testing::AssertionSuccess();
		return testing::AssertionFailure() << testing::PrintToString(Rows());
	}
	// A folder is found to have so many sub-folders.
	bool HasCount(const std::string& name, int32 count)
	{
		return WaitUntil([&] {
			return window.Under([&] { return Find(name) && Find(name)->Count() == count; });
		});
	}
	template <typename Function>
	void Do(Function function)
	{
		window.Under([&] {
			function();
			return 0;
		});
		Settle();
	}
	// From a message to the last one that it causes there are three.
	void Settle()
	{
		for (int i = 0; i < 3; i++)
			window.Settle();
	}
	void Tell(BMessage message)
	{
		window->PostMessage(&message, pane);
		Settle();
	}
	void SetFolder(const entry_ref& ref)
	{
		BMessage message(kMSG_SetFolder);
		message.AddRef(kName_Folder, &ref);
		Tell(message);
	}
	void Expand(const std::string& name)
	{
		Do([&] { list->Expand(Find(name)); });
	}
	void Select(const std::string& name)
	{
		Do([&] { list->Select(list->IndexOf(Find(name))); });
	}
	BPoint PointIn(const std::string& name, float x)
	{
		return window.Under([&] {
			const BRect row = list->ConvertToScreen(list->ItemFrame(list->IndexOf(Find(name))));
			return window->ConvertFromScreen(BPoint(row.left + x, (row.top + row.bottom) / 2));
		});
	}
	std::string Selected()
	{
		return window.Under([&] {
			const int32 index = list->CurrentSelection();
			return index < 0 ? "" : static_cast<FolderItem*>(list->ItemAt(index))->Name();
		});
	}
	// The folders that the window was asked to show, or to make the root, since the last call.
	Lines Asked(uint32 what = kMSG_ChangeFolder)
	{
		Lines names;
		Settle();
		for (const BMessage& message : window->Take(what)) {
			entry_ref ref;
			void* source = nullptr;
			EXPECT_EQ(message.FindRef(kName_Folder, &ref), B_OK);
			if (what == kMSG_ChangeFolder) {
				EXPECT_EQ(message.FindPointer("source", &source), B_OK);
				EXPECT_EQ(source, pane);
			}
			names.push_back(ref.name);
		}
		return names;
	}

	entry_ref root;
	OutlineView* pane;
	ListenedWindow window;
	FileListView* list = nullptr;
};

// In a folder with a known name.
struct Tree : TempTree {
	Tree() :
		TempTree({{"root/a/b/c/d", Dir()}, {"root/a/file", Text()}, {"root/empty", Dir()},
			{"root/link", Link("a")}, {"root/file", Text()}, {"root/z/y", Dir()},
			{"rooted/in", Dir()}})
	{}
};

std::string
Numbered(const std::string& path, int number)
{
	return path + std::to_string(number + 10000).substr(1);
}

// More folders than fit on the screen; the first and the last one have one in them.
struct WideTree : TempTree {
	explicit WideTree(int count)
	{
		for (int i = 0; i < count; i++)
			Add(Numbered("wide/f", i), Dir());
		Add("wide/f0000/in", Dir());
		Add(Numbered("wide/f", count - 1) + "/in", Dir());
	}
};

} // namespace

TEST(OutlineView, ArrowsAreOneLevelAheadOfWhatIsSeen)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	EXPECT_TRUE(it.HasCount("empty", 0));
	// What was found is not drawn yet, and so not scanned.
	EXPECT_EQ(it.window.Under([&] { return it.Find("b")->Count() + it.Find("y")->Count(); }), -2);
	it.Expand("a");
	EXPECT_TRUE(it.Shows({"-root", "  -a", "    +b", "  empty", "  +z"}));
	// By a click on the arrow, too, which selects nothing.
	it.Expand("b");
	EXPECT_TRUE(it.Shows({"-root", "  -a", "    -b", "      +c", "  empty", "  +z"}));
	const BPoint arrow = it.PointIn("a", 32);
	it.window.User().Click(arrow.x, arrow.y);
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	EXPECT_EQ(it.Selected(), "");
	EXPECT_EQ(it.Asked(), Lines{});
}

TEST(OutlineView, ArrowsFoundInTheBackgroundAreDrawn)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.HasCount("a", 1));
	const BPoint with = it.PointIn("a", 32), without = it.PointIn("empty", 32);
	EXPECT_TRUE(WaitUntil([&] {
		const InjectedUser::Picture picture = it.window->Snapshot();
		bool differs = false;
		for (int32 x = -8; x <= 8; x++) {
			const int32 dark = int32(picture.At(int32(with.x) + x, int32(with.y)));
			differs |= dark != int32(picture.At(int32(without.x) + x, int32(without.y)));
		}
		return differs;
	}));
}

TEST(OutlineView, EachSelectionAsksTheWindowOnce)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	const BPoint name = it.PointIn("z", 80);
	it.window.User().Click(name.x, name.y);
	EXPECT_EQ(it.Asked(), Lines{"z"});
	it.window.User().Key(std::string(1, B_UP_ARROW));
	EXPECT_EQ(it.Asked(), Lines{"empty"});
	it.window.User().Key(std::string(1, B_ENTER));
	EXPECT_EQ(it.Asked(), Lines{"empty"});
	EXPECT_EQ(it.Selected(), "empty");
	// An invocation selects as well: the window hears of both.
	BMessage invoked(kMSG_OutlineInvocation);
	it.Tell(invoked);
	EXPECT_EQ(it.Asked(), Lines{});
	invoked.AddInt32("index", 1);
	it.Tell(invoked);
	EXPECT_EQ(it.Selected(), "a");
	EXPECT_EQ(it.Asked(), (Lines{"a", "a"}));
	invoked.ReplaceInt32("index", 99);
	it.Tell(invoked);
	EXPECT_EQ(it.Asked(), Lines{});
}

TEST(OutlineView, ASelectedFolderIsScannedAtOnce)
{
	WideTree tree(60);
	OutlineWindow it(tree.Ref("wide"));
	EXPECT_TRUE(it.HasCount("f0000", 1));
	EXPECT_EQ(it.window.Under([&] { return it.Find("f0059")->Count(); }), -1); // never drawn
	tree.Remove("wide/f0058");
	for (const auto& [name, count] : {std::pair("f0059", 1), std::pair("f0058", 0)}) {
		it.Select(name);
		EXPECT_EQ(it.window.Under([&] { return it.Find(name)->Count(); }), count) << name;
	}
}

TEST(OutlineView, OpensTheWayToAFolderThatIsShown)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.HasCount("a", 1));
	// Below what was scanned nothing is known: the nearest folder is selected, and not shown.
	it.SetFolder(tree.Ref("root/a/b/c"));
	EXPECT_EQ(it.Selected(), "b");
	EXPECT_TRUE(it.Shows({"-root", "  -a", "    +b", "  empty", "  +z"}));
	it.SetFolder(tree.Ref("root/z"));
	EXPECT_EQ(it.Selected(), "z");
	it.SetFolder(tree.Ref("root/a/b/c"));
	EXPECT_EQ(it.Selected(), "c");
	EXPECT_EQ(it.Asked(), (Lines{"z", "c"}));
	it.SetFolder(tree.Ref("root/link"));
	EXPECT_EQ(it.Selected(), "a");
	EXPECT_EQ(it.Asked(), Lines{"a"});
	it.SetFolder(entry_ref(1, 1, "nowhere"));
	EXPECT_EQ(it.Selected(), "a");
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{});
}

TEST(OutlineView, AFolderBelowTheSelectedOneIsOneStepAway)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.HasCount("a", 1));
	it.Select("a");
	// Found among the rows, without a look at the disk.
	tree.Rename("root/a", "root/moved");
	it.SetFolder(*it.window.Under([&] { return it.Find("b")->GetRef(); }));
	EXPECT_EQ(it.Selected(), "b");
	EXPECT_EQ(it.Asked(), (Lines{"a", "b"}));
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{});
}

TEST(OutlineView, TheRootMayBeALink)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root/link"));
	it.SetFolder(tree.Ref("root/a/b"));
	EXPECT_EQ(it.Selected(), "b");
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{});
}

TEST(OutlineView, ARenamedRootStaysTheRoot)
{
	Tree tree;
	entry_ref before = tree.Ref("root");
	OutlineWindow it(before);
	tree.Rename("root", "renamed");
	entry_ref after = tree.Ref("renamed");
	it.Do([&] { it.list->EntryRenamed(before, after); });
	it.Tell(BMessage(kMSG_Refresh));
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{"renamed"});
}

TEST(OutlineView, AFolderOutsideAsksForTheirCommonAncestor)
{
	Tree tree;
	const std::string parent = tree.Ref(".").name;
	struct {
		const char* root;
		std::string folder, ancestor;
	} const cases[] = {
		{"root/a", tree.Path("root/z"), "root"},
		{"root", tree.Path("rooted/in"), parent}, // names that begin alike
		{"root/a/b", tree.Path("."), parent}, {"root", "/usr", "/"},
		{"root/a/b", tree.Path("root/link"), "a"}, // where the link leads
	};
	for (const auto& each : cases) {
		OutlineWindow it(tree.Ref(each.root));
		entry_ref folder;
		ASSERT_EQ(get_ref_for_path(each.folder.c_str(), &folder), B_OK);
		it.SetFolder(folder);
		EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{each.ancestor}) << each.folder;
		EXPECT_EQ(it.Rows().front(), std::string("-") + it.root.name); // so far
	}
}

TEST(OutlineView, PathsMayBeLongerThanTheSystemTakes)
{
	std::string path = "root";
	for (int i = 0; i < 60; i++)
		path += "/" + std::string(100, 'p');
	const TempTree tree{{path + "/end", Dir()}};
	OutlineWindow it(tree.Ref(path));
	EXPECT_TRUE(it.Shows({"-" + std::string(100, 'p'), "  end"}));
	it.SetFolder(tree.Ref("root"));
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{"root"});
	entry_ref top = tree.Ref("root");
	it.Do([&] { it.pane->SetRoot(&top); });
	it.SetFolder(tree.Ref(path));
	EXPECT_EQ(it.Selected(), std::string(100, 'p'));
	EXPECT_EQ(it.Asked(kMSG_SetRoot), Lines{});
}

TEST(OutlineView, OnlyARefreshFindsWhatCameLater)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.HasCount("empty", 0));
	tree.Add("root/empty/late", Dir());
	tree.Add("root/new", Dir());
	it.Select("empty");
	it.Expand("a");
	EXPECT_TRUE(it.Shows({"-root", "  -a", "    +b", "  empty", "  +z"}));
	EXPECT_EQ(it.Asked(), Lines{"empty"});
	it.Tell(BMessage(kMSG_Refresh));
	EXPECT_EQ(it.Selected(), "root");
	EXPECT_EQ(it.Asked(), Lines{"root"});
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  +empty", "  new", "  +z"}));
}

TEST(OutlineView, ANewRootReplacesAllRows)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.HasCount("z", 1));
	// A request of a row that is gone by the time it is read.
	BMessage request(kMSG_ExpandThisItem);
	request.AddPointer("item", it.Row(3));
	entry_ref root = tree.Ref("root/a");
	it.Do([&] {
		it.window->PostMessage(&request, it.pane);
		it.pane->SetRoot(&root);
	});
	EXPECT_TRUE(it.Shows({"-a", "  +b"}));
	EXPECT_EQ(it.Selected(), "a");
	EXPECT_EQ(it.Asked(), Lines{"a"});
}

TEST(OutlineView, TheMenuOfARowActsOnItsFolder)
{
	Tree tree;
	tree.Add("data", Dir());
	Variable data("XDG_DATA_HOME", tree.Path("data").c_str());
	OutlineWindow it(tree.Ref("root"));
	it.window.User().Activate();
	InjectedUser::PutOnClipboard({{"text/plain", "nothing to paste"}});
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	const auto choose = [&](const char* name, int32 steps, bool withCommand = false) {
		// On the icon, beside an editor that may be open.
		Choose(it.window, "iContextMenu", it.PointIn(name, 46), steps, withCommand);
	};
	const auto type = [&](const char* keys) {
		for (; *keys != '\0'; keys++)
			it.window.User().Key(std::string(1, *keys));
	};
	choose("z", 1); // "Open"
	EXPECT_EQ(it.Asked(), (Lines{"z", "z"}));
	EXPECT_EQ(it.Selected(), "z");
	choose("empty", 4); // "Rename"
	type("e");
	choose("z", 4, true); // before that is done
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  e", "  +z"}));
	type("c\n");
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  +c", "  e"}));
	EXPECT_EQ(tree.List("root"), Names({"a", "c", "e", "file", "link"}));
	EXPECT_EQ(tree.List("root/c"), Names({"y"}));
	it.Expand("c");
	choose("y", 5); // "Delete"; all is read again
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  c", "  e"}));
	EXPECT_EQ(tree.List("data/Trash/files"), Names({"y"}));
	tree.Add("root/d", Dir());
	choose("a", 6); // "Refresh"
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  c", "  d", "  e"}));
	const BPoint below(100, 300);
	EXPECT_EQ(CanBeChosen(it.window, "eContextMenu", below,
				  {"Paste", "Paste Link", "", "Refresh", "About"}),
		(Lines{"Refresh", "About"}));
	choose("e", 3); // "Copy"
	EXPECT_EQ(CanBeChosen(it.window, "eContextMenu", below,
				  {"Paste", "Paste Link", "", "Refresh", "About"}),
		(Lines{"Paste", "Paste Link", "Refresh", "About"}));
	Choose(it.window, "eContextMenu", below, 4);
	EXPECT_TRUE(WaitUntil([&] { return !it.window->Take(B_ABOUT_REQUESTED).empty(); }));
}

// The root is open whatever is in it.
TEST(OutlineView, RootsThatAreNoFoldersHaveARowOfTheirOwn)
{
	Tree tree;
	tree.Add("root/loop", Link("loop"));
	entry_ref missing = tree.Ref("root/file");
	missing.set_name("missing");
	EXPECT_EQ(OutlineWindow(tree.Ref("root/file")).Rows(), Lines{"-file"});
	EXPECT_EQ(OutlineWindow(tree.Ref("root/loop")).Rows(), Lines{"-loop"});
	EXPECT_EQ(OutlineWindow(missing).Rows(), Lines{"-missing"});
	EXPECT_EQ(OutlineWindow(tree.Ref("root/empty")).Rows(), Lines{"-empty"});
	OutlineWindow link(tree.Ref("root/link"));
	EXPECT_TRUE(link.Shows({"-link", "  +b"}));
}

TEST(OutlineView, ASelectedFolderThatIsClosedOpensWhenARowIsDrawnFirst)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	it.Select("a");
	it.Do([&] { it.list->Collapse(it.Find("a")); });
	EXPECT_TRUE(it.Shows({"-root", "  +a", "  empty", "  +z"}));
	it.Expand("z"); // draws "y"
	EXPECT_TRUE(it.Shows({"-root", "  -a", "    +b", "  empty", "  -z", "    y"}));
	// So does a request for a whole level, which scans what was not drawn.
	WideTree wide(60);
	entry_ref root = wide.Ref("wide");
	it.Do([&] {
		it.pane->SetRoot(&root);
		it.list->Collapse(it.Row(0));
	});
	BMessage request(kMSG_ExpandSubItems);
	request.AddPointer("item", it.Row(0));
	it.Tell(request);
	EXPECT_TRUE(it.window.Under([&] { return it.Row(0)->IsExpanded(); }));
	EXPECT_TRUE(it.HasCount("f0059", 1));
}

TEST(OutlineView, AWideFolderIsAddedInSlicesAndAsAWholeWhenItIsWanted)
{
	constexpr int32 kFolders = 700; // three slices
	WideTree tree(kFolders);
	OutlineWindow it(tree.Ref("."));
	const auto complete = [&] {
		return it.window.Under([&] {
			FolderItem* wide = it.Find("wide");
			if (wide->Count() != kFolders || it.list->CountItemsUnder(wide, true) != kFolders)
				return false;
			for (int32 i = 1; i <= kFolders; i++) {
				const CLVListItem* row = it.list->ItemUnderAt(wide, true, i);
				if (static_cast<const FolderItem*>(row)->Name() != Numbered("f", i - 1))
					return false;
			}
			return true;
		});
	};
	EXPECT_TRUE(it.HasCount("wide", kFolders));
	EXPECT_TRUE(complete());
	// Whether it is read, half added or neither at that moment.
	for (int round = 0; round < 30; round++) {
		it.window.Under([&] {
			entry_ref root = tree.Ref(".");
			it.pane->SetRoot(&root);
			return 0;
		});
		for (int step = round % 10; step > 0; step--)
			it.window.Settle();
		it.Select("wide");
		ASSERT_TRUE(complete()) << round;
	}
}

// Rows that are queued, read or asked for go at any moment.
TEST(OutlineView, SurvivesNewRootsWhileItScans)
{
	WideTree tree(400);
	for (int i = 0; i < 20; i++)
		tree.Add(Numbered("deep/a", i) + "/b/c/d", Dir());
	OutlineWindow it(tree.Ref("."));
	const entry_ref roots[] = {tree.Ref("."), tree.Ref("wide"), tree.Ref("deep")};
	const entry_ref folders[] = {tree.Ref("wide/f0000/in"), tree.Ref("deep/a0010/b/c"),
		tree.Ref("deep/a0001"), tree.Ref(".")};
	Dice dice(20261121);
	for (int step = Rounds(400, 5000); step > 0; step--) {
		BMessage message;
		switch (dice(6)) {
			case 0:
				message.what = kMSG_Refresh;
				break;
			case 1:
			case 2:
				message.what = kMSG_SetFolder;
				message.AddRef(kName_Folder, &folders[dice(4)]);
				break;
			case 3:
				message.what = kMSG_ExpandSubItems;
				break;
			case 4:
				message.what = kMSG_ExpandThisItem;
				break;
			default:
				message.what = kMSG_OutlineInvocation;
				message.AddInt32("index", dice(50));
		}
		it.window.Under([&] {
			const int32 row = dice(it.list->FullListCountItems());
			message.AddPointer("item", it.Row(row));
			if (dice(3) == 0)
				it.list->Expand(it.Row(row));
			it.window->PostMessage(&message, it.pane);
			if (dice(4) == 0) {
				entry_ref root = roots[dice(3)];
				it.pane->SetRoot(&root);
			}
			return 0;
		});
		if (dice(3) == 0)
			it.window.Settle();
	}
	entry_ref root = tree.Ref("deep");
	it.Settle();
	it.Do([&] { it.pane->SetRoot(&root); });
	EXPECT_TRUE(it.HasCount("a0000", 1));
	EXPECT_EQ(it.window.Under([&] { return it.list->CountItems(); }), 21);
}

TEST(OutlineView, ClosesInTheMiddleOfAScan)
{
	WideTree tree(600);
	for (int round = 0; round < 20; round++) {
		OutlineWindow it(tree.Ref("."));
		if (round % 2 == 0)
			it.Select("wide");
		it.window.Under([&] {
			BMessage request(kMSG_ExpandSubItems);
			request.AddPointer("item", it.Find("wide"));
			return it.window->PostMessage(&request, it.pane);
		});
	}
	EXPECT_LT(find_thread("AddFolder"), 0);
}
