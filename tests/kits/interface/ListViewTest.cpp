// SPDX-License-Identifier: MIT

#include <interface/ListView.h>

#include <interface/ScrollBar.h>
#include <interface/ScrollView.h>

#include "tests/support/ListenedWindow.h"

#include <algorithm>
#include <memory>
#include <random>
#include <set>

namespace {

constexpr uint32 kSelected = 'sele';
constexpr uint32 kInvoked = 'invo';

class Row : public BListItem {
public:
	explicit Row(int value) : number(value) {}

	void DrawItem(BView* owner, BRect rect, bool) override
	{
		draws++;
		owner->SetHighColor(IsSelected() ? 200 : 255, 255, 255);
		owner->FillRect(rect);
	}
	void Update(BView*, const BFont*) override { SetHeight(18); }

	const int number;
	int draws = 0;
};

class RecordingList : public BListView {
public:
	RecordingList(BRect frame, list_view_type type) : BListView(frame, "list", type)
	{
		SetSelectionMessage(new BMessage(kSelected));
		SetInvocationMessage(new BMessage(kInvoked));
	}

	Row* NewRow(int number)
	{
		owned.push_back(std::make_unique<Row>(number));
		return owned.back().get();
	}
	void Fill(int count)
	{
		for (int i = 0; i < count; i++)
			AddItem(NewRow(i));
	}
	std::vector<int32> Selection() const
	{
		std::vector<int32> rows;
		for (int32 i = 0, k; (k = CurrentSelection(i)) >= 0; i++)
			rows.push_back(k);
		return rows;
	}

	void SelectionChanged() override { changes++; }
	bool InitiateDrag(BPoint, int32 index, bool wasSelected) override
	{
		drags.push_back({index, wasSelected});
		return wasSelected;
	}

	int changes = 0;
	std::vector<std::pair<int32, bool>> drags;
	std::vector<std::unique_ptr<Row>> owned;
};

// Of six rows.
RecordingList*
NewList()
{
	RecordingList* list = new RecordingList(BRect(0, 0, 200, 200), B_MULTIPLE_SELECTION_LIST);
	list->Fill(6);
	return list;
}

int
ByNumber(const void* a, const void* b)
{
	auto number = [](const void* slot) {
		return static_cast<const Row*>(*static_cast<BListItem* const*>(slot))->number;
	};
	return number(a) < number(b) ? -1 : 1;
}

// Row i covers the pixels from 19 * i.
float
MiddleOf(int32 row)
{
	return 19.0f * static_cast<float>(row) + 9;
}

// What the selection does, said as plainly as possible.
struct SelectionModel {
	void Alone(int32 row)
	{
		selected = {row};
		anchor = cursor = row;
	}
	void Extend(int32 row)
	{
		if (anchor < 0)
			anchor = selected.empty() ? row : *selected.begin();
		selected.clear();
		for (int32 i = std::min(anchor, row); i <= std::max(anchor, row); i++)
			selected.insert(i);
		cursor = row;
	}
	void Click(int32 row, uint32 held)
	{
		if (row >= count)
			selected.clear();
		else if (multiple && (held & B_SHIFT_KEY) != 0)
			Extend(row);
		else if (multiple && held != 0) {
			if (selected.erase(row) == 0)
				selected.insert(row);
			anchor = cursor = row;
		} else
			Alone(row);
	}
	void Key(char key, bool shift)
	{
		int32 row = selected.empty() ? -1 : cursor >= 0 ? cursor : *selected.begin();
		int32 to = key == B_HOME ? 0 : count - 1;
		if (key == B_DOWN_ARROW)
			to = row + 1;
		else if (key == B_UP_ARROW && row >= 0)
			to = row - 1;
		to = std::clamp(to, 0, count - 1);
		if (shift && multiple)
			Extend(to);
		else
			Alone(to);
	}

