// SPDX-License-Identifier: MIT

// Content types, their descriptions and icons, from the shared MIME database and the desktop's
// icon theme. Types are written in lower case here, as the database has them.
//
// Any thread; nothing is loaded before it is asked for. Nothing waits for the GUI thread, but icons
// that have to be painted wait for the desktop's start.

#pragma once

#include <support/SupportDefs.h>

#include <string>
#include <vector>

namespace desktop {

constexpr const char* kUnknownType = "application/octet-stream";
constexpr const char* kFolderType = "inode/directory";
constexpr const char* kLinkType = "inode/symlink";
// Not in the database: programs ask for it where the target of a link is not to be had.
constexpr const char* kBrokenLinkType = "application/x-vnd.be-symlink";

// How many leading bytes of a file are worth reading for TypeByContent().
constexpr size_t kTypeContentLength = 4096;

// Of a file's own name, without folders. Empty when the name says nothing. 0.2 us.
std::string TypeByName(const char* name);
// Of a file whose name says nothing. kUnknownType when the bytes say nothing either.
std::string TypeByContent(const void* start, size_t length);

// In the user's language; empty for types that the database does not know.
std::string TypeDescription(const std::string& type);

// Rows from top to bottom without gaps, 0xAARRGGBB, not premultiplied.
struct IconPixels {
	int32 size = 0; // columns and rows
	std::vector<uint32> pixels;
};

// From the theme, else drawn by us; there is one for every type. `pixels`: the columns and rows
// in which a screen shows an icon of this size, which need not be as many. Reads files and
// decodes pictures each time: callers keep the result.
IconPixels LoadTypeIcon(const std::string& type, int32 size, int32 pixels);
inline IconPixels
LoadTypeIcon(const std::string& type, int32 size)
{
	return LoadTypeIcon(type, size, size);
}
// Whether the theme has an icon for just this type, not only for those like it.
bool HasOwnIcon(const std::string& type);

} // namespace desktop
