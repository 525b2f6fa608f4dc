// SPDX-License-Identifier: MIT

// The folder tree: how long keys take to the screen while 20,000 folders fill in in the background,
// and how long a folder of 10,000 sub-folders takes to open. Beside it keys in a tree at rest, and
// reading the names and a status of each. `TMPDIR` chooses the file system.

#include "bench/BenchWindow.h"
#include "bench/Figure.h"
#include "bench/TempFolder.h"
#include "bench/User.h"

#include "app/Messages.h"
#include "panes/FileListView.h"
#include "panes/FolderItem.h"
#include "panes/OutlineView.h"

#include <app/Application.h>
#include <storage/Directory.h>

#include <set>

namespace {

constexpr double kMostForKey = 20;   // ms, the longest
constexpr double kMostForOpen = 300; // ms
constexpr int kBranches = 100;       // folders in a folder, twice; and one in each of those
constexpr int kFolders = kBranches + 2 * kBranches * kBranches;
constexpr int kWide = 10000;
constexpr int kKeysAtRest = 300;
constexpr int kStretch = 25;         // rows, of those that are seen at once
constexpr uint32 kMark = 0xff000000; // behind the name of the selected row
constexpr int kRuns = 5;
constexpr bigtime_t kPatience = 60000000; // us

struct Folders : TempFolder {
	Folders() : TempFolder("outline")
	{
		for (int i = 0; i < kBranches * kBranches; i++) {
			const std::string folder =
				"/tree/" + std::to_string(i / kBranches) + "/" + std::to_string(i % kBranches);
			std::filesystem::create_directories(path + folder + "/leaf");
		}
		for (int i = 0; i < kWide; i++)
			std::filesystem::create_directories(path + "/all/wide/" + std::to_string(i));
	}
};

class Window : public BenchWindow {
public:
	explicit Window(entry_ref root) : BenchWindow(BRect(50, 75, 350, 775), "tree")
	{
		fPane = new OutlineView(Bounds(), &root);
		AddChild(fPane);
		for (BView* view = fPane; fList == nullptr; view = view->ChildAt(0))
			fList = dynamic_cast<FileListView*>(view->FindView("outline"));
		fList->MakeFocus(true);
		Show();
		WaitForPicture();
	}

	// Below the root.
	User SomeUser()
	{
		Lock();
		fList->Select(1);
		Unlock();
		WaitForPicture();
		return User(Title(), kMark);
	}

	void SetRoot(entry_ref root)
	{
		Lock();
		fPane->SetRoot(&root);
		Unlock();
		WaitForPicture();
	}

	// Wants every folder scanned that has been found below one that was; each once. False once
	// there is nothing left to be wanted or found.
	bool ScanMore()
	{
		bool waits = false;
		Lock();
		for (int32 i = 0; i < fList->FullListCountItems(); i++) {
			auto* item = static_cast<FolderItem*>(fList->FullListItemAt(i));
			waits |= item->OutlineLevel() < 3 && item->Count() < 0;
			if (item->Count() > 1 && fWanted.insert(item).second) {
				BMessage request(kMSG_ExpandSubItems);
				request.AddPointer("item", item);
				PostMessage(&request, fPane);
				waits = true;
			}
		}
		Unlock();
		return waits;
	}

	int32 CountFolders()
	{
		Lock();
		const int32 count = fList->FullListCountItems() - 1;
		Unlock();
		return count;
	}

	// Milliseconds to the picture, of the first row below a new root: selected before it was
	// scanned, and opened after that.
	double SelectFirst(entry_ref root)
	{
		Lock();
		fPane->SetRoot(&root);
		const bigtime_t start = system_time();
		fList->Select(1);
		Unlock();
		WaitForPicture(); // the selection is handled by a message of its own
		WaitForPicture();
		return Milliseconds(start);
	}
	double ExpandFirst(entry_ref root)
	{
		SetRoot(root);
		while (CountFolders() <= kWide)
			WaitForPicture();
		const bigtime_t start = system_time();
		Lock();
		fList->Expand(fList->FullListItemAt(1));
		Unlock();
		WaitForPicture();
		return Milliseconds(start);
	}

private:
	OutlineView* fPane;
	FileListView* fList = nullptr;
	std::set<const FolderItem*> fWanted;
};

double
ReadBare(const entry_ref& ref)
{
	const bigtime_t start = system_time();
	BDirectory folder(&ref);
	BEntry entry;
	struct stat status;
	while (folder.GetNextEntry(&entry) == B_OK)
		entry.GetStat(&status);
	return Milliseconds(start);
}

bool
MeasureKeys(Window& window, const Folders& folders)
{
	std::vector<double> rest, busy;
	const User user = window.SomeUser();
	int keys = 0;
	// To the next row and, after a while, back again.
	auto pressKey = [&] {
		const User::Rows before = user.Selected();
		const bool down = keys++ / kStretch % 2 == 0;
		return user.Press(down ? B_DOWN_ARROW : B_UP_ARROW, [&](const User::Rows& rows) {
			return rows.size() == 1 && (down ? rows > before : rows < before);
		});
	};
	for (int i = 0; i < kKeysAtRest; i++)
		rest.push_back(pressKey());
	keys = 0;
	window.SetRoot(folders.Ref("tree"));
	const bigtime_t start = system_time();
	while (window.ScanMore() && system_time() - start < kPatience)
		busy.push_back(pressKey());
	const double filled = Milliseconds(start);
	if (window.CountFolders() != kFolders) {
		fprintf(stderr, "%d folders of %d\n", window.CountFolders(), kFolders);
		return false;
	}
	char beside[96];
	snprintf(beside, sizeof(beside), "median %.2f; at rest %.2f, %.2f; %zu keys in %.0f ms",
		Median(busy), *std::max_element(rest.begin(), rest.end()), Median(rest), busy.size(),
		filled);
	return PrintFigure("longest key while 20,000 folders are scanned",
		*std::max_element(busy.begin(), busy.end()), "ms", Bound::kAtMost, kMostForKey, beside);
}

bool
MeasureOpening(Window& window, const Folders& folders)
{
	const entry_ref all = folders.Ref("all"), wide = folders.Ref("all/wide");
	std::vector<double> bare, select, open;
	for (int run = 0; run < kRuns; run++) {
		bare.push_back(ReadBare(wide));
		select.push_back(window.SelectFirst(all));
		open.push_back(window.ExpandFirst(all));
	}
	char beside[80];
	snprintf(beside, sizeof(beside), "scanning and selecting it %.0f ms; bare reading %.0f ms",
		Median(select), Median(bare));
	return PrintFigure("opening a folder of 10,000 folders", Median(open), "ms", Bound::kAtMost,
		kMostForOpen, beside);
}

} // namespace

int
main(int, char**)
{
	BApplication app("application/x-vnd.Tav-Korva");
	const Folders folders;
	Window* window = new Window(folders.Ref("tree"));
	bool good = MeasureKeys(*window, folders);
	good &= MeasureOpening(*window, folders);
	window->Lock();
	window->Quit();
	return good ? 0 : 1;
}
