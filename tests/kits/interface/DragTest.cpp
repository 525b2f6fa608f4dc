// SPDX-License-Identifier: MIT

// Drags between views and windows of one process.

#include <app/MessageFilter.h>
#include <desktop/GuiThread.h>
#include <interface/Bitmap.h>
#include <storage/UriList.h>

#include "kits/app/MessageContent.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestWindow.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace {

typedef std::vector<std::string> Words;

// Notes what comes, in words, for the test to wait for.
class Notes {
public:
	void Add(const std::string& note)
	{
		std::lock_guard lock(fLock);
		fNotes.push_back(note);
	}
	Words Taken()
	{
		std::lock_guard lock(fLock);
		return std::exchange(fNotes, {});
	}
	bool Has(const std::string& note)
	{
		std::lock_guard lock(fLock);
		return std::find(fNotes.begin(), fNotes.end(), note) != fNotes.end();
	}
	int Count(const std::string& note)
	{
		std::lock_guard lock(fLock);
		return static_cast<int>(std::count(fNotes.begin(), fNotes.end(), note));
	}

private:
	std::mutex fLock;
	Words fNotes;
};

class DragView : public BView {
public:
	DragView(BRect frame, const char* name, Notes* notes) :
		BView(frame, name, B_FOLLOW_NONE, B_WILL_DRAW), fNotes(notes)
	{}

	void MouseDown(BPoint) override
	{
		if (message == nullptr)
			return;
		if (bitmap)
			DragMessage(message.get(), new BBitmap(BRect(0, 0, 15, 15), B_RGBA32), BPoint(3, 4));
		else
			DragMessage(message.get(), BRect(2, 3, 41, 22), replyTo);
		message.reset(); // it was copied
	}
	void MouseUp(BPoint) override
	{
		int32 buttons = -1;
		Window()->CurrentMessage()->FindInt32("buttons", &buttons);
		Note("up " + std::to_string(buttons));
	}
	void MouseMoved(BPoint, uint32 transit, const BMessage* drag) override
	{
		static const char* const kTransits[] = {"entered", "inside", "exited", "outside"};
		EXPECT_TRUE(Window()->CurrentMessage()->HasInt32("buttons"));
		const char* text = nullptr;
		if (drag == nullptr)
			Note(std::string(kTransits[transit]));
		else if (drag->FindString("text", &text) == B_OK)
			Note(kTransits[transit] + std::string(" with ") + text);
		else
			Note(kTransits[transit] + std::string(" with nothing"));
	}
	void MessageReceived(BMessage* dropped) override
	{
		if (!dropped->WasDropped()) {
			BView::MessageReceived(dropped);
			return;
		}
		if (climbs) {
			BView::MessageReceived(dropped);
			return;
		}
		drop = *dropped;
		dropPoint = ConvertFromScreen(dropped->DropPoint(&dropOffset));
		GetMouse(nullptr, &dropButtons);
		if (answers)
			dropped->SendReply('repl');
		Note("drop");
	}

	std::unique_ptr<BMessage> message; // is dragged at the next press
	BHandler* replyTo = nullptr;
	bool bitmap = false;
	bool climbs = false;
	bool answers = false;
	BMessage drop;
	BPoint dropPoint, dropOffset;
	uint32 dropButtons = 0;

private:
	void Note(const std::string& text) { fNotes->Add(std::string(Name()) + " " + text); }

	Notes* fNotes;
};

// Two windows side by side, with two views in the first.
class Drag : public testing::Test {
protected:
	void SetUp() override
	{
		left = new DragView(BRect(0, 0, 99, 99), "left", &notes);
		right = new DragView(BRect(100, 0, 199, 99), "right", &notes);
		other = new DragView(BRect(0, 0, 99, 99), "other", &notes);
		first->AddChild(left);
		first->AddChild(right);
		second->AddChild(other);
		first->ShowAndSettle();
		second->ShowAndSettle();
		second->Do([this] { second->MoveTo(400, 100); });
		left->message = Message("hello");
	}

