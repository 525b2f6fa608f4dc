// SPDX-License-Identifier: MIT

// RowSet: a set of row numbers, kept as ascending ranges. The selection of a list.
//
// Thread: one at a time, queries too.
// Cost: grows with the number of ranges, not of rows; Nth() called for ascending n is constant.

#pragma once

#include <support/SupportDefs.h>

#include <vector>

namespace BPrivate {

class RowSet {
public:
	struct Range {
		int32 first;
		int32 last; // belongs to it
	};

	int32 Count() const { return fCount; }
	bool Contains(int32 row) const;
	int32 Nth(int32 n) const; // ascending, -1 when there are not as many
	int32 CountIn(int32 first, int32 last) const;
	std::vector<Range> RangesIn(int32 first, int32 last) const; // cut to these rows

	void Add(int32 first, int32 last);
	void Remove(int32 first, int32 last);
	void MakeEmpty();
	// The rows behind move: new ones do not belong to the set, removed ones leave it.
	void RowsInserted(int32 row, int32 count);
	void RowsRemoved(int32 row, int32 count);

private:
	size_t FirstEndingFrom(int32 row) const;
	void Replace(size_t begin, size_t end, const std::vector<Range>& ranges);

	std::vector<Range> fRanges; // ascending, never touching each other
	int32 fCount = 0;
	// A range and the number of rows before it: where Nth() looked last.
	mutable size_t fLastRange = 0;
	mutable int32 fRowsBefore = 0;
};

} // namespace BPrivate
