// SPDX-License-Identifier: MIT

// Shaping of plain text in one font without the text engine. Internal to this folder.

#pragma once

#include <support/SupportDefs.h>

#include <QGlyphRun>
#include <QList>

#include <array>
#include <string_view>
#include <vector>

namespace desktop {

// Texts of printable ASCII characters, each of which has one glyph whose advance depends on the
// next character only (kerning). That is learnt from texts which the engine has shaped, so what a
// font joins or replaces in some texts is never composed: a pair seen in one glyph is not learnt,
// and a character seen with two glyphs is not plain.
class PlainText {
public:
	// The engine's result for a text: what it was shaped to, and its width.
	void Learn(std::string_view text, const QList<QGlyphRun>& runs, qreal width);
	// False when a character or pair is not known, or not plain.
	bool Compose(std::string_view text, QGlyphRun* run, float* width) const;

private:
	static constexpr size_t kFirst = 0x20;
	static constexpr size_t kCount = 0x7f - kFirst;

	float& Advance(size_t character, size_t next)
	{
		return fAdvances[character * (kCount + 1) + next];
	}

	QRawFont fFont;
	QRectF fBounds; // of the text seen first; its left and width are not used
	std::array<uint32, kCount> fGlyphs = {}; // 0: not seen yet
	std::array<bool, kCount> fStrange = {};
	std::vector<float> fAdvances; // before each character and before the end; below 0: not known
};

} // namespace desktop
