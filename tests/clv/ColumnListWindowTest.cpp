// SPDX-License-Identifier: MIT

// Column lists in windows: a user in front, and what is shown.

#include "app/Messages.h"
#include "tests/clv/TestList.h"
#include "tests/support/ListenedWindow.h"
#include "tests/support/Storm.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32 kRed = 0xffe50000;
constexpr float kHeaderY = 8;
using Numbers = std::vector<int32>;

// A list of 300 by 200 pixels that fills its window.
struct ListWindow {
	explicit ListWindow(bool hierarchical, float left = 0) :
		list(new TestList(hierarchical, BRect(left, 0, left + 299, 199))),
		window(314, 214, list->container)
	{}
	~ListWindow()
	{
		// Rows belong to the list object and go with it.
		window.Under([&] { list->MakeEmpty(); });
	}

	template <typename Function>
	auto Under(Function function)
	{
		window.Settle();
		return window.Under(function);
	}
	// Changes something; then all is painted.
	template <typename Function>
	void Do(Function change)
	{
		window.Get()->Do(change);
	}
	InjectedUser& User() { return window.User(); }
	template <typename Condition>
	bool Becomes(Condition condition)
	{
		return WaitUntil([&] { return window.Under(condition); });
	}
	// What is shown is what a complete redraw would show.
	testing::AssertionResult IsDrawnRight()
	{
		window.Settle();
		const InjectedUser::Picture now = window->Snapshot();
		Do([&] {
			list->Invalidate();
			list->container->ChildAt(2)->Invalidate();
		});
		const InjectedUser::Picture whole = window->Snapshot();
		const auto [here, there] =
			std::mismatch(now.pixels.begin(), now.pixels.end(), whole.pixels.begin());
		if (here == now.pixels.end())
			return testing::AssertionSuccess();
		const auto at = static_cast<int32>(here - now.pixels.begin());
		return testing::AssertionFailure() << "at " << at % now.width << ", " << at / now.width;
	}
	// A look at the mouse, which its watcher might miss, so quick is it over.
	void TellHeader(BPoint where)
	{
		BMessage moved(MW_MOUSE_MOVED);
		moved.AddPoint("where", where);
		moved.AddInt32("buttons", B_PRIMARY_MOUSE_BUTTON);
		moved.AddInt32("modifiers", 0);
		EXPECT_EQ(BMessenger(list->container->ChildAt(2)).SendMessage(&moved), B_OK);
		window.Settle();
	}
	float RowY(int32 row) { return list->Frame().top + 20 * static_cast<float>(row) + 10; }
	int32 RedIn(float left, float right)
	{
		window.Settle();
		const InjectedUser::Picture picture = window->Snapshot();
		int32 count = 0;
		for (int32 x = static_cast<int32>(left); x <= static_cast<int32>(right); x++) {
			for (int32 y = 0; y < 14; y++)
				count += picture.At(x, y) == kRed;
		}
		return count;
	}

	TestList* list;
	ListenedWindow window;
};

// Columns at 0-100, 101-151, 152-212.
void
FillContents(ListWindow& it)
{
	it.Do([&] {
		TestList* list = it.list;
		list->SetSortFunction(CompareKeys);
		list->NewColumn(CLV_COLUMN_SORTABLE, 100, "Name");
		list->NewColumn(CLV_COLUMN_SORTABLE, 50, "Size");
		list->NewColumn(CLV_COLUMN_NOT_MOVABLE | CLV_COLUMN_SORTABLE, 60, "Kind");
		for (const int key : {3, 1, 2})
			list->AddItem(list->NewRow(key, 9 - key));
	});
}

} // namespace

