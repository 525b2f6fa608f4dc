// SPDX-License-Identifier: MIT

// One row of an editor's text as it is seen: where its characters lie, and drawing it.
//
// A value without a link to the view; may be measured by any thread. Offsets are bytes from the
// row's start, x logical pixels. The row begins at the left, whatever way its characters run.

#pragma once

#include <desktop/Text.h>
#include <interface/Font.h>
#include <interface/Point.h>

#include <string>
#include <string_view>
#include <vector>

class BView;

namespace BPrivate {

class TextRow {
public:
	struct Span {
		float left;
		float right;
	};

	TextRow() = default;
	TextRow(const BFont& font, std::string_view text); // tabs go to the next stop

	float Width() const { return fWidth; }
	const std::vector<desktop::TextCluster>& Clusters() const { return fClusters; }
	float CaretAt(size_t offset) const;
	size_t OffsetAt(float x) const;                          // the nearest place of a caret
	std::vector<Span> Spans(size_t begin, size_t end) const; // what they cover, from left to right

	// In the view's font and high colour, over what is there; what lies beside `visible` is left
	// out.
	void Draw(BView* view, BPoint baselineLeft, Span visible) const;

private:
	// Long rows are made of pieces, each laid out by itself.
	struct Piece {
		std::string text;
		Span span;
	};

	void AddPiece(const desktop::FontSpec& font, std::string_view text, size_t offset);

	std::vector<Piece> fPieces; // without the tabs
	std::vector<desktop::TextCluster> fClusters;
	float fWidth = 0;
};

} // namespace BPrivate
