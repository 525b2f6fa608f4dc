// SPDX-License-Identifier: MIT

// RowLayout: where the rows of a list lie. Row i starts where the heights of all rows before it,
// plus one each, end.
//
// Computes in double: a float loses whole pixels some 880,000 rows down. Tops are exact sums.
// Thread: one at a time, queries too (they remember where they looked).
// Cost, for n rows in blocks of about a thousand: a query O(log n), after a change far above
//   O(n / 1000); among rows of different heights besides O(1000), next to the last one O(1). Adding
//   and removing k rows anywhere O(k + n / 1000).

#pragma once

#include <support/SupportDefs.h>

#include <vector>

namespace BPrivate {

class RowLayout {
public:
	int32 CountRows() const { return fCount; }
	double TotalHeight() const { return fTotal; } // with the one pixel below the last row
	float HeightOf(int32 row) const;
	double TopOf(int32 row) const; // CountRows() is allowed: where the next row would start
	int32 RowAt(double y) const;   // -1 above the first and below the last row

	void Insert(int32 row, const std::vector<float>& heights);
	void Remove(int32 row, int32 count);
	bool SetHeight(int32 row, float height); // true when it is another one
	void MakeEmpty();

private:
	struct Block { // never empty
		explicit Block(std::vector<float> rows);
		int32 Count() const { return static_cast<int32>(heights.size()); }
		bool IsEven() const { return alike == Count(); }

		std::vector<float> heights;
		double extent = 0; // of all its rows
		int32 alike = 0;   // so many rows are as high as the first one
		// Where it starts, once that is known.
		int32 firstRow = 0;
		double top = 0;
	};
	// A row of an uneven block, and where it starts in there.
	struct Cursor {
		size_t block = 0;
		int32 index = 0;
		double top = 0;
	};

	void Changed(size_t block);
	void LocateNext() const;
	size_t BlockOf(int32 row) const;
	size_t BlockAt(double y) const;
	double TopInBlock(size_t number, int32 index) const;
	int32 IndexInBlock(size_t number, double y) const;
	void SplitInto(size_t block, const std::vector<float>& heights);

	mutable std::vector<Block> fBlocks;
	int32 fCount = 0;
	double fTotal = 0;
	mutable size_t fLocated = 0; // so many blocks know where they start
	mutable Cursor fCursor;
};

} // namespace BPrivate
