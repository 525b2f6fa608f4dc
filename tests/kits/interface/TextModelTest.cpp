// SPDX-License-Identifier: MIT

#include <interface/TextModel.h>

#include <gtest/gtest.h>

#include <random>

using BPrivate::TextModel;
using Kind = TextModel::Kind;

namespace {

constexpr const char* kFamily = "\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x91\xa6"; // two joined people
constexpr const char* kFlag = "\xf0\x9f\x87\xa9\xf0\x9f\x87\xaa";
constexpr const char* kAccented = "e\xcc\x81"; // a letter and its accent

TextModel
Holding(const std::string& text)
{
	TextModel model;
	model.SetText(text);
	return model;
}

void
Type(TextModel& model, const std::string& text)
{
	for (char c : text)
		model.Replace(model.Begin(), model.End(), std::string_view(&c, 1), Kind::kTyping);
}

// Places that a caret takes from the start to the end, and back.
std::vector<size_t>
Stops(const TextModel& model)
{
	std::vector<size_t> stops = {0};
	while (stops.back() < model.Length())
		stops.push_back(model.After(stops.back()));
	std::vector<size_t> back = {model.Length()};
	while (back.back() > 0)
		back.push_back(model.Before(back.back()));
	EXPECT_TRUE(std::equal(stops.begin(), stops.end(), back.rbegin(), back.rend()))
		<< testing::PrintToString(model.Text());
	return stops;
}

// Pieces that make carets stumble.
std::string
RandomText(std::mt19937& random, int pieces)
{
	static const std::vector<std::string> kPieces = {"a", "b ", "\n", "/", kFamily, kFlag,
		kAccented, "\xd7\xa9\xd7\x9c", "\xff", "\xe2\x82", "\xef\xbb\xbf", "\t", "\xc3\xa4",
		"\xed\xa0\x80"};
	std::string text;
	for (int i = 0; i < pieces; i++)
		text += kPieces[random() % kPieces.size()];
	return text;
}

} // namespace

TEST(TextModel, ACaretStopsBetweenCharactersAndBesideEachOddByte)
{
	EXPECT_EQ(Stops(Holding(std::string("x") + kFamily + kFlag + kAccented)),
		(std::vector<size_t>{0, 1, 12, 20, 23}));
	EXPECT_EQ(Stops(Holding("a\xff\xc3\xa4\xe2\x82z")), (std::vector<size_t>{0, 1, 2, 4, 5, 6, 7}));
	EXPECT_EQ(Stops(Holding("a\n\nb")), (std::vector<size_t>{0, 1, 2, 3, 4}));
	// Far into a long line the same holds.
	std::string text(1000, 'x');
	EXPECT_EQ(Holding(text + kFamily).After(1000), 1011u);
	EXPECT_EQ(Holding(text + kFamily).Before(1011), 1000u);
}

TEST(TextModel, CaretsComeFromOneEndOfAnyTextToTheOtherTheSameWayBack)
{
	std::mt19937 random(7);
	for (int i = 0; i < 500; i++) {
		const TextModel model = Holding(RandomText(random, 12));
		const std::vector<size_t> stops = Stops(model);
		ASSERT_EQ(stops.back(), model.Length());
	}
}

TEST(TextModel, WordsEndAtSignsAndMovesSkipTheSpaceBehindThem)
{
	const TextModel model = Holding("/home/some one  file.txt\nnext");
	EXPECT_EQ(model.WordAt(2), (desktop::TextSpan{1, 5}));
	EXPECT_EQ(model.WordAt(5), (desktop::TextSpan{5, 6}));
	EXPECT_EQ(model.WordAt(24), (desktop::TextSpan{21, 24}));
	std::vector<size_t> stops;
	for (size_t at = 0; at < model.Length(); at = model.NextWord(at))
		stops.push_back(at);
	EXPECT_EQ(stops, (std::vector<size_t>{0, 1, 5, 6, 11, 16, 20, 21, 24, 25}));
	stops.clear();
	for (size_t at = model.Length(); at > 0;)
		stops.push_back(at = model.PreviousWord(at));
	EXPECT_EQ(stops, (std::vector<size_t>{25, 24, 21, 20, 16, 11, 6, 5, 1, 0}));
}

TEST(TextModel, TypingIsUndoneAtOnceAndMovingTheCaretParts)
{
	TextModel model;
	Type(model, "abc");
	model.Select(1, 1);
	Type(model, "XY");
	model.Replace(0, 1, {}, Kind::kErasing);
	EXPECT_EQ(model.Text(), "XYbc");
	model.Undo();
	EXPECT_EQ(model.Text(), "aXYbc");
	EXPECT_EQ(model.Caret(), 3u);
	model.Undo();
	EXPECT_EQ(model.Text(), "abc");
	model.Undo();
	EXPECT_EQ(model.Text(), "");
	EXPECT_FALSE(model.Undo());
	while (model.Redo()) {
	}
	EXPECT_EQ(model.Text(), "XYbc");
}

TEST(TextModel, ErasingToEitherSideIsOneStepAndAReplacedSelectionComesBackSelected)
{
	TextModel model = Holding("abcdef");
	for (int i = 0; i < 2; i++)
		model.Replace(2 - i, 3 - i, {}, Kind::kErasing); // to the left: c, b
	model.Undo();
	EXPECT_EQ(model.Text(), "abcdef");
	for (int i = 0; i < 2; i++)
		model.Replace(3, 4, {}, Kind::kErasing); // to the right: d, e
	EXPECT_EQ(model.Text(), "abcf");
	model.Undo();
	EXPECT_EQ(model.Text(), "abcdef");
	model.Select(4, 2);
	Type(model, "-!");
	EXPECT_EQ(model.Text(), "ab-!ef");
	model.Undo();
	EXPECT_EQ(model.Selected(), "cd");
	EXPECT_EQ(model.Caret(), 2u);
}

TEST(TextModel, EveryEditIsUndoneAndDoneAgainToTheByte)
{
	std::mt19937 random(11);
	TextModel model = Holding(RandomText(random, 20));
	std::vector<std::string> states = {model.Text()};
	size_t now = 0;
	for (int i = 0; i < 5000; i++) {
		const unsigned what = random() % 4;
		if (what == 0) {
			EXPECT_EQ(model.Undo().has_value(), now > 0);
			now -= now > 0 ? 1 : 0;
		} else if (what == 1) {
			EXPECT_EQ(model.Redo().has_value(), now + 1 < states.size());
			now += now + 1 < states.size() ? 1 : 0;
		} else if (now < 900) { // steps are kept up to a thousand
			const size_t begin = random() % (model.Length() + 1);
			const std::string with = RandomText(random, static_cast<int>(1 + random() % 3));
			const auto change = model.Replace(begin, begin + random() % 9, with, Kind::kOther);
			std::string expected = states[now];
			expected.replace(change.begin, change.removed, with);
			states.resize(++now);
			states.push_back(expected);
			EXPECT_EQ(model.Caret(), change.begin + with.size());
		}
		ASSERT_EQ(model.Text(), states[now]);
		ASSERT_LE(model.End(), model.Length());
	}
}
