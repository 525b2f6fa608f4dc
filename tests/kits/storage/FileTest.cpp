// SPDX-License-Identifier: MIT

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/File.h>
#include <storage/FileDescriptor.h>
#include <storage/SymLink.h>

#include "tests/support/LongRun.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Mostly small steps, now and then some that are larger than any buffer.
size_t
RandomSize(std::mt19937& random)
{
	constexpr size_t kLimits[] = {16, 1024, 1024, 5000, 70000, 600000};
	return random() % kLimits[random() % (random() % 8 == 0 ? 6 : 4)];
}

std::string
RandomBytes(std::mt19937& random)
{
	std::string bytes(RandomSize(random), static_cast<char>(random()));
	for (size_t i = 0; i < bytes.size(); i += 97)
		bytes[i] = static_cast<char>(random());
	return bytes;
}

// One step with a file and with the descriptor of its twin; false when they disagree.
bool
Step(std::mt19937& random, BFile& file, int twin)
{
	struct stat status;
	fstat(twin, &status);
	const off_t size = status.st_size;
	const off_t where = static_cast<off_t>(random() % static_cast<size_t>(size + 5000));
	std::string bytes = RandomBytes(random), read(bytes.size(), '\0');
	const size_t length = bytes.size();
	switch (random() % 12) {
		case 0:
			return file.Seek(where, SEEK_SET) == lseek(twin, where, SEEK_SET);
		case 1: {
			const off_t result = file.Seek(where % 4000 - 2000, SEEK_CUR);
			return std::max<off_t>(result, -1) == lseek(twin, where % 4000 - 2000, SEEK_CUR);
		}
		case 2:
			return file.Seek(0, SEEK_END) == lseek(twin, 0, SEEK_END);
		case 3:
			return file.SetSize(2 * where % 2000000) == B_OK &&
				ftruncate(twin, 2 * where % 2000000) == 0;
		case 4:
			return file.WriteAt(where, bytes.data(), length) ==
				pwrite(twin, bytes.data(), length, where);
		case 5: {
			off_t told = -1;
			const ssize_t got = file.ReadAt(where, bytes.data(), length);
			return got == pread(twin, read.data(), length, where) &&
				bytes.compare(0, got, read, 0, got) == 0 && file.GetSize(&told) == B_OK &&
				told == size;
		}
		case 6:
		case 7:
		case 8:
			return file.Write(bytes.data(), length) == ::write(twin, bytes.data(), length);
		default: {
			const ssize_t got = file.Read(bytes.data(), length);
			return got == ::read(twin, read.data(), length) &&
				bytes.compare(0, got, read, 0, got) == 0;
		}
	}
}

// What is gathered and read ahead makes no difference to a plain descriptor.
void
CompareWithTwin(uint32 mode, uint32 seed)
{
	SCOPED_TRACE(testing::Message() << "seed " << seed);
	TempTree tree{{"file", Text("begin")}, {"twin", Text("begin")}};
	std::mt19937 random(seed);
	BFile file(tree.Path("file").c_str(), mode);
	const BPrivate::FileDescriptor twin(
		open(tree.Path("twin").c_str(), static_cast<int>(mode) | O_CLOEXEC));
	lseek(twin.Get(), 0, (mode & B_OPEN_AT_END) != 0 ? SEEK_END : SEEK_SET);
	for (int step = 0; step < Rounds(2000, 40000); step++) {
		ASSERT_TRUE(Step(random, file, twin.Get())) << "step " << step;
		ASSERT_EQ(file.Position(), lseek(twin.Get(), 0, SEEK_CUR)) << "step " << step;
	}
	file.Unset();
	EXPECT_TRUE(tree.Read("file") == tree.Read("twin"));
}

std::string
ReadAll(BFile& file)
{
	char buffer[100];
	std::string bytes;
	for (ssize_t length; (length = file.Read(buffer, sizeof(buffer))) > 0;)
		bytes.append(buffer, length);
	return bytes;
}

} // namespace

TEST(File, DoesAsAPlainDescriptorDoes)
{
	for (uint32 seed = 1; seed <= 5; seed++)
		CompareWithTwin(B_READ_WRITE, seed);
	CompareWithTwin(B_READ_WRITE | B_OPEN_AT_END, 6);
}

