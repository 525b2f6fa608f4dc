// SPDX-License-Identifier: MIT

// What drops, pastes and wishes for links come to: by buttons and keys, by the clipboard, by the
// menu. And the messages that drags and the clipboard carry.

#include "xfer/CutCopy.h"

#include "app/Messages.h"

#include <app/Clipboard.h>
#include <app/MessagePrivate.h>
#include <interface/MenuSession.h>
#include <storage/Directory.h>
#include <storage/Entry.h>
#include <support/TypeConstants.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <future>

using namespace NFileXFer;

namespace {

class Page : public BView {
public:
	Page() : BView(BRect(0, 0, 200, 200), "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW) {}
	void MouseDown(BPoint) override { presses++; }

	int presses = 0;
};

// A file to be transferred, and a window over which it is dropped.
class FileMessage : public testing::Test {
protected:
	FileMessage() : fPage(new Page), fWindow(200, 200, fPage), fSource(tree.Ref("a")) {}
	~FileMessage() override { BPrivate::CloseOpenMenu(); }

	bool Handle(const BMessage& message)
	{
		entry_ref folder = tree.Ref("to");
		return fWindow.Under([&] { return HandleFileMessage(&message, &fSource, &folder, fPage); });
	}

	// "copied", "moved", "linked" or "nothing", as the disk shows; afterwards all is as before.
	std::string Outcome(bool isBegun)
	{
		if (isBegun) {
			EXPECT_TRUE(WaitUntil([&] { return tree.List("to").size() == 1; }));
		}
		EXPECT_TRUE(WaitUntil([] { return find_thread("cp a") < 0 && find_thread("move") < 0; }));
		std::vector<std::string> left = tree.List();
		if (left == Names({"to"})) {
			tree.Rename("to/a", "a");
			return "moved";
		}
		if (tree.List("to").empty())
			return "nothing";
		bool isLink = BEntry(tree.Path("to/a").c_str()).IsSymLink();
		tree.Remove("to/a");
		return isLink ? "linked" : "copied";
	}

	std::string HandleWithKeys(const BMessage& message, uint32 keys)
	{
		fWindow.User().Move(20, 20, keys);
		fWindow.Settle();
		bool isBegun = Handle(message);
		fWindow.User().Move(30, 30);
		fWindow.Settle();
		return Outcome(isBegun);
	}

	// Lets the menu open and presses keys there, the last of which closes it.
	std::string HandleByMenu(const BMessage& message, uint32 keys, const std::string& pressed)
	{
		fWindow.User().Move(20, 20, keys);
		fWindow.Settle();
		auto begun = std::async(std::launch::async, [&] { return Handle(message); });
		{
			InjectedUser menu("File");
			for (char key : pressed)
				menu.KeyDown(std::string(1, key));
		}
		if (begun.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
			ADD_FAILURE() << "the menu stays open";
			BPrivate::CloseOpenMenu();
		}
		bool isBegun = begun.get();
		fWindow.User().Move(30, 30);
		return Outcome(isBegun);
	}

	BMessage Clipboard()
	{
		BMessage data;
		EXPECT_TRUE(be_clipboard->Lock());
		data = *be_clipboard->Data();
		be_clipboard->Unlock();
		return data;
	}

	void SetClipboard(const BMessage& data)
	{
		EXPECT_TRUE(be_clipboard->Lock());
		be_clipboard->Clear();
		*be_clipboard->Data() = data;
		EXPECT_EQ(be_clipboard->Commit(), B_OK);
		be_clipboard->Unlock();
	}

