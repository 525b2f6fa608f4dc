// SPDX-License-Identifier: MIT

// Feeds texts of other programs to the readers of lists of files and of the clipboard. Every path
// that is taken must be absolute, without NUL, and make the round trip; text must become UTF-8
// that stays as it is.
//
//	uri_list_fuzz CORPUS -max_total_time=60

#include <storage/UriList.h>

#include <cstdlib>

namespace {

using namespace BPrivate;

void
Require(bool promise)
{
	if (!promise)
		std::abort();
}

void
Check(const std::vector<std::string>& paths)
{
	for (const std::string& path : paths) {
		Require(!path.empty() && path[0] == '/' && path.find('\0') == path.npos);
		std::string again;
		Require(PathOfUri(UriOf(path), &again) && again == path);
	}
	Require(ReadUriList(MakeUriList(paths)) == paths);
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
	const std::string text(reinterpret_cast<const char*>(data), size);
	Check(ReadUriList(text));
	// Most inputs would not begin as the reader wants it.
	for (const std::string& copied : {text, "cut\n" + text, "copy\r\n" + text}) {
		CopiedFiles files, again;
		if (!ReadCopiedFiles(copied, &files))
			continue;
		Check(files.paths);
		Require(ReadCopiedFiles(MakeCopiedFiles(files), &again));
		Require(again.cut == files.cut && again.paths == files.paths);
	}
	ReadCutSelection(text);
	const std::string utf8 = MakeUtf8(text);
	Require(MakeUtf8(utf8) == utf8);
	// As a path: any bytes but NUL.
	if (text.find('\0') == text.npos)
		Check({"/" + text});
	return 0;
}
