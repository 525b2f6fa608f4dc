// SPDX-License-Identifier: MIT

// The list of files under its user's hands: presses, both menus, renaming in place, keys, the
// rubber band, drags and drops, the clipboard.

#include "app/Messages.h"
#include "panes/ItemColumns.h"

#include <app/Clipboard.h>
#include <app/MessagePrivate.h>
#include <interface/MenuItem.h>
#include <interface/MenuSession.h>
#include <interface/Modal.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "tests/panes/ContextMenu.h"
#include "tests/panes/ItemListWindow.h"
#include "tests/support/LongRun.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

constexpr uint32 kLit = 0xff6c6c6c;
constexpr uint32 kSecondary = B_SECONDARY_MOUSE_BUTTON;

typedef std::vector<std::string> Strings;

class FileList : public testing::Test {
protected:
	FileList() : user(it.window.User())
	{
		user.Activate();
		user.Move(1, 1);
		it.window.Settle();
	}
	~FileList() override
	{
		BPrivate::CloseOpenMenu();
		BPrivate::CloseAllAlerts(); // of what could not be launched
		user.Move(1, 1);
		EXPECT_TRUE(WaitUntil([] { return find_thread("MouseDragOrPopupWatcher") < 0; }));
	}

	int32 Row(const std::string& name)
	{
		const Strings names = it.Names();
		auto found = std::find(names.begin(), names.end(), name);
		EXPECT_NE(found, names.end()) << name;
		return static_cast<int32>(found - names.begin());
	}
	BPoint Place(const std::string& name, int32 column = kNameColumn)
	{
		const BRect cell = it.Cell(Row(name), column);
		return BPoint(cell.left + 2 + NextStep(), (cell.top + cell.bottom) / 2);
	}
	BPoint EmptyPlace() { return BPoint(200 + NextStep(), 250); }
	// Clicks at one place would be double clicks.
	float NextStep() { return fStep = fStep > 0 ? 0 : 10; }

	Strings Selected()
	{
		return it.window.Under([&] {
			Strings names;
			for (int32 i = 0, index; (index = it.list->CurrentSelection(i)) >= 0; i++)
				names.push_back(it.list->RowAt(index)->Name());
			return names;
		});
	}
	void Select(const Strings& names)
	{
		it.Do([&] { it.list->DeselectAll(); });
		for (const std::string& name : names) {
			const int32 row = Row(name);
			it.Do([&] { it.list->Select(row, true); });
		}
	}

	void Choose(const char* menu, BPoint where, int32 steps)
	{
		::Choose(it.window, menu, where, steps);
	}
	void ChooseForRow(const std::string& name, int32 steps)
	{
		Choose("iContextMenu", Place(name), steps);
	}

	BView* Editor()
	{
		return it.window.Under([&] { return it.list->FindView("editname"); });
	}
	// By the menu of a file's row, whose fourth row that can be chosen is "Rename".
	void StartRename(const std::string& name)
	{
		ChooseForRow(name, 4);
		EXPECT_TRUE(WaitUntil([&] { return Editor() != nullptr; }));
	}
	void Type(const std::string& text)
	{
		for (char key : text)
			user.Key(std::string(1, key));
	}
	void ExpectNames(const Strings& names)
	{
		if (!WaitUntil([&] { return it.Names() == names; })) {
			EXPECT_EQ(it.Names(), names);
		}
		EXPECT_EQ(tree.List(), Names(names));
	}
	void PutOnClipboard(const char* name)
	{
		BMessage copy(B_COPY);
		Select({name});
		it.window->PostMessage(&copy, it.pane);
		it.window.Settle();
	}

