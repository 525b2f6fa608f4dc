// SPDX-License-Identifier: MIT

// What rows of the contents list look like: their cells, the selection, the target of a drag.

#include "app/Messages.h"
#include "tests/clv/TestList.h"
#include "tests/panes/ItemListWindow.h"

#include <app/Message.h>

#include <gtest/gtest.h>

namespace {

constexpr uint32 kWhite = 0xffffffff;
constexpr uint32 kSelected = 0xffc17aff;
constexpr uint32 kDropTarget = 0xff6c6c6c;

int
Inked(const InjectedUser::Picture& picture, BRect cell)
{
	return CountPixels(picture, cell, kWhite, false);
}

} // namespace

TEST(RowDrawing, EachCellIsFilledInAndEndsAtItsEdges)
{
	TempTree tree{{std::string(250, 'W') + ".html", Text()}, {"x", Link("y")}};
	ItemListWindow it(tree);
	const InjectedUser::Picture picture = it.window->Snapshot();
	for (int32 row : {0, 1}) {
		for (int32 column = kIconColumn; column <= kCreatedColumn; column++)
			EXPECT_GT(Inked(picture, it.Cell(row, column)), 10) << row << ", " << column;
	}
	// However long its text is, a cell leaves the gap before the next one's alone.
	for (int32 column = kNameColumn; column <= kModifiedColumn; column++) {
		BRect gap = it.Cell(0, column + 1);
		gap.right = gap.left + 2;
		EXPECT_EQ(Inked(picture, gap), 0) << column;
	}
	// A link's kind is underlined, no further than the text goes.
	const BRect kind = it.Cell(1, kKindColumn);
	const int32 y = static_cast<int32>(kind.bottom);
	const float width = be_plain_font->StringWidth("???");
	const int32 line = CountPixels(picture,
		BRect(kind.left, static_cast<float>(y), kind.right, static_cast<float>(y)), 0xff000000);
	EXPECT_NEAR(static_cast<float>(line), width + 1, 1.5f);
	EXPECT_EQ(
		Inked(picture, BRect(kind.left + 3 + width + 3, kind.top, kind.right, kind.bottom)), 0);
	// Nor beyond its column.
	it.Do([&] {
		it.list->ColumnAt(kKindColumn)->SetWidth(20);
		BFont font(*be_plain_font);
		font.SetSize(24);
		it.list->SetFont(&font);
		it.list->Invalidate();
	});
	BRect next = it.Cell(1, kSizeColumn);
	next.right = next.left + 1;
	EXPECT_EQ(Inked(it.window->Snapshot(), next), 0);
}

TEST(RowDrawing, OddNamesAreReadableAndStayInTheirRows)
{
	TempTree tree;
	const std::vector<std::string> names = {"\xff\xfe", "a\nb\nc", "tab\tbell\a\x01\x1b[31m",
		"\xe2\x80\xaeturned", " ", "\xed\xa0\x80", std::string(255, 'x'),
		"a\xcc\x81\xcc\x81\xcc\x81"};
	for (const std::string& name : names)
		tree.Add(name, Dir());
	ItemListWindow it(tree);
	const InjectedUser::Picture picture = it.window->Snapshot();
	for (int32 row = 0; row < static_cast<int32>(names.size()); row++) {
		const BRect cell = it.Cell(row, kNameColumn);
		const std::string name = it.Names()[static_cast<size_t>(row)];
		EXPECT_EQ(cell.Height(), 16) << testing::PrintToString(name);
		if (name != " ") {
			EXPECT_GT(Inked(picture, cell), 3) << testing::PrintToString(name);
		}
		EXPECT_GT(Inked(picture, it.Cell(row, kKindColumn)), 10) << testing::PrintToString(name);
		BRect gap = it.Cell(row, kKindColumn);
		gap.right = gap.left + 2;
		EXPECT_EQ(Inked(picture, gap), 0) << testing::PrintToString(name);
	}
}

