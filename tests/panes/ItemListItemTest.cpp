// SPDX-License-Identifier: MIT

// Rows of the contents list: what they read of their entries, and their order by each column.

#include "panes/ItemListItem.h"

#include "panes/ItemColumns.h"

#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <storage/Entry.h>

#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

typedef std::unique_ptr<ItemListItem> Row;

Row
RowOf(const entry_ref& ref)
{
	Row row = std::make_unique<ItemListItem>();
	row->SetRef(new entry_ref(ref));
	return row;
}

// Of no entry: only its name counts.
Row
Named(const std::string& name)
{
	return RowOf(entry_ref(1, 1, name.c_str()));
}

// Both ways round, which must agree.
int
Compare(const Row& a, const Row& b, int32 column)
{
	const int result = ItemListItem::CompareFiles(a.get(), b.get(), column);
	EXPECT_EQ(ItemListItem::CompareFiles(b.get(), a.get(), column), -result);
	return result;
}

std::string
DescriptionOf(const char* type)
{
	char text[B_MIME_TYPE_LENGTH];
	EXPECT_EQ(BMimeType(type).GetShortDescription(text), B_OK) << type;
	return text;
}

std::string
KindAt(const TempTree& tree, const std::string& path)
{
	return RowOf(tree.Ref(path))->KindText();
}

bool
SetType(const TempTree& tree, const std::string& path, const std::string& type)
{
	return setxattr(tree.Path(path).c_str(), "user.BEOS:TYPE", type.data(), type.size(), 0) == 0;
}

} // namespace

TEST(ItemListItem, NamesCompareWithoutCase)
{
	EXPECT_EQ(Compare(Named("IMG_0001.jpg"), Named("img_0001.JPG"), kNameColumn), 0);
	EXPECT_EQ(Compare(Named("abcdefgh"), Named("ABCDEFGHI"), kNameColumn), -1);
	EXPECT_EQ(Compare(Named("_"), Named("A"), kNameColumn), -1); // between the cases in ASCII
	// Whatever the bytes and wherever they differ.
	std::mt19937 random(11);
	const char bytes[] = {'a', 'A', 'z', '_', ' ', '\x01', '\x7f', '\x80', '\xc3', '\xff'};
	const auto name = [&] {
		std::string text(random() % 3 == 0 ? "Shared beginning " : "");
		for (size_t i = random() % 12; i > 0; i--)
			text += bytes[random() % sizeof(bytes)];
		return text.empty() ? std::string("x") : text;
	};
	for (int i = 0; i < 20000; i++) {
		const std::string a = name(), b = name();
		const int expected = strcasecmp(a.c_str(), b.c_str());
		ASSERT_EQ(Compare(Named(a), Named(b), kNameColumn), (expected > 0) - (expected < 0))
			<< testing::PrintToString(a) << testing::PrintToString(b);
	}
}

TEST(ItemListItem, FoldersThenLinksThenFilesBySize)
{
	TempTree tree{{"folder/inside", Text()}, {"other", Dir()}, {"link", Link("folder")},
		{"empty", Text()}, {"one", Text("1")}};
	const auto sized = [&](const std::string& name, uintmax_t size) {
		tree.Add(name, Text());
		std::filesystem::resize_file(tree.Path(name), size); // a hole
		return RowOf(tree.Ref(name));
	};
	constexpr uintmax_t kGiB = 1 << 30;
	const Row folder = RowOf(tree.Ref("folder")), other = RowOf(tree.Ref("other"));
	const Row link = RowOf(tree.Ref("link"));
	const Row empty = RowOf(tree.Ref("empty")), one = RowOf(tree.Ref("one"));
	EXPECT_EQ(Compare(folder, other, kSizeColumn), 0);
	EXPECT_EQ(Compare(folder, link, kSizeColumn), -1);
	EXPECT_EQ(Compare(link, empty, kSizeColumn), -1);
	EXPECT_EQ(Compare(empty, one, kSizeColumn), -1);
	// The low 32 bits count, as a signed number.
	const Row below = sized("2 GiB less one", 2 * kGiB - 1), two = sized("2 GiB", 2 * kGiB);
	const Row four = sized("4 GiB", 4 * kGiB), more = sized("4 GiB and one", 4 * kGiB + 1);
	EXPECT_EQ(Compare(one, below, kSizeColumn), -1);
	EXPECT_EQ(Compare(two, folder, kSizeColumn), -1);
	EXPECT_EQ(Compare(four, empty, kSizeColumn), 0);
	EXPECT_EQ(Compare(more, one, kSizeColumn), 0);
	EXPECT_EQ(Compare(more, below, kSizeColumn), -1);
}

