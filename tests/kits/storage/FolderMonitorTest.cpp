// SPDX-License-Identifier: MIT

// The node monitor against the disk: a target that follows the notices ends up with what a fresh
// listing gives, whatever happened.

#include <storage/FolderMonitor.h>

#include <storage/DirectoryTable.h>
#include <storage/Node.h>
#include <storage/NodeMonitor.h>

#include "tests/support/LongRun.h"
#include "tests/support/TempTree.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sys/stat.h>

using namespace BPrivate;

namespace {

struct Row {
	ino_t node;
	mode_t mode;
	off_t size;
	bool operator==(const Row& other) const
	{
		return node == other.node && mode == other.mode && size == other.size;
	}
};
typedef std::map<std::string, Row> Rows;

std::ostream&
operator<<(std::ostream& out, const Row& row)
{
	return out << row.node << " mode " << std::oct << row.mode << std::dec << " size " << row.size;
}

std::optional<Row>
ReadRow(const std::string& folder, const std::string& name)
{
	struct stat status;
	if (lstat((folder + "/" + name).c_str(), &status) != 0)
		return std::nullopt;
	bool isFolder = S_ISDIR(status.st_mode); // its size tells of what is in it
	return Row{status.st_ino, status.st_mode, isFolder ? 0 : status.st_size};
}

// Rows that follow one folder as a list of files does: each notice changes what it names.
class RowsTarget {
public:
	explicit RowsTarget(const std::string& folder) : fFolder(folder) {}

	Rows Get() const
	{
		std::lock_guard lock(fLock);
		return fRows;
	}
	Rows OnDisk() const
	{
		Rows rows;
		for (const std::string& name : Names()) {
			if (std::optional<Row> row = ReadRow(fFolder, name))
				rows[name] = *row;
		}
		return rows;
	}
	int Count(int32 opcode) const
	{
		std::lock_guard lock(fLock);
		auto found = fCounts.find(opcode);
		return found == fCounts.end() ? 0 : found->second;
	}
	std::vector<std::string> Errors() const
	{
		std::lock_guard lock(fLock);
		return fErrors;
	}

	// While it is paused the monitor's thread stands still in its middle.
	void Pause(bool paused)
	{
		std::lock_guard lock(fLock);
		fPaused = paused;
		fResumed.notify_all();
	}
	bool IsStopped() const
	{
		std::lock_guard lock(fLock);
		return fIsStopped;
	}

	void Receive(const Notice& notice)
	{
		std::unique_lock lock(fLock);
		fIsStopped = fPaused;
		fResumed.wait(lock, [this] { return !fPaused; });
		fIsStopped = false;
		fCounts[notice.opcode]++;
		switch (notice.opcode) {
			case B_ENTRY_CREATED:
				Add(notice.name);
				break;
			case B_ENTRY_REMOVED:
				if (auto row = Find(notice.name); row != fRows.end())
					fRows.erase(row);
				break;
			case B_ENTRY_MOVED:
				if (auto row = Find(notice.fromName); row != fRows.end()) {
					fRows.erase(row);
					Add(notice.name);
				}
				break;
			default:
				for (auto& [name, row] : fRows) {
					if (row.node == notice.node || name == notice.name)
						row = Reread(name, row);
				}
		}
	}

private:
	std::vector<std::string> Names() const
	{
		std::vector<std::string> names;
		BDirectory folder(fFolder.c_str());
		entry_ref ref;
		while (folder.GetNextRef(&ref) == B_OK)
			names.push_back(ref.name);
		return names;
	}
	// What is gone again will be told of.
	Row Reread(const std::string& name, const Row& old) const
	{
		return ReadRow(fFolder, name).value_or(old);
	}
	Rows::iterator Find(const std::string& name)
	{
		auto found = fRows.find(name);
		if (found == fRows.end())
			fErrors.push_back("no row for " + name);
		return found;
	}
	void Add(const std::string& name)
	{
		if (!fRows.emplace(name, Reread(name, {})).second)
			fErrors.push_back("two rows for " + name);
	}

	const std::string fFolder;
	mutable std::mutex fLock;
	std::condition_variable fResumed;
	bool fPaused = false;
	bool fIsStopped = false;
	Rows fRows;
	std::map<int32, int> fCounts;
	std::vector<std::string> fErrors;
};

// The same as the monitor knows it.
class TargetAddress : public NoticeTarget {
public:
	explicit TargetAddress(RowsTarget* rows) : fRows(rows) {}

