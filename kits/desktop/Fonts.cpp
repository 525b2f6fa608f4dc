// SPDX-License-Identifier: MIT

// Fonts and the shaping of text.

#include "FontCache.h"

#include "JobQueue.h"

#include <desktop/GuiThread.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTextLayout>

#include <algorithm>
#include <dlfcn.h>
#include <functional>
#include <mutex>

namespace desktop {

namespace {

constexpr size_t kMaxEntries = 1024;
constexpr size_t kMaxRemembered = 512; // bytes of a string
constexpr size_t kMaxFonts = 16;

thread_local std::unique_ptr<FontCache> tCache;

// Characters that would break the line or turn the order of what follows them.
bool
MustNotBeDrawn(char16_t c)
{
	return c < 0x20 || (c >= 0x7f && c < 0xa0) // control characters
		|| c == 0x2028 || c == 0x2029          // line and paragraph separator
		|| (c >= 0x202a && c <= 0x202e)        // directional embeddings and overrides
		|| (c >= 0x2066 && c <= 0x2069)        // directional isolates
		|| c == 0xfffc;                        // stands for an object, has no glyph
}

} // namespace

QString
DrawableText(std::string_view text)
{
	QString result = QString::fromUtf8(text.data(), qsizetype(text.size()));
	if (text.starts_with("\xef\xbb\xbf")) // which Qt leaves out
		result.prepend(QChar(QChar::ByteOrderMark));
	for (QChar& c : result) {
		if (MustNotBeDrawn(c.unicode()))
			c = QChar::ReplacementCharacter;
	}
	return result;
}

QTextOption
OneLine()
{
	QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
	option.setWrapMode(QTextOption::NoWrap);
	option.setTextDirection(Qt::LeftToRight);
	// Whole-pixel advances look even at scale 1 only.
	static const bool sScaled = qGuiApp->devicePixelRatio() != 1.0;
	option.setUseDesignMetrics(sScaled);
	option.setFlags(QTextOption::IncludeTrailingSpaces);
	return option;
}

namespace {

// Reading the fonts' settings is a third of the time from the desktop's start to the first text,
// and needs no desktop: a thread that must wait for that reads them meanwhile. Qt links the
// library; if this platform has none, nothing happens.
void
ReadFontSettings()
{
	using Read = int (*)();
	if (const auto read = reinterpret_cast<Read>(dlsym(RTLD_DEFAULT, "FcInit")))
		read();
}

} // namespace

bool
WaitForFonts()
{
	static std::once_flag sRead;
	if (!DesktopIsUp())
		std::call_once(sRead, ReadFontSettings);
	return WaitForDesktop();
}

size_t
FontCache::KeyHash::operator()(const Key& key) const
{
	size_t hash = std::hash<std::string_view>()(key.text);
	hash = hash * 31 + size_t(key.spec.face);
	hash = hash * 31 + std::hash<float>()(key.spec.size);
	return hash * 31 + std::hash<double>()(key.scale);
}

FontCache&
FontCache::Current()
{
	if (!tCache)
		tCache = std::make_unique<FontCache>();
	return *tCache;
}

void
FontCache::ForgetCurrent()
{
	tCache.reset();
}

FontCache::Face&
FontCache::FaceFor(const FontSpec& spec)
{
	for (Face& face : fFaces) {
		if (face.spec == spec)
			return face;
	}
	if (fFaces.size() == kMaxFonts)
		fFaces.clear();
	const bool fixed = spec.face == FontFace::kFixed;
	QFont font(fixed ? QStringLiteral("monospace") : QStringLiteral("sans"));
	font.setStyleHint(fixed ? QFont::Monospace : QFont::SansSerif);
	font.setPixelSize(std::clamp(qRound(spec.size), 1, 1000));
	if (spec.face == FontFace::kBold)
		font.setBold(true);
	const QFontMetricsF metrics(font);
	const FontHeights heights = {std::max(0.0f, float(metrics.ascent())),
		std::max(0.0f, float(metrics.descent())), std::max(0.0f, float(metrics.leading()))};
	return fFaces.emplace_back(Face{spec, font, heights, {}});
}

FontHeights
FontCache::Heights(const FontSpec& spec)
{
	return FaceFor(spec).heights;
}

QRawFont
FontCache::Scaled(const QRawFont& font, double scale)
{
	for (const ScaledFont& known : fScaledFonts) {
		if (known.scale == scale && known.font == font)
			return known.scaled;
	}
	if (fScaledFonts.size() == kMaxFonts)
		fScaledFonts.erase(fScaledFonts.begin());
	QRawFont scaled = font;
	scaled.setPixelSize(font.pixelSize() * scale);
	fScaledFonts.push_back({font, scale, scaled});
	return scaled;
}

QList<QGlyphRun>
FontCache::RunsOf(Face& face, std::string_view text, float* width)
{
	QGlyphRun composed;
	if (face.plain.Compose(text, &composed, width))
		return {composed};
	QTextLayout layout(DrawableText(text), face.font);
	layout.setTextOption(OneLine());
	layout.beginLayout();
	QTextLine line = layout.createLine();
	if (line.isValid()) {
		line.setLineWidth(kEndlessLine);
		line.setPosition(QPointF(0, -line.ascent()));
	}
	layout.endLayout();
	if (!line.isValid())
		return {};
	*width = float(line.horizontalAdvance());
	const QList<QGlyphRun> runs = layout.glyphRuns();
	face.plain.Learn(text, runs, line.horizontalAdvance());
	return runs;
}

std::shared_ptr<ShapedText>
FontCache::Layout(const FontSpec& spec, double scale, std::string_view text)
{
	auto shaped = std::make_shared<ShapedText>();
	const QList<QGlyphRun> runs = RunsOf(FaceFor(spec), text, &shaped->width);
	for (QGlyphRun run : runs) {
		if (scale != 1.0) {
			QList<QPointF> positions = run.positions();
			for (QPointF& position : positions)
				position *= scale;
			run.setPositions(positions);
			run.setRawFont(Scaled(run.rawFont(), scale));
			run.setBoundingRect(QRectF());
		}
		shaped->bounds |= run.boundingRect();
		shaped->runs.push_back(run);
	}
	return shaped;
}

std::shared_ptr<const ShapedText>
FontCache::Shape(const FontSpec& spec, double scale, std::string_view text)
{
	if (text.size() > kMaxRemembered)
		return Layout(spec, scale, text);
	const auto found = fIndex.find(Key{spec, scale, text});
	if (found != fIndex.end()) {
		fEntries.splice(fEntries.begin(), fEntries, found->second);
		return found->second->shaped;
	}
	if (fEntries.size() == kMaxEntries) {
		fIndex.erase(fEntries.back().key);
		fEntries.pop_back();
	}
	Entry& entry = fEntries.emplace_front();
	entry.text = text;
	entry.key = {spec, scale, entry.text};
	entry.shaped = Layout(spec, scale, text);
	fIndex.emplace(entry.key, fEntries.begin());
	return entry.shaped;
}

FontHeights
HeightsOf(const FontSpec& font)
{
	if (!WaitForFonts())
		return {font.size, font.size / 4, 0};
	return FontCache::Current().Heights(font);
}

float
WidthOf(const FontSpec& font, const char* text, size_t length)
{
	if (text == nullptr || length == 0 || !WaitForFonts())
		return 0;
	return FontCache::Current().Shape(font, 1.0, {text, length})->width;
}

} // namespace desktop