	// Presses on a row and moves over "dir" until that lights up.
	void DragOverDir(const std::string& name, uint32 button = B_PRIMARY_MOUSE_BUTTON)
	{
		user.AllowDrags();
		const BRect dir = it.Cell(Row("dir"), kNameColumn);
		const BPoint from = Place(name);
		user.Move(from.x, from.y);
		user.Press(from.x, from.y, button);
		// Whoever holds a secondary button still means the menu, and who looks every 50 ms may see
		// the same of two places each time. Nothing may wait for the window: with a menu open it
		// answers nobody.
		float place = 5;
		EXPECT_TRUE(WaitUntil([&] {
			place = place < 17 ? place + 2 : 5;
			drop = BPoint(dir.left + place, dir.top + 5);
			for (int i = 1; i < 6; i++)
				user.Move(from.x + static_cast<float>(i), from.y);
			user.Move(drop.x, drop.y);
			return CountPixels(it.window->Snapshot(), dir, kLit) > 20;
		}));
	}

	TempTree tree{
		{"dir/inside", Text()}, {"m", Text("one")}, {"n", Text("two")}, {"o", Text("three")}};
	ItemListWindow it{tree};
	InjectedUser& user;
	BPoint drop;

private:
	float fStep = 0;
};

} // namespace

TEST_F(FileList, PressesSelectOnIconAndNameOnly)
{
	for (int32 column : {kIconColumn, kNameColumn}) {
		Select({});
		const BPoint place = Place("m", column);
		user.Click(place.x, place.y);
		it.window.Settle();
		EXPECT_EQ(Selected(), Strings{"m"});
	}
	const BPoint kind = Place("n", kKindColumn);
	user.Click(kind.x, kind.y);
	EXPECT_TRUE(WaitUntil([] { return find_thread("MouseDragOrPopupWatcher") < 0; }));
	it.window.Settle();
	EXPECT_EQ(Selected(), Strings{"m"});
	user.Click(200, 250);
	EXPECT_TRUE(WaitUntil([&] { return Selected().empty(); }));
}

TEST_F(FileList, HoldingOpensTheMenuAndCommandAtOnce)
{
	const BPoint kind = Place("n", kKindColumn);
	user.Press(kind.x, kind.y);
	InjectedUser("iContextMenu").KeyDown(std::string(1, B_ESCAPE));
	user.Release(kind.x, kind.y);
	it.window.Settle();
	user.Move(kind.x, kind.y, B_COMMAND_KEY);
	user.Press(200, 250, B_PRIMARY_MOUSE_BUTTON, B_COMMAND_KEY);
	InjectedUser("eContextMenu").KeyDown(std::string(1, B_ESCAPE));
	user.Release(200, 250);
	user.Move(1, 1);
	it.window.Settle();
	EXPECT_LT(find_thread("MouseDragOrPopupWatcher"), 0);
}

TEST_F(FileList, AMenuOffersWhatCanBeDone)
{
	const Strings row{
		"Open", "", "Cut", "Copy", "Paste", "Paste Link", "", "Rename", "Delete", "Refresh"};
	const Strings space{"Paste", "Paste Link", "", "Refresh", "About"};
	const auto expect = [&](bool canPaste) {
		const Strings pasting{
			"Open", "Cut", "Copy", "Paste", "Paste Link", "Rename", "Delete", "Refresh"};
		const Strings others{"Open", "Cut", "Copy", "Rename", "Delete", "Refresh"};
		EXPECT_EQ(
			CanBeChosen(it.window, "iContextMenu", Place("dir"), row), canPaste ? pasting : others);
		EXPECT_EQ(CanBeChosen(it.window, "iContextMenu", Place("n"), row), others);
		EXPECT_EQ(CanBeChosen(it.window, "eContextMenu", EmptyPlace(), space),
			canPaste ? Strings({"Paste", "Paste Link", "Refresh", "About"})
					 : Strings({"Refresh", "About"}));
	};
	InjectedUser::PutOnClipboard({{"text/plain", "m"}});
	expect(false);
	PutOnClipboard("m");
	expect(true);
	tree.Remove("m");
	ExpectNames({"dir", "n", "o"});
	expect(false);
	tree.Add("m", Link("nowhere")); // is there, wherever it leads
	ExpectNames({"dir", "m", "n", "o"});
	expect(true);
}

