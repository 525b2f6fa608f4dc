// SPDX-License-Identifier: MIT

#include <interface/RowSet.h>

#include <algorithm>
#include <iterator>

// The index of the first range that ends at `row` or behind it.
size_t
BPrivate::RowSet::FirstEndingFrom(int32 row) const
{
	auto found = std::lower_bound(fRanges.begin(), fRanges.end(), row,
		[](const Range& range, int32 value) { return range.last < value; });
	return static_cast<size_t>(found - fRanges.begin());
}

bool
BPrivate::RowSet::Contains(int32 row) const
{
	size_t index = FirstEndingFrom(row);
	return index < fRanges.size() && fRanges[index].first <= row;
}

int32
BPrivate::RowSet::Nth(int32 n) const
{
	if (n < 0 || n >= fCount)
		return -1;
	if (n < fRowsBefore)
		fLastRange = 0, fRowsBefore = 0;
	for (;;) {
		const Range& range = fRanges[fLastRange];
		int32 length = range.last - range.first + 1;
		if (n - fRowsBefore < length)
			return range.first + n - fRowsBefore;
		fRowsBefore += length;
		fLastRange++;
	}
}

int32
BPrivate::RowSet::CountIn(int32 first, int32 last) const
{
	int32 count = 0;
	for (size_t i = FirstEndingFrom(first); i < fRanges.size() && fRanges[i].first <= last; i++)
		count += std::min(fRanges[i].last, last) - std::max(fRanges[i].first, first) + 1;
	return count;
}

std::vector<BPrivate::RowSet::Range>
BPrivate::RowSet::RangesIn(int32 first, int32 last) const
{
	std::vector<Range> ranges;
	for (size_t i = FirstEndingFrom(first); i < fRanges.size() && fRanges[i].first <= last; i++)
		ranges.push_back({std::max(fRanges[i].first, first), std::min(fRanges[i].last, last)});
	return ranges;
}

void
BPrivate::RowSet::Replace(size_t begin, size_t end, const std::vector<Range>& ranges)
{
	for (size_t i = begin; i < end; i++)
		fCount -= fRanges[i].last - fRanges[i].first + 1;
	for (const Range& range : ranges)
		fCount += range.last - range.first + 1;
	auto place = fRanges.erase(fRanges.begin() + static_cast<ptrdiff_t>(begin),
		fRanges.begin() + static_cast<ptrdiff_t>(end));
	fRanges.insert(place, ranges.begin(), ranges.end());
	fLastRange = 0;
	fRowsBefore = 0;
}

void
BPrivate::RowSet::Add(int32 first, int32 last)
{
	if (first > last)
		return;
	// Ranges that touch become one.
	size_t begin = FirstEndingFrom(first - 1);
	size_t end = begin;
	Range joined = {first, last};
	for (; end < fRanges.size() && fRanges[end].first <= last + 1; end++) {
		joined.first = std::min(joined.first, fRanges[end].first);
		joined.last = std::max(joined.last, fRanges[end].last);
	}
	Replace(begin, end, {joined});
}

void
BPrivate::RowSet::Remove(int32 first, int32 last)
{
	if (first > last)
		return;
	size_t begin = FirstEndingFrom(first);
	size_t end = begin;
	std::vector<Range> rest;
	for (; end < fRanges.size() && fRanges[end].first <= last; end++) {
		if (fRanges[end].first < first)
			rest.push_back({fRanges[end].first, first - 1});
		if (fRanges[end].last > last)
			rest.push_back({last + 1, fRanges[end].last});
	}
	if (begin < end)
		Replace(begin, end, rest);
}

void
BPrivate::RowSet::MakeEmpty()
{
	*this = RowSet();
}

void
BPrivate::RowSet::RowsInserted(int32 row, int32 count)
{
	size_t index = FirstEndingFrom(row);
	if (index == fRanges.size())
		return;
	if (fRanges[index].first < row) {
		Range cut = fRanges[index];
		Replace(index, index + 1, {{cut.first, row - 1}, {row, cut.last}});
		index++;
	}
	for (; index < fRanges.size(); index++) {
		fRanges[index].first += count;
		fRanges[index].last += count;
	}
}

void
BPrivate::RowSet::RowsRemoved(int32 row, int32 count)
{
	Remove(row, row + count - 1);
	size_t index = FirstEndingFrom(row);
	for (size_t i = index; i < fRanges.size(); i++) {
		fRanges[i].first -= count;
		fRanges[i].last -= count;
	}
	if (index > 0 && index < fRanges.size() &&
		fRanges[index - 1].last + 1 == fRanges[index].first) {
		Range joined = {fRanges[index - 1].first, fRanges[index].last};
		Replace(index - 1, index + 1, {joined});
	}
}
