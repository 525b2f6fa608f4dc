// SPDX-License-Identifier: MIT

// Repaints a window of 1920x1080 with 50 rows of 7 strings: from the invalidation until the
// desktop has taken the picture, and the same for scrolling by one row. Beside it the bare drawing
// of the same strings.

#include "bench/Figure.h"

#include <app/Application.h>
#include <desktop/Canvas.h>
#include <interface/ListView.h>
#include <interface/Window.h>
#include <support/List.h>

#include <array>
#include <memory>
#include <string>

namespace {

constexpr int32 kWidth = 1920;
constexpr int32 kHeight = 1080;
constexpr int kRows = 1000;
constexpr int kVisible = 50;
constexpr float kRowPixels = 21;
constexpr int kColumns = 7;
constexpr int32 kColumnWidth = kWidth / kColumns;
constexpr int kRuns = 201;
constexpr double kPaintLimit = 4; // ms
constexpr double kScrollLimit = 1;

bool gGood = false;

using Cells = std::array<std::string, kColumns>;

// As the columns of a folder: some strings are the same in many rows, most are not.
Cells
CellsOf(int row)
{
	const std::string number = std::to_string(row * 7919 % 100003);
	return {"document " + number + ".txt", number + " bytes", "Text file",
		"Mon, Mar " + std::to_string(row % 28 + 1) + " 1999, 12:" + number.substr(0, 1) + "0",
		"Fri, May " + std::to_string(row % 30 + 1) + " 2003", "rw-r--r--", "someone"};
}

class Row : public BListItem {
public:
	explicit Row(int number) : fCells(CellsOf(number)) {}

	void Update(BView*, const BFont*) override { SetHeight(kRowPixels - 1); }

	void DrawItem(BView* owner, BRect frame, bool) override
	{
		for (int column = 0; column < kColumns; column++)
			owner->DrawString(fCells[size_t(column)].c_str(),
				BPoint(frame.left + 4 + float(column * kColumnWidth), frame.top + 15));
	}

private:
	Cells fCells;
};

struct Times {
	std::vector<double> list; // ms

	template <typename Work>
	void Add(Work work)
	{
		const bigtime_t start = system_time();
		work();
		list.push_back(double(system_time() - start) / 1000);
	}
	double Worst() const { return *std::max_element(list.begin(), list.end()); }
};

// The strings of one window on a canvas, with nothing around it.
void
DrawBare(desktop::Canvas& canvas, const std::vector<Cells>& rows)
{
	desktop::Ink ink;
	desktop::Ink background;
	background.shape = B_SOLID_LOW;
	canvas.FillRect({0, 0, kWidth - 1, kHeight - 1}, background);
	for (size_t row = 0; row < rows.size(); row++) {
		for (size_t column = 0; column < kColumns; column++) {
			const std::string& text = rows[row][column];
			canvas.DrawText(float(4 + int32(column) * kColumnWidth),
				int32(row) * int32(kRowPixels) + 15, text.data(), text.size(), desktop::FontSpec(),
				ink);
		}
	}
}

Times
TimeBare()
{
	std::vector<Cells> rows;
	for (int i = 0; i < kVisible; i++)
		rows.push_back(CellsOf(i));
	desktop::Canvas canvas(kWidth, kHeight, 1.0);
	DrawBare(canvas, rows);
	Times times;
	for (int run = 0; run < kRuns; run++)
		times.Add([&] { DrawBare(canvas, rows); });
	return times;
}

constexpr uint32 kMsgMeasure = 'meas';

class PaintWindow : public BWindow {
public:
	PaintWindow() :
		BWindow(
			BRect(0, 0, kWidth - 1, kHeight - 1), "Paint", B_TITLED_WINDOW, 0, B_CURRENT_WORKSPACE)
	{
		BList rows;
		for (int i = 0; i < kRows; i++) {
			fRows.push_back(std::make_unique<Row>(i));
			rows.AddItem(fRows.back().get());
		}
		fList = new BListView(Bounds(), "rows", B_MULTIPLE_SELECTION_LIST, B_FOLLOW_ALL_SIDES);
		AddChild(fList);
		fList->AddList(&rows);
	}

	// An active window is on the screen: from now on its pictures have to be shown.
	void WindowActivated(bool active) override
	{
		if (active)
			PostMessage(kMsgMeasure);
	}

	void MessageReceived(BMessage* message) override
	{
		if (message->what != kMsgMeasure) {
			BWindow::MessageReceived(message);
			return;
		}
		if (!fMeasured)
			Measure();
		fMeasured = true;
		be_app->PostMessage(B_QUIT_REQUESTED);
	}

private:
	void Measure()
	{
		Times paint, scroll;
		for (int run = 0; run < kRuns; run++) {
			paint.Add([this] {
				fList->Invalidate();
				UpdateIfNeeded();
			});
		}
		for (int run = 0; run < kRuns; run++) {
			scroll.Add([this, run] {
				fList->ScrollBy(0, run < kRuns / 2 ? kRowPixels : -kRowPixels);
				UpdateIfNeeded();
			});
		}
		const Times bare = TimeBare();
		char beside[100];
		std::snprintf(beside, sizeof beside, "worst %.2f; strings and fill alone %.2f",
			paint.Worst(), Median(bare.list));
		gGood = PrintFigure("repaint of 1920x1080, 50 rows of 7 strings", Median(paint.list), "ms",
			Bound::kAtMost, kPaintLimit, beside);
		std::snprintf(beside, sizeof beside, "worst %.2f", scroll.Worst());
		gGood &= PrintFigure("scrolling by one row", Median(scroll.list), "ms", Bound::kAtMost,
			kScrollLimit, beside);
	}

	BListView* fList = nullptr;
	std::vector<std::unique_ptr<Row>> fRows;
	bool fMeasured = false;
};

class Bench : public BApplication {
public:
	Bench() : BApplication("application/x-bench-paint") {}
	void ReadyToRun() override { (new PaintWindow)->Show(); }
};

} // namespace

int
main(int, char**)
{
	Bench bench;
	bench.Run();
	return gGood ? 0 : 1;
}