// The rows move between the press and the watcher's report.
TEST_F(FileList, AMenuIsThatOfThePressedRow)
{
	for (bool moves : {false, true}) {
		it.window.Under([&] {
			const BRect row = it.list->ItemFrame(2);
			it.list->MouseDown(BPoint(row.left + 30, row.top + 5));
			if (moves)
				it.list->ReverseSortMode(kNameColumn);
			return 0;
		});
		EXPECT_TRUE(WaitUntil([] { return find_thread("MouseDragOrPopupWatcher") < 0; }));
		const auto isOpen = [] { return find_thread("iContextMenu") >= 0; };
		it.window->PostMessage('past'); // is handled at once when there is no menu
		EXPECT_TRUE(WaitUntil([&] { return isOpen() || !it.window->Take('past').empty(); }));
		EXPECT_EQ(isOpen(), !moves);
		if (isOpen()) {
			InjectedUser("iContextMenu").KeyDown(std::string(1, B_ESCAPE));
			EXPECT_TRUE(WaitUntil([&] { return !isOpen(); }));
		}
	}
}

TEST_F(FileList, TheMenuOfTheFolderPastesCopiesAndLinks)
{
	PutOnClipboard("m");
	Choose("eContextMenu", EmptyPlace(), 1);
	ExpectNames({"Copy of m", "dir", "m", "n", "o"});
	Choose("eContextMenu", EmptyPlace(), 2);
	ExpectNames({"Copy of m", "dir", "Link to m", "m", "n", "o"});
	tree.Remove("Copy of m");
	tree.Remove("Link to m");
	// Without a file to paste the first row is "Refresh", which leaves all as it is.
	InjectedUser::PutOnClipboard({{"text/plain", "m"}});
	Choose("eContextMenu", EmptyPlace(), 1);
	ExpectNames({"dir", "m", "n", "o"});
	Choose("eContextMenu", EmptyPlace(), 2);
	EXPECT_TRUE(WaitUntil([&] { return !it.window->Take(B_ABOUT_REQUESTED).empty(); }));
}

TEST_F(FileList, TheMenuOfARowOpensCutsAndDeletes)
{
	Choose("iContextMenu", Place("dir"), 1);
	std::vector<BMessage> changes;
	ASSERT_TRUE(WaitUntil([&] { return !(changes = it.window->Take(kMSG_ChangeFolder)).empty(); }));
	entry_ref ref;
	EXPECT_EQ(changes[0].FindRef(kName_Folder, &ref), B_OK);
	EXPECT_STREQ(ref.name, "dir");

	ChooseForRow("n", 2); // "Cut"
	entry_ref folder = tree.Ref("dir");
	it.Do([&] { it.pane->SetFolder(&folder, false); });
	Choose("eContextMenu", EmptyPlace(), 1);
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == Strings{"inside", "n"}; }));
	EXPECT_EQ(tree.List(), Names({"dir", "m", "o"}));
	// It was cut once.
	BMenuItem paste("Paste", nullptr), link("Paste Link", nullptr);
	TestClipboard(&ref, &paste, &link);
	EXPECT_FALSE(paste.IsEnabled());
}

TEST_F(FileList, DeletesIntoTheTrashAndThereForGood)
{
	Variable data("XDG_DATA_HOME", tree.Path("data").c_str());
	tree.Add("data", Dir());
	BPath path;
	ASSERT_EQ(find_directory(B_TRASH_DIRECTORY, &path, true), B_OK);
	it.Do([&] { it.pane->Refresh(); });
	Select({"m", "o"});
	user.Key(std::string(1, B_DELETE));
	ExpectNames({"data", "dir", "n"});
	ChooseForRow("n", 5);
	ExpectNames({"data", "dir"});
	EXPECT_EQ(tree.List("data/Trash/files"), Names({"m", "n", "o"}));

	entry_ref trash;
	ASSERT_EQ(get_ref_for_path(path.Path(), &trash), B_OK);
	it.Do([&] { it.pane->SetFolder(&trash, false); });
	Select({"m", "n"});
	user.Key(std::string(1, B_DELETE));
	EXPECT_TRUE(WaitUntil([&] { return it.Names() == Strings{"o"}; }));
	EXPECT_EQ(tree.List("data/Trash/files"), Names({"o"}));
	EXPECT_EQ(tree.List("data/Trash/info"), Names({"o.trashinfo"}));
}

