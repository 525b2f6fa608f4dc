// SPDX-License-Identifier: MIT

// RowLayout: where the rows of a list lie. Row i starts where the heights of all rows before it,
// plus one each, end.
//
// Computes in double: a float loses whole pixels some 880,000 rows down. Tops are exact sums.
// Thread: one at a time, queries too (they move an internal cursor).
// Cost, for n rows in blocks of about a thousand: a query O(n / 1000), next to the last one O(1);
//   adding and removing k rows anywhere O(k + n / 1000).

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
		std::vector<float> heights;
		double extent = 0; // of all its rows
	};
	// A row, its block, and where both start.
	struct Cursor {
		size_t block = 0;
		int32 firstRow = 0;
		double blockTop = 0;
		int32 index = 0; // of the row in the block
		double rowTop = 0;
	};

	void Seek(int32 row) const;
	void SplitInto(size_t block, const std::vector<float>& heights);

	std::vector<Block> fBlocks;
	int32 fCount = 0;
	double fTotal = 0;
	mutable Cursor fCursor;
};

} // namespace BPrivate
