// SPDX-License-Identifier: MIT

// What a drag or the clipboard holds.

#pragma once

#include <memory>
#include <string>
#include <vector>

namespace desktop {

// The names under which programs hand data to each other.
namespace format {
constexpr const char* kMessage = "application/x-korva-message"; // between programs of these kits
constexpr const char* kUriList = "text/uri-list";
constexpr const char* kCopiedFiles = "x-special/gnome-copied-files";    // clipboard only
constexpr const char* kCutSelection = "application/x-kde-cutselection"; // clipboard only
constexpr const char* kText = "text/plain";                             // UTF-8
} // namespace format

// One and the same contents in several formats.
//
// Shared by threads and never changed. Ours are asked by the GUI thread, and only for what another
// program wants: bytes are made when asked for, without waiting for anybody.
class Content {
public:
	virtual ~Content() = default;
	virtual std::vector<std::string> Formats() const = 0;           // the richest first
	virtual std::string Bytes(const std::string& format) const = 0; // empty for an unknown one
};

} // namespace desktop