	int32 count;
	bool multiple;
	std::set<int32> selected = {};
	int32 anchor = -1;
	int32 cursor = -1;
};

void
RunAgainstModel(list_view_type type, unsigned seed)
{
	constexpr int32 kRows = 8; // and one row's room below them
	RecordingList* list = new RecordingList(BRect(0, 0, 200, 19 * (kRows + 1)), type);
	list->Fill(kRows);
	ListenedWindow window(200, 19 * (kRows + 1), list);
	SelectionModel model{kRows, type == B_MULTIPLE_SELECTION_LIST};
	std::mt19937 random(seed);
	for (int step = 0; step < 400; step++) {
		const std::set<int32> before = model.selected;
		list->changes = 0;
		if (random() % 2 == 0) {
			const uint32 keys[] = {0, 0, B_SHIFT_KEY, B_CONTROL_KEY, B_OPTION_KEY};
			int32 row = static_cast<int32>(random() % (kRows + 1));
			uint32 held = keys[random() % 5];
			model.Click(row, held);
			window.User().Press(20, MiddleOf(row), B_PRIMARY_MOUSE_BUTTON, held);
			window.User().Release(20, MiddleOf(row), B_PRIMARY_MOUSE_BUTTON, held);
			// Not to be taken for a double click.
			window.User().Click(190, MiddleOf(row), B_SECONDARY_MOUSE_BUTTON);
		} else if (!model.selected.empty() || random() % 2 == 0) {
			const char keys[] = {B_UP_ARROW, B_DOWN_ARROW, B_HOME, B_END};
			char key = keys[random() % 4];
			bool shift = random() % 2 == 0;
			model.Key(key, shift);
			window.Under([&] { list->MakeFocus(); });
			window.User().Key(std::string(1, key), shift ? B_SHIFT_KEY : 0);
		}
		window.Settle();
		std::vector<int32> expected(model.selected.begin(), model.selected.end());
		ASSERT_EQ(window.Under([&] { return list->Selection(); }), expected) << "step " << step;
		for (int32 row = 0; row < kRows; row++)
			ASSERT_EQ(list->ItemAt(row)->IsSelected(), model.selected.count(row) != 0);
		size_t messages = window->Take(kSelected).size();
		ASSERT_EQ(messages, static_cast<size_t>(list->changes)) << "step " << step;
		ASSERT_EQ(messages > 0, before != model.selected) << "step " << step;
		ASSERT_LE(messages, 1u) << "step " << step;
	}
}

} // namespace

TEST(ListView, MouseAndKeysSelectAsInAPlainModel)
{
	RunAgainstModel(B_MULTIPLE_SELECTION_LIST, 30);
	RunAgainstModel(B_SINGLE_SELECTION_LIST, 31);
}

TEST(ListView, TheSelectionStaysWithItsRowsThroughChanges)
{
	RecordingList list(BRect(0, 0, 100, 100), B_MULTIPLE_SELECTION_LIST);
	list.Fill(6);
	list.Select(1);
	list.Select(4, true);
	const auto selected = [&list] {
		std::vector<int> numbers;
		for (int32 row : list.Selection()) {
			EXPECT_TRUE(list.ItemAt(row)->IsSelected());
			numbers.push_back(static_cast<Row*>(list.ItemAt(row))->number);
		}
		return numbers;
	};
	BList added;
	for (int number : {9, 8})
		added.AddItem(static_cast<BListItem*>(list.NewRow(number)));
	EXPECT_TRUE(list.AddList(&added, 2)); // 0 1 9 8 2 3 4 5
	EXPECT_EQ(selected(), (std::vector<int>{1, 4}));
	list.Select(2, true);
	EXPECT_TRUE(list.RemoveItems(3, 2)); // 0 1 9 3 4 5
	EXPECT_EQ(list.RemoveItem(static_cast<int32>(0)), list.owned[0].get());
	EXPECT_TRUE(list.AddItem(list.NewRow(7), 0)); // 7 1 9 3 4 5
	EXPECT_EQ(selected(), (std::vector<int>{1, 9, 4}));
	list.SortItems(ByNumber);
	EXPECT_EQ(selected(), (std::vector<int>{1, 4, 9}));
	EXPECT_TRUE(list.RemoveItems(0, 2)); // 4 5 7 9
	EXPECT_EQ(selected(), (std::vector<int>{4, 9}));
}

TEST(ListView, BadIndicesAreIgnored)
{
	RecordingList list(BRect(0, 0, 100, 100), B_MULTIPLE_SELECTION_LIST);
	list.Fill(3);
	list.Select(1);
	list.changes = 0;
	list.Select(-1);
	list.Select(3);
	list.Select(2, 1);
	list.Select(1, 3);
	list.Deselect(-1);
	list.DeselectExcept(0, 3);
	list.Select(1);
	EXPECT_EQ(list.Selection(), std::vector<int32>{1});
	EXPECT_EQ(list.changes, 0);
	EXPECT_FALSE(list.AddItem(list.NewRow(9), 5));
	EXPECT_FALSE(list.ItemFrame(3).IsValid());
}

