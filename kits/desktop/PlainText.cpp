// SPDX-License-Identifier: MIT

#include "PlainText.h"

namespace desktop {

static constexpr float kUnknown = -1e9f;

void
PlainText::Learn(std::string_view text, const QList<QGlyphRun>& runs, qreal width)
{
	if (runs.size() != 1 || runs[0].glyphIndexes().size() != qsizetype(text.size()))
		return;
	const QGlyphRun& run = runs[0];
	const QList<quint32> glyphs = run.glyphIndexes();
	const QList<QPointF> positions = run.positions();
	if (fAdvances.empty()) {
		fAdvances.assign(kCount * (kCount + 1), kUnknown);
		fFont = run.rawFont();
		fBounds = run.boundingRect();
	}
	if (run.rawFont() != fFont || run.isRightToLeft())
		return;
	for (qsizetype i = 0; i < glyphs.size(); i++) {
		const size_t character = uint8(text[size_t(i)]) - kFirst;
		if (character >= kCount || glyphs[i] == 0 || positions[i].y() != 0)
			return;
	}
	for (qsizetype i = 0; i < glyphs.size(); i++) {
		const size_t character = uint8(text[size_t(i)]) - kFirst;
		const bool last = i + 1 == glyphs.size();
		const size_t next = last ? kCount : uint8(text[size_t(i) + 1]) - kFirst;
		const qreal end = last ? width : positions[i + 1].x();
		if (fGlyphs[character] != 0 && fGlyphs[character] != glyphs[i])
			fStrange[character] = true;
		fGlyphs[character] = glyphs[i];
		Advance(character, next) = float(end - positions[i].x());
	}
}

bool
PlainText::Compose(std::string_view text, QGlyphRun* run, float* width) const
{
	if (fAdvances.empty() || text.empty())
		return false;
	QList<quint32> glyphs(qsizetype(text.size()));
	QList<QPointF> positions(qsizetype(text.size()));
	qreal x = 0;
	for (size_t i = 0; i < text.size(); i++) {
		const size_t character = uint8(text[i]) - kFirst;
		const size_t next = i + 1 < text.size() ? uint8(text[i + 1]) - kFirst : kCount;
		if (character >= kCount || next > kCount || fStrange[character])
			return false;
		const float advance = fAdvances[character * (kCount + 1) + next];
		if (advance == kUnknown)
			return false;
		glyphs[qsizetype(i)] = fGlyphs[character];
		positions[qsizetype(i)] = QPointF(x, 0);
		x += qreal(advance);
	}
	run->setRawFont(fFont);
	run->setGlyphIndexes(glyphs);
	run->setPositions(positions);
	run->setBoundingRect(QRectF(0, fBounds.top(), x, fBounds.height()));
	*width = float(x);
	return true;
}

} // namespace desktop