	void TearDown() override
	{
		// Out of the way of the next test's windows.
		InjectedUser user = first->User();
		user.AllowDrags();
		user.MoveOnScreen(1, 1);
	}

	static std::unique_ptr<BMessage> Message(const char* text)
	{
		auto message = std::make_unique<BMessage>('drag');
		message->AddString("text", text);
		return message;
	}

	// Presses in the left view and waits until the drag has begun, which enters the view anew.
	void Begin(InjectedUser& user, uint32 button = B_PRIMARY_MOUSE_BUTTON)
	{
		user.AllowDrags();
		user.Move(10, 10);
		user.Press(10, 10, button);
		first->Settle(); // the drag is asked for before the pointer moves on
		ASSERT_TRUE(WaitUntil([&] {
			user.Move(12, 10);
			first->Settle();
			return notes.Has("left entered with hello");
		}));
		notes.Taken();
	}

	Notes notes;
	Shown<> first{200, 100};
	Shown<> second{100, 100};
	DragView* left = nullptr;
	DragView* right = nullptr;
	DragView* other = nullptr;
};

} // namespace

TEST_F(Drag, ViewsOnTheWaySeeTheMessageAndTheLastOneGetsIt)
{
	InjectedUser user = first->User();
	Begin(user);
	user.Move(120, 20);
	user.Move(121, 30);
	first->Settle();
	EXPECT_EQ(
		Words({"left exited with hello", "right entered with hello", "right inside with hello"}),
		notes.Taken());
	user.Release(121, 30);
	ASSERT_TRUE(WaitUntil([this] { return notes.Has("right up 0"); }));
	first->Settle();
	EXPECT_EQ(Words({"right inside with hello", "right drop", "right inside", "right up 0"}),
		notes.Taken());
	EXPECT_EQ(uint32('drag'), right->drop.what);
	EXPECT_TRUE(right->drop.WasDropped());
	EXPECT_EQ(BPoint(21, 30), right->dropPoint);
	EXPECT_EQ(BPoint(8, 7), right->dropOffset)
		<< "the pointer was at (10, 10), the outline at (2, 3)";
	EXPECT_EQ(B_PRIMARY_MOUSE_BUTTON, right->dropButtons);
}

TEST_F(Drag, GoesToAnotherWindowAndTheReleaseComesHome)
{
	for (const uint32 button : {B_PRIMARY_MOUSE_BUTTON, B_SECONDARY_MOUSE_BUTTON}) {
		left->message = Message("hello");
		left->bitmap = button == B_SECONDARY_MOUSE_BUTTON;
		InjectedUser user = first->User();
		Begin(user, button);
		user.MoveOnScreen(420, 130, B_SHIFT_KEY);
		second->Settle();
		EXPECT_TRUE(notes.Has("other entered with hello"));
		EXPECT_EQ(button, desktop::CurrentInput().buttons) << "whoever polls sees it held";
		EXPECT_EQ(B_SHIFT_KEY, modifiers() & B_SHIFT_KEY);
		user.Release(320, 30, button);
		ASSERT_TRUE(WaitUntil([this] { return notes.Has("other inside"); }));
		EXPECT_EQ(1, notes.Count("other drop"));
		EXPECT_EQ(BPoint(20, 30), other->dropPoint);
		EXPECT_EQ(button, other->dropButtons);
		EXPECT_EQ(left->bitmap ? BPoint(3, 4) : BPoint(8, 7), other->dropOffset);
		ASSERT_TRUE(WaitUntil([] { return desktop::CurrentInput().buttons == 0; }));
		// The first window holds no button any more: the next press is a first one.
		ASSERT_TRUE(WaitUntil([&] { return !notes.Taken().empty(); }));
	}
}

