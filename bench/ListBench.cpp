// SPDX-License-Identifier: MIT

// Lists a folder of many files through the storage kit, each with its status, and beside it with
// the bare system calls. Fails when the kit costs 1.5 times as much.

#include "bench/Figure.h"

#include <storage/Directory.h>
#include <storage/Entry.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr double kLimit = 1.5;
constexpr int kRuns = 11;
constexpr int kFiles = 100000;
constexpr size_t kBufferSize = 65536;

// All loops must come to the same sum, or one of them leaves something out.
typedef std::function<int64(const char* folder)> Listing;

int64
ListBare(const char* folder)
{
	int descriptor = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	std::vector<char> buffer(kBufferSize);
	std::vector<char> text;
	std::vector<size_t> starts;
	ssize_t size;
	while ((size = getdents64(descriptor, buffer.data(), buffer.size())) > 0) {
		for (ssize_t offset = 0; offset < size;) {
			const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + offset);
			offset += entry->d_reclen;
			if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
				continue;
			starts.push_back(text.size());
			text.insert(text.end(), entry->d_name, entry->d_name + strlen(entry->d_name) + 1);
		}
	}
	std::vector<const char*> names;
	names.reserve(starts.size());
	for (size_t start : starts)
		names.push_back(text.data() + start);
	std::sort(
		names.begin(), names.end(), [](const char* a, const char* b) { return strcmp(a, b) < 0; });
	int64 sum = 0;
	for (const char* name : names) {
		struct statx status;
		if (statx(descriptor, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME,
				&status) == 0)
			sum += status.stx_size + 1;
	}
	close(descriptor);
	return sum;
}

template <typename Read>
int64
ListWithKit(const char* folder, Read read)
{
	BDirectory directory(folder);
	int32 count = directory.CountEntries();
	directory.Rewind();
	int64 sum = 0;
	entry_ref ref;
	for (int32 i = 0; i < count && directory.GetNextRef(&ref) == B_OK; i++) {
		BEntry entry(&ref);
		struct stat status;
		if (read(entry, &status) == B_OK)
			sum += status.st_size + 1;
	}
	return sum;
}

int64
ListStatus(const char* folder)
{
	return ListWithKit(
		folder, [](const BEntry& entry, struct stat* status) { return entry.GetStat(status); });
}

int64
ListStatusAndCreation(const char* folder)
{
	return ListWithKit(folder, [](const BEntry& entry, struct stat* status) {
		time_t creation;
		return entry.GetStat(status, &creation);
	});
}

int64
ListEntries(const char* folder)
{
	BDirectory directory(folder);
	int64 sum = 0;
	BEntry entry;
	while (directory.GetNextEntry(&entry) == B_OK) {
		struct stat status;
		if (entry.GetStat(&status) == B_OK)
			sum += status.st_size + 1;
	}
	return sum;
}

// Names as folders have them: some share their beginning, some do not.
std::string
NameOf(int number)
{
	static const char* const kForms[] = {
		"IMG_20240%03u_%06u.jpg", "%03u report %u.txt", "file%u-%u", "%03u%u.dat"};
	unsigned mixed = static_cast<unsigned>(number) * 2654435761U;
	char name[64];
	snprintf(name, sizeof(name), kForms[number % 4], mixed % 1000, static_cast<unsigned>(number));
	return name;
}

double
Milliseconds(const Listing& listing, const char* folder, int64 expected)
{
	auto start = std::chrono::steady_clock::now();
	int64 sum = listing(folder);
	std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
	if (sum != expected) {
		fprintf(stderr, "a listing came to %ld, not %ld\n", sum, expected);
		exit(1);
	}
	return time.count();
}

} // namespace

int
main()
{
	std::string folder = std::filesystem::temp_directory_path() / "bench-list-XXXXXX";
	if (mkdtemp(folder.data()) == nullptr) {
		perror(folder.c_str());
		return 1;
	}
	for (int i = 0; i < kFiles; i++) {
		std::string path = folder + "/" + NameOf(i);
		close(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
	}

	struct Row {
		const char* what;
		Listing listing;
		std::vector<double> times;
	};
	Row rows[] = {
		{"bare: getdents64, sort, statx", ListBare, {}},
		{"100,000 entries with status, of bare", ListStatus, {}},
		{"  with creation time", ListStatusAndCreation, {}},
		{"  entry by entry", ListEntries, {}},
	};
	int64 expected = ListBare(folder.c_str());
	// Taken in turns, so that a busy machine is equally unfair to all.
	for (int run = 0; run < kRuns; run++) {
		for (Row& row : rows)
			row.times.push_back(Milliseconds(row.listing, folder.c_str(), expected));
	}

	const double bare = Median(rows[0].times);
	bool good = expected == kFiles;
	for (const Row& row : rows) {
		if (&row == rows)
			continue;
		const double time = Median(row.times);
		char beside[80];
		snprintf(beside, sizeof(beside), "%.1f ms; bare %.1f ms", time, bare);
		good &= PrintFigure(row.what, time / bare, "x", Bound::kAtMost, kLimit, beside);
	}
	std::filesystem::remove_all(folder);
	return good ? 0 : 1;
}
