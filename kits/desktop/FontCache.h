// SPDX-License-Identifier: MIT

// Fonts and shaped strings of one thread. Internal to this folder.

#pragma once

#include "PlainText.h"

#include <desktop/Text.h>

#include <QFont>
#include <QGlyphRun>
#include <QRectF>
#include <QString>
#include <QTextOption>

#include <list>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace desktop {

constexpr qreal kEndlessLine = 1 << 24;

// What is drawn for these bytes: one unit or pair of units for each character or odd byte.
QString DrawableText(std::string_view text);
QTextOption OneLine();
bool WaitForFonts();

// One string as glyphs on device pixels, the baseline's start at (0, 0).
struct ShapedText {
	std::vector<QGlyphRun> runs;
	QRectF bounds;   // what the glyphs may touch, device pixels
	float width = 0; // logical pixels
};

// Thread: each has its own; Qt's font objects must not leave the thread that made them.
// Strings are laid out at scale 1 and their glyphs then placed on the device's pixels, so that
// widths do not depend on the scale.
class FontCache {
public:
	// The calling thread's. The desktop must be up.
	static FontCache& Current();
	// Deletes the calling thread's fonts; for the GUI thread, whose own end comes after Qt's.
	static void ForgetCurrent();

	FontHeights Heights(const FontSpec& spec);
	// Long strings are not remembered.
	std::shared_ptr<const ShapedText> Shape(
		const FontSpec& spec, double scale, std::string_view text);
	std::vector<TextCluster> Clusters(const FontSpec& spec, std::string_view text);

private:
	struct Key {
		bool operator==(const Key&) const = default;

		FontSpec spec;
		double scale;
		std::string_view text; // in an entry: its own text
	};
	struct KeyHash {
		size_t operator()(const Key& key) const;
	};
	struct Entry {
		std::string text;
		Key key;
		std::shared_ptr<const ShapedText> shaped;
	};
	struct Face {
		FontSpec spec;
		QFont font;
		FontHeights heights;
		PlainText plain;
	};
	// Making a font of another size is slow and starts with no glyphs rendered.
	struct ScaledFont {
		QRawFont font;
		double scale;
		QRawFont scaled;
	};

	Face& FaceFor(const FontSpec& spec);
	QRawFont Scaled(const QRawFont& font, double scale);
	// At scale 1.
	QList<QGlyphRun> RunsOf(Face& face, std::string_view text, float* width);
	std::shared_ptr<ShapedText> Layout(const FontSpec& spec, double scale, std::string_view text);

	std::vector<Face> fFaces;
	std::vector<ScaledFont> fScaledFonts;
	std::list<Entry> fEntries; // the last used first
	std::unordered_map<Key, std::list<Entry>::iterator, KeyHash> fIndex;
};

} // namespace desktop
