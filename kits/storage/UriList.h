// SPDX-License-Identifier: MIT

// Paths of local files as the texts in which programs hand them to each other, and back.
//
// Paths are absolute and of any bytes but NUL: what is no plain character of a URI is encoded, byte
// by byte. Reading leaves out whatever names no local file for sure (other schemes and hosts,
// malformed codes, NUL bytes, encoded slashes, queries and fragments): better no file than a wrong
// one.
// Pure functions; any thread. Cost: linear in the text.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace BPrivate {

std::string UriOf(std::string_view path);

// False when the URI names no file of this machine. `path` may lead through "." and "..".
bool PathOfUri(std::string_view uri, std::string* path);

// text/uri-list: lines that end in CR LF; when read also in LF or CR, and comments left out.
std::string MakeUriList(const std::vector<std::string>& paths);
std::vector<std::string> ReadUriList(std::string_view text);

// x-special/gnome-copied-files: "cut" or "copy" and the URIs, a line each.
struct CopiedFiles {
	bool cut = false;
	std::vector<std::string> paths;
};
std::string MakeCopiedFiles(const CopiedFiles& files);
bool ReadCopiedFiles(std::string_view text, CopiedFiles* files); // false: neither cut nor copy

// application/x-kde-cutselection, which stands beside a text/uri-list.
constexpr const char* kCutSelectionText = "1";
bool ReadCutSelection(std::string_view text);

// The same text as well-formed UTF-8: bytes that are no text become U+FFFD each.
std::string MakeUtf8(std::string_view text);

} // namespace BPrivate