TEST_F(FileList, RenamesInPlace)
{
	const std::string end(1, B_END), enter(1, B_ENTER), escape(1, B_ESCAPE), del(1, B_DELETE);
	const std::string longest(255, 'w'), odd = "\xff\xfe";
	tree.Add(longest, Text());
	tree.Add(odd, Text());
	const struct {
		std::string from, keys, to;
	} cases[] = {{"n", "new/r" + enter, "newr"},                       // no name holds a slash
		{"newr", "x" + escape, "newr"}, {"newr", "m" + enter, "newr"}, // nor is a file replaced
		{"newr", del + enter, "newr"}, {"newr", ".." + enter, "newr"},
		{longest, end + "x" + enter, longest},
		{longest, end + "\b" + "x" + enter, longest.substr(1) + "x"}, {odd, enter, odd},
		{odd, end + "x" + enter, odd + "x"}};
	for (const auto& each : cases) {
		StartRename(each.from);
		Type(each.keys);
		EXPECT_TRUE(WaitUntil([&] { return Editor() == nullptr; }));
		EXPECT_TRUE(WaitUntil([&] {
			const Strings names = it.Names();
			return std::count(names.begin(), names.end(), each.to) == 1;
		})) << each.from
			<< each.keys;
	}
	it.Do([&] { it.list->ScrollTo(BPoint(60, 5)); });
	Choose("iContextMenu", Place("newr", kKindColumn), 4);
	const BRect editor = it.window.Under([&] { return it.list->FindView("editname")->Frame(); });
	EXPECT_TRUE(it.window.Under([&] { return it.list->Bounds().Contains(editor); }));
	// A press elsewhere takes what was typed.
	Type("z");
	user.Click(200, 250);
	ExpectNames({"dir", "m", "o", longest.substr(1) + "x", "z", odd + "x"});
	EXPECT_EQ(tree.Read("m"), "one");
	// The keys are the list's again.
	EXPECT_TRUE(it.window.Under([&] { return it.list->IsFocus(); }));
}

// By the menu that opens at once, so that the first name has not been taken yet.
TEST_F(FileList, AnotherRowIsRenamedBeforeTheFirstOneIs)
{
	const auto rename = [&](const std::string& name) {
		::Choose(it.window, "iContextMenu", Place(name, kIconColumn), 4, true);
	};
	StartRename("m");
	Type("p");
	rename("n");
	ExpectNames({"dir", "n", "o", "p"});
	Type("q");
	rename("n"); // and the same one again
	ExpectNames({"dir", "o", "p", "q"});
	Type("r");
	user.Key(std::string(1, B_ENTER));
	ExpectNames({"dir", "o", "p", "r"});
	EXPECT_TRUE(WaitUntil([&] { return Editor() == nullptr; }));
	EXPECT_EQ(tree.Read("r"), "two");
}

TEST_F(FileList, TheEditorFollowsItsRowAndGoesWithIt)
{
	const auto isOverRow = [&](const char* name) {
		BView* editor = Editor();
		const int32 row = Row(name);
		return editor != nullptr && it.window.Under([&] {
			const BRect frame = it.list->ItemFrame(row);
			return editor->Frame().top == frame.top && editor->Frame().bottom == frame.bottom;
		});
	};
	StartRename("n");
	EXPECT_TRUE(isOverRow("n"));
	tree.Add("a", Text());
	ExpectNames({"a", "dir", "m", "n", "o"});
	EXPECT_TRUE(WaitUntil([&] { return isOverRow("n"); }));
	it.Do([&] { it.list->ReverseSortMode(kNameColumn); });
	EXPECT_TRUE(isOverRow("n"));
	tree.Remove("o");
	EXPECT_TRUE(WaitUntil([&] { return it.Names().size() == 4; }));
	EXPECT_TRUE(isOverRow("n"));
	tree.Remove("n");
	EXPECT_TRUE(WaitUntil([&] { return Editor() == nullptr; }));

	StartRename("m"); // and with its folder, without renaming
	Type("x");
	entry_ref folder = tree.Ref("dir");
	it.Do([&] { it.pane->SetFolder(&folder, false); });
	EXPECT_EQ(Editor(), nullptr);
	EXPECT_EQ(tree.List(), Names({"a", "dir", "m"}));
}