TEST(ItemListItem, PermissionsAndTimesCompareAsNumbers)
{
	TempTree tree{{"old", Text().Mode(0640).Time(-5)}, {"middle", Text().Mode(0644).Time(1000)},
		{"late", Text().Mode(0600).Time(5000000000)}, {"bits", Text().Mode(0640).Time(1000)}};
	tree.SetMode("bits", 04640);
	const Row old = RowOf(tree.Ref("old")), middle = RowOf(tree.Ref("middle"));
	const Row late = RowOf(tree.Ref("late")), bits = RowOf(tree.Ref("bits"));
	EXPECT_EQ(Compare(late, old, kPermissionsColumn), -1);
	EXPECT_EQ(Compare(old, middle, kPermissionsColumn), -1);
	EXPECT_EQ(Compare(old, bits, kPermissionsColumn), 0);
	EXPECT_EQ(Compare(old, middle, kModifiedColumn), -1);
	EXPECT_EQ(Compare(middle, late, kModifiedColumn), -1);
	EXPECT_EQ(Compare(middle, bits, kModifiedColumn), 0);
	for (const int32 column : {int32(kIconColumn), kCreatedColumn + 1, -1})
		EXPECT_EQ(Compare(old, late, column), 0);

	// By the change of the status, not by the creation that the column shows.
	const time_t before = time(nullptr);
	ASSERT_TRUE(WaitUntil([&] { return time(nullptr) > before + 1; })); // the file system's is late
	tree.SetMode("old", 0600);
	EXPECT_EQ(Compare(RowOf(tree.Ref("old")), late, kCreatedColumn), 1);
}

TEST(ItemListItem, KindsAreDescriptionsOfTypes)
{
	TempTree tree{{"words.txt", Text()}, {"page.html", Text()}, {"README", Text("words\n")},
		{"folder/x", Text()}, {"link", Link("words.txt")}, {"broken", Link("none")}};
	ASSERT_EQ(mkfifo((tree.Path() + "/pipe.txt").c_str(), 0600), 0);
	EXPECT_EQ(KindAt(tree, "words.txt"), DescriptionOf("text/plain"));
	EXPECT_EQ(KindAt(tree, "page.html"), DescriptionOf("text/html"));
	EXPECT_EQ(KindAt(tree, "folder"), "FOLDER");
	EXPECT_EQ(KindAt(tree, "link"), "???");
	EXPECT_EQ(KindAt(tree, "broken"), "???");
	EXPECT_EQ(KindAt(tree, "pipe.txt"), " -- ");
	const Row page = RowOf(tree.Ref("page.html")), words = RowOf(tree.Ref("words.txt"));
	const Row again = RowOf(tree.Ref("words.txt")), folder = RowOf(tree.Ref("folder"));
	EXPECT_EQ(Compare(words, again, kKindColumn), 0);
	EXPECT_EQ(Compare(folder, page, kKindColumn), -1); // "FOLDER" and "HTML document"
	EXPECT_EQ(Compare(folder, words, kKindColumn), -1);

	if (!SetType(tree, "words.txt", "application/x-korva-test"))
		GTEST_SKIP() << "no attributes on the file system of " << tree.Path();
	EXPECT_EQ(KindAt(tree, "words.txt"), "application/x-korva-test");
	ASSERT_TRUE(SetType(tree, "page.html", "application/x-Korva-test-b")); // without case
	EXPECT_EQ(Compare(RowOf(tree.Ref("words.txt")), RowOf(tree.Ref("page.html")), kKindColumn), -1);
	ASSERT_TRUE(SetType(tree, "folder", "text/html"));
	EXPECT_EQ(KindAt(tree, "folder"), DescriptionOf("text/html"));
	// What is no type's name counts for nothing.
	ASSERT_TRUE(SetType(tree, "folder", "no type at all"));
	EXPECT_EQ(KindAt(tree, "folder"), "FOLDER");
	ASSERT_TRUE(SetType(tree, "words.txt", "no\ntype/"));
	EXPECT_EQ(KindAt(tree, "words.txt"), " -- ");
}

