// SPDX-License-Identifier: MIT

// Drags 10,000 files over a window: how long the drag takes to begin, its message included, and how
// much processor time each move of the pointer costs. Needs a display of X11 and xdotool, which is
// the user.

#include "bench/Figure.h"

#include "xfer/RefDragMessage.h"

#include <app/Application.h>
#include <interface/View.h>
#include <interface/Window.h>
#include <storage/Entry.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kFiles = 10000;
constexpr int kMoves = 400;
constexpr double kStartLimit = 50; // ms
constexpr double kMoveLimit = 1;   // ms

typedef std::chrono::steady_clock Clock;

double
MillisecondsSince(Clock::time_point start)
{
	return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Of all threads.
double
ProcessorTime()
{
	timespec time = {};
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
	return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

class Dragger : public BView {
public:
	Dragger(BRect frame, std::vector<entry_ref> files) :
		BView(frame, "dragger", B_FOLLOW_ALL, B_WILL_DRAW), fFiles(std::move(files))
	{}

	// As the panes do it with their selected rows.
	void MouseDown(BPoint) override
	{
		fStart = Clock::now();
		NFileXFer::RefDragMessage drag;
		drag.SetButtons(B_PRIMARY_MOUSE_BUTTON);
		drag.SetPane('I');
		float top = 0;
		for (const entry_ref& ref : fFiles) {
			drag.AddEntryRef(&ref);
			drag.AddRect(BRect(0, top, 250, top + 14));
			top += 15;
		}
		messageTime = MillisecondsSince(fStart);
		drag.Post(this);
	}
	void MouseMoved(BPoint, uint32, const BMessage* drag) override
	{
		if (drag == nullptr)
			return;
		if (moves == 0)
			startTime = MillisecondsSince(fStart);
		moves++;
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->WasDropped() && message->HasRef("refs", kFiles - 1))
			dropped = true;
		else
			BView::MessageReceived(message);
	}

	std::atomic<double> messageTime = 0;
	std::atomic<double> startTime = 0;
	std::atomic<int> moves = 0;
	std::atomic<bool> dropped = false;

private:
	const std::vector<entry_ref> fFiles;
	Clock::time_point fStart;
};

std::vector<entry_ref>
Files(const std::string& folder)
{
	std::vector<entry_ref> refs(kFiles);
	for (int i = 0; i < kFiles; i++) {
		const std::string path = folder + "/a file of some name " + std::to_string(i);
		std::fclose(std::fopen(path.c_str(), "w"));
		get_ref_for_path(path.c_str(), &refs[size_t(i)]);
	}
	return refs;
}

void
Do(const std::string& command)
{
	if (std::system(("xdotool " + command).c_str()) != 0)
		std::exit(1);
}

bool
WaitFor(const std::function<bool()>& condition)
{
	const Clock::time_point start = Clock::now();
	while (!condition()) {
		if (MillisecondsSince(start) > 20000)
			return false;
		std::this_thread::sleep_for(std::chrono::milliseconds(1));
	}
	return true;
}

std::string
Place(int step)
{
	return "mousemove " + std::to_string(220 + step % 100) + " " + std::to_string(300 + step % 7);
}

bool
Measure(Dragger& view)
{
	Do("mousemove 210 300 sleep 0.3 mousedown 1 sleep 0.2 " + Place(1));
	if (!WaitFor([&] { return view.moves > 0; }))
		return false;
	const int before = view.moves;
	const double processorTime = ProcessorTime();
	std::string moves;
	for (int i = 2; i < kMoves + 2; i++)
		moves += Place(i) + " sleep 0.002 ";
	Do(moves);
	WaitFor([&] { return view.moves >= before + kMoves / 2; });
	const double perMove = (ProcessorTime() - processorTime) / kMoves;
	const int seen = view.moves - before;
	Do("mouseup 1");
	if (!WaitFor([&] { return view.dropped.load(); }))
		return false;
	char beside[80];
	std::snprintf(beside, sizeof(beside), "its message took %.1f ms", view.messageTime.load());
	bool good = PrintFigure("a drag of 10,000 files, to its first move", view.startTime, "ms",
		Bound::kAtMost, kStartLimit, beside);
	std::snprintf(beside, sizeof(beside), "of %d moves the view saw %d", kMoves, seen);
	good &= PrintFigure(
		"  processor time for a move", perMove, "ms", Bound::kAtMost, kMoveLimit, beside);
	return good;
}

} // namespace

int
main(int, char**)
{
	std::string folder = std::filesystem::temp_directory_path() / "bench-drag-XXXXXX";
	if (mkdtemp(folder.data()) == nullptr)
		return 1;
	bool good = false;
	{
		BApplication application("application/x-vnd.Korva-bench");
		auto* window = new BWindow(BRect(100, 100, 600, 600), "drag", B_TITLED_WINDOW, 0);
		auto* view = new Dragger(window->Bounds(), Files(folder));
		window->AddChild(view);
		window->Show();
		std::thread user([&] {
			good = Measure(*view);
			be_app->PostMessage(B_QUIT_REQUESTED);
		});
		application.Run();
		user.join();
	}
	std::filesystem::remove_all(folder);
	if (!good)
		std::fprintf(stderr, "the drag of many files is beyond a limit, or did not come about\n");
	return good ? 0 : 1;
}