// Two presses make the editor tell twice; others may say what they like.
TEST_F(FileList, AnEditorThatIsGoneSaysNothing)
{
	StartRename("n");
	BMessage invoke(kMSG_TextEditInvoke);
	entry_ref ref = tree.Ref("n");
	invoke.AddRef(kName_Refs, &ref);
	invoke.AddString("text", "p");
	it.window->PostMessage(&invoke, it.list); // of nobody
	invoke.AddPointer("view", Editor());
	it.window.Under([&] {
		it.window->PostMessage(&invoke, it.list);
		ref.set_name("m");
		invoke.ReplaceRef(kName_Refs, &ref);
		invoke.ReplaceString("text", "q");
		it.window->PostMessage(&invoke, it.list);
		return 0;
	});
	ExpectNames({"dir", "m", "o", "p"});
	it.window.Settle();
	ExpectNames({"dir", "m", "o", "p"});
}

TEST_F(FileList, TheRubberBandSelectsWhatItSpans)
{
	const InjectedUser::Picture before = it.window->Snapshot();
	const BPoint to = Place("n", kModifiedColumn);
	const int32 right = 380, bottom = 250;
	const BRect start(right, bottom, right, bottom + 20), edge(right - 60, 150, right - 60, 240);
	const auto changed = [&](BRect area) {
		const InjectedUser::Picture now = it.window->Snapshot();
		for (int32 y = static_cast<int32>(area.top); y <= static_cast<int32>(area.bottom); y++) {
			if (now.At(static_cast<int32>(area.left), y) !=
				before.At(static_cast<int32>(area.left), y))
				return true;
		}
		return false;
	};
	// Where the band begins is where the pointer is at the first look after the press.
	const auto begin = [&](const BRect& line) {
		float step = 0;
		user.Press(line.left, line.top);
		EXPECT_TRUE(WaitUntil([&] {
			user.Move(line.left, line.top + (step = step == 10 ? 20 : 10));
			return changed(line);
		}));
	};
	begin(start);
	user.Move(right - 60, to.y);
	EXPECT_TRUE(WaitUntil([&] { return changed(edge); }));
	user.Release(right - 60, to.y);
	EXPECT_TRUE(WaitUntil([&] { return Selected() == Strings{"n", "o"}; }));
	it.window.Settle();
	EXPECT_FALSE(changed(start) || changed(edge)); // it has gone

	begin(start.OffsetByCopy(-30, 0));     // at the same place it would be a double click
	user.Release(right - 30, bottom + 20); // beside all rows
	EXPECT_TRUE(WaitUntil([&] { return Selected().empty(); }));
}

TEST_F(FileList, ADragOntoAFolderMovesWhatIsSelected)
{
	Select({"m", "o"});
	DragOverDir("o");
	user.Release(drop.x, drop.y);
	ExpectNames({"dir", "n"});
	EXPECT_EQ(tree.List("dir"), Names({"inside", "m", "o"}));
}

TEST_F(FileList, AnUnselectedRowIsDraggedAlone)
{
	Select({"m", "o"});
	DragOverDir("n", kSecondary); // a press that does not select
	user.Release(drop.x, drop.y, kSecondary);
	InjectedUser menu("File"); // asks
	EXPECT_TRUE(WaitUntil([&] { return menu.Snapshot().width > 0; }));
	menu.Key("m");
	menu.KeyDown(std::string(1, B_ENTER));
	ExpectNames({"dir", "m", "o"});
	EXPECT_EQ(tree.List("dir"), Names({"inside", "n"}));
}