	bool Equals(const NoticeTarget& other) const override
	{
		return fRows == static_cast<const TargetAddress&>(other).fRows;
	}
	bool IsCallingThread() const override { return false; }
	bool Send(const Notice& notice, std::shared_ptr<void>) override
	{
		fRows->Receive(notice);
		return true;
	}
	std::vector<Notice> TakeBack(const node_ref&) override { return {}; }

private:
	RowsTarget* fRows;
};

class FolderMonitorTest : public testing::Test {
protected:
	FolderMonitorTest()
	{
		node_ref node;
		BDirectory(tree.Path().c_str()).GetNodeRef(&node);
		EXPECT_EQ(FolderMonitor::Instance().Watch(
					  node, B_WATCH_ALL, std::make_unique<TargetAddress>(&rows)),
			B_OK);
	}
	~FolderMonitorTest() override { FolderMonitor::Instance().StopAll(TargetAddress(&rows)); }

	void ExpectSameRows()
	{
		const bool agrees = WaitUntil([&] { return rows.Get() == rows.OnDisk(); });
		if (!agrees) {
			EXPECT_EQ(rows.Get(), rows.OnDisk());
		}
		EXPECT_EQ(rows.Errors(), std::vector<std::string>());
	}

	std::string Name(int number) const { return "f" + std::to_string(number); }
	std::string Path(const std::string& name) const { return tree.Path() + "/" + name; }
	void RandomStep(std::mt19937& random);

	TempTree tree;
	TempTree outside;
	RowsTarget rows{tree.Path()};
	int fOutside = 0;
};

// One change out of those that people and programs make in a folder. Some fail, as they may.
void
FolderMonitorTest::RandomStep(std::mt19937& random)
{
	const std::string path = Path(Name(random() % 12));
	const std::string other = Path(Name(random() % 12));
	std::error_code failed;
	switch (random() % 12) {
		case 0:
		case 1:
			std::ofstream(path) << std::string(random() % 100, 'x');
			break;
		case 2:
			std::ofstream(path, std::ios::app) << "more";
			break;
		case 3:
		case 4:
			rename(path.c_str(), other.c_str());
			break;
		case 5:
			rename(path.c_str(), (outside.Path() + "/" + std::to_string(++fOutside)).c_str());
			break;
		case 6:
			rename((outside.Path() + "/" + std::to_string(fOutside)).c_str(), path.c_str());
			break;
		case 7:
			unlink(path.c_str());
			rmdir(path.c_str());
			break;
		case 8:
			mkdir(path.c_str(), 0755);
			break;
		case 9:
			std::filesystem::create_symlink(other, path, failed);
			break;
		case 10:
			link(path.c_str(), other.c_str());
			break;
		default:
			chmod(path.c_str(), random() % 2 == 0 ? 0600 : 0644);
	}
}

} // namespace

TEST_F(FolderMonitorTest, RowsFollowRandomChanges)
{
	const unsigned seed = 20261121;
	printf("seed %u\n", seed);
	std::mt19937 random(seed);
	for (int round = 0; round < Rounds(10, 100); round++) {
		for (int i = 0; i < 300; i++) {
			RandomStep(random);
			if (random() % 20 == 0)
				usleep(random() % 10000); // so that steps come apart in different ways
		}
		ExpectSameRows();
		if (HasFailure())
			FAIL() << "round " << round;
	}
}

TEST_F(FolderMonitorTest, StatusIsToldOncePerIntervalAndAtTheEnd)
{
	tree.Add("log", Text());
	ExpectSameRows();
	const int before = rows.Count(B_STAT_CHANGED);
	const bigtime_t start = system_time();
	for (int i = 0; i < 500; i++) {
		std::ofstream(Path("log"), std::ios::app) << "line\n";
		usleep(500);
	}
	ExpectSameRows();
	const bigtime_t elapsed = system_time() - start;
	EXPECT_LE(rows.Count(B_STAT_CHANGED) - before, elapsed / 250000 + 2);
}

TEST_F(FolderMonitorTest, AFileThatTookTheNameIsNotTheOldOne)
{
	tree.Add("a", Text("old"));
	ExpectSameRows();
	rows.Pause(true);
	tree.Add("stop", Text());
	ASSERT_TRUE(WaitUntil([&] { return rows.IsStopped(); }));
	const int created = rows.Count(B_ENTRY_CREATED);
	tree.Remove("a"); // file systems give its number to the next one
	tree.Add("a", Dir());
	rows.Pause(false);
	ExpectSameRows();
	EXPECT_EQ(rows.Count(B_ENTRY_REMOVED), 1);
	EXPECT_EQ(rows.Count(B_ENTRY_CREATED), created + 2);
}
