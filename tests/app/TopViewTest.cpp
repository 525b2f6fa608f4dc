// SPDX-License-Identifier: MIT

// The root bar in a window, on real folders.

#include "app/TopView.h"

#include "app/Messages.h"

#include <app/Application.h>
#include <app/MessagePrivate.h>
#include <interface/Modal.h>
#include <interface/TextView.h>
#include <storage/Path.h>

#include "tests/support/ListenedWindow.h"
#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace {

class App : public BApplication {
public:
	App() : BApplication("application/x-vnd.test-rootbar") {}
};

class TopViewTest : public testing::Test {
protected:
	TopViewTest() :
		rootRef(tree.Ref("root")),
		top(new TopView(BRect(0, 0, 399, 26), &rootRef)),
		window(400, 100, top),
		user(window.User())
	{
		field = dynamic_cast<FileStringControl*>(top->ChildAt(0));
		window.Settle();
		user.Activate();
	}

	std::string Path(const char* name)
	{
		entry_ref ref = tree.Ref(name);
		return BPath(&ref).Path();
	}
	std::string Text()
	{
		return window.Under([&] { return std::string(field->Text()); });
	}
	void Type(const std::string& text)
	{
		window.Get()->Do([&] {
			field->SetText(text.c_str());
			field->MakeFocus(true);
		});
		user.Key(std::string(1, B_ENTER));
	}
	// The path of the root that the window was asked for, or nothing.
	std::string AskedRoot()
	{
		window.Settle();
		window.Settle();
		std::vector<BMessage> asked = window->Take(kMSG_SetRoot);
		entry_ref ref;
		if (asked.size() != 1 || asked[0].FindRef(kName_Folder, &ref) != B_OK)
			return std::to_string(asked.size()) + " messages";
		return BPath(&ref).Path();
	}
	// Closes the alert that has come up; its text is a picture.
	void Dismiss()
	{
		InjectedUser alert("Error");
		alert.Activate();
		alert.KeyDown(std::string(1, B_ENTER));
		EXPECT_TRUE(WaitUntil([&] { return !BPrivate::InputBlockedBy(window.Get()); }));
	}
	void Drop(const char* name)
	{
		entry_ref ref = tree.Ref(name);
		BMessage drop(B_SIMPLE_DATA);
		drop.AddRef("refs", &ref);
		BPrivate::MessageAccess::SetDropped(drop, true);
		window->PostMessage(&drop, field->TextView());
	}

	TempTree tree{{"root/inside/deep", Dir()}, {"root/file", ::Text("x")},
		{"root/odd\xff\nname", Dir()}, {"root/link", Link("inside")}};
	entry_ref rootRef;
	App app;
	TopView* top;
	ListenedWindow window;
	InjectedUser& user;
	FileStringControl* field;
};

} // namespace

TEST_F(TopViewTest, HoldsOneFieldWithTheRootsPath)
{
	ASSERT_NE(field, nullptr);
	EXPECT_EQ(Text(), Path("root"));
	EXPECT_STREQ(field->Name(), "root");
	EXPECT_STREQ(field->Label(), "Root:");
	window.Under([&] {
		EXPECT_EQ(field->Frame().LeftTop(), BPoint(5, 7.5f));
		EXPECT_EQ(field->Frame().Width(), 150);
		EXPECT_LE(field->Frame().bottom, 26);
		EXPECT_EQ(top->ViewColor(), (rgb_color{232, 232, 232, 255}));
	});
	entry_ref next = tree.Ref("root/inside");
	window.Get()->Do([&] { top->SetRoot(&next); });
	EXPECT_EQ(Text(), Path("root/inside"));
	entry_ref none;
	window.Get()->Do([&] { top->SetRoot(&none); });
	EXPECT_EQ(Text(), Path("root/inside"));
}

TEST_F(TopViewTest, ATypedFolderIsAskedForAsRoot)
{
	Type(Path("root/inside/deep"));
	EXPECT_EQ(AskedRoot(), Path("root/inside/deep"));
	Type(Path("root") + "/odd\xff\nname"); // to the byte
	EXPECT_EQ(AskedRoot(), Path("root") + "/odd\xff\nname");
}

TEST_F(TopViewTest, WhatIsNoFolderIsRefusedAndTheOldRootComesBack)
{
	for (const std::string& wrong : {Path("root") + "/nothing", Path("root/file"), std::string()}) {
		Type(wrong);
		Dismiss();
		EXPECT_EQ(AskedRoot(), "0 messages") << wrong;
		EXPECT_EQ(Text(), Path("root"));
	}
}

TEST_F(TopViewTest, ADroppedFolderIsAskedForAndADroppedFileIsRefused)
{
	Drop("root/inside");
	EXPECT_EQ(AskedRoot(), Path("root/inside"));
	EXPECT_EQ(Text(), Path("root/inside"));
	Drop("root/file");
	Dismiss();
	EXPECT_EQ(AskedRoot(), "0 messages");
	EXPECT_EQ(Text(), Path("root"));
}

TEST_F(TopViewTest, DroppedTextIsInsertedAndDropsOfNothingAreIgnored)
{
	BMessage drop(B_MIME_DATA);
	drop.AddData("text/plain", B_MIME_TYPE, "x", 1);
	drop.AddPoint("_drop_point_", BPoint(-1000, 0));
	BPrivate::MessageAccess::SetDropped(drop, true);
	window->PostMessage(&drop, field->TextView());
	window->PostMessage(B_SIMPLE_DATA, field);
	EXPECT_EQ(AskedRoot(), "0 messages");
	EXPECT_EQ(Text(), "x" + Path("root"));
	EXPECT_TRUE(window->Take(B_SIMPLE_DATA).empty());
}

TEST_F(TopViewTest, TheSecondaryButtonOffersTheFoldersAbove)
{
	user.Press(100, 17, B_SECONDARY_MOUSE_BUTTON);
	InjectedUser("directories"); // is open
	user.Release(100, 17, B_SECONDARY_MOUSE_BUTTON);
	user.KeyDown(std::string(1, B_UP_ARROW)); // around to the last one
	user.KeyDown(std::string(1, B_ENTER));
	EXPECT_EQ(AskedRoot(), Path("."));
	EXPECT_EQ(Text(), Path(".") + "/");
}

TEST_F(TopViewTest, HoldingThePrimaryButtonOpensTheMenuToo)
{
	user.Press(100, 17);
	InjectedUser("directories"); // is open
	user.Release(100, 17);
	user.KeyDown(std::string(1, B_ESCAPE));
	EXPECT_EQ(AskedRoot(), "0 messages");
	EXPECT_EQ(Text(), Path("root"));
	// The press is over for the field as well.
	const auto selected = [&] {
		int32 begin = 0, end = 0;
		field->TextView()->GetSelection(&begin, &end);
		return end - begin;
	};
	user.Move(60, 17);
	window.Settle();
	EXPECT_EQ(window.Under(selected), 0);
}

TEST_F(TopViewTest, AQuickClickPlacesTheCaretOnly)
{
	user.Click(100, 17);
	user.Key("_");
	window.Settle();
	EXPECT_EQ(Text().size(), Path("root").size() + 1);
	EXPECT_EQ(AskedRoot(), "0 messages");
	window.Get()->Do([&] { field->SetText("/"); });
	user.Press(100, 17, B_SECONDARY_MOUSE_BUTTON);
	InjectedUser("directories"); // is open
	user.KeyDown(std::string(1, B_DOWN_ARROW));
	user.KeyDown(std::string(1, B_ENTER));
	user.Release(100, 17, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(AskedRoot(), "/");
}