// The rows move before the drop, and before they can be seen at their new places.
TEST_F(FileList, ADropMeansTheFolderThatLitUp)
{
	Strings names = {"dir", "m", "n", "o"};
	for (float step : {0.0f, 3.0f}) { // the pointer rests, or moves once more
		DragOverDir("m");
		it.window.Under([&] {
			names.insert(names.begin(), step == 0 ? "b" : "a");
			tree.Add(names[0], Dir());
			it.pane->SetFolder(nullptr, true); // now that one is the first row
			user.Release(drop.x + step, drop.y);
			return 0;
		});
		it.window.Settle();
		EXPECT_TRUE(WaitUntil([] { return find_thread("move") < 0; }));
		ExpectNames(names);
		EXPECT_TRUE(tree.List(names[0]).empty());
	}
}

namespace {

// Many enough that they are begun in several steps.
struct ManyFiles {
	ManyFiles()
	{
		for (int i = 0; i < count; i++) {
			tree.Add(std::to_string(i), Text());
			uris += "file://" + tree.Path(std::to_string(i)) + "\n";
		}
	}

	// Looks for one only: listing a folder again and again holds up who works there.
	bool AreIn(const TempTree& other, const std::string& folder) const
	{
		return WaitUntil([&] {
			return BEntry(other.Path(folder + "/" + std::to_string(count - 1)).c_str()).Exists();
		});
	}

	const int count = Rounds(1000, 20000);
	TempTree tree;
	std::string uris;
};

} // namespace

TEST_F(FileList, KeysAtTheDropCountForAllFilesWhateverBecomesOfTheWindow)
{
	const ManyFiles from;
	tree.Add("left", Dir());
	ExpectNames({"dir", "left", "m", "n", "o"});
	it.window.Settle();
	auto other = std::make_unique<ItemListWindow>(tree);
	InjectedUser others = other->window.User();
	for (bool isLeft : {false, true}) {
		const std::string folder = isLeft ? "left" : "dir";
		const BPoint to = Place(folder);
		InjectedUser& dropper = isLeft ? others : user;
		dropper.Move(to.x, to.y, B_SHIFT_KEY);
		EXPECT_TRUE(dropper.Drop(to.x, to.y, {{"text/uri-list", from.uris}}, B_SHIFT_KEY));
		ASSERT_TRUE(WaitUntil([&] { return BEntry(tree.Path(folder + "/0").c_str()).Exists(); }));
		if (isLeft)
			other.reset();
		user.Move(1, 1); // the key is let go
		ASSERT_TRUE(from.AreIn(tree, folder));
		EXPECT_GE(tree.List(folder).size(), static_cast<size_t>(from.count));
	}
	EXPECT_EQ(from.tree.List().size(), static_cast<size_t>(from.count)); // linked, none was moved
}

TEST_F(FileList, ACutIsPastedOnceThoughItsFilesAreMany)
{
	ManyFiles from;
	InjectedUser::PutOnClipboard({{"x-special/gnome-copied-files", "cut\n" + from.uris}});
	BMessage paste(B_PASTE), links(kMSG_CreateLink);
	const entry_ref linked = tree.Ref("m");
	for (int i = 0; i < 200; i++) // for each a name is looked for among all before
		links.AddRef(kName_Refs, &linked);
	BPrivate::MessageAccess::SetDropped(links, true);
	it.window.Under([&] {
		it.list->RefsAdded(&links); // the pastes have to wait for those
		it.list->RefsAdded(&paste);
		it.list->RefsAdded(&paste);
		return 0;
	});
	// The first one has begun: there is nothing left for others.
	ASSERT_TRUE(WaitUntil([&] { return BEntry(tree.Path("0").c_str()).Exists(); }));
	from.tree.Add("0", Text("another"));
	EXPECT_TRUE(InjectedUser::Clipboard().empty());
	ASSERT_TRUE(from.AreIn(tree, "."));
	it.window.Settle();
	EXPECT_TRUE(WaitUntil([] { return find_thread("move") < 0; }));
	EXPECT_EQ(from.tree.List(), Names({"0"}));

	BMessage neither(kMSG_DragFile);
	neither.AddRef(kName_Refs, &linked);
	ASSERT_TRUE(be_clipboard->Lock());
	*be_clipboard->Data() = neither;
	be_clipboard->Commit();
	be_clipboard->Unlock();
	entry_ref folder = tree.Ref("dir");
	it.Do([&] {
		it.pane->SetFolder(&folder, false);
		it.list->RefsAdded(&paste);
	});
	EXPECT_EQ(tree.List("dir"), Names({"inside"}));
}

