// SPDX-License-Identifier: MIT

#include <interface/AlertText.h>

#include <gtest/gtest.h>

namespace {

// With letters one wide, as lines of pieces "x:text" joined by "|".
std::vector<std::string>
Lines(const std::string& text, float width)
{
	auto measure = [](const char* bytes, int32 length) {
		float letters = 0;
		for (int32 i = 0; i < length; i++)
			letters += (bytes[i] & 0xc0) != 0x80 ? 1.0f : 0.0f;
		return letters;
	};
	std::vector<std::string> lines;
	for (const BPrivate::TextLine& line : BPrivate::BreakText(text, width, 8, measure)) {
		std::string joined;
		for (const BPrivate::TextPiece& piece : line) {
			joined += joined.empty() ? "" : "|";
			joined += std::to_string(static_cast<int>(piece.x)) + ":" + piece.text;
		}
		lines.push_back(joined);
	}
	return lines;
}

using Strings = std::vector<std::string>;

} // namespace

TEST(AlertText, BreaksAtSpacesAndKeepsNewlines)
{
	EXPECT_EQ(Lines("one two three", 8), (Strings{"0:one two", "0:three"}));
	EXPECT_EQ(Lines("one\n\n  two ", 8), (Strings{"0:one", "0:", "0:  two"}));
	EXPECT_EQ(Lines("", 8), (Strings{"0:"}));
}

TEST(AlertText, TabsGoToTheNextStop)
{
	EXPECT_EQ(Lines("a\tb\n\tc", 40), (Strings{"0:a|8:b", "0:|8:c"}));
	EXPECT_EQ(Lines("12345678\tb", 40), (Strings{"0:12345678|16:b"}));
}

TEST(AlertText, LongWordsBreakBetweenLetters)
{
	EXPECT_EQ(Lines("x äöüßabc", 4), (Strings{"0:x", "0:äöüß", "0:abc"}));
	// Even when not one letter fits.
	EXPECT_EQ(Lines("ab", 0), (Strings{"0:a", "0:b"}));
}