TEST(File, OpensAsTold)
{
	TempTree tree{{"file", Text("old")}, {"link", Link("file")}, {"folder", Dir()},
		{"to folder", Link("folder")}, {"broken", Link("new")}, {"missing", Link("none/new")}};
	struct {
		const char* path;
		uint32 mode;
		status_t status;
		const char* content; // of what the path leads to
	} cases[] = {
		{"file", B_READ_ONLY, B_OK, "old"},
		{"link", B_READ_ONLY, B_OK, "old"},
		{"folder", B_READ_ONLY, B_IS_A_DIRECTORY, nullptr},
		{"to folder", B_READ_ONLY, B_IS_A_DIRECTORY, nullptr},
		{"folder", B_READ_WRITE | B_CREATE_FILE, B_IS_A_DIRECTORY, nullptr},
		{"none", B_READ_WRITE, B_ENTRY_NOT_FOUND, nullptr},
		{"broken", B_READ_WRITE, B_ENTRY_NOT_FOUND, nullptr},
		{"missing", B_READ_WRITE | B_CREATE_FILE, B_ENTRY_NOT_FOUND, nullptr},
		{"none/file", B_READ_WRITE | B_CREATE_FILE, B_ENTRY_NOT_FOUND, nullptr},
		{"file/x", B_READ_WRITE | B_CREATE_FILE, B_NOT_A_DIRECTORY, nullptr},
		{"file", B_READ_WRITE | B_CREATE_FILE | B_FAIL_IF_EXISTS, B_FILE_EXISTS, "old"},
		{"file", B_READ_WRITE | B_CREATE_FILE, B_OK, "old"},
		{"file", B_READ_WRITE | B_FAIL_IF_EXISTS, B_OK, "old"},
		{"file", B_READ_WRITE | 3, B_BAD_VALUE, "old"},
		{"file", B_READ_WRITE | O_DIRECTORY, B_BAD_VALUE, "old"},
		{"made", B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS, B_OK, ""},
		{"broken", B_READ_WRITE | B_CREATE_FILE, B_OK, ""},
		{"file", B_WRITE_ONLY | B_ERASE_FILE, B_OK, ""},
	};
	for (const auto& test : cases) {
		SCOPED_TRACE(testing::Message() << test.path << " " << test.mode);
		BFile file(tree.Path(test.path).c_str(), test.mode);
		char byte;
		EXPECT_EQ(file.InitCheck(), test.status);
		EXPECT_EQ(file.Read(&byte, 0),
			test.status != B_OK                           ? B_NO_INIT
				: (test.mode & O_ACCMODE) == B_WRITE_ONLY ? B_FILE_ERROR
														  : 0);
		if (test.content != nullptr) {
			BFile again(tree.Path(test.path).c_str(), B_READ_ONLY);
			EXPECT_EQ(ReadAll(again), test.content);
		}
	}
	EXPECT_EQ(tree.List(),
		Names({"broken", "file", "folder", "link", "made", "missing", "new", "to folder"}));
}

TEST(File, RefusesWhatItsModeForbids)
{
	TempTree tree{{"file", Text("old")}};
	BFile file(tree.Path("file").c_str(), B_READ_ONLY);
	char buffer[8];
	EXPECT_EQ(file.Write("x", 1), B_FILE_ERROR);
	EXPECT_EQ(file.WriteAt(0, "x", 1), B_FILE_ERROR);
	EXPECT_EQ(file.SetSize(0), B_FILE_ERROR);
	EXPECT_EQ(file.Seek(-1, SEEK_SET), B_BAD_VALUE);
	EXPECT_EQ(file.SetTo(tree.Path("file").c_str(), B_WRITE_ONLY), B_OK);
	EXPECT_EQ(file.Read(buffer, 1), B_FILE_ERROR);
	EXPECT_EQ(file.ReadAt(0, buffer, 1), B_FILE_ERROR);
	file.Unset();
	EXPECT_EQ(file.Write("x", 1), B_NO_INIT);
	EXPECT_EQ(file.Sync(), B_NO_INIT);
	EXPECT_EQ(tree.Read("file"), "old");
}

TEST(File, GatheredBytesArriveWhenTheyCount)
{
	TempTree tree{{"file", Text()}};
	std::string path = tree.Path("file");
	BFile file(path.c_str(), B_READ_WRITE);
	off_t size;
	ASSERT_EQ(file.Write("one", 3), 3);
	EXPECT_EQ(file.Sync(), B_OK);
	EXPECT_EQ(tree.Read("file"), "one");
	file.Write("two", 3);
	EXPECT_EQ(file.GetSize(&size), B_OK);
	EXPECT_EQ(size, 6);
	EXPECT_EQ(tree.Read("file"), "onetwo");
	file.Write("three", 5);
	static_cast<BNode&>(file).Unset();
	EXPECT_EQ(tree.Read("file"), "onetwothree");
	{
		BFile brief(path.c_str(), B_WRITE_ONLY | B_OPEN_AT_END);
		brief.Write("four", 4);
		tree.Remove("file");
		tree.Add("file", Text("another"));
	}
	EXPECT_EQ(tree.Read("file"), "another");

	// What was read ahead is forgotten with the next seek.
	file.SetTo(path.c_str(), B_READ_ONLY);
	char buffer[4];
	ASSERT_EQ(file.Read(buffer, 1), 1);
	tree.Add("file", Text("changed"));
	EXPECT_EQ(file.Seek(0, SEEK_SET), 0);
	EXPECT_EQ(ReadAll(file), "changed");
	// And the end of the file is where it is by then.
	BFile(path.c_str(), B_WRITE_ONLY | B_OPEN_AT_END).Write("!", 1);
	EXPECT_EQ(ReadAll(file), "!");
}

