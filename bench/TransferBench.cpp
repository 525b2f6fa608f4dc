// SPDX-License-Identifier: MIT

// Copies by the program's own engine beside cp: one large file, and thousands of small ones that a
// window asks for in one go while it has to answer. Fails over a limit.
//
//	bench_transfer [FOLDER]     works below FOLDER, else where temporary files are

#include "bench/Figure.h"
#include "bench/Muted.h"

#include "app/Messages.h"
#include "xfer/FileXFer.h"

#include <app/Application.h>
#include <interface/Window.h>
#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/Path.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <unistd.h>

// Nobody looks at the window: it answers on any machine.
[[maybe_unused]] static const int sOffscreen = setenv("QT_QPA_PLATFORM", "offscreen", 1);

namespace {

constexpr int kRuns = 3;
constexpr int kLargeRuns = 6;
constexpr size_t kLarge = 1 << 30;
constexpr int kSmallFiles = 10000;
constexpr size_t kSmall = 4096;
constexpr uint32 kMsgStart = 'strt';
constexpr uint32 kMsgPing = 'ping';

typedef std::chrono::steady_clock Clock;

void
Check(bool good, const char* what)
{
	if (!good)
		throw std::runtime_error(what);
}

double
Since(Clock::time_point start)
{
	return std::chrono::duration<double>(Clock::now() - start).count();
}

double
Seconds(const std::function<void()>& work)
{
	auto start = Clock::now();
	work();
	return Since(start);
}

void
MakeFile(const std::string& path, size_t size)
{
	std::string block(std::min<size_t>(size, 1 << 20), 'x');
	int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
	for (size_t done = 0; done < size; done += block.size()) {
		block[done % block.size()]++;
		Check(
			write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()), "write");
	}
	close(file);
}

bool
MeasureLargeFile(const std::string& folder)
{
	std::string from = folder + "/large";
	std::string to = folder + "/copy";
	MakeFile(from, kLarge);
	std::string command = "cp --reflink=never '" + from + "' '" + to + "'";
	BEntry entry(from.c_str());
	entry_ref source;
	entry.GetRef(&source);
	BPath target(to.c_str());
	std::vector<double> ours;
	std::vector<double> theirs;
	auto copy = [&](bool isOurs) {
		// Neither pays for what the other has left to the disk.
		unlink(to.c_str());
		sync();
		(isOurs ? ours : theirs).push_back(Seconds([&] {
			Check(isOurs ? NFileXFer::CopyFile(&source, &target) : system(command.c_str()) == 0,
				isOurs ? "CopyFile" : "cp");
		}));
	};
	for (int run = 0; run < kLargeRuns; run++) {
		copy(run % 2 == 0); // each of them is the first one as often
		copy(run % 2 != 0);
	}
	Check(std::filesystem::file_size(to) == kLarge, "copy");
	unlink(from.c_str());
	unlink(to.c_str());
	// The fastest of each: a machine that has to fetch the memory first takes seconds for that.
	const double our = *std::min_element(ours.begin(), ours.end());
	const double their = *std::min_element(theirs.begin(), theirs.end());
	char beside[64];
	snprintf(beside, sizeof(beside), "%.2f s; cp %.2f", our, their);
	return PrintFigure("1 GiB by CopyFile", our / their, "x", Bound::kAtMost, 1.5, beside);
}

// Copies a whole folder by one call for each file, as after a drop of all of them.
class CopyingWindow : public BWindow {
public:
	CopyingWindow() : BWindow(BRect(50, 50, 250, 250), "copying", B_TITLED_WINDOW, 0) {}

	void SetTo(const std::string& from, const std::string& to)
	{
		fRefs.clear();
		BDirectory folder(from.c_str());
		for (entry_ref ref; folder.GetNextRef(&ref) == B_OK;)
			fRefs.push_back(ref);
		BEntry entry(to.c_str());
		entry.GetRef(&fTo);
		fCompleted = 0;
	}

	int Completed() const { return fCompleted; }
	double Calling() const { return fCalling; }

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case kMsgStart:
				fCalling = Seconds([this] { CopyAll(); });
				break;
			case kMsgPing:
				message->SendReply(B_REPLY);
				break;
			case kMSG_CopyComplete:
				fCompleted++;
				break;
			default:
				BWindow::MessageReceived(message);
		}
	}