TEST_F(Drag, DropsPassFiltersAndClimb)
{
	class Eater : public BMessageFilter {
	public:
		explicit Eater(int* count) : BMessageFilter(B_DROPPED_DELIVERY, B_ANY_SOURCE), fCount(count)
		{}
		filter_result Filter(BMessage* message, BHandler**) override
		{
			EXPECT_EQ(uint32('drag'), message->what);
			++*fCount;
			return B_DISPATCH_MESSAGE;
		}

	private:
		int* fCount;
	};
	int filtered = 0;
	DragView* child = new DragView(BRect(10, 10, 59, 59), "child", &notes);
	child->climbs = true;
	first->Do([&] {
		right->AddChild(child);
		child->AddFilter(new Eater(&filtered));
	});
	InjectedUser user = first->User();
	Begin(user);
	user.Move(120, 20);
	user.Release(120, 20);
	ASSERT_TRUE(WaitUntil([this] { return notes.Has("right drop"); }));
	first->Settle();
	EXPECT_EQ(1, filtered);
	EXPECT_EQ(0, notes.Count("child drop"));
}

TEST_F(Drag, EscapeEndsItWithoutADrop)
{
	InjectedUser user = first->User();
	Begin(user);
	user.Move(120, 20);
	user.Key(std::string(1, B_ESCAPE));
	ASSERT_TRUE(WaitUntil([this] { return notes.Has("right up 0"); }));
	first->Settle();
	EXPECT_TRUE(notes.Has("right exited with hello"));
	EXPECT_EQ(0, notes.Count("right drop"));
	EXPECT_EQ(0u, desktop::CurrentInput().buttons);
	user.Release(120, 20);
	first->Settle();
	EXPECT_EQ(1, notes.Count("right up 0")) << "told already";
	// The next one begins as if nothing had been.
	left->message = Message("hello");
	Begin(user);
	user.Release(12, 10);
	EXPECT_TRUE(WaitUntil([this] { return notes.Has("left drop"); }));
}

TEST_F(Drag, NothingBeginsWithoutAButton)
{
	InjectedUser user = first->User();
	user.AllowDrags();
	user.Move(10, 10);
	first->Do([this] { left->MouseDown(BPoint(10, 10)); });
	user.Move(120, 20);
	first->Settle();
	EXPECT_TRUE(notes.Has("right entered"));
	EXPECT_FALSE(notes.Has("right entered with hello"));
}

TEST_F(Drag, AnswersGoToTheHandlerThatWasNamed)
{
	class Answered : public TestWindow {
	public:
		Answered() : TestWindow(10, 10) {}
		void MessageReceived(BMessage* message) override
		{
			if (message->what == 'repl')
				answered = true;
			else
				TestWindow::MessageReceived(message);
		}
		std::atomic<bool> answered = false;
	};
	Shown<Answered> asker;
	asker->ShowAndSettle();
	left->replyTo = asker.Get();
	left->answers = true;
	InjectedUser user = first->User();
	Begin(user);
	user.Release(12, 10);
	EXPECT_TRUE(WaitUntil([&] { return asker->answered.load(); }));
}

