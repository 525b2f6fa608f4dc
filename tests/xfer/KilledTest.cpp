// SPDX-License-Identifier: MIT

// A program that is killed at any moment of its moves, copies and visits to the trash: no file is
// lost or halved, and what lies in the trash can be put back.

#include "xfer/FileXFer.h"

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include "tests/support/Denied.h"
#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"
#include "tests/support/Variable.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

using namespace NFileXFer;

namespace {

constexpr int kFiles = 24;
constexpr const char* kDecoy = "of no worth\n";
// The victim's, in its environment.
constexpr const char* kTree = "KORVA_TEST_VICTIM";
constexpr const char* kSeed = "KORVA_TEST_VICTIM_SEED";

std::string
Name(int number)
{
	return "file " + std::to_string(number);
}

// Some longer than one write of the engine's.
std::string
Content(int number)
{
	std::string text;
	while (text.size() < static_cast<size_t>(number) * 30000 + 10)
		text += Name(number) + "\n";
	return text;
}

std::string
ReadAll(const std::filesystem::path& path)
{
	std::ifstream file(path, std::ios::binary);
	return std::string(std::istreambuf_iterator<char>(file), {});
}

// The program that is to be killed. All that it knows of its files is what it finds.
class Victim {
public:
	Victim() : fTree(getenv(kTree)), fDice(static_cast<unsigned>(std::stoul(getenv(kSeed))))
	{
		BPath trash;
		find_directory(B_TRASH_DIRECTORY, &trash);
		fPlaces = {fTree + "/1", fTree + "/2", trash.Path()};
	}

	[[noreturn]] void Live()
	{
		std::ofstream(fTree + "/ready") << "y";
		for (;;) {
			BDirectory folder(fPlaces[Roll(3)].c_str());
			std::vector<entry_ref> refs;
			for (entry_ref ref; folder.GetNextRef(&ref) == B_OK;)
				refs.push_back(ref);
			if (!refs.empty())
				Act(refs[Roll(refs.size())]);
		}
	}

private:
	size_t Roll(size_t sides) { return static_cast<size_t>(fDice(static_cast<int>(sides))); }

	void Act(const entry_ref& ref)
	{
		auto entry = std::make_unique<BEntry>(&ref);
		const std::string& place = fPlaces[Roll(2)];
		auto folder = std::make_unique<BDirectory>(place.c_str());
		switch (Roll(5)) {
			case 0:
				DeleteFile(&ref, true);
				break;
			case 1: { // in a thread, beside what comes next
				BDirectory copies((fTree + "/copies").c_str());
				FileOperation(eCopy, entry.get(), &copies, nullptr);
				break;
			}
			case 2: // so, too
				if (MoveFile(entry.get(), folder.get())) {
					(void)entry.release();
					(void)folder.release();
				}
				break;
			case 3: // as after "Yes"
				if (link((fTree + "/decoy").c_str(), (place + "/" + ref.name).c_str()) == 0)
					entry->MoveTo(folder.get(), nullptr, true);
				break;
			default:
				entry->MoveTo(folder.get());
		}
	}

	const std::string fTree;
	Dice fDice;
	std::vector<std::string> fPlaces;
};

// The files of the victims, and whoever kills them.
class Killer {
public:
	Killer() : fData("XDG_DATA_HOME", fTree.Path("data").c_str())
	{
		fTree.Add("decoy", Text(kDecoy));
		for (int i = 0; i < kFiles; i++) {
			fContents.push_back(Content(i));
			fTree.Add("1/" + Name(i), Text(fContents.back()));
		}
		BPath trash;
		find_directory(B_TRASH_DIRECTORY, &trash, true);
	}

