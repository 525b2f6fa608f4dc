// SPDX-License-Identifier: MIT

// The program's window on real folders: its layout, its routing, its start and end.

#include "app/Korva.h"
#include "app/Messages.h"
#include "clv/ColumnListView.h"
#include "panes/FileListItem.h"

#include <app/MessageFilter.h>

#include "tests/support/Inject.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestWindow.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace {

using Notes = std::vector<std::string>;

std::string
CodeText(uint32 code)
{
	return {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
		static_cast<char>(code >> 8), static_cast<char>(code)};
}

// Notes the routed messages that its view gets, as "view code".
class Watch : public BMessageFilter {
public:
	Watch(const char* name, Notes* notes) :
		BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE), fName(name), fNotes(notes)
	{}
	filter_result Filter(BMessage* message, BHandler**) override
	{
		for (uint32 code : {uint32(kMSG_SetFolder), uint32(B_PASTE), uint32(B_SELECT_ALL)}) {
			if (message->what == code)
				fNotes->push_back(fName + " " + CodeText(code));
		}
		return B_DISPATCH_MESSAGE;
	}

private:
	std::string fName;
	Notes* fNotes;
};

class CountingApp : public BApplication {
public:
	CountingApp() : BApplication(KorvaApp::kSignature) {}
	void AboutRequested() override
	{
		abouts++;
		Quit();
	}
	int abouts = 0;
};

class KorvaWindowTest : public testing::Test {
protected:
	KorvaWindowTest() : root(tree.Ref(".")), window(new KorvaWindow(BRect(50, 75, 550, 550), &root))
	{
		top = window->ChildAt(0);
		outline = window->ChildAt(1);
		items = window->ChildAt(2);
		bar = window->ChildAt(3);
		top->AddFilter(new Watch("top", &notes));
		outline->AddFilter(new Watch("outline", &notes));
		items->AddFilter(new Watch("items", &notes));
		window->Show();
		Settle();
	}
	~KorvaWindowTest() override
	{
		EXPECT_TRUE(window->Lock());
		window->Quit();
	}

	// Returns when all that was posted, and what it posted in turn, was handled and painted. From
	// a click to a folder that is shown, and that the tree has selected and told of, there are
	// eight.
	void Settle()
	{
		for (int i = 0; i < 10; i++) {
			BMessage sync('sync'), reply;
			ASSERT_EQ(B_OK, BMessenger(nullptr, window).SendMessage(&sync, &reply));
			Locked painted(window);
		}
	}

	Notes Route(BMessage message)
	{
		notes.clear();
		window->PostMessage(&message);
		Settle();
		return notes;
	}

	BMessage Change(const void* source, const char* folder)
	{
		BMessage message(kMSG_ChangeFolder);
		entry_ref ref = tree.Ref(folder);
		message.AddRef(kName_Folder, &ref);
		if (source != nullptr)
			message.AddPointer("source", source);
		return message;
	}

	static ColumnListView* ListIn(BView* pane)
	{
		for (int32 i = 0; i < pane->CountChildren(); i++) {
			BView* child = pane->ChildAt(i);
			ColumnListView* list = dynamic_cast<ColumnListView*>(child);
			if (list != nullptr || (list = ListIn(child)) != nullptr)
				return list;
		}
		return nullptr;
	}

	// The names of its visible rows.
	Notes Rows(BView* pane)
	{
		Locked lock(window);
		const ColumnListView* list = ListIn(pane);
		Notes rows;
		for (int32 i = 0; i < list->CountItems(); i++)
			rows.push_back(dynamic_cast<const FileListItem*>(list->ItemAt(i))->Name());
		return rows;
	}

	TempTree tree{{"b dir/inside", Text()}, {"a dir", Dir()}, {"file", Text("x")},
		{"odd\xff\nname", Text()}, {"link", Link("a dir")}};
	entry_ref root;
	Notes notes;
	CountingApp app;
	KorvaWindow* window;
	BView* top;
	BView* outline;
	BView* items;
	BView* bar;
};

} // namespace

TEST_F(KorvaWindowTest, PanesLieWhereTheyBelongAndFollowTheWindow)
{
	float third = 500 / 3.0f;
	EXPECT_STREQ("Korva", window->Title());
	EXPECT_EQ(4, window->CountChildren());
	EXPECT_EQ(BRect(0, 0, 500, 26), top->Frame());
	EXPECT_EQ(BRect(0, 27, third, 475), outline->Frame());
	EXPECT_EQ(BRect(third + 1, 27, third + 6, 475), bar->Frame());
	EXPECT_EQ(BRect(third + 7, 27, 500, 475), items->Frame());
	EXPECT_STREQ("bar", bar->Name());

	InjectedUser("Korva").Resize(701, 576);
	Settle();
	EXPECT_EQ(BRect(0, 0, 700, 26), top->Frame());
	EXPECT_EQ(BRect(0, 27, third, 575), outline->Frame());
	EXPECT_EQ(BRect(third + 1, 27, third + 6, 575), bar->Frame());
	EXPECT_EQ(BRect(third + 7, 27, 700, 575), items->Frame());
}

