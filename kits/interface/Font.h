// SPDX-License-Identifier: MIT

// BFont: a face and a size; measures text.

#pragma once

#include <support/SupportDefs.h>

// Logical pixels, never negative.
struct font_height {
	float ascent;
	float descent;
	float leading;
};

enum : uint32 {
	B_FONT_FAMILY_AND_STYLE = 0x01,
	B_FONT_SIZE = 0x02,
	B_FONT_ALL = 0x1ff,
};

// A value; copies are cheap. Measuring may be done in any thread; text is UTF-8 of any quality.
class BFont {
public:
	enum Face : uint8 { kPlain, kBold, kFixed };

	BFont() = default; // be_plain_font
	BFont(Face face, float size) : fFace(face), fSize(size) {}

	Face FontFace() const { return fFace; }
	float Size() const { return fSize; }
	void SetSize(float size) { fSize = size; }
	void GetHeight(font_height* height) const;
	float StringWidth(const char* text) const; // NULL measures 0
	float StringWidth(const char* text, int32 length) const;

private:
	Face fFace = kPlain;
	float fSize = 12.0f;
};

extern const BFont* be_plain_font;
extern const BFont* be_bold_font;
extern const BFont* be_fixed_font;
