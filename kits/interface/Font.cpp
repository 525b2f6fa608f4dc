// SPDX-License-Identifier: MIT

// Fonts measure with the desktop's faces.

#include <interface/Font.h>

#include <desktop/Canvas.h>

#include <cstring>

static const BFont sPlainFont(BFont::kPlain, 12.0f);
static const BFont sBoldFont(BFont::kBold, 12.0f);
static const BFont sFixedFont(BFont::kFixed, 12.0f);

const BFont* be_plain_font = &sPlainFont;
const BFont* be_bold_font = &sBoldFont;
const BFont* be_fixed_font = &sFixedFont;

static desktop::FontSpec
SpecOf(const BFont& font)
{
	desktop::FontFace face = desktop::FontFace::kPlain;
	if (font.FontFace() == BFont::kBold)
		face = desktop::FontFace::kBold;
	else if (font.FontFace() == BFont::kFixed)
		face = desktop::FontFace::kFixed;
	return {face, font.Size()};
}

void
BFont::GetHeight(font_height* height) const
{
	desktop::FontHeights heights = desktop::HeightsOf(SpecOf(*this));
	*height = {heights.ascent, heights.descent, heights.leading};
}

float
BFont::StringWidth(const char* text) const
{
	return text == nullptr ? 0.0f : desktop::WidthOf(SpecOf(*this), text, strlen(text));
}

float
BFont::StringWidth(const char* text, int32 length) const
{
	if (text == nullptr || length <= 0)
		return 0.0f;
	return desktop::WidthOf(SpecOf(*this), text, strnlen(text, static_cast<size_t>(length)));
}
