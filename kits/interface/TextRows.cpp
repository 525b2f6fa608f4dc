// SPDX-License-Identifier: MIT

#include <interface/TextRows.h>

#include <algorithm>
#include <cmath>

namespace BPrivate {

void
TextRows::SetRules(const BFont& font, float width, bool singleLine, const std::string& text)
{
	fFont = font;
	fWidth = singleLine ? 0 : width;
	fSingleLine = singleLine;
	fRows = BreakLines(text, 0, text.size());
}

// Breaks after spaces, and inside a word that is wider than a row alone. Spaces may stick out.
void
TextRows::BreakLine(const std::string& text, desktop::TextSpan line, std::vector<Row>& rows) const
{
	const std::string_view whole = std::string_view(text).substr(line.begin, line.end - line.begin);
	size_t begin = 0;
	if (fWidth > 0) {
		const TextRow measured(fFont, whole);
		size_t lastBreak = 0;
		float used = 0;
		float sinceBreak = 0;
		for (const desktop::TextCluster& cluster : measured.Clusters()) {
			const float width = std::abs(cluster.trail - cluster.lead);
			const bool space = whole[cluster.begin] == ' ' || whole[cluster.begin] == '\t';
			if (!space && used + width > fWidth && cluster.begin > begin) {
				const size_t at = lastBreak > begin ? lastBreak : cluster.begin;
				rows.push_back({line.begin + begin, line.begin + at, true});
				used = lastBreak > begin ? sinceBreak : 0;
				begin = at;
			}
			used += width;
			sinceBreak += width;
			if (space) {
				lastBreak = cluster.end;
				sinceBreak = 0;
			}
		}
	}
	rows.push_back({line.begin + begin, line.end, false});
}

// From the begin of a line to the end of one.
std::vector<TextRows::Row>
TextRows::BreakLines(const std::string& text, size_t begin, size_t end) const
{
	std::vector<Row> rows;
	for (;;) {
		size_t lineEnd = fSingleLine ? std::string::npos : text.find('\n', begin);
		lineEnd = std::min(lineEnd, end);
		BreakLine(text, {begin, lineEnd}, rows);
		if (lineEnd == end)
			return rows;
		begin = lineEnd + 1;
	}
}

void
TextRows::TextChanged(const std::string& text, const TextModel::Change& change)
{
	// The rows of all lines that the change touched, in the old text ...
	size_t first = IndexOf(change.begin);
	while (first > 0 && fRows[first - 1].broken)
		first--;
	size_t last = IndexOf(change.begin + change.removed);
	while (fRows[last].broken)
		last++;
	// ... give way to those of the same stretch of the new one.
	const size_t newEnd = fRows[last].end - change.removed + change.inserted;
	const std::vector<Row> rows = BreakLines(text, fRows[first].begin, newEnd);
	for (size_t i = last + 1; i < fRows.size(); i++) {
		fRows[i].begin += change.inserted - change.removed;
		fRows[i].end += change.inserted - change.removed;
	}
	fRows.erase(fRows.begin() + first, fRows.begin() + last + 1);
	fRows.insert(fRows.begin() + first, rows.begin(), rows.end());
}

int32
TextRows::IndexOf(size_t offset) const
{
	const auto after = std::upper_bound(fRows.begin(), fRows.end(), offset,
		[](size_t value, const Row& row) { return value < row.begin; });
	return std::max(0, static_cast<int32>(after - fRows.begin()) - 1);
}

} // namespace BPrivate
