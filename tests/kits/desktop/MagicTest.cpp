// SPDX-License-Identifier: MIT

// Types by content: the same as GIO's, however the bytes are; and damaged rules do no harm.

#include <desktop/Magic.h>
#include <desktop/Types.h>

#include <gio/gio.h>

#include "tests/support/LongRun.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace {

std::string
Database()
{
	std::ifstream file("/usr/share/mime/mime.cache", std::ios::binary);
	return {std::istreambuf_iterator<char>(file), {}};
}

std::string
TypeByGio(const std::string& bytes)
{
	char* type = g_content_type_guess(
		nullptr, reinterpret_cast<const guchar*>(bytes.data()), bytes.size(), nullptr);
	const std::string text = type;
	g_free(type);
	return text;
}

// Bytes as they begin files, and what is made of them by chance.
class Samples {
public:
	std::string Next()
	{
		static const char* const kStarts[] = {"#!/bin/sh\n", "<?xml version=\"1.0\"?>", "%PDF-1.4",
			"<html>",
			"\x7f"
			"ELF\2\1\1",
			"GIF89a", "PK\3\4", "\x1f\x8b\x08", "\xff\xd8\xff\xe0", "RIFF....WEBPVP8 ",
			"From: ", "#include <x>", "import os\n", "BM", "MZ", "\xca\xfe\xba\xbe"};
		std::string bytes = fRandom() % 4 != 0 ? kStarts[fRandom() % std::size(kStarts)] : "";
		if (fRandom() % 2 == 0) {
			// A piece of the rules themselves, which hold what is looked for.
			const size_t at = fRandom() % fDatabase.size();
			bytes.insert(fRandom() % (bytes.size() + 1), fDatabase.substr(at, fRandom() % 40));
		}
		const size_t length = fRandom() % 5 == 0 ? fRandom() % 4000 : fRandom() % 300;
		const int kind = static_cast<int>(fRandom() % 3); // zeros, text, anything
		while (bytes.size() < length)
			bytes += kind == 0
				? '\0'
				: static_cast<char>(kind == 1 ? " \n\tabc<!-\b\x7f"[fRandom() % 11] : fRandom());
		if (fRandom() % 3 == 0)
			bytes.insert(0, std::string(fRandom() % 300, '\0'));
		return bytes;
	}

private:
	std::mt19937 fRandom{17};
	const std::string fDatabase = Database();
};

} // namespace

TEST(Magic, FindsTheTypesThatGioFinds)
{
	ASSERT_FALSE(Database().empty());
	Samples samples;
	int known = 0;
	for (int i = 0; i < Rounds(3000, 100000); i++) {
		const std::string bytes = samples.Next();
		const std::string type = desktop::TypeByContent(bytes.data(), bytes.size());
		ASSERT_EQ(type, TypeByGio(bytes)) << testing::PrintToString(bytes);
		known += type != "text/plain" && type != desktop::kUnknownType;
	}
	EXPECT_GT(known, 500);
}

TEST(Magic, DamagedRulesDoNoHarm)
{
	EXPECT_TRUE(desktop::Magic({"", "x", std::string("\0\2\0\0", 4)}).IsEmpty());
	const std::string whole = Database();
	std::mt19937 random(18);
	Samples samples;
	for (int i = 0; i < Rounds(300, 10000); i++) {
		std::string file =
			whole.substr(0, random() % 8 == 0 ? 4 + random() % whole.size() : whole.npos);
		for (uint32_t changes = random() % 200; changes > 0; changes--) {
			// Where the rules are found, and anywhere.
			const size_t at = 4 + random() % (random() % 2 == 0 ? 40 : file.size());
			if (at < file.size())
				file[at] = static_cast<char>(random() % 3 == 0 ? random() : random() % 4);
		}
		const desktop::Magic magic({file, whole});
		magic.TypeOf(samples.Next());
	}
	SUCCEED();
}
