// SPDX-License-Identifier: MIT

// What changes a disk, beside the bare system calls of the same run: renames, reads of attributes,
// and a file copied in steps of a kilobyte beside cp. Fails over a limit.
//
//	bench_storage [--long]     128 MiB are copied, with --long 1 GiB

#include "bench/Figure.h"

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/File.h>
#include <storage/Node.h>

#include <support/TypeConstants.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kRuns = 5;
constexpr int kRenames = 20000; // there and back
constexpr int kReads = 200000;
constexpr size_t kChunk = 1024;
constexpr const char* kAttribute = "BEOS:TYPE";
constexpr const char* kValue = "text/plain";

void
Check(bool good, const char* what)
{
	if (!good)
		throw std::runtime_error(what);
}

double
Seconds(const std::function<void()>& work)
{
	auto start = std::chrono::steady_clock::now();
	work();
	return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Taken in turns, so that a busy machine is equally unfair to both.
bool
Compare(const char* what, double limit, const char* bareName, const std::function<void()>& work,
	const std::function<void()>& bare, int perRun)
{
	std::vector<double> ours;
	std::vector<double> theirs;
	std::vector<double> ratios;
	for (int run = 0; run < kRuns; run++) {
		theirs.push_back(Seconds(bare));
		ours.push_back(Seconds(work));
		ratios.push_back(ours.back() / theirs.back());
	}
	char beside[128];
	double scale = 1e6 / perRun;
	snprintf(beside, sizeof(beside), "%.2f us; %s %.2f", Median(ours) * scale, bareName,
		Median(theirs) * scale);
	return PrintFigure(what, Median(ratios), "x", Bound::kAtMost, limit, beside);
}

bool
MeasureRenames(const std::string& folder)
{
	std::string path = folder + "/one";
	close(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
	int base = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
	auto bare = [&] {
		for (int i = 0; i < kRenames; i++) {
			Check(renameat2(base, "one", base, "two", RENAME_NOREPLACE) == 0 &&
					renameat2(base, "two", base, "one", RENAME_NOREPLACE) == 0,
				"renameat2");
		}
	};
	auto work = [&] {
		BEntry entry(path.c_str());
		for (int i = 0; i < kRenames; i++)
			Check(entry.Rename("two") == B_OK && entry.Rename("one") == B_OK, "Rename");
	};
	bool good = Compare("BEntry::Rename there and back", 1.5, "renameat2", work, bare, kRenames);
	close(base);
	return good;
}

bool
MeasureAttributes(const std::string& folder)
{
	std::string path = folder + "/one";
	std::string attribute = std::string("user.") + kAttribute;
	size_t length = strlen(kValue) + 1;
	BNode node(path.c_str());
	if (node.WriteAttr(kAttribute, B_MIME_STRING_TYPE, 0, kValue, length) == B_UNSUPPORTED) {
		printf("attributes: not on this file system\n");
		return true;
	}
	char buffer[B_MIME_TYPE_LENGTH];
	auto bare = [&] {
		for (int i = 0; i < kReads; i++) {
			Check(
				getxattr(path.c_str(), attribute.c_str(), buffer, sizeof(buffer)) > 0, "getxattr");
		}
	};
	auto work = [&] {
		for (int i = 0; i < kReads; i++) {
			Check(node.ReadAttr(kAttribute, B_MIME_STRING_TYPE, 0, buffer, sizeof(buffer)) > 0,
				"ReadAttr");
		}
	};
	return Compare("BNode::ReadAttr", 2, "getxattr", work, bare, kReads);
}

void
MakeFile(const std::string& path, size_t size)
{
	std::string block(1 << 20, 'x');
	int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
	for (size_t done = 0; done < size; done += block.size()) {
		block[done % block.size()]++;
		Check(
			write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size()), "write");
	}
	// Otherwise the first copies would be made while the disk is still busy with this.
	fsync(file);
	close(file);
}

void
CopyInSmallSteps(const std::string& from, const std::string& to)
{
	BFile source(from.c_str(), B_READ_ONLY);
	BFile target;
	Check(BDirectory().CreateFile(to.c_str(), &target) == B_OK, "CreateFile");
	char buffer[kChunk];
	ssize_t length;
	while ((length = source.Read(buffer, sizeof(buffer))) > 0)
		Check(target.Write(buffer, length) == length, "Write");
	Check(length == 0 && target.Sync() == B_OK, "Sync");
}

bool
MeasureCopies(const std::string& folder, size_t size)
{
	std::string from = folder + "/source";
	std::string to = folder + "/copy";
	MakeFile(from, size);
	std::string command = "cp --reflink=never '" + from + "' '" + to + "'";
	auto renew = [&] {
		unlink(to.c_str());
		sync();
	};
	std::vector<double> ours;
	std::vector<double> theirs;
	std::vector<double> ratios;
	for (int run = 0; run < kRuns; run++) {
		renew();
		theirs.push_back(Seconds([&] { Check(system(command.c_str()) == 0, "cp"); }));
		renew();
		ours.push_back(Seconds([&] { CopyInSmallSteps(from, to); }));
		ratios.push_back(ours.back() / theirs.back());
	}
	Check(std::filesystem::file_size(to) == size, "copy");
	char what[64];
	char beside[64];
	snprintf(what, sizeof(what), "%zu MiB by BFile in steps of 1 KiB", size >> 20);
	snprintf(beside, sizeof(beside), "%.2f s; cp %.2f", Median(ours), Median(theirs));
	return PrintFigure(what, Median(ratios), "x", Bound::kAtMost, 1.5, beside);
}

} // namespace

int
main(int argc, char** argv)
{
	size_t size = argc > 1 && strcmp(argv[1], "--long") == 0 ? 1UL << 30 : 128UL << 20;
	std::string folder = std::filesystem::temp_directory_path() / "bench-storage-XXXXXX";
	if (mkdtemp(folder.data()) == nullptr) {
		perror(folder.c_str());
		return 1;
	}
	bool good = true;
	try {
		good = MeasureRenames(folder) && good;
		good = MeasureAttributes(folder) && good;
		good = MeasureCopies(folder, size) && good;
	} catch (const std::exception& error) {
		fprintf(stderr, "%s: %s\n", error.what(), strerror(errno));
		good = false;
	}
	std::filesystem::remove_all(folder);
	return good ? 0 : 1;
}
