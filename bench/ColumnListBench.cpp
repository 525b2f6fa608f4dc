// SPDX-License-Identifier: MIT

// Column lists of a million rows in a window of 1280x800: adding, finding, selecting, scrolling and
// drawing, and sorting 100,000 rows. Beside most figures the same in a list of a thousand rows:
// what an event costs must not grow with the rows.
//
//   bench_column_list          prints the table
//   bench_column_list --show   shows 100,000 rows until it is ended, for page.py

#include "bench/Figure.h"
#include "clv/ColumnListView.h"

#include <app/Application.h>
#include <interface/ScrollView.h>
#include <interface/Window.h>
#include <support/List.h>

#include <cstring>
#include <functional>
#include <memory>

namespace {

constexpr float kWidth = 1280;
constexpr float kHeight = 800;
constexpr float kRowPixels = 20;
constexpr int32 kMany = 1000000;
constexpr int32 kFew = 1000;
constexpr int32 kSorted = 100000;
constexpr int kRuns = 11;
constexpr int kEvents = 1000;

// Columns; the first keys of rows are mixed numbers, the second ones have a few values.
constexpr int32 kNumber = 0;
constexpr int32 kSuffix = 1;
constexpr int32 kPlace = 2; // where the row was made
constexpr int32 kColumns = 7;

constexpr uint32 kMsgMeasure = 'meas';

bool gGood = true;

uint32
Mixed(uint32 number)
{
	number *= 2654435761U;
	return (number ^ number >> 15) * 2246822519U;
}

class Row : public CLVListItem {
public:
	explicit Row(int32 number, uint32 level = 0) :
		CLVListItem(level), fNumber(Mixed(static_cast<uint32>(number)) % 10000000), fPlace(number)
	{}

	static int Compare(const CLVListItem* a, const CLVListItem* b, int32 column)
	{
		const Row* left = static_cast<const Row*>(a);
		const Row* right = static_cast<const Row*>(b);
		switch (column) {
			case kNumber:
				return (left->fNumber > right->fNumber) - (left->fNumber < right->fNumber);
			case kSuffix:
				return int(left->fNumber % 20 > right->fNumber % 20) -
					int(left->fNumber % 20 < right->fNumber % 20);
			default:
				return (left->fPlace > right->fPlace) - (left->fPlace < right->fPlace);
		}
	}
	void Update(BView* owner, const BFont* font) override
	{
		CLVListItem::Update(owner, font);
		SetHeight(kRowPixels - 1);
	}
	void DrawItemColumn(BView* owner, BRect cell, int32 column, bool) override
	{
		const rgb_color ground =
			IsSelected() ? rgb_color{0, 0, 128, 255} : rgb_color{255, 255, 255, 255};
		owner->SetHighColor(ground);
		owner->SetLowColor(ground);
		owner->FillRect(cell);
		owner->SetHighColor(IsSelected() ? rgb_color{255, 255, 255, 255} : rgb_color{0, 0, 0, 255});
		const std::string text = CellText(column);
		owner->DrawString(text.c_str(), BPoint(cell.left + 4, cell.top + 14));
	}

private:
	// As the columns of a folder: names, sizes and times are different in each row.
	std::string CellText(int32 column) const
	{
		const std::string number = std::to_string(fNumber);
		switch (column) {
			case 0:
				return "document_" + number + ".txt";
			case 1:
				return "Kind " + std::to_string(fNumber % 20);
			case 2:
				return number + " bytes";
			case 3:
				return "rw-r--r--";
			case 4:
				return "Mon, Mar " + std::to_string(fNumber % 28 + 1) +
					" 1999, 12:" + std::to_string(fNumber % 50 + 10);
			case 5:
				return "Fri, May 9 2003";
			default:
				return "";
		}
	}

	const uint32 fNumber;
	const int32 fPlace;
};

// The rows of a list, which do not belong to it.
struct Rows {
	explicit Rows(int32 count)
	{
		for (int32 i = 0; i < count; i++) {
			owned.push_back(std::make_unique<Row>(i));
			list.AddItem(static_cast<BListItem*>(owned.back().get()));
		}
	}

