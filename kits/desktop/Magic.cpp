// SPDX-License-Identifier: MIT

#include <desktop/Magic.h>

#include <algorithm>
#include <cstring>

namespace desktop {

namespace {

constexpr int kDeepest = 16; // rules below rules; real ones are three deep

// Where things are in a file, and how large they are.
constexpr uint32_t kMagicList = 24;
constexpr uint32_t kEntrySize = 16;
constexpr uint32_t kRuleSize = 32;

// A file of the format; what lies outside of it reads as zero.
class Reader {
public:
	Reader(std::string_view file, std::string_view start) : fFile(file), fStart(start) {}

	uint32_t Number(uint64_t at) const // big-endian
	{
		if (at + 4 > fFile.size())
			return 0;
		uint32_t number = 0;
		for (uint64_t i = at; i < at + 4; i++)
			number = number << 8 | static_cast<uint8_t>(fFile[i]);
		return number;
	}

	// A rule fits where its value is found, and one of the rules below it fits if it has any.
	bool Fits(uint64_t rule, int depth = 0) const
	{
		if (!IsFound(rule))
			return false;
		const uint32_t children = Number(rule + 24);
		if (children == 0)
			return true;
		return depth < kDeepest && AnyFits(Number(rule + 28), children, depth + 1);
	}

	bool AnyFits(uint64_t first, uint32_t count, int depth = 0) const
	{
		for (; count > 0 && first + kRuleSize <= fFile.size(); count--, first += kRuleSize) {
			if (Fits(first, depth))
				return true;
		}
		return false;
	}

private:
	// At one of the places from the rule's first one on.
	bool IsFound(uint64_t rule) const
	{
		const uint64_t first = Number(rule);
		const uint64_t places = Number(rule + 4);
		const std::string_view value = Text(Number(rule + 16), Number(rule + 12));
		if (places == 0 || first + value.size() > fStart.size() || !value.data())
			return false;
		const std::string_view room = fStart.substr(first, places - 1 + value.size());
		const uint32_t maskAt = Number(rule + 20);
		if (maskAt == 0) {
			if (places == 1)
				return memcmp(room.data(), value.data(), value.size()) == 0;
			return memmem(room.data(), room.size(), value.data(), value.size()) != nullptr;
		}
		const std::string_view mask = Text(maskAt, static_cast<uint32_t>(value.size()));
		for (size_t i = 0; mask.data() && i + value.size() <= room.size(); i++) {
			size_t at = 0;
			while (at < value.size() && ((room[i + at] ^ value[at]) & mask[at]) == 0)
				at++;
			if (at == value.size())
				return true;
		}
		return false;
	}

	// Null when it is not all in the file.
	std::string_view Text(uint64_t at, uint32_t length) const
	{
		return at + length <= fFile.size() ? fFile.substr(at, length) : std::string_view();
	}

	std::string_view fFile;
	std::string_view fStart;
};

bool
IsKnownFormat(const std::string& file)
{
	const std::string_view version = std::string_view(file).substr(0, 4);
	return version == std::string_view("\0\1\0\1", 4) || version == std::string_view("\0\1\0\2", 4);
}

} // namespace

Magic::Magic(std::vector<std::string> files) : fFiles(std::move(files))
{
	std::erase_if(fFiles, [](const std::string& file) { return !IsKnownFormat(file); });
}

const char*
Magic::TypeOf(std::string_view start) const
{
	const char* type = nullptr;
	uint32_t highest = 0;
	for (const std::string& file : fFiles) {
		const Reader reader(file, start);
		const uint64_t list = reader.Number(kMagicList);
		uint64_t entry = reader.Number(list + 8);
		// Highest priority first.
		for (uint32_t left = reader.Number(list);
			 left > 0 && entry + kEntrySize <= file.size() && reader.Number(entry) > highest;
			 left--, entry += kEntrySize) {
			if (!reader.AnyFits(reader.Number(entry + 12), reader.Number(entry + 8)))
				continue;
			const uint32_t name = reader.Number(entry + 4);
			if (name < file.size()) { // a string ends with a zero of its own
				highest = reader.Number(entry);
				type = file.c_str() + name;
			}
			break;
		}
	}
	return type;
}

} // namespace desktop