	// Runs this test's program once more, with this test as the victim.
	void RunAndKill(int seed, int microseconds)
	{
		std::filesystem::remove(fTree.Path("ready"));
		const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
		const std::string filter =
			std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
		Variable tree(kTree, fTree.Path().c_str());
		Variable victimsSeed(kSeed, std::to_string(seed).c_str());
		fflush(stdout); // else both print it
		pid_t victim = fork();
		if (victim == 0) {
			freopen("/dev/null", "w", stdout);
			execl("/proc/self/exe", "victim", filter.c_str(), nullptr);
			_exit(126);
		}
		int status = 0;
		EXPECT_TRUE(WaitUntil([&] {
			return std::filesystem::exists(fTree.Path("ready")) ||
				waitpid(victim, &status, WNOHANG) != 0;
		}));
		usleep(static_cast<unsigned>(microseconds));
		kill(victim, SIGKILL);
		waitpid(victim, &status, 0);
		EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
	}

	// How often each file is there.
	std::vector<int> CountFiles(bool allowsReserved)
	{
		std::vector<int> counts(kFiles);
		for (const char* place : {"1", "2", "data/Trash/files"}) {
			for (const auto& found : std::filesystem::directory_iterator(fTree.Path(place))) {
				const std::string text = ReadAll(found.path());
				const auto file = std::find(fContents.begin(), fContents.end(), text);
				if (file != fContents.end())
					counts[static_cast<size_t>(file - fContents.begin())]++;
				else if (text != kDecoy && !(text.empty() && allowsReserved))
					ADD_FAILURE() << found.path() << " has " << text.size() << " bytes";
			}
		}
		return counts;
	}

	void CheckRecords(bool allowsSpares)
	{
		for (const std::string& name : fTree.List("data/Trash/files")) {
			if (allowsSpares && name.starts_with(".korva-"))
				continue;
			const std::string record =
				ReadAll(fTree.Path("data/Trash/info/" + name + ".trashinfo"));
			EXPECT_TRUE(record.starts_with("[Trash Info]\nPath=/") &&
				record.find("\nDeletionDate=") != record.npos && record.ends_with('\n'))
				<< name << ": " << record;
		}
	}

	// Each is a beginning of its source.
	void TakeCopies()
	{
		for (const std::string& name : fTree.List("copies")) {
			const std::string part = fTree.Read("copies/" + name);
			EXPECT_TRUE(std::any_of(fContents.begin(), fContents.end(),
							[&](const std::string& whole) { return whole.starts_with(part); }) ||
				part == kDecoy)
				<< name << " has " << part.size() << " bytes";
			fTree.Remove("copies/" + name);
		}
	}

private:
	TempTree fTree{{"1", Dir()}, {"2", Dir()}, {"copies", Dir()}, {"data", Dir()}};
	Variable fData;
	std::vector<std::string> fContents;
};

} // namespace

TEST(Killed, NothingIsLostHalvedOrWithoutARecord)
{
	if (getenv(kTree) != nullptr)
		Victim().Live();
	Killer killer;
	Dice dice(20261121);
	for (int i = 0; i < Rounds(50, 500); i++) {
		killer.RunAndKill(dice(1 << 30), dice(60000));
		ASSERT_EQ(killer.CountFiles(false), std::vector<int>(kFiles, 1)) << "round " << i;
		killer.CheckRecords(false);
		killer.TakeCopies();
		ASSERT_FALSE(testing::Test::HasFailure()) << "round " << i;
	}
}

// A file may then be left under a spare name, or under both of its names, but never under none.
TEST(Killed, NothingIsLostWhereTheSystemHasNoExclusiveRename)
{
	if (getenv(kTree) != nullptr) {
		const bool isEven = std::stoul(getenv(kSeed)) % 2 == 0;
		Deny(isEven ? Denial::kExclusiveRename : Denial::kAndHardLinks);
		Victim().Live();
	}
	Killer killer;
	Dice dice(20261122);
	for (int i = 0; i < Rounds(12, 120); i++) {
		killer.RunAndKill(dice(1 << 30), dice(60000));
		for (int count : killer.CountFiles(true))
			ASSERT_GE(count, 1) << "round " << i;
		killer.CheckRecords(true);
		killer.TakeCopies();
		ASSERT_FALSE(testing::Test::HasFailure()) << "round " << i;
	}
}