TEST(ListView, OnlyDamagedRowsAreDrawn)
{
	RecordingList* list = new RecordingList(BRect(0, 0, 120, 100), B_SINGLE_SELECTION_LIST);
	list->Fill(5);
	ListenedWindow window(200, 100, list);
	window.Under([&] {
		list->Select(0);
		list->Window()->UpdateIfNeeded();
		for (const auto& row : list->owned)
			row->draws = 0;
		list->Select(4);
	});
	window.Settle();
	window.Under([&] {
		for (const auto& row : list->owned)
			EXPECT_EQ(row->draws, row->number == 0 || row->number == 4) << row->number;
	});
}

TEST(ListView, TogglingOffAndReducingWaitForTheRelease)
{
	RecordingList* list = NewList();
	ListenedWindow window(200, 200, list);
	auto selection = [&] {
		window.Settle();
		return window.Under([&] { return list->Selection(); });
	};
	using Rows = std::vector<int32>;
	window.Under([&] { list->Select(0, 2); });
	window.User().Press(20, MiddleOf(1), B_PRIMARY_MOUSE_BUTTON, B_CONTROL_KEY);
	EXPECT_EQ(selection(), (Rows{0, 1, 2}));
	window.User().Release(20, MiddleOf(1), B_PRIMARY_MOUSE_BUTTON, B_CONTROL_KEY);
	EXPECT_EQ(selection(), (Rows{0, 2}));
	window.User().Press(20, MiddleOf(2));
	EXPECT_EQ(selection(), (Rows{0, 2}));
	// A drag in between leaves all as it is.
	window.User().Move(60, MiddleOf(3));
	window.User().Release(60, MiddleOf(3));
	EXPECT_EQ(selection(), (Rows{0, 2}));
	window.User().Click(20, MiddleOf(0));
	EXPECT_EQ(selection(), (Rows{0}));
}

TEST(ListView, ADragIsOfferedOnceBehindTwoPixels)
{
	RecordingList* list = NewList();
	ListenedWindow window(200, 200, list);
	auto drags = [&] {
		window.Settle();
		return window.Under([&] { return list->drags; });
	};
	window.User().Press(20, MiddleOf(3));
	window.User().Move(22, MiddleOf(3) - 2);
	EXPECT_TRUE(drags().empty());
	window.User().Move(22, MiddleOf(3) - 3);
	EXPECT_EQ(drags(), (std::vector<std::pair<int32, bool>>{{3, false}}));
	window.User().Move(100, MiddleOf(1));
	window.User().Release(100, MiddleOf(1));
	EXPECT_EQ(drags().size(), 1u);
	window.User().Press(120, MiddleOf(3));
	window.User().Move(130, MiddleOf(3));
	EXPECT_EQ(drags().back(), std::make_pair(int32(3), true));
	// The rows may go while the button is held.
	window.Under([&] { list->MakeEmpty(); });
	window.User().Move(150, MiddleOf(3));
	window.User().Release(150, MiddleOf(3));
	EXPECT_EQ(drags().size(), 2u);
}

TEST(ListView, ADoubleClickInvokesTheRowAndEnterTheSelection)
{
	RecordingList* list = NewList();
	ListenedWindow window(200, 200, list);
	window.User().Click(20, MiddleOf(4));
	window.User().Click(20, MiddleOf(4));
	window.Settle();
	std::vector<BMessage> invoked = window->Take(kInvoked);
	ASSERT_EQ(invoked.size(), 1u);
	int32 index = -1;
	EXPECT_EQ(invoked[0].FindInt32("index", &index), B_OK);
	EXPECT_EQ(index, 4);
	// Several rows at once carry no index.
	window.Under([&] { list->Select(1, 2); });
	window.User().Key(std::string(1, B_ENTER));
	window.Settle();
	invoked = window->Take(kInvoked);
	ASSERT_EQ(invoked.size(), 1u);
	EXPECT_FALSE(invoked[0].HasInt32("index"));
}