	std::vector<std::unique_ptr<Row>> owned;
	BList list;
};

struct List : ColumnListView {
	explicit List(bool hierarchical) :
		ColumnListView(BRect(0, 0, kWidth - 15, kHeight - 15), &container, "rows",
			B_FOLLOW_ALL_SIDES, B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE,
			B_MULTIPLE_SELECTION_LIST, hierarchical, true, true, B_NO_BORDER, be_plain_font)
	{
		SetSortFunction(Row::Compare);
		for (int32 i = 0; i < kColumns; i++)
			AddColumn(new CLVColumn("Column", i == 0 ? 220 : 160, CLV_COLUMN_SORTABLE, 20));
	}

	BScrollView* container;
};

double
Milliseconds(const std::function<void()>& work)
{
	const bigtime_t start = system_time();
	work();
	return double(system_time() - start) / 1000;
}

double
MedianOf(int runs, const std::function<void()>& work)
{
	std::vector<double> times;
	for (int run = 0; run < runs; run++)
		times.push_back(Milliseconds(work));
	return Median(times);
}

// Microseconds of one of many events.
double
EachOf(int events, const std::function<void(uint32 random)>& event)
{
	return 1000 / double(events) * Milliseconds([&] {
		for (int i = 0; i < events; i++)
			event(Mixed(static_cast<uint32>(i)));
	});
}

void
Print(
	const char* what, double figure, const char* unit, double limit, const char* form, double other)
{
	char beside[80];
	std::snprintf(beside, sizeof beside, form, other);
	gGood &= PrintFigure(what, figure, unit, Bound::kAtMost, limit, beside);
}

// What events cost in a list of so many rows.
struct Costs {
	double addEach, add, addLast, removeLast, find, invalidate, select, page, row, hover, resize;
};

class BenchWindow : public BWindow {
public:
	explicit BenchWindow(bool measures) :
		BWindow(BRect(20, 40, 20 + kWidth - 1, 40 + kHeight - 1), "Rows", B_TITLED_WINDOW, 0),
		fMeasures(measures)
	{
		if (measures)
			return;
		fShown = std::make_unique<Rows>(kSorted);
		List* list = new List(false);
		AddChild(list->container);
		list->AddList(&fShown->list);
		list->MakeFocus();
	}

	// An active window is on the screen: from now on its pictures have to be shown.
	void WindowActivated(bool active) override
	{
		if (active && fMeasures)
			PostMessage(kMsgMeasure);
	}

	void MessageReceived(BMessage* message) override
	{
		if (message->what != kMsgMeasure) {
			BWindow::MessageReceived(message);
			return;
		}
		if (fMeasures)
			Measure();
		fMeasures = false;
		be_app->PostMessage(B_QUIT_REQUESTED);
	}

	bool QuitRequested() override
	{
		be_app->PostMessage(B_QUIT_REQUESTED);
		return true;
	}

private:
	void Measure()
	{
		PrintCosts("", MeasureEvents(false, kMany), MeasureEvents(false, kFew));
		PrintCosts("outline: ", MeasureEvents(true, kMany), MeasureEvents(true, kFew));
		MeasureSorting();
	}

	Costs MeasureEvents(bool hierarchical, int32 count)
	{
		Rows rows(count), more(kEvents);
		List* list = new List(hierarchical);
		AddChild(list->container);
		Costs costs;
		costs.addEach = EachOf(
			count, [&, i = size_t(0)](uint32) mutable { list->AddItem(rows.owned[i++].get()); });
		list->MakeEmpty();
		costs.add = 1000 / double(count) * Milliseconds([&] { list->AddList(&rows.list); });
		UpdateIfNeeded();
		int32 next = 0;
		costs.addLast =
			EachOf(kEvents, [&](uint32) { list->AddItem(more.owned[size_t(next++)].get()); });
		costs.removeLast =
			EachOf(kEvents, [&](uint32) { list->RemoveItem(list->FullListCountItems() - 1); });
		UpdateIfNeeded();
		const auto rowAt = [&](uint32 random) {
			return static_cast<int32>(random % uint32(count));
		};
		costs.find = EachOf(kEvents, [&](uint32 random) {
			list->FullListIndexOf(BPoint(5, kRowPixels * float(rowAt(random))));
		});
		costs.invalidate =
			EachOf(kEvents, [&](uint32 random) { list->InvalidateItem(rowAt(random)); });
		costs.select = EachOf(kEvents, [&](uint32 random) { list->Select(rowAt(random)); });
		UpdateIfNeeded();
		costs.hover = EachOf(kEvents, [&](uint32 random) {
			list->MouseMoved(BPoint(5, kRowPixels * float(rowAt(random))), B_INSIDE_VIEW, nullptr);
		});
		const float page = list->Bounds().Height();
		bool down = false;
		costs.page = MedianOf(101, [&] {
			list->ScrollTo(BPoint(0, kRowPixels * float(count / 2) + (down ? page : 0)));
			UpdateIfNeeded();
			down = !down;
		});
		costs.row = MedianOf(101, [&] {
			list->ScrollBy(0, down ? kRowPixels : -kRowPixels);
			UpdateIfNeeded();
			down = !down;
		});
		costs.resize = MedianOf(
			3, [&] { list->FrameResized(list->Bounds().Width(), list->Bounds().Height()); });
		Delete(list);
		return costs;
	}

