// SPDX-License-Identifier: MIT

#include <interface/TextRow.h>

#include <interface/View.h>

#include <algorithm>
#include <cmath>

namespace BPrivate {

constexpr float kTabWidth = 44;
// Of a piece; short enough that measuring stays quick and drawing remembers its glyphs.
constexpr size_t kMaxPiece = 500;
constexpr float kGlyphOverhang = 20;

// Where to cut a text that is too long for a piece: behind a space or slash, where script and
// direction may change anyway, else between any two characters.
static size_t
PieceLength(std::string_view text)
{
	if (text.size() <= kMaxPiece)
		return text.size();
	const size_t last = text.substr(0, kMaxPiece).find_last_of(" /");
	if (last != std::string_view::npos && last > kMaxPiece / 2)
		return last + 1;
	const size_t begin = desktop::CharacterBegin(text, kMaxPiece);
	return begin > 0 ? begin : kMaxPiece;
}

TextRow::TextRow(const BFont& font, std::string_view text)
{
	const desktop::FontSpec spec{static_cast<desktop::FontFace>(font.FontFace()), font.Size()};
	for (size_t begin = 0; begin < text.size();) {
		if (text[begin] == '\t') {
			const float right = (std::floor(fWidth / kTabWidth) + 1) * kTabWidth;
			fClusters.push_back({begin, begin + 1, fWidth, right});
			fWidth = right;
			begin++;
			continue;
		}
		const size_t length = PieceLength(text.substr(begin, text.find('\t', begin) - begin));
		AddPiece(spec, text.substr(begin, length), begin);
		begin += length;
	}
}

void
TextRow::AddPiece(const desktop::FontSpec& font, std::string_view text, size_t offset)
{
	float width = 0;
	for (desktop::TextCluster cluster : desktop::ClustersOf(font, text)) {
		width = std::max({width, cluster.lead, cluster.trail});
		cluster.begin += offset;
		cluster.end += offset;
		cluster.lead += fWidth;
		cluster.trail += fWidth;
		fClusters.push_back(cluster);
	}
	fPieces.push_back({std::string(text), {fWidth, fWidth + width}});
	fWidth += width;
}

float
TextRow::CaretAt(size_t offset) const
{
	for (const desktop::TextCluster& cluster : fClusters) {
		if (offset < cluster.end)
			return cluster.lead;
	}
	return fClusters.empty() ? 0 : fClusters.back().trail;
}

size_t
TextRow::OffsetAt(float x) const
{
	if (fClusters.empty() || x < 0)
		return 0;
	if (x >= fWidth)
		return fClusters.back().end;
	for (const desktop::TextCluster& cluster : fClusters) {
		const float left = std::min(cluster.lead, cluster.trail);
		const float right = std::max(cluster.lead, cluster.trail);
		if (x < left || x >= right)
			continue;
		const bool leading = std::abs(x - cluster.lead) < std::abs(x - cluster.trail);
		return leading ? cluster.begin : cluster.end;
	}
	return fClusters.back().end;
}

std::vector<TextRow::Span>
TextRow::Spans(size_t begin, size_t end) const
{
	std::vector<Span> spans;
	for (const desktop::TextCluster& cluster : fClusters) {
		if (cluster.end > begin && cluster.begin < end) {
			spans.push_back(
				{std::min(cluster.lead, cluster.trail), std::max(cluster.lead, cluster.trail)});
		}
	}
	std::sort(
		spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.left < b.left; });
	std::vector<Span> joined;
	for (const Span& span : spans) {
		if (!joined.empty() && span.left <= joined.back().right + 0.5f)
			joined.back().right = std::max(joined.back().right, span.right);
		else
			joined.push_back(span);
	}
	return joined;
}

void
TextRow::Draw(BView* view, BPoint baselineLeft, Span visible) const
{
	for (const Piece& piece : fPieces) {
		if (baselineLeft.x + piece.span.right + kGlyphOverhang < visible.left ||
			baselineLeft.x + piece.span.left - kGlyphOverhang > visible.right)
			continue;
		view->DrawString(piece.text.c_str(), static_cast<int32>(piece.text.size()),
			BPoint(baselineLeft.x + piece.span.left, baselineLeft.y));
	}
}

} // namespace BPrivate
