// SPDX-License-Identifier: MIT

// Type, description and icon of many names with many suffixes, as a list's rows ask for them, in
// a fresh process: what is read and decoded only once is in the figure.

#include "bench/Figure.h"

#include <desktop/GuiThread.h>
#include <desktop/Types.h>
#include <interface/Bitmap.h>
#include <kernel/OS.h>
#include <storage/Mime.h>

#include <cstdlib>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

// No display is needed; painted icons only want the desktop's fonts to be up.
[[maybe_unused]] static const int sOffscreen = setenv("QT_QPA_PLATFORM", "offscreen", 1);

namespace {

constexpr int kNames = 100000;
constexpr double kLimit = 100; // ms
const char* const kSuffixes[] = {"txt", "jpg", "png", "gif", "mp3", "ogg", "flac", "wav", "mp4",
	"mkv", "avi", "mov", "zip", "tar", "gz", "tar.gz", "xz", "7z", "pdf", "doc", "odt", "xls",
	"html", "css", "js", "py", "c", "h", "cpp", "sh", "xml", "json", "svg", "iso", "deb", "rpm",
	"bmp", "tiff", "md", "log"};

struct Row {
	BBitmap icon{BRect(0, 0, B_MINI_ICON - 1, B_MINI_ICON - 1), B_CMAP8};
	char kind[B_MIME_TYPE_LENGTH] = "";
};

double
Milliseconds(bigtime_t start)
{
	return static_cast<double>(system_time() - start) / 1000;
}

void
SetUp(Row& row, const std::string& name)
{
	const BMimeType type(desktop::TypeByName(name.c_str()).c_str());
	type.GetShortDescription(row.kind);
	type.GetIcon(&row.icon, B_MINI_ICON);
}

} // namespace

int
main(int, char**)
{
	desktop::WaitForDesktop();
	std::vector<std::string> names;
	for (int i = 0; i < kNames; i++)
		names.push_back("file " + std::to_string(i) + "." + kSuffixes[i % std::size(kSuffixes)]);
	std::vector<Row> rows(kNames);

	const bigtime_t start = system_time();
	for (size_t i = 0; i < std::size(kSuffixes); i++)
		SetUp(rows[i], names[i]);
	const double first = Milliseconds(start);
	for (size_t i = std::size(kSuffixes); i < kNames; i++)
		SetUp(rows[i], names[i]);
	const double all = Milliseconds(start);

	std::set<std::string> types;
	for (size_t i = 0; i < std::size(kSuffixes); i++)
		types.insert(desktop::TypeByName(names[i].c_str()));
	std::set<const void*> bitmaps;
	bool described = true;
	for (const Row& row : rows) {
		bitmaps.insert(row.icon.Bits());
		described &= row.kind[0] != '\0';
	}
	char beside[80];
	std::snprintf(beside, sizeof beside, "the first of each suffix %.1f", first);
	bool good =
		PrintFigure("type, text, icon of 100,000 names", all, "ms", Bound::kAtMost, kLimit, beside);
	std::snprintf(beside, sizeof beside, "one for each type, %s",
		described ? "all with text" : "but not all have a text");
	good &= PrintFigure("  bitmaps behind these icons", static_cast<double>(bitmaps.size()), "",
		Bound::kAtMost, static_cast<double>(types.size()), beside);
	return good && described ? 0 : 1;
}