TEST(File, AppendingProgramsLoseNothingOfEachOther)
{
	TempTree tree{{"log", Text()}};
	BFile first(tree.Path("log").c_str(), B_WRITE_ONLY | B_OPEN_AT_END);
	BFile second(tree.Path("log").c_str(), B_WRITE_ONLY | B_OPEN_AT_END);
	for (int i = 0; i < 3; i++) {
		first.Write("a", 1);
		second.Write("b", 1);
		first.Sync();
		second.Sync();
	}
	EXPECT_EQ(tree.Read("log"), "ababab");
}

TEST(File, NeverWaitsForTheOtherEndOfAPipe)
{
	TempTree tree;
	ASSERT_EQ(mkfifo(tree.Path("pipe").c_str(), 0644), 0);
	BFile reader(tree.Path("pipe").c_str(), B_READ_ONLY);
	BFile writer(tree.Path("pipe").c_str(), B_WRITE_ONLY);
	char buffer[8];
	ASSERT_EQ(reader.InitCheck(), B_OK);
	EXPECT_EQ(reader.Read(buffer, 8), B_WOULD_BLOCK);
	EXPECT_EQ(writer.Write("12", 2), 2);
	EXPECT_EQ(reader.Read(buffer, 8), 2);
}

TEST(File, SyncTellsOfAFullDisk)
{
	if (!InMountNamespace())
		return;
	TempTree tree{{"disk", Dir()}};
	MemoryVolume disk(tree.Path("disk"), "size=1m");
	std::string path = tree.Path("disk/file");
	for (size_t chunk : {100, 1024, 4096, 300000}) {
		SCOPED_TRACE(chunk);
		BFile file(path.c_str(), B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
		std::string bytes(chunk, 'x');
		size_t written = 0;
		ssize_t length = 0;
		while (written < (3U << 20) && (length = file.Write(bytes.data(), chunk)) > 0)
			written += length;
		EXPECT_EQ(length, B_DEVICE_FULL);
		EXPECT_EQ(tree.Read("disk/file"), std::string(1 << 20, 'x'));
		if (chunk < 300000) { // and so was gathered
			EXPECT_EQ(file.Write("x", 1), B_DEVICE_FULL);
			EXPECT_EQ(file.Sync(), B_DEVICE_FULL);
			EXPECT_EQ(file.Sync(), B_DEVICE_FULL);
		}
		tree.Remove("disk/file");
	}
	// All of it fits into what is gathered: only Sync() can tell.
	std::string filling((1 << 20) - 4096, 'x');
	tree.Add("disk/filling", Text(filling));
	BFile file(path.c_str(), B_READ_WRITE | B_CREATE_FILE);
	std::string bytes(10000, 'y');
	EXPECT_EQ(file.Write(bytes.data(), bytes.size()), 10000);
	EXPECT_EQ(file.Sync(), B_DEVICE_FULL);
}

TEST(Create, MakesFilesLinksAndFolders)
{
	TempTree tree{{"taken", Text("old")}, {"folder", Dir()}, {"link", Link("taken")}};
	BDirectory top = tree.Folder();
	BFile file;
	EXPECT_EQ(top.CreateFile("taken", &file, true), B_FILE_EXISTS);
	EXPECT_EQ(file.InitCheck(), B_FILE_EXISTS);
	EXPECT_EQ(tree.Read("taken"), "old");
	EXPECT_EQ(top.CreateFile("link", &file), B_OK);
	EXPECT_EQ(file.Write("new", 3), 3);
	EXPECT_EQ(file.Seek(1, SEEK_SET), 1);
	EXPECT_EQ(ReadAll(file), "ew");
	EXPECT_EQ(tree.Read("taken"), "new");
	EXPECT_EQ(top.CreateFile("folder/file", nullptr, true), B_OK);
	EXPECT_EQ(BDirectory().CreateFile("relative", &file), B_NO_INIT);
	EXPECT_EQ(file.InitCheck(), B_NO_INIT);

	BSymLink link;
	EXPECT_EQ(top.CreateSymLink("folder/link", "../ any//text", &link), B_OK);
	EXPECT_EQ(tree.Read("folder/link"), "../ any//text");
	EXPECT_EQ(top.CreateSymLink("link", "x", &link), B_FILE_EXISTS);
	EXPECT_NE(link.InitCheck(), B_OK);

	BDirectory folder;
	EXPECT_EQ(top.CreateDirectory("folder/new", &folder), B_OK);
	EXPECT_EQ(folder.CreateDirectory("newer", &folder), B_OK);
	EXPECT_EQ(top.CreateDirectory("taken", &folder), B_FILE_EXISTS);
	EXPECT_EQ(folder.InitCheck(), B_FILE_EXISTS);
	EXPECT_EQ(tree.List("folder/new"), Names({"newer"}));
	EXPECT_EQ(tree.List("folder"), Names({"file", "link", "new"}));
	EXPECT_EQ(tree.List(), Names({"folder", "link", "taken"}));
}