TEST(ColumnListWindow, ClicksOnLabelsSort)
{
	ListWindow it(false);
	FillContents(it);
	it.User().Click(30, kHeaderY); // as quick as can be
	EXPECT_TRUE(it.Becomes([&] { return it.list->Shown() == std::vector<int>{1, 2, 3}; }));
	it.User().Press(120, kHeaderY, B_PRIMARY_MOUSE_BUTTON, B_SHIFT_KEY);
	EXPECT_TRUE(WaitUntil([&] { return it.RedIn(101, 151) > 0; }));
	it.User().Release(120, kHeaderY, B_PRIMARY_MOUSE_BUTTON, B_SHIFT_KEY);
	EXPECT_TRUE(it.Becomes([&] { return it.list->SortKeys() == std::vector<int32>{0, 1}; }));
	it.User().Press(30, kHeaderY, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(it.RedIn(0, 313), 0);
	it.User().Release(30, kHeaderY, B_SECONDARY_MOUSE_BUTTON);
	// Within two pixels it is still a click; meanwhile the label is red.
	it.User().Press(30, kHeaderY);
	EXPECT_TRUE(WaitUntil([&] { return it.RedIn(0, 100) > 0; }));
	EXPECT_EQ(it.RedIn(101, 212), 0);
	it.TellHeader(BPoint(32, kHeaderY));
	EXPECT_EQ(it.RedIn(101, 212), 0);
	it.User().Release(32, kHeaderY);
	EXPECT_TRUE(it.Becomes([&] { return it.list->Shown() == std::vector<int>{3, 2, 1}; }));
	EXPECT_TRUE(WaitUntil([&] { return it.RedIn(0, 313) == 0; }));
	EXPECT_TRUE(it.IsDrawnRight());
}

TEST(ColumnListWindow, LabelsShowTheKeysAndStayInTheirCells)
{
	constexpr uint32 kBlack = 0xff000000, kDark = 0xff989898, kLight = 0xffffffff;
	constexpr uint32 kGround = 0xffd8d8d8;
	ListWindow it(false);
	it.Do([&] {
		TestList* list = it.list;
		list->NewColumn(CLV_COLUMN_SORTABLE, 100, "HH");
		list->NewColumn(CLV_COLUMN_SORTABLE | CLV_COLUMN_MERGE_LABEL_RIGHT, 50, "H");
		list->NewColumn(0, 60, "HHHHHHHHHHHHHHHHHHHH");
		list->SetSortKey(0);
		list->SetSortKey(1); // the first one keeps its direction, but is no key any more
	});
	const InjectedUser::Picture picture = it.window->Snapshot();
	const int32 bottom = static_cast<int32>(it.list->ColumnLabelHeight());
	EXPECT_EQ(picture.At(100, 1), kDark);
	EXPECT_EQ(picture.At(101, 1), kLight);
	EXPECT_EQ(picture.At(151, 1), kGround); // merged
	EXPECT_EQ(picture.At(152, 1), kGround);
	EXPECT_EQ(picture.At(213, 1), kLight);
	for (int32 y = 1; y <= bottom; y++)
		EXPECT_EQ(picture.At(212, y), kDark) << y; // however long the label is

	// The key's label has a line below it.
	const int32 y = 2 + [] {
		font_height height;
		be_plain_font->GetHeight(&height);
		return static_cast<int32>(std::ceil(height.ascent)) + 2;
	}();
	int32 keyPixels = 0;
	for (int32 x = 1; x < 151; x++) {
		const bool line = picture.At(x, y) == kBlack;
		EXPECT_TRUE(!line || x >= 101 + 8) << x;
		keyPixels += line;
	}
	EXPECT_NEAR(keyPixels, be_plain_font->StringWidth("H") + 1, 1);
}

TEST(ColumnListWindow, DraggedEdgesResizeAndWhatIsShownStaysRight)
{
	ListWindow it(false);
	FillContents(it);
	CLVColumn* name = it.list->ColumnAt(0);
	const auto drag = [&](float from, float to) {
		it.User().Press(from, kHeaderY);
		const float before = name->Width();
		const float width = before + to - from;
		SCOPED_TRACE(width);
		// The watcher tells of no point that its first look found, and that may come late.
		float x = to + 10;
		EXPECT_TRUE(WaitUntil([&] {
			it.User().Move(x = x < to + 30 ? x + 1 : to + 10, kHeaderY);
			return it.Under([&] { return name->Width() != before; });
		}));
		it.User().Move(to, kHeaderY);
		EXPECT_TRUE(WaitUntil([&] { return it.Under([&] { return name->Width() == width; }); }));
		EXPECT_EQ(it.RedIn(width, width), 14);
		EXPECT_TRUE(it.IsDrawnRight());
		it.User().Release(to, kHeaderY);
		EXPECT_TRUE(WaitUntil([&] { return it.RedIn(0, 313) == 0; }));
		EXPECT_TRUE(it.IsDrawnRight());
	};
	drag(99, 140);
	drag(143, 60); // two pixels into the next column
	EXPECT_EQ(it.Under([&] { return it.list->Order(); }), (Numbers{0, 1, 2}));
	EXPECT_TRUE(it.Under([&] { return it.list->SortKeys(); }).empty());
	// By the program too, with the list scrolled; hidden and shown.
	for (const float width : {500.0f, 430.0f, 520.0f, 20.0f}) {
		it.Do([&] {
			name->SetWidth(width);
			it.list->ScrollTo(150, 0);
		});
		EXPECT_TRUE(it.IsDrawnRight()) << width;
	}
	for (const bool shown : {false, true}) {
		it.Do([&] { name->SetShown(shown); });
		EXPECT_TRUE(it.IsDrawnRight());
		EXPECT_EQ(it.list->ColumnAt(1)->Begin(), shown ? 21 : 0);
	}
}

TEST(ColumnListWindow, EdgesCanBeDraggedWhereTheHeaderLiesBetweenPixels)
{
	for (const float left : {0.4f, 0.6f}) {
		SCOPED_TRACE(left);
		ListWindow it(false, left);
		FillContents(it);
		// The edge's line is in the nearest pixel, the next one's begin already the other column.
		const int32 edge = 100 + static_cast<int32>(std::lround(left));
		for (int32 x = edge - 1; x <= edge + 1; x++) {
			it.User().Press(static_cast<float>(x), kHeaderY);
			EXPECT_TRUE(WaitUntil([&] {
				return it.RedIn(static_cast<float>(edge), static_cast<float>(edge)) == 14;
			})) << x;
			it.User().Release(static_cast<float>(x), kHeaderY);
			EXPECT_TRUE(WaitUntil([&] { return it.RedIn(0, 313) == 0; })) << x;
		}
		EXPECT_TRUE(it.Under([&] { return it.list->SortKeys(); }).empty());
	}
}

TEST(ColumnListWindow, DraggedLabelsMoveTheirColumns)
{
	ListWindow it(false);
	FillContents(it);
	it.User().Press(30, kHeaderY);
	float to = 190;
	EXPECT_TRUE(WaitUntil([&] {
		it.User().Move(to = to < 210 ? to + 1 : 190, kHeaderY);
		return it.Under([&] { return it.list->Order(); }) == Numbers{1, 2, 0};
	}));
	// The outline keeps the pointer's place in the label, but stays with a group that can go no
	// further: 112-212 is the last one.
	const auto outlineAt = [&](int32 left) {
		return WaitUntil([&] {
			return it.RedIn(static_cast<float>(left), static_cast<float>(left)) >= 14 &&
				it.RedIn(static_cast<float>(left) + 100, static_cast<float>(left) + 100) >= 14;
		});
	};
	it.User().Move(130, kHeaderY);
	EXPECT_TRUE(outlineAt(100));
	it.User().Move(170, kHeaderY);
	EXPECT_TRUE(outlineAt(112));
	EXPECT_TRUE(it.IsDrawnRight());
	it.User().Release(170, kHeaderY);
	EXPECT_TRUE(WaitUntil([&] { return it.RedIn(0, 313) == 0; }));
	EXPECT_TRUE(it.Under([&] { return it.list->SortKeys(); }).empty());
	EXPECT_GT(it.Under([&] { return it.list->orders; }), 0);

	// One that may not move: the gesture ends, and the release does not sort.
	const Numbers order = it.Under([&] { return it.list->Order(); });
	const float x = it.Under([&] { return it.list->ColumnAt(2)->Begin() + 20; });
	it.User().Press(x, kHeaderY);
	ASSERT_TRUE(WaitUntil([&] { return it.RedIn(0, 313) > 0; }));
	EXPECT_TRUE(WaitUntil([&] {
		it.User().Move(x + 10, kHeaderY);
		it.User().Move(x + 20, kHeaderY);
		return it.RedIn(0, 313) == 0;
	}));
	it.User().Release(x + 20, kHeaderY);
	EXPECT_TRUE(WaitUntil([] { return find_thread("MouseWatcher") == B_NAME_NOT_FOUND; }));
	EXPECT_EQ(it.Under([&] { return it.list->Order(); }), order);
	EXPECT_TRUE(it.Under([&] { return it.list->SortKeys(); }).empty());
}

TEST(ColumnListWindow, IndentedCellsAndArrowsEndWithTheirColumns)
{
	ListWindow it(true);
	it.Do([&] {
		TestList* list = it.list;
		list->NewColumn(CLV_COLUMN_EXPANDER); // 0-20
		list->NewColumn(0, 10);               // 21-31
		list->NewColumn(0, 50);               // 32-82
		list->AddItem(list->NewRow());
		list->AddUnder(list->NewRow(), list->FullListItemAt(0));
		list->FullListItemAt(1)->SetSuperItem(true);
		list->Expand(list->FullListItemAt(0));
	});
	const InjectedUser::Picture picture = it.window->Snapshot();
	const int32 y = static_cast<int32>(it.RowY(1));
	const auto red = [&](int32 x) { return picture.At(x, y) >> 16 & 0xff; };
	EXPECT_EQ(red(5), 20u);    // the expander's cell is not indented
	EXPECT_NE(red(31), 0xffu); // the arrow from 27 on, cut off behind 31
	EXPECT_EQ(red(32), 40u);
	EXPECT_EQ(red(82), 40u);
	EXPECT_EQ(red(83), 10u); // the rest of the row
	// The narrow column, shifted by 20, lies behind its own end and is not drawn.
	EXPECT_EQ(picture.At(23, y), 0xffffffffu);
	it.User().Click(36, it.RowY(1));
	it.window.Settle();
	EXPECT_EQ(it.list->CurrentSelection(), 1); // no arrow there
	it.Do([&] {
		it.list->ColumnAt(1)->SetWidth(40); // 21-61
	});
	EXPECT_EQ(it.list->rows[1]->cells[1], BRect(41, 20, 61, 39));
	EXPECT_EQ(it.list->rows[0]->cells[1], BRect(21, 0, 61, 19));
}

TEST(ColumnListWindow, RowsHearOfThePointerAsLongAsTheyAreThere)
{
	ListWindow it(false);
	FillContents(it);
	using Transits = std::vector<uint32>;
	const auto heard = [&](BPoint where, uint32 transit, size_t row) {
		it.Do([&] { it.list->MouseMoved(where, transit, nullptr); });
		return std::exchange(it.list->rows[row]->transits, {});
	};
	EXPECT_EQ(heard(BPoint(5, 5), B_ENTERED_VIEW, 0), (Transits{B_ENTERED_VIEW}));
	EXPECT_EQ(heard(BPoint(6, 25), B_INSIDE_VIEW, 0), (Transits{B_EXITED_VIEW}));
	EXPECT_EQ(it.list->rows[1]->transits, (Transits{B_ENTERED_VIEW}));
	it.Do([&] { it.list->RemoveItem(1); });
	it.list->rows.erase(it.list->rows.begin() + 1);
	EXPECT_EQ(heard(BPoint(6, 5), B_INSIDE_VIEW, 0), (Transits{B_ENTERED_VIEW}));
	// As good as a new row at the address of one that was taken out.
	it.Do([&] {
		it.list->MakeEmpty();
		it.list->AddItem(it.list->rows[0].get());
	});
	EXPECT_EQ(heard(BPoint(6, 5), B_INSIDE_VIEW, 0), (Transits{B_ENTERED_VIEW}));
}

TEST(ColumnListWindow, ColumnsAndKeysMayBeChangedByAnyThread)
{
	ListWindow it(true);
	it.Do([&] {
		TestList* list = it.list;
		list->SetSortFunction(CompareKeys);
		list->NewColumn(CLV_COLUMN_SORTABLE);
		list->NewColumn(CLV_COLUMN_SORTABLE);
		list->NewColumn(CLV_COLUMN_EXPANDER);
		for (int i = 0; i < 50; i++) {
			list->AddItem(list->NewRow(i % 7, i % 3));
			list->AddUnder(list->NewRow(i), list->FullListItemAt(0));
		}
	});
	CLVListItem* first = it.Under([&] { return it.list->FullListItemAt(0); });
	InThreads(3, [&](int thread) {
		for (int i = 0; i < 100; i++) {
			if (thread == 0) {
				it.list->ColumnAt(0)->SetWidth(static_cast<float>(20 + i % 30));
				it.list->ColumnAt(1)->SetShown(i % 3 != 0);
			} else if (thread == 1) {
				it.list->SetSortKey(i % 2);
				it.list->ReverseSortMode(i % 2);
			} else if (i % 2 == 0)
				it.list->Expand(first);
			else
				it.list->Collapse(first);
		}
	});
	EXPECT_EQ(it.Under([&] { return it.list->CountItems(); }), 50);
	EXPECT_TRUE(it.IsDrawnRight());
}
