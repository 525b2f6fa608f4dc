// SPDX-License-Identifier: MIT

// A trash whose records, and names, other programs have written: whatever is in a record, it stays
// with its entry when that is renamed in the trash, byte for byte, and goes with it. And what our
// own records say of a path is that path.
//
//	trash_record_fuzz CORPUS -max_total_time=60
//
// An input is a name, a NUL and a record.

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/Trash.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr size_t kLongestName = 200; // with the suffix

std::filesystem::path gTrash;

void
Require(bool promise)
{
	if (!promise)
		std::abort();
}

void
CheckSpelling(const std::string& path)
{
	const std::string record = BPrivate::TrashRecord(path, 0);
	const std::string start = "[Trash Info]\nPath=";
	Require(record.starts_with(start));
	std::string decoded;
	size_t i = start.size();
	for (; i < record.size() && record[i] != '\n'; i++) {
		Require(record[i] > ' ' && record[i] < 127);
		if (record[i] != '%') {
			decoded += record[i];
			continue;
		}
		decoded += static_cast<char>(std::stoi(record.substr(i + 1, 2), nullptr, 16));
		i += 2;
	}
	Require(decoded == path);
	Require(record.substr(i).starts_with("\nDeletionDate=") && record.ends_with('\n'));
}

std::filesystem::path
RecordOf(const std::string& name)
{
	return gTrash / "info" / (name + ".trashinfo");
}

void
CheckTrash(const std::string& name, const std::string& record)
{
	std::ofstream(gTrash / "files" / name) << "x";
	std::ofstream(RecordOf(name), std::ios::binary) << record;
	BEntry entry((gTrash / "files" / name).c_str());
	const std::string other = name + "2";
	Require(entry.Rename(other.c_str()) == B_OK);
	Require(!std::filesystem::exists(RecordOf(name)));
	std::ifstream file(RecordOf(other), std::ios::binary);
	Require(std::string(std::istreambuf_iterator<char>(file), {}) == record);
	Require(entry.Remove() == B_OK);
	Require(std::filesystem::is_empty(gTrash / "files"));
	Require(std::filesystem::is_empty(gTrash / "info"));
}

} // namespace

extern "C" int
LLVMFuzzerInitialize(int*, char***)
{
	static std::string sHome = std::filesystem::temp_directory_path() / "trash-fuzz-XXXXXX";
	Require(mkdtemp(sHome.data()) != nullptr);
	std::atexit([] { std::filesystem::remove_all(sHome); });
	setenv("XDG_DATA_HOME", sHome.c_str(), 1);
	gTrash = sHome + "/Trash";
	std::filesystem::create_directories(gTrash / "files");
	std::filesystem::create_directories(gTrash / "info");
	return 0;
}

extern "C" int
LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
	const std::string input(reinterpret_cast<const char*>(data), size);
	const size_t end = std::min(input.find('\0'), input.size());
	std::string name = input.substr(0, end);
	CheckSpelling("/" + name);
	std::erase(name, '/');
	name.resize(std::min(name.size(), kLongestName));
	if (name.empty() || name == "." || name == "..")
		name = "name";
	CheckTrash(name, input.substr(std::min(end + 1, input.size())));
	return 0;
}
