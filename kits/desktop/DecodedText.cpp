// SPDX-License-Identifier: MIT

#include "DecodedText.h"

#include "FontCache.h"

namespace desktop {

namespace {

// The length of the UTF-8 sequence at `at`; 1 for a byte that begins none.
size_t
SequenceLength(std::string_view bytes, size_t at)
{
	const auto byte = [&](size_t i) {
		return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
	};
	const unsigned lead = byte(at);
	const size_t length = lead >= 0xf0 && lead <= 0xf4 ? 4
		: lead >= 0xe0 && lead <= 0xef                 ? 3
		: lead >= 0xc2 && lead <= 0xdf                 ? 2
													   : 1;
	for (size_t i = 1; i < length; i++) {
		unsigned low = 0x80, high = 0xbf;
		if (i == 1) {
			// Longer than needed, surrogates, and beyond the last code point.
			low = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : low;
			high = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : high;
		}
		if (byte(at + i) < low || byte(at + i) > high)
			return 1;
	}
	return length;
}

} // namespace

DecodedText::DecodedText(std::string_view bytes) : text(DrawableText(bytes))
{
	offsets.reserve(size_t(text.size()) + 1);
	size_t at = 0;
	for (qsizetype i = 0; i < text.size(); i++) {
		offsets.push_back(at);
		const size_t length = SequenceLength(bytes, at);
		if (length == 4) {
			offsets.push_back(offsets.back());
			i++;
		}
		at += length;
	}
	offsets.resize(size_t(text.size()));
	offsets.push_back(bytes.size());
}

} // namespace desktop
