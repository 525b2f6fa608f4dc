// SPDX-License-Identifier: MIT

// Opens a folder of 100,000 files with mixed suffixes in the contents pane, until its first picture
// is painted, and sorts it by each column. Beside it the bare work: getdents64, one statx for each
// and one sort. `--long`: a million files as well, which must not cost more for each.

#include "bench/BenchWindow.h"
#include "bench/Figure.h"
#include "bench/TempFolder.h"

#include "app/Messages.h"
#include "panes/ItemColumns.h"
#include "panes/ItemListView.h"
#include "panes/ItemView.h"

#include <app/Application.h>

#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr double kMostTimes = 3;     // the bare work
constexpr double kMostBytes = 700;   // for each row
constexpr double kMostForSort = 150; // ms
constexpr double kMostGrowth = 1.5;  // of the time for each row, at ten times as many
constexpr int kRuns = 7;
constexpr size_t kBufferSize = 65536;

const char* const kSuffixes[] = {".txt", ".c", ".h", ".cpp", ".md", ".json", ".html", ".py", ".sh",
	".pdf", ".jpg", ".png", ".zip", ".gz", ".mp3", ".o", ".log", ".csv", ".xml", ""};
const char* const kWords[] = {"report", "Invoice", "photo", "notes", "draft", "backup", "index",
	"Summary", "data", "test", "module", "scan", "letter", "config", "archive"};

struct Folder : TempFolder {
	explicit Folder(int files) : TempFolder("folder"), count(files)
	{
		const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
		uint32 random = 12345;
		for (int i = 0; i < files; i++) {
			random = random * 1103515245 + 12345;
			char name[64];
			snprintf(name, sizeof(name), "%s_%07d%s", kWords[(random >> 16) % std::size(kWords)],
				static_cast<int>(i * 7919L % files),
				kSuffixes[(random >> 8) % std::size(kSuffixes)]);
			const int file =
				openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0600 | (random & 077));
			if (ftruncate(file, random % 5 == 0 ? 0 : random >> 12) != 0 ||
				(random % 5 == 0 && write(file, "plain words\n", 12) != 12))
				perror(name);
			const timespec times[] = {{random / 4, 0}, {random / 4, 0}};
			futimens(file, times);
			close(file);
		}
		close(folder);
	}
	int count;
};

double
OpenBare(const Folder& folder)
{
	const bigtime_t start = system_time();
	const int descriptor = open(folder.path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	std::vector<char> buffer(kBufferSize);
	std::vector<std::string> names;
	ssize_t size;
	while ((size = getdents64(descriptor, buffer.data(), buffer.size())) > 0) {
		for (ssize_t offset = 0; offset < size;) {
			const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + offset);
			offset += entry->d_reclen;
			if (entry->d_name[0] != '.')
				names.emplace_back(entry->d_name);
		}
	}
	size_t read = 0;
	for (const std::string& name : names) {
		struct statx status;
		read += statx(descriptor, name.c_str(), AT_SYMLINK_NOFOLLOW,
					STATX_BASIC_STATS | STATX_BTIME, &status) == 0;
	}
	std::sort(names.begin(), names.end());
	close(descriptor);
	if (read != static_cast<size_t>(folder.count)) {
		fprintf(stderr, "%zu of %d files\n", read, folder.count);
		exit(1);
	}
	return Milliseconds(start);
}

class Window : public BenchWindow {
public:
	explicit Window(entry_ref folder) : BenchWindow(BRect(50, 75, 1050, 775), "folder")
	{
		fPane = new ItemView(Bounds(), &folder);
		AddChild(fPane);
		fList = dynamic_cast<ItemListView*>(FindView("itemlist"));
		Show();
		WaitForPicture();
	}

	double Open(const entry_ref& ref)
	{
		const bigtime_t start = system_time();
		BMessage message(kMSG_SetFolder);
		message.AddRef(kName_Folder, &ref);
		PostMessage(&message, fPane);
		WaitForPicture();
		return Milliseconds(start);
	}

	double SortBy(int32 column)
	{
		const bigtime_t start = system_time();
		Lock();
		fList->SetSortKey(column);
		Unlock();
		return Milliseconds(start);
	}

	int32 CountRows() const { return fList->CountItems(); }

private:
	ItemView* fPane;
	ItemListView* fList;
};

struct Figures {
	double bare = 0; // ms
	double open = 0;
	double bytes = 0; // for each row
	double sort = 0;  // the slowest column's
};

Figures
Measure(Window& window, const entry_ref& empty, const Folder& folder)
{
	const entry_ref ref = folder.Ref();
	Figures figures;
	OpenBare(folder);
	const double before = Memory();
	window.Open(ref);
	figures.bytes = (Memory() - before) / folder.count;
	if (window.CountRows() != folder.count)
		fprintf(stderr, "%d rows of %d files\n", window.CountRows(), folder.count);
	std::vector<double> bare, open;
	// In turns, so that a busy machine is equally unfair to both.
	for (int run = 0; run < kRuns; run++) {
		window.Open(empty);
		bare.push_back(OpenBare(folder));
		open.push_back(window.Open(ref));
	}
	figures.bare = Median(bare);
	figures.open = Median(open);
	for (const int32 column : {kKindColumn, kSizeColumn, kPermissionsColumn, kModifiedColumn,
			 kCreatedColumn, kNameColumn}) {
		std::vector<double> sorts;
		for (int run = 0; run < 3; run++) {
			window.SortBy(column == kSizeColumn ? kKindColumn : kSizeColumn);
			sorts.push_back(window.SortBy(column));
		}
		figures.sort = std::max(figures.sort, Median(sorts));
	}
	window.Open(empty);
	return figures;
}

} // namespace

int
main(int argc, char** argv)
{
	BApplication app("application/x-vnd.Tav-Korva");
	const Folder none(0);
	const entry_ref empty = none.Ref();
	Window* window = new Window(empty);
	Figures figures;
	{
		const Folder folder(100000);
		figures = Measure(*window, empty, folder);
	}
	char beside[80];
	snprintf(beside, sizeof(beside), "%.0f ms; bare %.0f ms", figures.open, figures.bare);
	bool good = PrintFigure("folder of 100,000 files to its picture, of bare",
		figures.open / figures.bare, "x", Bound::kAtMost, kMostTimes, beside);
	good &=
		PrintFigure("  memory for each row", figures.bytes, "B", Bound::kAtMost, kMostBytes, "");
	good &= PrintFigure(
		"  sorting by the slowest column", figures.sort, "ms", Bound::kAtMost, kMostForSort, "");
	if (argc > 1 && strcmp(argv[1], "--long") == 0) {
		const Folder folder(1000000);
		const Figures many = Measure(*window, empty, folder);
		snprintf(beside, sizeof(beside), "%.0f ms; bare %.0f ms; sorting %.0f ms", many.open,
			many.bare, many.sort);
		good &= PrintFigure("  a million files: time for each, of before",
			many.open / figures.open / 10, "x", Bound::kAtMost, kMostGrowth, beside);
		good &=
			PrintFigure("  memory for each row", many.bytes, "B", Bound::kAtMost, kMostBytes, "");
	}
	window->Lock();
	window->Quit();
	return good ? 0 : 1;
}