TEST_F(KorvaWindowTest, AFolderChangeIsToldToAllButItsSource)
{
	EXPECT_EQ(Notes({"top SFld", "items SFld"}), Route(Change(outline, "a dir")));
	// The tree selects the folder's row and says so in turn.
	EXPECT_EQ(Notes({"items SFld", "outline SFld", "top SFld", "items SFld"}),
		Route(Change(top, "a dir")));
	EXPECT_EQ(Notes({"top SFld", "items SFld", "outline SFld", "top SFld", "items SFld"}),
		Route(Change(items, "b dir")));
	EXPECT_EQ(Notes({"inside"}), Rows(items));
	EXPECT_EQ(Notes({}), Route(Change(nullptr, "a dir")));
	EXPECT_EQ(Notes({"inside"}), Rows(items));
}

TEST_F(KorvaWindowTest, PasteAndSelectAllGoToTheRightPane)
{
	EXPECT_EQ(Notes({"items PSTE"}), Route(BMessage(B_PASTE)));
	EXPECT_EQ(Notes({"items SALL"}), Route(BMessage(B_SELECT_ALL)));
}

TEST_F(KorvaWindowTest, ANewRootFillsTheTreeAndARefreshReadsAgain)
{
	const std::string name = root.name;
	EXPECT_EQ(Notes({name, "a dir", "b dir"}), Rows(outline));
	BMessage setRoot(kMSG_SetRoot);
	Route(setRoot); // without a folder: nothing
	EXPECT_EQ(Notes({name, "a dir", "b dir"}), Rows(outline));
	tree.Add("b dir/deeper", Dir());
	entry_ref folder = tree.Ref("b dir");
	setRoot.AddRef(kName_Folder, &folder);
	Route(setRoot);
	EXPECT_EQ(Notes({"b dir", "deeper"}), Rows(outline));
	EXPECT_EQ(Notes({"deeper", "inside"}), Rows(items));

	Route(Change(top, "."));
	EXPECT_EQ(Notes({"a dir", "b dir", "file", "link", "odd\xff\nname"}), Rows(items));
	tree.Remove("file");
	Route(BMessage(kMSG_Refresh));
	EXPECT_EQ(Notes({"a dir", "b dir", "link", "odd\xff\nname"}), Rows(items));
}

// The tree lists the folder in the window's thread, before the right pane has heard of the change.
TEST_F(KorvaWindowTest, WhatTheTreeReadsFirstIsSeenOnTheRightToo)
{
	for (const char* names : {"a dir>c dir", "c dir>a dir", "a dir>c dir"}) {
		const std::string from(names, 5), to(names + 6);
		{
			Locked lock(window);
			tree.Rename(from, to);
			window->PostMessage(kMSG_Refresh, outline);
		}
		EXPECT_TRUE(WaitUntil([&] {
			const Notes rows = Rows(items);
			return std::count(rows.begin(), rows.end(), to) == 1 &&
				std::count(rows.begin(), rows.end(), from) == 0;
		})) << to;
	}
}

TEST_F(KorvaWindowTest, ClicksChooseFoldersAndDoubleClicksEnterThem)
{
	InjectedUser user("Korva");
	// Of a name: behind arrow and icon, or the icon's column.
	auto nameOf = [&](BView* pane, int32 row) {
		Locked lock(window);
		ColumnListView* list = ListIn(pane);
		BRect frame = list->ConvertToScreen(list->ItemFrame(row));
		return window->ConvertFromScreen(BPoint(frame.left + 70, (frame.top + frame.bottom) / 2));
	};
	BPoint second = nameOf(outline, 2);
	user.Click(second.x, second.y);
	Settle();
	EXPECT_EQ(Notes({"inside"}), Rows(items));
	// From the right the tree follows, and tells of the row that it has selected.
	Route(Change(top, "."));
	notes.clear();
	BPoint first = nameOf(items, 0);
	user.Click(first.x, first.y);
	user.Click(first.x, first.y);
	Settle();
	EXPECT_EQ(Notes({}), Rows(items));
	EXPECT_EQ(Notes({"top SFld", "items SFld", "outline SFld", "top SFld", "items SFld"}), notes);
	Locked lock(window);
	EXPECT_EQ(1, ListIn(outline)->CurrentSelection());
}

TEST_F(KorvaWindowTest, AboutIsTheApplicationsBusiness)
{
	window->PostMessage(B_ABOUT_REQUESTED);
	app.Run(); // AboutRequested() ends it
	EXPECT_EQ(1, app.abouts);
}

namespace {

// Runs the program on `root` until its window, closed by a user, has ended it.
void
OpenAndClose(const char* root)
{
	KorvaApp program(root);
	std::thread user([] { InjectedUser("Korva").Close(); });
	program.Run();
	user.join();
}

} // namespace

TEST(KorvaProgram, ClosingTheWindowEndsTheProgramWhateverTheRootIs)
{
	TempTree tree{{"loop", Link("loop")}, {"file", Text()}};
	Variable home("HOME", tree.Path().c_str());
	for (const std::string& path : {tree.Path(), tree.Path("loop"), tree.Path("file"),
			 tree.Path("missing"), std::string(), std::string("\xff\xfe")})
		OpenAndClose(path.c_str());
	OpenAndClose(nullptr);
	EXPECT_EQ(nullptr, be_app);
}