	TempTree tree{{"a", Text("one")}, {"to", Dir()}};
	Page* fPage;
	ListenedWindow fWindow;
	entry_ref fSource;
};

std::vector<std::string>
Texts(const BMessage& message)
{
	std::vector<std::string> texts;
	const void* data;
	ssize_t size;
	for (int32 i = 0; message.FindData("text/plain", B_MIME_TYPE, i, &data, &size) == B_OK; i++)
		texts.emplace_back(static_cast<const char*>(data), size);
	return texts;
}

} // namespace

// Control or the secondary button ask; else the first of Option, Shift and Command decides.
TEST_F(FileMessage, ButtonsAndKeysChooseWhatADropDoes)
{
	const std::string closes = {B_ESCAPE};
	for (int32 buttons = -1; buttons <= B_TERTIARY_MOUSE_BUTTON; buttons++) {
		BMessage drop(kMSG_DragFile);
		if (buttons >= 0)
			drop.AddInt32(kName_DragButtons, buttons);
		for (int32 held = 0; held < 16; held++) {
			const uint32 keys = ((held & 1) != 0 ? B_CONTROL_KEY : 0) |
				((held & 2) != 0 ? B_OPTION_KEY : 0) | ((held & 4) != 0 ? B_SHIFT_KEY : 0) |
				((held & 8) != 0 ? B_COMMAND_KEY : 0);
			SCOPED_TRACE(std::to_string(buttons) + " " + std::to_string(keys));
			if ((keys & B_CONTROL_KEY) != 0 ||
				(buttons >= 0 && (buttons & B_SECONDARY_MOUSE_BUTTON) != 0))
				EXPECT_EQ(HandleByMenu(drop, keys, closes), "nothing");
			else
				EXPECT_EQ(HandleWithKeys(drop, keys),
					(keys & B_OPTION_KEY) != 0      ? "copied"
						: (keys & B_SHIFT_KEY) != 0 ? "linked"
													: "moved");
		}
	}
}

TEST_F(FileMessage, TheMenusRowsDoWhatTheySay)
{
	BMessage secondary(kMSG_DragFile);
	secondary.AddInt32(kName_DragButtons, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(HandleByMenu(secondary, B_SHIFT_KEY, {'m', B_ENTER}), "moved");
	std::string chooses = {B_ENTER};
	for (const char* outcome : {"linked", "moved", "copied", "nothing"}) {
		chooses.insert(chooses.begin(), B_DOWN_ARROW);
		EXPECT_EQ(HandleByMenu(secondary, 0, chooses), outcome);
	}
}

TEST_F(FileMessage, ButtonsAreThoseOfTheMessageElseThoseHeld)
{
	fWindow.User().Press(20, 20, B_SECONDARY_MOUSE_BUTTON);
	fWindow.Settle();
	EXPECT_EQ(HandleByMenu(BMessage(kMSG_DragFile), 0, {B_ESCAPE}), "nothing");
	BMessage primary(kMSG_DragFile);
	primary.AddInt32(kName_DragButtons, B_PRIMARY_MOUSE_BUTTON);
	fWindow.Settle();
	EXPECT_EQ(Outcome(Handle(primary)), "moved");
	fWindow.User().Release(20, 20, B_SECONDARY_MOUSE_BUTTON);
}

// What the user does next in the window is no business of a drop that tells all.
TEST_F(FileMessage, ADropTakesNoPresses)
{
	BMessage drop(kMSG_DragFile);
	drop.AddInt32(kName_DragButtons, B_PRIMARY_MOUSE_BUTTON);
	BPrivate::MessageAccess::SetDropped(drop, true);
	const bool isBegun = fWindow.Under([&] {
		fWindow.User().Click(20, 20);
		return Handle(drop);
	});
	EXPECT_EQ(Outcome(isBegun), "moved");
	fWindow.Settle();
	EXPECT_EQ(fPage->presses, 1);
}

TEST_F(FileMessage, TheClipboardDecidesWhatAPasteDoes)
{
	const BMessage paste(B_PASTE);
	EXPECT_TRUE(CutCopy(B_COPY, &fSource));
	for (int i = 0; i < 2; i++)
		EXPECT_EQ(HandleWithKeys(paste, B_SHIFT_KEY), "copied");
	// Its contents, handed on without the command, mean the same whatever keys are held.
	EXPECT_EQ(HandleWithKeys(Clipboard(), B_COMMAND_KEY), "copied");
	ForgetCut(Clipboard());
	EXPECT_TRUE(Clipboard().HasRef(kName_Refs));

	EXPECT_TRUE(CutCopy(B_CUT, &fSource));
	EXPECT_EQ(HandleWithKeys(paste, 0), "moved");
	EXPECT_EQ(HandleWithKeys(paste, 0), "nothing"); // what is cut is pasted once
	EXPECT_FALSE(Clipboard().HasRef(kName_Refs));

	entry_ref other = tree.Ref("to"); // came there since the paste was chosen
	EXPECT_TRUE(CutCopy(B_CUT, &other));
	EXPECT_EQ(HandleWithKeys(paste, 0), "nothing");
	EXPECT_TRUE(Clipboard().HasBool("Cut"));

	BMessage neither(kMSG_DragFile);
	neither.AddRef(kName_Refs, &fSource);
	SetClipboard(neither);
	EXPECT_EQ(HandleWithKeys(paste, 0), "nothing");
	EXPECT_EQ(HandleWithKeys(BMessage(kMSG_CreateLink), B_OPTION_KEY), "linked");
}

TEST_F(FileMessage, EachFileOfACutIsPastedOnce)
{
	tree.Add("b", Text());
	entry_ref other = tree.Ref("b");
	tree.Remove("b");
	EXPECT_TRUE(CutCopy(B_CUT, &fSource));
	BMessage cut = Clipboard();
	cut.AddRef(kName_Refs, &other);
	cut.AddData("text/plain", B_MIME_TYPE, "b", 2);
	SetClipboard(cut);
	EXPECT_EQ(HandleWithKeys(BMessage(B_PASTE), 0), "moved");
	entry_ref left;
	EXPECT_EQ(Clipboard().FindRef(kName_Refs, &left), B_OK);
	EXPECT_EQ(left, other);
	EXPECT_FALSE(Clipboard().HasRef(kName_Refs, 1));
	EXPECT_EQ(Texts(Clipboard()), std::vector<std::string>({std::string("b\0", 2)}));

	// Who goes through all of them himself says when, which is not for what was cut meanwhile.
	EXPECT_EQ(HandleWithKeys(cut, B_OPTION_KEY), "moved");
	ForgetCut(cut);
	EXPECT_TRUE(Clipboard().HasBool("Cut"));
}

TEST_F(FileMessage, WhatCannotBeOpenedIsLeftAlone)
{
	const BMessage drop(kMSG_DragFile);
	entry_ref folder = tree.Ref("to");
	entry_ref unset;
	fWindow.Under([&] {
		EXPECT_FALSE(HandleFileMessage(&drop, &unset, &folder, fPage));
		EXPECT_FALSE(HandleFileMessage(&drop, &fSource, &unset, fPage));
		EXPECT_FALSE(HandleFileMessage(&drop, &fSource, &fSource, fPage)); // no folder
		entry_ref own = tree.Ref(".");
		EXPECT_FALSE(HandleFileMessage(&drop, &fSource, &own, fPage));
	});
	EXPECT_EQ(Outcome(false), "nothing");
}

TEST_F(FileMessage, TheClipboardHoldsOneEntryAndItsPath)
{
	entry_ref link = tree.Ref("to");
	tree.Add("link", Link("to"));
	link = tree.Ref("link");
	CutCopy(B_COPY, &fSource);
	CutCopy(B_CUT, &link);
	BMessage data = Clipboard();
	EXPECT_EQ(data.what, static_cast<uint32>(kMSG_DragFile));
	entry_ref ref;
	bool flag = false;
	EXPECT_EQ(data.FindRef(kName_Refs, &ref), B_OK);
	EXPECT_EQ(ref, link);
	EXPECT_FALSE(data.HasRef(kName_Refs, 1));
	EXPECT_EQ(Texts(data), std::vector<std::string>({tree.Path("link") + '\0'}));
	EXPECT_TRUE(data.FindBool("Korva", &flag) == B_OK && flag);
	EXPECT_TRUE(data.FindBool("Cut", &flag) == B_OK && flag);
	EXPECT_FALSE(data.HasBool("Copy"));
	tree.Remove("link");
}

TEST(RefDragMessage, CarriesEntriesPathsAndWhereTheyComeFrom)
{
	RefDragMessage empty;
	EXPECT_EQ(empty.what, static_cast<uint32>(kMSG_DragFile));
	EXPECT_FALSE(empty.HasRef(kName_Refs));
	EXPECT_TRUE(empty.HasBool("Korva"));

	TempTree tree{{"a", Text()}, {"b", Link("a")}, {"other/c", Text()}};
	entry_ref first = tree.Ref("a");
	entry_ref second = tree.Ref("b");
	entry_ref elsewhere = tree.Ref("other/c");
	entry_ref pathless;
	pathless.set_name("x");
	RefDragMessage drag(&first);
	for (const entry_ref* ref : {&pathless, &second, &first, &elsewhere})
		drag.AddEntryRef(ref);
	drag.SetButtons(B_SECONDARY_MOUSE_BUTTON);
	drag.SetPane('I');
	entry_ref ref;
	EXPECT_EQ(drag.FindRef(kName_Refs, 2, &ref), B_OK);
	EXPECT_EQ(ref, second);
	EXPECT_EQ(Texts(drag),
		std::vector<std::string>({tree.Path("a") + '\0', std::string(1, '\0'),
			tree.Path("b") + '\0', tree.Path("a") + '\0', tree.Path("other/c") + '\0'}));
	int32 buttons = 0;
	int8 pane = 0;
	EXPECT_EQ(drag.FindInt32("buttons", &buttons), B_OK);
	EXPECT_EQ(drag.FindInt8("Pane", &pane), B_OK);
	EXPECT_EQ(buttons, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(pane, 'I');
}

TEST(RefDragMessage, ItsOutlineCoversTheRowsEdgeByEdge)
{
	RefDragMessage drag;
	EXPECT_EQ(drag.Rect(), BRect(-1, -1, -1, -1));
	drag.AddRect(BRect(10, -5, 50, 20));
	EXPECT_EQ(drag.Rect(), BRect(10, -5, 50, 20));
	drag.AddRect(BRect(20, 30, 40, 40)); // an edge below 0 was not set
	EXPECT_EQ(drag.Rect(), BRect(10, 30, 50, 40));
	drag.AddRect(BRect(5, 10, 60, 35));
	EXPECT_EQ(drag.Rect(), BRect(5, 10, 60, 40));
	drag.SetRect(BRect(3, 1, 8, 6));
	BView view(BRect(), "view", B_FOLLOW_NONE, 0);
	testing::internal::CaptureStdout();
	drag.Post(&view);
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "BRect(3.0, 1.0, 8.0, 6.0)\n");
	EXPECT_EQ(drag.Rect(), BRect(50, 50, 55, 55)); // where it begins
}
