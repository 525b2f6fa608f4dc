// SPDX-License-Identifier: MIT

// The contents pane while others work in its folder: what following them costs in processor time,
// and whether the window answers meanwhile. Each figure beside its limit.

#include "bench/Figure.h"

#include "app/Messages.h"
#include "panes/ItemListView.h"
#include "panes/ItemView.h"

#include <app/Application.h>
#include <app/Messenger.h>
#include <interface/Window.h>
#include <kernel/OS.h>
#include <storage/Entry.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

[[maybe_unused]] static const int sOffscreen = setenv("QT_QPA_PLATFORM", "offscreen", 1);

namespace {

constexpr bigtime_t kQuiet = 1000000; // within that the rows must be right
constexpr int kFolders = 2000;

class Folder {
public:
	explicit Folder(int files)
	{
		path = std::filesystem::temp_directory_path() / "bench-follow-XXXXXX";
		if (mkdtemp(path.data()) == nullptr) {
			perror(path.c_str());
			exit(1);
		}
		descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
		Create(0, files);
		get_ref_for_path(path.c_str(), &ref);
	}
	~Folder()
	{
		close(descriptor);
		std::filesystem::remove_all(path);
	}

	// Only system calls: also done by a child that has just forked.
	void Create(int begin, int end) const
	{
		for (int i = begin; i < end; i++) {
			char name[32];
			snprintf(name, sizeof(name), "file %07d.txt", i);
			close(openat(descriptor, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
		}
	}
	void Delete(int begin, int end) const
	{
		// In the order in which a file system lists them, which is none.
		const int count = end - begin;
		for (int i = 0; i < count; i++) {
			char name[32];
			snprintf(
				name, sizeof(name), "file %07d.txt", begin + static_cast<int>(i * 7919L % count));
			unlinkat(descriptor, name, 0);
		}
	}

	std::string path;
	int descriptor;
	entry_ref ref;
};

double
ProcessorSeconds()
{
	timespec used;
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
	return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

// Of this process, in megabytes.
double
Memory()
{
	std::ifstream file("/proc/self/smaps_rollup");
	std::string word;
	double kilobytes = 0;
	while (file >> word && word != "Pss:") {
	}
	file >> kilobytes;
	return kilobytes / 1024;
}

class Window : public BWindow {
public:
	explicit Window(entry_ref* folder) :
		BWindow(BRect(50, 75, 1050, 775), "follow", B_TITLED_WINDOW, 0)
	{
		fPane = new ItemView(Bounds(), folder);
		AddChild(fPane);
		fList = dynamic_cast<ItemListView*>(FindView("itemlist"));
		Show();
		Answer();
	}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'sync')
			message->SendReply(B_REPLY);
		else
			BWindow::MessageReceived(message);
	}

	// How long a message and the picture after it take, in ms.
	double Answer()
	{
		const bigtime_t start = system_time();
		BMessage sync('sync'), reply;
		BMessenger(this).SendMessage(&sync, &reply);
		Lock();
		Unlock();
		return static_cast<double>(system_time() - start) / 1000;
	}

	void Open(const entry_ref& ref)
	{
		BMessage message(kMSG_SetFolder);
		message.AddRef(kName_Folder, &ref);
		PostMessage(&message, fPane);
		Answer();
	}

	int32 CountRows()
	{
		Lock();
		const int32 count = fList->CountItems();
		Unlock();
		return count;
	}

private:
	ItemView* fPane;
	ItemListView* fList;
};

struct Cost {
	double seconds = 0; // of the processor
	double late = 0;    // ms that the longest answer took
	bool good = false;  // the rows were right in time
};

// What another process does, followed by the window; `rows` are there in the end.
Cost
Follow(Window& window, int32 rows, const std::function<void()>& work)
{
	Cost cost;
	const double before = ProcessorSeconds();
	const pid_t child = fork();
	if (child == 0) {
		work();
		_exit(0);
	}
	int status;
	while (waitpid(child, &status, WNOHANG) == 0) {
		cost.late = std::max(cost.late, window.Answer());
		snooze(20000);
	}
	const bigtime_t end = system_time() + kQuiet;
	while (system_time() < end && window.CountRows() != rows) {
		cost.late = std::max(cost.late, window.Answer());
		snooze(10000);
	}
	cost.good = window.CountRows() == rows;
	if (!cost.good)
		fprintf(stderr, "%d rows instead of %d\n", window.CountRows(), rows);
	snooze(600000); // the last sort and status
	cost.seconds = ProcessorSeconds() - before;
	return cost;
}

bool
CreateAndDelete(Window& window)
{
	const Folder folder(10000);
	window.Open(folder.ref);
	const Cost cost = Follow(window, 10000, [&] {
		folder.Create(10000, 15000);
		folder.Delete(10000, 15000);
	});
	return PrintFigure("5,000 files come and go among 10,000: processor", cost.seconds * 1000, "ms",
			   Bound::kAtMost, 350, "") &&
		cost.good;
}

bool
DeleteAll(Window& window)
{
	const Folder folder(100000);
	window.Open(folder.ref);
	const Cost cost = Follow(window, 0, [&] { folder.Delete(0, 100000); });
	bool good = PrintFigure("100,000 files are deleted: processor", cost.seconds * 1000, "ms",
		Bound::kAtMost, 3000, "");
	return (PrintFigure("  the longest answer of the window meanwhile", cost.late, "ms",
				Bound::kAtMost, 100, "") &&
			   good) &&
		cost.good;
}

bool
AppendAllTheTime(Window& window)
{
	const Folder folder(1000);
	window.Open(folder.ref);
	constexpr int kSeconds = 4;
	const Cost cost = Follow(window, 1000, [&] {
		const int file = openat(folder.descriptor, "file 0000500.txt", O_WRONLY | O_APPEND);
		for (int i = 0; i < 1000 * kSeconds; i++) {
			if (write(file, "line\n", 5) != 5)
				_exit(1);
			usleep(1000 - 60); // and what the rest takes
		}
	});
	return PrintFigure("a file among 1,000 grows 1,000 times a second: of a core",
			   cost.seconds * 100 / kSeconds, "%", Bound::kAtMost, 5, "") &&
		cost.good;
}

bool
ChangeFolders(Window& window)
{
	const Folder many(2000), few(50);
	double early = 0;
	for (int i = 0; i < kFolders; i++) {
		window.Open(i % 2 == 0 ? many.ref : few.ref);
		many.Create(3000, 3010); // so that there is something to follow
		many.Delete(3000, 3010);
		if (i == 100)
			early = Memory();
	}
	return PrintFigure("2,000 changes of folder: more memory than after 100", Memory() - early,
		"MB", Bound::kAtMost, 5, "");
}

} // namespace

int
main(int, char**)
{
	BApplication app("application/x-vnd.Tav-Korva");
	const Folder none(0);
	entry_ref empty = none.ref;
	Window* window = new Window(&empty);
	bool good = CreateAndDelete(*window);
	good &= DeleteAll(*window);
	good &= AppendAllTheTime(*window);
	good &= ChangeFolders(*window);
	window->Lock();
	window->Quit();
	return good ? 0 : 1;
}