TEST_F(FileList, FilesGoIntoTheFolderThatWasMeantWhateverItsNameIsByThen)
{
	const ManyFiles from;
	InjectedUser::PutOnClipboard({{"x-special/gnome-copied-files", "cut\n" + from.uris}});
	BMessage paste(B_PASTE);
	entry_ref folder = tree.Ref("dir");
	it.Do([&] {
		it.pane->SetFolder(&folder, false);
		it.list->RefsAdded(&paste);
		tree.Rename("dir", "meant"); // most files are still to come
		tree.Add("dir", Dir());
	});
	ASSERT_TRUE(from.AreIn(tree, "meant"));
	EXPECT_TRUE(WaitUntil([] { return find_thread("move") < 0; }));
	EXPECT_EQ(tree.List("dir"), Names({}));
	EXPECT_EQ(from.tree.List(), Names({}));
}

// Whoever can reach the window can send what watchers, menus and other programs would.
TEST_F(FileList, SenselessMessagesDoNoHarm)
{
	std::mt19937 random(7);
	entry_ref gone = tree.Ref("n"), odd = gone;
	gone.set_name("gone");
	odd.set_name("../m");
	for (int i = 0; i < Rounds(2000, 100000); i++) {
		const uint32 codes[] = {MW_MOUSE_DRAG, MW_MOUSE_CLICK, kMSG_TextEditInvoke,
			kMSG_TextEditEscape, kMSG_DragFile, B_COPY, B_CUT, kMSG_ItemInvocation, kMSG_Rename,
			kMSG_SetFolder, kMSG_Refresh, kMSG_ShowChanges, kMSG_GoOnTransferring};
		BMessage message(codes[random() % std::size(codes)]);
		if (random() % 2 == 0)
			message.AddRef(
				random() % 2 == 0 ? kName_Refs : kName_Folder, random() % 2 == 0 ? &gone : &odd);
		if (random() % 2 == 0)
			message.AddPoint("where", BPoint(static_cast<float>(random() % 900), 280));
		if (random() % 2 == 0)
			message.AddInt32("data", B_PRIMARY_MOUSE_BUTTON);
		else
			message.AddInt32("buttons", B_PRIMARY_MOUSE_BUTTON);
		if (message.what == MW_MOUSE_CLICK)
			message.AddInt32("data", B_PRIMARY_MOUSE_BUTTON); // else it opens a menu
		if (random() % 2 == 0)
			message.AddPointer("view", reinterpret_cast<void*>(uintptr_t(random())));
		if (random() % 2 == 0)
			message.AddString("text", random() % 2 == 0 ? "" : "\xff/x");
		if (random() % 2 == 0)
			message.AddInt32("index", 100 + static_cast<int32>(random() % 1000));
		if (random() % 2 == 0)
			message.AddBool("invoked", true);
		it.window->PostMessage(
			&message, random() % 2 == 0 ? static_cast<BHandler*>(it.pane) : it.list);
	}
	it.window.Settle();
	entry_ref root = tree.Ref(".");
	it.Do([&] { it.pane->SetFolder(&root, false); });
	ExpectNames({"dir", "m", "n", "o"});
	// Some have opened files, or tried to.
	EXPECT_TRUE(WaitUntil([&] {
		BPrivate::CloseAllAlerts();
		return !BPrivate::InputBlockedBy(it.window.Get());
	}));
}