TEST(RowDrawing, OnlyFoldersLightUpUnderADragOfFiles)
{
	TempTree tree{{"a folder", Dir()}, {"file", Text()}, {"link", Link("a folder")}};
	ItemListWindow it(tree);
	BMessage files('DATA');
	files.AddRef(kName_Refs, &it.root);
	BMessage other('DATA');
	other.AddString("text", "no files");
	const auto over = [&](int32 row, uint32 transit, const BMessage* drag) {
		it.Do([&] { it.list->RowAt(row)->MouseOver(it.list, BPoint(), transit, drag); });
	};
	const auto lit = [&](int32 row) {
		return CountPixels(it.window->Snapshot(), it.Cell(row, kNameColumn), kDropTarget) > 30;
	};
	for (const int32 folder : {0, 2}) {
		SCOPED_TRACE(folder);
		over(folder, B_INSIDE_VIEW, &files);
		EXPECT_FALSE(lit(folder)); // it was not entered
		over(folder, B_ENTERED_VIEW, &files);
		EXPECT_TRUE(lit(folder));
		over(folder, B_INSIDE_VIEW, &files);
		EXPECT_TRUE(lit(folder));
		over(folder, B_EXITED_VIEW, &files);
		EXPECT_FALSE(lit(folder));
		// The drag has ended, or is none of files any more.
		for (const BMessage* drag :
			{static_cast<const BMessage*>(nullptr), &std::as_const(other)}) {
			over(folder, B_ENTERED_VIEW, &files);
			over(folder, B_INSIDE_VIEW, drag);
			EXPECT_FALSE(lit(folder));
		}
		over(folder, B_ENTERED_VIEW, nullptr);
		EXPECT_FALSE(lit(folder));
	}
	over(1, B_ENTERED_VIEW, &files);
	EXPECT_FALSE(lit(1));

	// The selection's colours win.
	it.Do([&] { it.list->Select(0); });
	over(0, B_ENTERED_VIEW, &files);
	EXPECT_FALSE(lit(0));
	EXPECT_GT(CountPixels(it.window->Snapshot(), it.Cell(0, kNameColumn), kSelected), 100);
	EXPECT_EQ(CountPixels(it.window->Snapshot(), it.Cell(0, kKindColumn), kSelected), 0);
	it.Do([&] { it.list->DeselectAll(); });
	EXPECT_TRUE(lit(0));
}

TEST(RowDrawing, RowsAreAsHighAsAnIconOrTheirFont)
{
	TempTree tree{{"file", Text()}};
	ItemListWindow it(tree);
	EXPECT_EQ(it.list->RowAt(0)->Height(), 18);
	it.Do([&] {
		BFont font;
		font.SetSize(40);
		it.list->RowAt(0)->Update(it.list, &font);
	});
	EXPECT_GT(it.list->RowAt(0)->Height(), 40);
}

TEST(RowDrawing, RowsOfATreeHaveIconAndNameBehindTheirArrow)
{
	TempTree tree{{"folder/x", Text()}};
	const ColourSettings colours = {{0, 0, 0, 255}, {255, 255, 255, 255}, {0, 0, 0, 255},
		{193, 122, 255, 255}, {0, 0, 0, 255}, {255, 255, 255, 255}};
	FileListItem row(new entry_ref(tree.Ref("folder")));
	row.SetColours(&colours);
	TestList* list = new TestList(false); // which keeps the first column free all the same
	ListenedWindow window(314, 214, list->container);
	const float top = window.Under([&] {
		list->NewColumn(0, 50);
		list->NewColumn(0, 150); // from 51 on
		list->AddItem(&row);
		list->Select(0);
		return list->Frame().top;
	});
	window.Settle();
	const InjectedUser::Picture picture = window->Snapshot();
	const auto strip = [&](float left, float right, uint32 colour, bool equal) {
		return CountPixels(picture, BRect(left, top, right, top + 18), colour, equal);
	};
	EXPECT_EQ(strip(0, 51, kWhite, false), 0);
	EXPECT_GT(strip(52, 67, kWhite, false), 30); // the icon
	EXPECT_EQ(strip(68, 70, kWhite, false), 0);
	EXPECT_GT(strip(71, 71, kSelected, true), 8); // the box behind the name
	window.Under([&] {
		list->MakeEmpty();
		return 0;
	});
}
