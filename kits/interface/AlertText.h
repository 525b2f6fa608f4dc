// SPDX-License-Identifier: MIT

// Breaks the text of an alert into lines.

#pragma once

#include <support/SupportDefs.h>

#include <functional>
#include <string>
#include <vector>

namespace BPrivate {

// Text between tabs; `x` is where it starts on its line.
struct TextPiece {
	float x;
	std::string text;
};
using TextLine = std::vector<TextPiece>;

using TextMeasure = std::function<float(const char* text, int32 length)>;

// Keeps newlines and tabs, breaks at spaces, and inside a word that is wider than a line alone.
// Tabs go to the next multiple of `tabWidth`.
std::vector<TextLine> BreakText(
	const std::string& text, float width, float tabWidth, const TextMeasure& measure);

float WidestLine(const std::vector<TextLine>& lines, const TextMeasure& measure);

} // namespace BPrivate
