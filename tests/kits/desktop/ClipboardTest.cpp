// SPDX-License-Identifier: MIT

// BClipboard beside other programs, which are Qt's own means here.

#include <app/Clipboard.h>
#include <storage/Entry.h>
#include <storage/UriList.h>

#include "tests/support/Inject.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

typedef InjectedUser::Texts Texts;

class Locked {
public:
	Locked() { EXPECT_TRUE(be_clipboard->Lock()); }
	~Locked() { be_clipboard->Unlock(); }
	Locked(const Locked&) = delete;
	Locked& operator=(const Locked&) = delete;
	BMessage* operator->() const { return be_clipboard->Data(); }
};

std::string
TextOnClipboard()
{
	Locked data;
	const void* text = nullptr;
	ssize_t length = 0;
	if (data->FindData("text/plain", B_MIME_TYPE, &text, &length) != B_OK)
		return "none";
	return std::string(static_cast<const char*>(text), static_cast<size_t>(length));
}

} // namespace

TEST(Clipboard, ChangesShowWhenTheyAreCommitted)
{
	InjectedUser::PutOnClipboard({{"text/plain", "before"}});
	{
		Locked data;
		be_clipboard->Clear();
		EXPECT_TRUE(data->IsEmpty());
		data->AddString("text", "mine");
	}
	EXPECT_EQ("before", TextOnClipboard());
	{
		Locked data;
		be_clipboard->Clear();
		data->what = 'mine';
		data->AddData("text/plain", B_MIME_TYPE, "one", 4);
		data->AddData("text/plain", B_MIME_TYPE, "tw\xff", 3);
		EXPECT_EQ(B_OK, be_clipboard->Commit());
		data->MakeEmpty();
		EXPECT_EQ(B_OK, be_clipboard->Revert());
		EXPECT_TRUE(data->HasData("text/plain", B_MIME_TYPE, 1));
	}
	EXPECT_EQ("one\ntw\xef\xbf\xbd", InjectedUser::Clipboard()["text/plain"]);
	Locked data;
	EXPECT_EQ(uint32('mine'), data->what);
}

TEST(Clipboard, NeedsItsLock)
{
	EXPECT_FALSE(be_clipboard->IsLocked());
	EXPECT_EQ(nullptr, be_clipboard->Data());
	EXPECT_EQ(B_ERROR, be_clipboard->Clear());
	EXPECT_EQ(B_ERROR, be_clipboard->Commit());
	Locked outer;
	std::atomic<bool> entered = false;
	std::thread other([&entered] {
		Locked inner;
		entered = true;
	});
	{
		Locked nested;
		nested->AddString("kept", "yes");
	}
	EXPECT_TRUE(outer->HasString("kept")) << "an inner lock changes nothing";
	EXPECT_FALSE(entered);
	be_clipboard->Unlock();
	other.join();
	EXPECT_TRUE(be_clipboard->Lock());
}

TEST(Clipboard, FilesOfOthersComeAsRefsToCopyOrMove)
{
	TempTree tree{{"x", Text()}, {"y#", Text()}};
	const std::vector<std::string> paths = {tree.Path("x"), tree.Path("y#")};
	const std::string list = BPrivate::MakeUriList(paths);
	const struct {
		Texts texts;
		bool cut;
	} cases[] = {
		{{{"x-special/gnome-copied-files", BPrivate::MakeCopiedFiles({true, paths})},
			 {"text/uri-list", "file:///etc/passwd"}},
			true},
		{{{"x-special/gnome-copied-files", BPrivate::MakeCopiedFiles({false, paths})}}, false},
		{{{"text/uri-list", list}, {"text/plain", "x"}}, false},
		{{{"text/uri-list", list}, {"application/x-kde-cutselection", "1"}}, true},
		{{{"text/uri-list", list}, {"application/x-kde-cutselection", "0"}}, false},
		{{{"x-special/gnome-copied-files", "rubbish"}, {"text/uri-list", list}}, false},
	};
	for (const auto& each : cases) {
		InjectedUser::PutOnClipboard(each.texts);
		Locked data;
		EXPECT_EQ(B_SIMPLE_DATA, data->what);
		entry_ref ref;
		for (int32 i = 0; i < 2; i++) {
			ASSERT_EQ(B_OK, data->FindRef("refs", i, &ref));
			EXPECT_EQ(tree.Ref(i == 0 ? "x" : "y#"), ref);
		}
		EXPECT_FALSE(data->HasRef("refs", 2));
		bool value = false;
		EXPECT_EQ(B_OK, data->FindBool(each.cut ? "Cut" : "Copy", &value));
		EXPECT_TRUE(value);
		EXPECT_FALSE(data->HasBool(each.cut ? "Copy" : "Cut"));
	}
}

// All windows wait for the toolkit, which waits for the other program.
TEST(Clipboard, IsAskedOnceWhenItsOwnerHangs)
{
	InjectedUser::PutOnClipboard(
		{{"application/x-korva-message", ""}, {"x-special/gnome-copied-files", ""},
			{"text/uri-list", ""}, {"text/plain", ""}},
		700000);
	const bigtime_t start = system_time();
	for (int i = 0; i < 2; i++) {
		Locked data;
		EXPECT_TRUE(data->IsEmpty());
	}
	EXPECT_LT(system_time() - start, 1400000);
}

TEST(Clipboard, WhatMeansNothingIsNothing)
{
	for (const Texts& texts : {Texts{}, Texts{{"image/png", "x"}}, Texts{{"text/plain", ""}},
			 Texts{{"text/uri-list", "http://example.com/\r\nfile:///%\r\nfile:///a%00b\r\n"}},
			 Texts{{"x-special/gnome-copied-files", "cut\nfile://elsewhere/x\n"}},
			 Texts{{"application/x-korva-message", "KMf1 is no image"}}}) {
		InjectedUser::PutOnClipboard(texts);
		Locked data;
		EXPECT_TRUE(data->IsEmpty());
	}
}
