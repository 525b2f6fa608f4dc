// SPDX-License-Identifier: MIT

// The contents pane while others work in its folder: what following them costs in processor time,
// whether the rows are right and keys reach the screen meanwhile. Each figure beside its limit.

#include "bench/BenchWindow.h"
#include "bench/Figure.h"
#include "bench/Muted.h"
#include "bench/TempFolder.h"
#include "bench/User.h"

#include "app/Messages.h"
#include "panes/ItemColumns.h"
#include "panes/ItemListItem.h"
#include "panes/ItemListView.h"
#include "panes/ItemView.h"

#include <app/Application.h>

#include "kits/app/MessagePrivate.h"

#include <algorithm>
#include <ctime>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr bigtime_t kQuiet = 1000000;     // us; within that the rows must be right
constexpr bigtime_t kAfterwards = 600000; // the last sort and status
constexpr bigtime_t kPatience = 60000000;
constexpr int kChangesOfFolder = 2000;
constexpr uint32 kMark = 0xffc17aff; // behind the names of selected rows

class Folder : public TempFolder {
public:
	explicit Folder(int files) : TempFolder("follow")
	{
		descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
		Create(0, files);
	}
	~Folder() { close(descriptor); }

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

	int descriptor;
};

double
ProcessorSeconds()
{
	timespec used;
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
	return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

class Window : public BenchWindow {
public:
	explicit Window(entry_ref folder) : BenchWindow(BRect(50, 75, 1050, 775), "follow")
	{
		fPane = new ItemView(Bounds(), &folder);
		AddChild(fPane);
		fList = dynamic_cast<ItemListView*>(FindView("itemlist"));
		Show();
		WaitForPicture();
	}

	void Open(const entry_ref& ref)
	{
		BMessage message(kMSG_SetFolder);
		message.AddRef(kName_Folder, &ref);
		PostMessage(&message, fPane);
		WaitForPicture();
	}

	template <typename Function>
	auto Locked(Function function)
	{
		Lock();
		auto result = function(*fList);
		Unlock();
		return result;
	}
	int32 CountRows()
	{
		return Locked([](ItemListView& list) { return list.CountItems(); });
	}
	// Whether they are those of the folder.
	bool RowsAreRight(const Folder& folder)
	{
		std::set<std::string> names;
		for (const auto& entry : std::filesystem::directory_iterator(folder.path))
			names.insert(entry.path().filename());
		return Locked([&](ItemListView& list) {
			for (int32 i = 0; i < list.CountItems(); i++) {
				if (names.erase(list.RowAt(i)->Name()) == 0)
					return false;
			}
			return names.empty();
		});
	}

	// Drops files on the first row, which is a folder.
	void Drop(BMessage& message)
	{
		const BPoint where = Locked([](ItemListView& list) {
			return list.ConvertToScreen(list.ItemFrame(0).LeftTop() + BPoint(3, 3));
		});
		message.AddPoint("_drop_point_", where);
		BPrivate::MessageAccess::SetDropped(message, true);
		PostMessage(&message, fPane);
	}

	// Goes up and down in the two first rows.
	User SomeUser()
	{
		fKeys = 0;
		Locked([](ItemListView& list) {
			list.Select(0);
			return 0;
		});
		WaitForPicture();
		return User(Title(), kMark);
	}

	double PressKey(const User& user)
	{
		const User::Rows before = user.Selected();
		const bool down = fKeys++ % 2 == 0;
		return user.Press(down ? B_DOWN_ARROW : B_UP_ARROW, [&](const User::Rows& rows) {
			return rows.size() == 1 && (down ? rows > before : rows < before);
		});
	}

private:
	ItemView* fPane;
	ItemListView* fList;
	int fKeys = 0;
};

// What another process does; `meanwhile` is done over and over until that is done.
void
Elsewhere(const std::function<void()>& work, const std::function<void()>& meanwhile)
{
	const pid_t child = fork();
	if (child == 0) {
		work();
		_exit(0);
	}
	int status;
	while (waitpid(child, &status, WNOHANG) == 0) {
		meanwhile();
		snooze(10000);
	}
	if (status != 0) {
		fprintf(stderr, "the other process failed\n");
		exit(1);
	}
}

bool
Expect(bool good, const char* what)
{
	if (!good)
		fprintf(stderr, "  not so: %s\n", what);
	return good;
}

// The rows as many within a second of quiet as they must be.
bool
ExpectRows(Window& window, int32 count)
{
	const bigtime_t end = system_time() + kQuiet;
	while (window.CountRows() != count && system_time() < end)
		snooze(10000);
	const int32 rows = window.CountRows();
	if (rows != count)
		fprintf(stderr, "  %d rows of %d\n", rows, count);
	return rows == count;
}

// All of them are seen to come before they go.
bool
CreateAndDelete(Window& window)
{
	const Folder folder(10000);
	window.Open(folder.Ref());
	const double before = ProcessorSeconds();
	Elsewhere([&] { folder.Create(10000, 15000); }, [] {});
	bool good = ExpectRows(window, 15000);
	Elsewhere([&] { folder.Delete(10000, 15000); }, [] {});
	good &= ExpectRows(window, 10000);
	snooze(kAfterwards);
	const double used = ProcessorSeconds() - before;
	good &= Expect(window.RowsAreRight(folder), "the rows are the folder's");
	return PrintFigure("5,000 files come and go among 10,000: processor", used * 1000, "ms",
			   Bound::kAtMost, 350, "") &&
		good;
}

// Some rows on top stay: keys go up and down among them, with the others going below.
bool
DeleteAll(Window& window)
{
	constexpr int32 kStays = 20;
	const Folder folder(100000);
	for (int32 i = 0; i < kStays; i++)
		std::ofstream(folder.path + "/a" + std::to_string(i));
	window.Open(folder.Ref());
	const User user = window.SomeUser();
	std::vector<double> keys;
	const double before = ProcessorSeconds();
	Elsewhere([&] { folder.Delete(0, 100000); }, [&] { keys.push_back(window.PressKey(user)); });
	bool good = ExpectRows(window, kStays);
	snooze(kAfterwards);
	good &= PrintFigure("100,000 files are deleted: processor",
		(ProcessorSeconds() - before) * 1000, "ms", Bound::kAtMost, 3000, "");
	good &= Expect(keys.size() >= 10, "keys were pressed meanwhile");
	char beside[64];
	snprintf(beside, sizeof(beside), "%zu keys, median %.1f ms", keys.size(), Median(keys));
	return PrintFigure("  the longest key meanwhile", *std::max_element(keys.begin(), keys.end()),
			   "ms", Bound::kAtMost, 100, beside) &&
		good;
}

bool
AppendAllTheTime(Window& window)
{
	constexpr int kSeconds = 4;
	constexpr int kRow = 500;
	constexpr size_t kSamplesOfASecond = 5;
	const Folder folder(1000);
	window.Open(folder.Ref());
	// The row as it would be if it was read now.
	auto onDisk = [&] {
		auto row = std::make_unique<ItemListItem>();
		row->SetRef(window.Locked(
			[](ItemListView& list) { return new entry_ref(*list.RowAt(kRow)->GetRef()); }));
		return row;
	};
	auto compare = [&](const ItemListItem& other) {
		return window.Locked([&](ItemListView& list) {
			return ItemListItem::CompareFiles(list.RowAt(kRow), &other, kSizeColumn);
		});
	};
	std::deque<std::unique_ptr<ItemListItem>> samples;
	bool follows = true;
	const double before = ProcessorSeconds();
	Elsewhere(
		[&] {
			const int file = openat(folder.descriptor, "file 0000500.txt", O_WRONLY | O_APPEND);
			timespec next;
			clock_gettime(CLOCK_MONOTONIC, &next);
			for (int i = 0; i < 1000 * kSeconds; i++) {
				if (write(file, "line\n", 5) != 5)
					_exit(1);
				next.tv_nsec += 1000000;
				if (next.tv_nsec >= 1000000000) {
					next.tv_nsec -= 1000000000;
					next.tv_sec++;
				}
				clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
			}
		},
		[&] {
			samples.push_back(onDisk());
			if (samples.size() > kSamplesOfASecond) {
				follows &= compare(*samples.front()) >= 0;
				samples.pop_front();
			}
			snooze(1000000 / kSamplesOfASecond);
		});
	snooze(kQuiet);
	const double used = ProcessorSeconds() - before;
	bool good = Expect(follows, "the size shown is never older than a second");
	good &= Expect(compare(*onDisk()) == 0, "the last size is shown");
	good &= Expect(std::filesystem::file_size(folder.path + "/file 0000500.txt") == 5000 * kSeconds,
		"all was appended");
	return PrintFigure("a file among 1,000 grows 1,000 times a second: of a core",
			   used * 100 / kSeconds, "%", Bound::kAtMost, 5, "") &&
		good;
}

bool
ChangeFolders(Window& window)
{
	const Folder many(2000), few(50);
	double early = 0;
	bool good = true;
	for (int i = 0; i < kChangesOfFolder; i++) {
		const Folder& folder = i % 2 == 0 ? many : few;
		window.Open(folder.Ref());
		good &= window.CountRows() >= (i % 2 == 0 ? 2000 : 50);
		folder.Create(3000, 3010); // so that there is something to follow
		folder.Delete(3000, 3010);
		if (i == 100)
			early = Memory();
	}
	Expect(good, "each folder is shown");
	return PrintFigure("2,000 changes of folder: more memory than after 100",
			   (Memory() - early) / 1e6, "MB", Bound::kAtMost, 5, "") &&
		good;
}

bool
DropMany(Window& window)
{
	constexpr int kFiles = 10000;
	const Folder from(kFiles), shown(1);
	const std::string to = shown.path + "/a folder";
	std::filesystem::create_directory(to);
	window.Open(shown.Ref());
	const User user = window.SomeUser();
	BMessage drop(kMSG_DragFile);
	drop.AddInt32(kName_DragButtons, B_PRIMARY_MOUSE_BUTTON);
	for (const auto& entry : std::filesystem::directory_iterator(from.path)) {
		const entry_ref file = from.Ref(entry.path().filename());
		drop.AddRef(kName_Refs, &file);
	}
	std::vector<double> keys;
	{
		const Muted muted;
		window.Drop(drop);
		const bigtime_t end = system_time() + kPatience;
		do { // the first one comes while the window takes the drop
			keys.push_back(window.PressKey(user));
		} while (!std::filesystem::is_empty(from.path) && system_time() < end);
	}
	const auto moved = std::distance(std::filesystem::directory_iterator(to), {});
	char beside[64];
	snprintf(beside, sizeof(beside), "%zu keys, median %.1f ms", keys.size(), Median(keys));
	const bool good = Expect(moved == kFiles, "all files are there");
	return PrintFigure("10,000 files are dropped: the longest key meanwhile",
			   *std::max_element(keys.begin(), keys.end()), "ms", Bound::kAtMost, 100, beside) &&
		good;
}

} // namespace

int
main(int, char**)
{
	BApplication app("application/x-vnd.Tav-Korva");
	const Folder none(0);
	Window* window = new Window(none.Ref());
	bool good = CreateAndDelete(*window);
	good &= DeleteAll(*window);
	good &= AppendAllTheTime(*window);
	good &= DropMany(*window);
	good &= ChangeFolders(*window);
	window->Lock();
	window->Quit();
	return good ? 0 : 1;
}
