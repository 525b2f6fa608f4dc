// SPDX-License-Identifier: MIT

// Text as an editor needs it: where characters and words end, and where characters lie on a line.
//
// Text is UTF-8 of any quality; a byte that is no text is a character of its own. Offsets are
// bytes. Any thread.

#pragma once

#include <desktop/Canvas.h>

#include <string>
#include <string_view>
#include <vector>

namespace desktop {

struct TextSpan {
	bool operator==(const TextSpan&) const = default;

	size_t begin = 0;
	size_t end = 0;
};

// The end of the character (as the user sees one) that begins at `offset`, and the beginning of the
// one that ends there; both limited to the text. Need no desktop, cost the same anywhere.
size_t CharacterEnd(std::string_view text, size_t offset);
size_t CharacterBegin(std::string_view text, size_t offset);

// The word, or the run of what lies between two words, at `offset`. Needs no desktop.
TextSpan WordAt(std::string_view text, size_t offset);

// One character of a line as Canvas::DrawText draws it. A caret before it stands at `lead`, one
// behind it at `trail`: to the left of that when the character runs to the left.
struct TextCluster {
	size_t begin;
	size_t end;
	float lead; // logical pixels from the line's start
	float trail;
};

// In the order of the text. Waits for the desktop; none when there is none. Cost: the square of the
// text's length, so give pieces of some hundred bytes.
std::vector<TextCluster> ClustersOf(const FontSpec& font, std::string_view text);

// The text that was selected last, here or in another program: what the middle button pastes. Where
// the desktop knows no such selection, it lives in this process only.
void SetPrimaryText(std::string text);
// Empty when there is none. Not in the GUI thread; waits for the program that has it, a second at
// most without a sign of life.
std::string PrimaryText();

} // namespace desktop
