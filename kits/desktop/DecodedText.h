// SPDX-License-Identifier: MIT

// Text as Qt lays it out, and where each of its units comes from. Internal to this folder.

#pragma once

#include <QString>

#include <cstddef>
#include <string_view>
#include <vector>

namespace desktop {

// What is drawn for these bytes; see DrawableText().
struct DecodedText {
	explicit DecodedText(std::string_view bytes);

	QString text;
	std::vector<size_t> offsets; // the byte of each UTF-16 unit; the last one: the bytes' end
};

} // namespace desktop
