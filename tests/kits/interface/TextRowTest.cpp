// SPDX-License-Identifier: MIT

// Rows of text: where their characters lie, and where long ones are broken.

#include <interface/TextRow.h>
#include <interface/TextRows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using BPrivate::TextModel;
using BPrivate::TextRow;
using BPrivate::TextRows;

namespace {

constexpr const char* kHebrew = "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d"; // four letters

std::string
RandomBytes(std::mt19937& random, size_t length)
{
	static const std::vector<std::string> kPieces = {"a", "W", " ", "x", "/", "\n", "\t", "\xff",
		"\x01", "\xc3\xa4", "\xe6\x97\xa5", kHebrew, "e\xcc\x81", "\xf0\x9f\x98\x80",
		"\xe2\x80\xae"};
	std::string text;
	while (text.size() < length)
		text += kPieces[random() % kPieces.size()];
	return text;
}

TextRows
Broken(const std::string& text, float width)
{
	TextRows rows;
	rows.SetRules(*be_plain_font, width, false, text);
	return rows;
}

} // namespace

TEST(TextRow, CharactersLieWhereTheyAreDrawn)
{
	for (const char* text :
		{"file.txt", "W\xc3\xa4lder/fi", "\xff\xfe odd", "\xe6\x97\xa5\xe6\x9c\xac"}) {
		const TextRow row(*be_plain_font, text);
		EXPECT_NEAR(row.Width(), be_plain_font->StringWidth(text), 0.01) << text;
		EXPECT_EQ(row.CaretAt(0), 0);
		EXPECT_EQ(row.CaretAt(strlen(text)), row.Width());
	}
	const TextRow row(*be_plain_font, "iiWW");
	EXPECT_NEAR(row.CaretAt(2), be_plain_font->StringWidth("ii"), 0.01);
	EXPECT_EQ(row.OffsetAt(row.CaretAt(2) + 1), 2u);
	EXPECT_EQ(row.OffsetAt(row.CaretAt(3) - 1), 3u);
	EXPECT_EQ(row.OffsetAt(-50), 0u);
	EXPECT_EQ(row.OffsetAt(5000), 4u);
}

TEST(TextRow, TextToTheLeftHasItsCaretsFromRightToLeft)
{
	const std::string text = std::string("ab") + kHebrew + "c";
	const TextRow row(*be_plain_font, text);
	EXPECT_NEAR(row.Width(), be_plain_font->StringWidth(text.c_str()), 0.01);
	for (size_t at = 2; at < 8; at += 2)
		EXPECT_GT(row.CaretAt(at), row.CaretAt(at + 2)) << at;
	// The first two letters are the rightmost, and one stretch.
	const auto spans = row.Spans(2, 6);
	ASSERT_EQ(spans.size(), 1u);
	EXPECT_NEAR(spans[0].right, row.CaretAt(2), 0.01);
	EXPECT_LT(spans[0].left, spans[0].right);
	// From a Latin letter into them: two stretches.
	EXPECT_EQ(row.Spans(1, 4).size(), 2u);
	EXPECT_EQ(row.OffsetAt(row.CaretAt(4) + 1), 4u);
}

TEST(TextRow, TabsReachTheNextStopAndLongRowsHaveNoSeams)
{
	EXPECT_EQ(TextRow(*be_plain_font, "\t").Width(), TextRow(*be_plain_font, "a\t").Width());
	EXPECT_EQ(TextRow(*be_plain_font, "\t\t").Width(), 2 * TextRow(*be_plain_font, "\t").Width());
	std::string longText;
	for (int i = 0; i < 400; i++)
		longText += "folder/";
	const TextRow row(*be_plain_font, longText);
	EXPECT_NEAR(row.Width(), 400 * be_plain_font->StringWidth("folder/"), 400 * 0.5);
	float last = -1;
	for (const desktop::TextCluster& cluster : row.Clusters()) {
		EXPECT_EQ(cluster.end, cluster.begin + 1);
		EXPECT_GE(cluster.lead, last);
		last = cluster.lead;
	}
	EXPECT_EQ(row.Clusters().size(), longText.size());
}

TEST(TextRow, ClustersCoverAnyBytesWithoutGap)
{
	std::mt19937 random(3);
	for (int i = 0; i < 300; i++) {
		const std::string text = RandomBytes(random, random() % 60);
		const TextRow row(*be_plain_font, text);
		size_t end = 0;
		for (const desktop::TextCluster& cluster : row.Clusters()) {
			ASSERT_EQ(cluster.begin, end);
			ASSERT_GT(cluster.end, end);
			end = cluster.end;
		}
		ASSERT_EQ(end, text.size());
		if (text.find('\t') == std::string::npos) {
			ASSERT_NEAR(row.Width(), be_plain_font->StringWidth(text.c_str()), 0.1);
		}
	}
}

TEST(TextRows, BreakAtSpacesAndInsideWordsThatAreTooWide)
{
	const std::string text = "some words to break\nWWWWWWWWWWWWWWWWWWWW\n";
	const TextRows rows = Broken(text, 60);
	EXPECT_GT(rows.Count(), 6);
	size_t expected = 0;
	for (int32 i = 0; i < rows.Count(); i++) {
		const TextRows::Row& row = rows.At(i);
		ASSERT_EQ(row.begin, expected);
		expected = row.end + (row.broken ? 0 : 1);
		std::string seen = text.substr(row.begin, row.end - row.begin);
		if (row.broken && row.end < 19) {
			EXPECT_EQ(seen.back(), ' ');
		}
		while (!seen.empty() && seen.back() == ' ')
			seen.pop_back();
		EXPECT_LE(TextRow(*be_plain_font, seen).Width(), 60);
		EXPECT_EQ(rows.IndexOf(row.begin), i);
	}
	EXPECT_EQ(expected, text.size() + 1);
	EXPECT_EQ(Broken(text, 0).Count(), 3);
	EXPECT_GT(Broken("WWW", 1).Count(), 2); // never less than a character in a row
}

TEST(TextRows, AChangedTextIsBrokenAsIfItWereNew)
{
	std::mt19937 random(5);
	for (float width : {0.0f, 50.0f}) {
		TextModel model;
		model.SetText(RandomBytes(random, 300));
		TextRows rows = Broken(model.Text(), width);
		for (int i = 0; i < 400; i++) {
			const size_t begin = random() % (model.Length() + 1);
			rows.TextChanged(model.Text(),
				model.Replace(begin, begin + random() % 12, RandomBytes(random, random() % 12),
					TextModel::Kind::kOther));
			const TextRows fresh = Broken(model.Text(), width);
			ASSERT_EQ(rows.Count(), fresh.Count());
			for (int32 row = 0; row < fresh.Count(); row++)
				ASSERT_EQ(rows.At(row), fresh.At(row)) << i << " row " << row;
		}
	}
}
