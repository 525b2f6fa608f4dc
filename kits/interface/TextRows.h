// SPDX-License-Identifier: MIT

// The rows of an editor's text: it is broken at newlines, and at the row's width if there is one.

#pragma once

#include <interface/TextModel.h>
#include <interface/TextRow.h>

namespace BPrivate {

class TextRows {
public:
	struct Row {
		bool operator==(const Row&) const = default;

		size_t begin = 0;
		size_t end = 0;      // without the newline
		bool broken = false; // the next row goes on with the same line
	};

	// `width` 0: only newlines break. A single line is never broken; its newlines are drawn as the
	// other odd bytes are. All rows are made anew.
	void SetRules(const BFont& font, float width, bool singleLine, const std::string& text);
	// After a change, with the text that came of it: looks at the changed lines only.
	void TextChanged(const std::string& text, const TextModel::Change& change);

	int32 Count() const { return static_cast<int32>(fRows.size()); }
	const Row& At(int32 index) const { return fRows[index]; }
	// Where the caret at `offset` stands: between two rows of a line it is on the second.
	int32 IndexOf(size_t offset) const;

private:
	void BreakLine(const std::string& text, desktop::TextSpan line, std::vector<Row>& rows) const;
	std::vector<Row> BreakLines(const std::string& text, size_t begin, size_t end) const;

	BFont fFont;
	float fWidth = 0;
	bool fSingleLine = false;
	std::vector<Row> fRows = {Row()}; // never empty
};

} // namespace BPrivate
