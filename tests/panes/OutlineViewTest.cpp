// SPDX-License-Identifier: MIT

// The tree of folders on real folders.

#include "panes/OutlineView.h"

#include "app/Messages.h"
#include "clv/ColumnListView.h"
#include "panes/FolderItem.h"

#include "tests/support/ListenedWindow.h"
#include "tests/support/TempTree.h"
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
			list = dynamic_cast<ColumnListView*>(view->FindView("outline"));
	}

	Lines Shown()
	{
		// Rows look for their sub-folders after they were drawn.
		for (int i = 0; i < 3; i++)
			window.Settle();
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
	template <typename Function>
	void Do(Function function)
	{
		window.Under([&] {
			function();
			return 0;
		});
		window.Settle();
	}
	std::string Selected()
	{
		return window.Under([&] {
			const int32 index = list->CurrentSelection();
			return index < 0 ? "" : static_cast<FolderItem*>(list->ItemAt(index))->Name();
		});
	}
	// The folders that the window was asked to show since the last call.
	Lines Asked()
	{
		Lines names;
		Shown();
		for (const BMessage& message : window->Take(kMSG_ChangeFolder)) {
			entry_ref ref;
			void* source = nullptr;
			EXPECT_EQ(message.FindRef(kName_Folder, &ref), B_OK);
			EXPECT_EQ(message.FindPointer("source", &source), B_OK);
			EXPECT_EQ(source, pane);
			names.push_back(ref.name);
		}
		return names;
	}

	entry_ref root;
	OutlineView* pane;
	ListenedWindow window;
	ColumnListView* list = nullptr;
};

// In a folder with a known name.
struct Tree : TempTree {
	Tree() :
		TempTree({{"root/a/b/c/d", Dir()}, {"root/a/file", Text()}, {"root/empty", Dir()},
			{"root/link", Link("a")}, {"root/file", Text()}, {"root/z/y", Dir()},
			{"outside", Dir()}})
	{}
};

} // namespace

TEST(OutlineView, ArrowsAreOneLevelAheadOfWhatIsSeen)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	EXPECT_EQ(it.Shown(), (Lines{"-root", "  +a", "  empty", "  +z"}));
	it.Do([&] { it.list->Expand(it.list->FullListItemAt(1)); });
	EXPECT_EQ(it.Shown(), (Lines{"-root", "  -a", "    +b", "  empty", "  +z"}));
	it.Do([&] { it.list->Expand(it.list->FullListItemAt(2)); });
	EXPECT_EQ(it.Shown(), (Lines{"-root", "  -a", "    -b", "      +c", "  empty", "  +z"}));
	// By a click on the arrow, too, which selects nothing.
	const BPoint arrow = it.window.Under([&] {
		const BRect row = it.list->ConvertToScreen(it.list->ItemFrame(1));
		return it.window->ConvertFromScreen(BPoint(row.left + 32, (row.top + row.bottom) / 2));
	});
	it.window.User().Click(arrow.x, arrow.y);
	EXPECT_EQ(it.Shown(), (Lines{"-root", "  +a", "  empty", "  +z"}));
	EXPECT_EQ(it.Selected(), "");
	EXPECT_EQ(it.Asked(), Lines{});
}

TEST(OutlineView, ASelectedFolderIsAskedForOnce)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	it.Shown();
	it.Do([&] { it.list->Select(3); });
	EXPECT_EQ(it.Asked(), Lines{"z"});
	// The other panes show it already.
	const entry_ref empty = tree.Ref("root/empty");
	it.Do([&] { it.pane->SetFolder(empty); });
	EXPECT_EQ(it.Selected(), "empty");
	EXPECT_EQ(it.Asked(), Lines{});
	it.Do([&] { it.list->Select(1); });
	BMessage invoked(kMSG_OutlineInvocation);
	invoked.AddInt32("index", 2);
	it.window->PostMessage(&invoked, it.pane);
	EXPECT_EQ(it.Asked(), (Lines{"a", "empty"}));
	invoked.ReplaceInt32("index", 99);
	it.window->PostMessage(&invoked, it.pane);
	EXPECT_EQ(it.Asked(), Lines{});
}

TEST(OutlineView, OpensTheWayToAFolderThatIsShown)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	it.Do([&] { it.pane->SetFolder(tree.Ref("root/a/b/c")); });
	EXPECT_EQ(it.Selected(), "c");
	EXPECT_EQ(
		it.Shown(), (Lines{"-root", "  -a", "    -b", "      -c", "        d", "  empty", "  +z"}));
	it.Do([&] { it.pane->SetFolder(tree.Ref("root/link")); });
	EXPECT_EQ(it.Selected(), "a");
	for (const char* path : {"outside", "root/file"}) {
		it.Do([&] { it.pane->SetFolder(tree.Ref(path)); });
		EXPECT_EQ(it.Selected(), "") << path;
	}
	it.Do([&] { it.pane->SetFolder(tree.Ref("root")); });
	EXPECT_EQ(it.Selected(), "root");
	EXPECT_EQ(it.Asked(), Lines{});
}

TEST(OutlineView, ANewRootReplacesAllRows)
{
	Tree tree;
	OutlineWindow it(tree.Ref("root"));
	it.Shown();
	// A request of a row that is gone by the time it is read.
	BMessage request(kMSG_ExpandThisItem);
	request.AddPointer("item", it.list->FullListItemAt(3));
	entry_ref root = tree.Ref("root/a");
	it.Do([&] {
		it.window->PostMessage(&request, it.pane);
		it.pane->SetRoot(&root);
	});
	EXPECT_EQ(it.Shown(), (Lines{"-a", "  +b"}));
	EXPECT_EQ(it.Selected(), "a");
	EXPECT_EQ(it.Asked(), Lines{"a"});
}

TEST(OutlineView, RootsThatAreNoFoldersHaveARowAndNoArrow)
{
	Tree tree;
	tree.Add("root/loop", Link("loop"));
	entry_ref missing = tree.Ref("root/file");
	missing.set_name("missing");
	EXPECT_EQ(OutlineWindow(tree.Ref("root/file")).Shown(), Lines{"file"});
	EXPECT_EQ(OutlineWindow(tree.Ref("root/loop")).Shown(), Lines{"loop"});
	EXPECT_EQ(OutlineWindow(missing).Shown(), Lines{"missing"});
	EXPECT_EQ(OutlineWindow(tree.Ref("root/link")).Shown(), (Lines{"-a", "  +b"}));
}