TEST_F(Drag, FilesOfAnotherProgramComeAsRefs)
{
	TempTree tree{{"a b", Text()}, {"caf\xc3\xa9\xff#?%\n", Text()}};
	const InjectedUser::Texts texts = {{"text/uri-list",
		"# comment\r\n" + BPrivate::UriOf(tree.Path("a b")) + "\r\nhttp://example.com/x\r\n" +
			BPrivate::UriOf(tree.Path("caf\xc3\xa9\xff#?%\n")) + "\r\nfile:///%00\r\n"}};
	InjectedUser user = first->User();
	EXPECT_TRUE(user.DragOver(110, 20, texts)) << "accepted, as a copy";
	EXPECT_TRUE(user.DragOver(111, 20, texts));
	first->Settle();
	EXPECT_EQ(Words({"right entered with nothing", "right inside with nothing"}), notes.Taken());
	EXPECT_TRUE(user.Drop(111, 20, texts));
	first->Settle();
	EXPECT_EQ(Words({"right inside with nothing", "right drop", "right inside"}), notes.Taken());
	EXPECT_EQ(B_SIMPLE_DATA, right->drop.what);
	entry_ref ref;
	ASSERT_EQ(B_OK, right->drop.FindRef("refs", 0, &ref));
	EXPECT_EQ(tree.Ref("a b"), ref);
	ASSERT_EQ(B_OK, right->drop.FindRef("refs", 1, &ref));
	EXPECT_EQ(tree.Ref("caf\xc3\xa9\xff#?%\n"), ref);
	EXPECT_FALSE(right->drop.HasRef("refs", 2));
	EXPECT_FALSE(right->drop.HasInt32("buttons"));
	EXPECT_EQ(BPoint(11, 20), right->dropPoint);
	EXPECT_EQ(0u, desktop::CurrentInput().buttons);
}

TEST_F(Drag, TextOfAnotherProgramAndALinkToElsewhereComeAsText)
{
	InjectedUser user = first->User();
	for (const InjectedUser::Texts& texts : {InjectedUser::Texts{{"text/plain", "some text"}},
			 InjectedUser::Texts{
				 {"text/uri-list", "http://example.com/"}, {"text/plain", "some text"}}}) {
		user.DragOver(110, 20, texts);
		user.Drop(110, 20, texts);
		first->Settle();
		EXPECT_EQ(B_MIME_DATA, right->drop.what);
		const void* data = nullptr;
		ssize_t length = 0;
		ASSERT_EQ(B_OK, right->drop.FindData("text/plain", B_MIME_TYPE, &data, &length));
		EXPECT_EQ("some text", std::string(static_cast<const char*>(data), size_t(length)));
		right->drop = BMessage();
	}
}

TEST_F(Drag, WhatMeansNothingDropsNothing)
{
	InjectedUser user = first->User();
	EXPECT_FALSE(user.DragOver(110, 20, {{"image/png", "pixels"}}));
	EXPECT_FALSE(user.Drop(110, 20, {{"image/png", "pixels"}}));
	for (const char* list :
		{"", "http://example.com/", "file://elsewhere/x", "file:///%zz", "\0"}) {
		user.DragOver(110, 20, {{"text/uri-list", list}});
		user.Drop(110, 20, {{"text/uri-list", list}});
	}
	user.DragOver(110, 20, {{"application/x-korva-message", "no image"}});
	user.Drop(110, 20, {{"application/x-korva-message", "no image"}});
	user.DragOver(110, 20, {{"text/plain", "x"}});
	user.DragLeaves();
	first->Settle();
	EXPECT_EQ(0, notes.Count("right drop"));
	EXPECT_TRUE(notes.Has("right exited with nothing"));
}

// Another program chooses the code of what it drops here.
TEST_F(Drag, CodeOfADropIsNoCommandToTheWindow)
{
	InjectedUser user = first->User();
	for (const uint32 code : {uint32(B_QUIT_REQUESTED), uint32(B_MOUSE_DOWN), uint32(B_KEY_DOWN),
			 uint32(B_WINDOW_RESIZED), uint32(B_PULSE)}) {
		BMessage message(code);
		message.AddString("text", "hello");
		message.AddPointer("source", this);
		const BPrivate::MessageContent content(message, BPrivate::ContentUse::kDrag);
		const InjectedUser::Texts texts = {
			{desktop::format::kMessage, content.Bytes(desktop::format::kMessage)}};
		user.DragOver(110, 20, texts);
		user.Drop(110, 20, texts);
		first->Settle();
		EXPECT_EQ(code, right->drop.what);
		EXPECT_TRUE(right->drop.HasString("text"));
		EXPECT_FALSE(right->drop.HasPointer("source")) << "it would point anywhere";
	}
	EXPECT_EQ(5, notes.Count("right drop"));
}