TEST(ItemListItem, RootsOfVolumesAreToldFromFolders)
{
	entry_ref proc, self;
	ASSERT_EQ(get_ref_for_path("/proc", &proc), B_OK);
	ASSERT_EQ(get_ref_for_path("/proc/sys", &self), B_OK);
	EXPECT_STREQ(RowOf(proc)->KindText(), "Virtual Volume");
	EXPECT_STREQ(RowOf(self)->KindText(), "FOLDER");
	EXPECT_STREQ(RowOf(proc)->KindText(), "Virtual Volume"); // after another device's
}

TEST(ItemListItem, LinksAreFoldersWhenTheirTargetsAre)
{
	TempTree tree{{"folder/file", Text()}, {"to folder", Link("folder")},
		{"to link", Link("to folder")}, {"to file", Link("folder/file")}, {"broken", Link("none")},
		{"loop", Link("loop")}};
	for (const char* path : {"folder", "to folder", "to link"})
		EXPECT_TRUE(RowOf(tree.Ref(path))->IsFolder()) << path;
	for (const char* path : {"folder/file", "to file", "broken", "loop"})
		EXPECT_FALSE(RowOf(tree.Ref(path))->IsFolder()) << path;
}

TEST(ItemListItem, OnceAFolderAlwaysAFolder)
{
	TempTree tree{{"entry", Dir()}, {"other name", Text()}};
	const Row row = RowOf(tree.Ref("entry"));
	const int64 number = row->GetINode();
	tree.Remove("entry");
	tree.Rename("other name", "entry");
	row->UpdateItem(nullptr);
	EXPECT_TRUE(row->IsFolder());
	EXPECT_STREQ(row->KindText(), DescriptionOf("application/x-zerosize").c_str());
	EXPECT_NE(row->GetINode(), number);
}

TEST(ItemListItem, EntriesThatAreGoneKeepWhatWasKnown)
{
	TempTree tree{{"entry.txt", Text("x")}, {"folder/x", Text()}};
	const Row row = RowOf(tree.Ref("entry.txt"));
	const entry_ref gone = tree.Ref("folder/x");
	tree.Rename("entry.txt", "entry.html");
	row->UpdateItem(nullptr);
	EXPECT_STREQ(row->Name(), "entry.txt");
	EXPECT_EQ(row->KindText(), DescriptionOf("text/plain"));
	const entry_ref renamed = tree.Ref("entry.html");
	row->UpdateItem(const_cast<entry_ref*>(&renamed));
	EXPECT_STREQ(row->Name(), "entry.html");
	EXPECT_EQ(*row->GetRef(), renamed);
	EXPECT_EQ(row->KindText(), DescriptionOf("text/html"));
	EXPECT_EQ(Compare(row, Named("entry.html"), kNameColumn), 0);

	tree.Remove("folder/x");
	tree.Remove("folder");
	EXPECT_STREQ(RowOf(gone)->KindText(), " -- ");
	const ItemListItem none;
	EXPECT_STREQ(none.Name(), "");
	EXPECT_STREQ(none.KindText(), " -- ");
	EXPECT_EQ(ItemListItem::CompareFiles(&none, row.get(), kNameColumn), -1);
}
