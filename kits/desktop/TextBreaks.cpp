// SPDX-License-Identifier: MIT

// Where characters and words of a text end, and where they lie on a line.

#include <desktop/Text.h>

#include "DecodedText.h"
#include "FontCache.h"

#include <desktop/GuiThread.h>

#include <QTextBoundaryFinder>
#include <QTextLayout>

#include <algorithm>
#include <optional>

namespace desktop {

namespace {

// No character that anybody can read has more bytes.
constexpr size_t kWindow = 256;

bool
IsAscii(char byte)
{
	return static_cast<unsigned char>(byte) < 0x80;
}

bool
IsContinuation(char byte)
{
	return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

} // namespace

size_t
CharacterEnd(std::string_view text, size_t offset)
{
	if (offset >= text.size())
		return text.size();
	size_t length = std::min(kWindow, text.size() - offset);
	while (length > kWindow - 4 && offset + length < text.size() &&
		IsContinuation(text[offset + length]))
		length--;
	const DecodedText decoded(text.substr(offset, length));
	QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, decoded.text);
	const auto next = finder.toNextBoundary();
	return offset + (next > 0 ? decoded.offsets[size_t(next)] : length);
}

size_t
CharacterBegin(std::string_view text, size_t offset)
{
	offset = std::min(offset, text.size());
	if (offset == 0)
		return 0;
	// From a place where a character surely begins, forward: so carets stop at the same places
	// whatever way they come.
	const size_t nearest = offset - std::min(kWindow, offset);
	size_t begin = offset - 1;
	while (begin > nearest && !IsAscii(text[begin]))
		begin--;
	while (begin > 0 && begin < offset - 1 && IsContinuation(text[begin]))
		begin++;
	for (size_t end = begin; (end = CharacterEnd(text, begin)) < offset;)
		begin = end;
	return begin;
}

TextSpan
WordAt(std::string_view text, size_t offset)
{
	const DecodedText decoded(text);
	if (decoded.text.isEmpty())
		return {0, text.size()};
	const auto after = std::upper_bound(decoded.offsets.begin(), decoded.offsets.end(), offset);
	const qsizetype at =
		std::clamp<qsizetype>(after - decoded.offsets.begin() - 1, 0, decoded.text.size() - 1);
	QTextBoundaryFinder finder(QTextBoundaryFinder::Word, decoded.text);
	finder.setPosition(at);
	const qsizetype begin = finder.isAtBoundary() ? at : finder.toPreviousBoundary();
	finder.setPosition(at);
	const qsizetype end = finder.toNextBoundary();
	return {decoded.offsets[size_t(std::max<qsizetype>(begin, 0))],
		end > 0 ? decoded.offsets[size_t(end)] : text.size()};
}

namespace {

// Qt's places of carets are meant for moving about where text changes its direction: not for the
// edges of the characters there.
bool
ChangesDirection(const QString& text)
{
	return std::any_of(text.begin(), text.end(),
		[](QChar c) { return c.direction() == QChar::DirR || c.direction() == QChar::DirAL; });
}

// The edges of a character's glyphs; none for one that is drawn as part of another's.
std::optional<TextCluster>
GlyphEdges(const QTextLayout& layout, int begin, int end)
{
	std::optional<TextCluster> edges;
	for (const QGlyphRun& run : layout.glyphRuns(begin, end - begin)) {
		const QList<QPointF> positions = run.positions();
		const QList<QPointF> advances = run.rawFont().advancesForGlyphIndexes(run.glyphIndexes());
		for (qsizetype i = 0; i < positions.size(); i++) {
			const float left = float(positions[i].x());
			const float right = left + float(advances[i].x());
			if (!edges)
				edges = {0, 0, left, right};
			edges->lead = std::min(edges->lead, left);
			edges->trail = std::max(edges->trail, right);
		}
		if (edges && run.isRightToLeft())
			std::swap(edges->lead, edges->trail);
	}
	return edges;
}

} // namespace

std::vector<TextCluster>
FontCache::Clusters(const FontSpec& spec, std::string_view text)
{
	std::vector<TextCluster> clusters;
	const DecodedText decoded(text);
	QTextLayout layout(decoded.text, FaceFor(spec).font);
	layout.setTextOption(OneLine());
	layout.beginLayout();
	QTextLine line = layout.createLine();
	if (line.isValid())
		line.setLineWidth(kEndlessLine);
	layout.endLayout();
	if (!line.isValid())
		return clusters;
	const bool changes = ChangesDirection(decoded.text);
	QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, decoded.text);
	for (int begin = 0; begin < decoded.text.size();) {
		const int end = int(finder.toNextBoundary());
		if (end <= begin)
			break;
		TextCluster cluster = {0, 0, 0, 0};
		if (!changes) {
			cluster.lead = float(line.cursorToX(begin, QTextLine::Leading));
			cluster.trail = float(line.cursorToX(begin, QTextLine::Trailing));
		} else if (const auto edges = GlyphEdges(layout, begin, end))
			cluster = *edges;
		else if (!clusters.empty())
			cluster.lead = cluster.trail = clusters.back().trail;
		cluster.begin = decoded.offsets[size_t(begin)];
		cluster.end = decoded.offsets[size_t(end)];
		clusters.push_back(cluster);
		begin = end;
	}
	return clusters;
}

std::vector<TextCluster>
ClustersOf(const FontSpec& font, std::string_view text)
{
	if (text.empty() || !WaitForFonts())
		return {};
	return FontCache::Current().Clusters(font, text);
}

} // namespace desktop
