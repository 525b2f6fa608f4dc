// SPDX-License-Identifier: MIT

// What the files of a type begin with: the rules in the compiled files ("mime.cache") of the shared
// MIME database. GIO answers from the same rules, but takes ten times as long.
//
// Read only once made; any thread.

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

class Magic {
public:
	// The contents of such files, the most important first. Damaged ones lead to wrong types, never
	// outside of them; those in a format that is not known are left out.
	explicit Magic(std::vector<std::string> files);

	bool IsEmpty() const { return fFiles.empty(); }

	// Of the rules that fit the bytes, the type of the one with the highest priority; or null. Good
	// as long as this object.
	const char* TypeOf(std::string_view start) const;

private:
	std::vector<std::string> fFiles;
};

} // namespace desktop