	void PrintCosts(const char* kind, const Costs& many, const Costs& few)
	{
		const auto print = [&](const char* what, double figure, const char* unit, double limit,
							   double other) {
			char text[60];
			std::snprintf(text, sizeof text, "%s%s", kind, what);
			Print(text, figure, unit, limit, "of 1,000: %.2f", other);
		};
		print("a million rows one by one, a row", many.addEach, "us", 1, few.addEach);
		print("a million rows at once, a row", many.add, "us", 1, few.add);
		print("a row at the end of a million", many.addLast, "us", 20, few.addLast);
		print("  removing the last one", many.removeLast, "us", 20, few.removeLast);
		print("  the row under a point", many.find, "us", 20, few.find);
		print("  InvalidateItem()", many.invalidate, "us", 20, few.invalidate);
		print("  selecting a row", many.select, "us", 20, few.select);
		print("  the pointer moves to another row", many.hover, "us", 20, few.hover);
		print("  scrolling by a page", many.page, "ms", 3, few.page);
		print("  scrolling by a row", many.row, "ms", 1, few.row);
		print("  the window is resized", many.resize, "ms", 100, few.resize);
	}

	void MeasureSorting()
	{
		Rows rows(kSorted);
		for (const bool hierarchical : {false, true}) {
			List* list = new List(hierarchical);
			AddChild(list->container);
			list->AddList(&rows.list);
			const auto sort = [&](const char* what, int32 column) {
				std::vector<double> times, bare;
				for (int run = 0; run < kRuns; run++) {
					list->SetSortKey(kPlace);
					times.push_back(Milliseconds([&] { list->SetSortKey(column); }));
					bare.push_back(SortBare(rows, column));
				}
				char text[60];
				std::snprintf(text, sizeof text, "%ssorting 100,000 rows by %s",
					hierarchical ? "outline: " : "", what);
				Print(text, Median(times), "ms", 150, "std::stable_sort %.2f", Median(bare));
			};
			sort("number", kNumber);
			sort("suffix", kSuffix);
			Delete(list);
		}
	}

	static double SortBare(const Rows& rows, int32 column)
	{
		std::vector<const Row*> items;
		for (const std::unique_ptr<Row>& row : rows.owned)
			items.push_back(row.get());
		return Milliseconds([&] {
			std::stable_sort(items.begin(), items.end(),
				[column](const Row* a, const Row* b) { return Row::Compare(a, b, column) < 0; });
		});
	}

	void Delete(List* list)
	{
		list->MakeEmpty();
		BScrollView* container = list->container;
		RemoveChild(container);
		delete container;
	}

	bool fMeasures;
	std::unique_ptr<Rows> fShown; // outlives the list, which is deleted with the window's views
};

class Bench : public BApplication {
public:
	explicit Bench(bool measures) : BApplication("application/x-bench-list"), fMeasures(measures) {}
	void ReadyToRun() override { (new BenchWindow(fMeasures))->Show(); }

private:
	const bool fMeasures;
};

} // namespace

int
main(int count, char** arguments)
{
	Bench bench(count < 2 || std::strcmp(arguments[1], "--show") != 0);
	bench.Run();
	return gGood ? 0 : 1;
}
