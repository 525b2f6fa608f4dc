// SPDX-License-Identifier: MIT

#include <interface/AlertText.h>

#include <algorithm>
#include <cmath>

namespace {

using BPrivate::TextLine;
using BPrivate::TextMeasure;

class Breaker {
public:
	Breaker(float width, float tabWidth, const TextMeasure& measure) :
		fWidth(width), fTabWidth(tabWidth), fMeasure(measure)
	{
		NewLine();
	}

	void NewLine()
	{
		fLines.push_back({{0, ""}});
		fSpaces.clear();
	}

	void Tab()
	{
		fLines.back().back().text += fSpaces;
		fSpaces.clear();
		float x = (std::floor(EndWith("") / fTabWidth) + 1) * fTabWidth;
		if (x >= fWidth)
			NewLine();
		else
			fLines.back().push_back({x, ""});
	}

	// Counts only when something follows on the same line.
	void Space() { fSpaces += ' '; }

	void Word(const std::string& word)
	{
		if (EndWith(fSpaces + word) > fWidth && !IsLineEmpty())
			NewLine();
		if (EndWith(fSpaces + word) <= fWidth) {
			Append(fSpaces + word);
			return;
		}
		Append(fSpaces);
		for (size_t at = 0; at < word.size();) {
			size_t next = at + 1;
			while (next < word.size() && (word[next] & 0xc0) == 0x80)
				next++;
			std::string letter = word.substr(at, next - at);
			if (EndWith(letter) > fWidth && !IsLineEmpty())
				NewLine();
			Append(letter);
			at = next;
		}
	}

	std::vector<TextLine> Take() { return std::move(fLines); }

private:
	bool IsLineEmpty() const { return fLines.back().size() == 1 && fLines.back()[0].text.empty(); }

	float EndWith(const std::string& more) const
	{
		std::string text = fLines.back().back().text + more;
		return fLines.back().back().x + fMeasure(text.c_str(), static_cast<int32>(text.size()));
	}

	void Append(const std::string& text)
	{
		fLines.back().back().text += text;
		fSpaces.clear();
	}

	float fWidth;
	float fTabWidth;
	const TextMeasure& fMeasure;
	std::vector<TextLine> fLines;
	std::string fSpaces; // seen since the last word
};

} // namespace

std::vector<BPrivate::TextLine>
BPrivate::BreakText(
	const std::string& text, float width, float tabWidth, const TextMeasure& measure)
{
	Breaker breaker(width, tabWidth, measure);
	for (size_t at = 0; at < text.size();) {
		size_t end = text.find_first_of(" \t\n", at);
		if (end != at) {
			end = std::min(end, text.size());
			breaker.Word(text.substr(at, end - at));
			at = end;
			continue;
		}
		if (text[at] == '\n')
			breaker.NewLine();
		else if (text[at] == '\t')
			breaker.Tab();
		else
			breaker.Space();
		at++;
	}
	return breaker.Take();
}

float
BPrivate::WidestLine(const std::vector<TextLine>& lines, const TextMeasure& measure)
{
	float widest = 0;
	for (const TextLine& line : lines) {
		const TextPiece& last = line.back();
		float end = last.x + measure(last.text.c_str(), static_cast<int32>(last.text.size()));
		widest = std::max(widest, end);
	}
	return widest;
}