TEST(ListView, KeysScrollTheirRowIntoView)
{
	RecordingList* list = new RecordingList(BRect(0, 0, 200, 100), B_SINGLE_SELECTION_LIST);
	list->Fill(100);
	ListenedWindow window(220, 120, new BScrollView("scroll", list, B_FOLLOW_NONE, 0, false, true));
	BScrollBar* bar = window.Under([&] { return list->ScrollBar(B_VERTICAL); });
	ASSERT_NE(bar, nullptr);
	float min, max;
	bar->GetRange(&min, &max);
	EXPECT_EQ(max, 19 * 100 - 1 - 100);
	window.Under([&] { list->MakeFocus(); });
	window.User().Key(std::string(1, B_END));
	window.Settle();
	EXPECT_EQ(window.Under([&] { return list->Bounds().top; }), max);
	EXPECT_EQ(window.Under([&] { return bar->Value(); }), max);
	window.User().Key(std::string(1, B_PAGE_UP));
	window.Settle();
	EXPECT_EQ(window.Under([&] { return list->CurrentSelection(); }), 93);
	window.Under([&] { list->RemoveItems(10, 90); });
	EXPECT_EQ(window.Under([&] { return list->Bounds().top; }), 19 * 10 - 1 - 100);
	window.Under([&] { list->MakeEmpty(); });
	EXPECT_EQ(window.Under([&] { return list->Bounds().top; }), 0);
}

namespace {

// Edges of two colours around a face that tells of the selection.
class EdgedRow : public BListItem {
public:
	void DrawItem(BView* owner, BRect rect, bool) override
	{
		owner->SetHighColor(IsSelected() ? rgb_color{255, 255, 0} : rgb_color{0, 255, 255});
		owner->FillRect(rect);
		owner->SetHighColor(255, 0, 0);
		owner->StrokeLine(rect.LeftTop(), rect.RightTop());
		owner->SetHighColor(0, 0, 255);
		owner->StrokeLine(rect.LeftBottom(), rect.RightBottom());
	}
	void Update(BView*, const BFont*) override { SetHeight(18); }
};

// Whether a column of pixels shows whole rows of 19 pixels.
testing::AssertionResult
ShowsWholeRows(const InjectedUser::Picture& picture)
{
	int32 first = 0;
	while (first < 19 && picture.At(5, first) != 0xffff0000)
		first++;
	for (int32 y = first; y < picture.height; y++) {
		const int32 inRow = (y - first) % 19;
		const uint32 pixel = picture.At(5, y);
		const bool face = pixel == 0xff00ffff || pixel == 0xffffff00;
		if (inRow == 0 ? pixel != 0xffff0000 : inRow == 18 ? pixel != 0xff0000ff : !face)
			return testing::AssertionFailure() << "line " << inRow << " of a row at " << y;
	}
	return testing::AssertionSuccess();
}

} // namespace

TEST(ListView, RowsBeyondTheLastExactFloatLieWithoutGapOrOverlap)
{
	constexpr int32 kRows = 1000100;
	std::vector<EdgedRow> rows(kRows);
	BList items(kRows);
	for (EdgedRow& row : rows)
		items.AddItem(&row);
	auto* list = new BListView(BRect(0, 0, 99, 199), "list", B_MULTIPLE_SELECTION_LIST);
	BScrollView* scroll =
		new BScrollView("scroll", list, B_FOLLOW_NONE, 0, false, true, B_NO_BORDER);
	list->AddList(&items);
	Shown window(114, 200);
	window->AddChild(scroll);
	window->ShowAndSettle();
	const int64 far = 19000000;
	for (int64 y : {far, far + 2, far + 40, far + 38, far + 98, far + 602, far - 1400}) {
		window->Do([&] { list->ScrollTo(0, static_cast<float>(y)); });
		EXPECT_TRUE(ShowsWholeRows(window->Snapshot())) << "at " << y;
	}
	for (int32 i = 0; i < 3; i++) {
		window->Do([&] { list->ScrollBy(0, 19); });
		EXPECT_TRUE(ShowsWholeRows(window->Snapshot())) << "step " << i;
	}
	// A row that changes is repainted with its edges, and no other is.
	window->Do([&] {
		const int32 row = list->IndexOf(BPoint(5, list->Bounds().top + 60));
		list->Select(row);
		list->Select(row + 1, row + 2, true);
		list->Deselect(row + 1);
	});
	const InjectedUser::Picture picture = window->Snapshot();
	EXPECT_TRUE(ShowsWholeRows(picture));
	EXPECT_EQ(std::count(picture.pixels.begin(), picture.pixels.end(), 0xffffff00), 2 * 17 * 100);
}