private:
	void CopyAll()
	{
		for (const entry_ref& ref : fRefs) {
			BEntry entry(&ref);
			BDirectory folder(&fTo);
			NFileXFer::FileOperation(NFileXFer::eCopy, &entry, &folder, this);
		}
	}

	std::vector<entry_ref> fRefs;
	entry_ref fTo;
	std::atomic<int> fCompleted = 0;
	std::atomic<double> fCalling = 0;
};

// The most memory since the last call, in MiB.
double
PeakMemory()
{
	std::ifstream status("/proc/self/status");
	std::string line;
	double peak = 0;
	while (std::getline(status, line)) {
		if (line.starts_with("VmHWM:"))
			peak = std::stod(line.substr(6)) / 1024;
	}
	std::ofstream("/proc/self/clear_refs") << 5;
	return peak;
}

bool
MeasureSmallFiles(const std::string& folder, CopyingWindow* window)
{
	std::string from = folder + "/small";
	std::filesystem::create_directory(from);
	for (int i = 0; i < kSmallFiles; i++)
		MakeFile(from + "/file " + std::to_string(i), kSmall);
	std::vector<double> ours;
	std::vector<double> theirs;
	std::vector<double> ratios;
	std::vector<double> longest;
	double calling = 0;
	double memory = 0;
	for (int run = 0; run < kRuns; run++) {
		std::string bare = folder + "/bare" + std::to_string(run);
		std::string to = folder + "/to" + std::to_string(run);
		sync();
		std::string command = "cp -r '" + from + "' '" + bare + "'";
		theirs.push_back(Seconds([&] { Check(system(command.c_str()) == 0, "cp -r"); }));
		sync();
		std::filesystem::create_directory(to);
		window->SetTo(from, to);
		PeakMemory();
		Muted muted;
		BMessenger messenger(window);
		auto start = Clock::now();
		messenger.SendMessage(kMsgStart);
		longest.push_back(0);
		while (window->Completed() < kSmallFiles) {
			BMessage ping(kMsgPing);
			BMessage reply;
			double wait = Seconds([&] { messenger.SendMessage(&ping, &reply); });
			longest.back() = std::max(longest.back(), wait * 1000);
			snooze(1000);
		}
		ours.push_back(Since(start));
		memory = std::max(memory, PeakMemory());
		calling = std::max(calling, window->Calling() * 1000);
		ratios.push_back(ours.back() / theirs.back());
		BDirectory copied(to.c_str());
		Check(copied.CountEntries() == kSmallFiles, "a file is missing");
		for (int i = 0; i < kSmallFiles; i++)
			Check(std::filesystem::file_size(to + "/file " + std::to_string(i)) == kSmall, "size");
	}
	char beside[64];
	snprintf(beside, sizeof(beside), "%.2f s; cp -r %.2f", Median(ours), Median(theirs));
	bool good = PrintFigure(
		"10,000 files of 4 KiB by FileOperation", Median(ratios), "x", Bound::kAtMost, 3, beside);
	snprintf(beside, sizeof(beside), "of which the calls themselves %.0f", calling);
	good = PrintFigure("longest wait for the window's answer", Median(longest), "ms",
			   Bound::kAtMost, 100, beside) &&
		good;
	return PrintFigure("most memory", memory, "MiB", Bound::kAtMost, 200, "") && good;
}

bool
Measure(const std::string& base)
{
	std::string folder = base + "/bench-transfer-XXXXXX";
	if (mkdtemp(folder.data()) == nullptr) {
		perror(folder.c_str());
		return false;
	}
	auto* window = new CopyingWindow;
	window->Show();
	bool good = false;
	try {
		good = MeasureSmallFiles(folder, window);
		good = MeasureLargeFile(folder) && good;
	} catch (const std::exception& error) {
		fprintf(stderr, "%s: %s\n", error.what(), strerror(errno));
		good = false;
	}
	window->Lock();
	window->Quit();
	std::filesystem::remove_all(folder);
	return good;
}

} // namespace

int
main(int argc, char** argv)
{
	BApplication application("application/x-vnd.Korva-bench-transfer");
	return Measure(argc > 1 ? argv[1] : std::filesystem::temp_directory_path().string()) ? 0 : 1;
}
