// SPDX-License-Identifier: MIT

#include <interface/RowLayout.h>

#include <algorithm>
#include <cassert>
#include <iterator>

static constexpr int32 kBlockRows = 1024;
static constexpr int32 kMaxBlockRows = 2 * kBlockRows;

static double
ExtentOf(const std::vector<float>& heights)
{
	double extent = 0;
	for (float height : heights)
		extent += double(height) + 1;
	return extent;
}

// Moves the cursor to a row that exists.
void
BPrivate::RowLayout::Seek(int32 row) const
{
	assert(row >= 0 && row < fCount);
	if (row < fCursor.firstRow)
		fCursor = {};
	Cursor& at = fCursor;
	while (row - at.firstRow >= static_cast<int32>(fBlocks[at.block].heights.size())) {
		at.firstRow += static_cast<int32>(fBlocks[at.block].heights.size());
		at.blockTop += fBlocks[at.block].extent;
		at.block++;
		at.index = 0;
		at.rowTop = at.blockTop;
	}
	const std::vector<float>& heights = fBlocks[at.block].heights;
	if (row - at.firstRow < at.index) {
		at.index = 0;
		at.rowTop = at.blockTop;
	}
	for (; at.index < row - at.firstRow; at.index++)
		at.rowTop += double(heights[static_cast<size_t>(at.index)]) + 1;
}

float
BPrivate::RowLayout::HeightOf(int32 row) const
{
	Seek(row);
	return fBlocks[fCursor.block].heights[static_cast<size_t>(fCursor.index)];
}

double
BPrivate::RowLayout::TopOf(int32 row) const
{
	if (row >= fCount)
		return fTotal;
	Seek(row);
	return fCursor.rowTop;
}

int32
BPrivate::RowLayout::RowAt(double y) const
{
	if (!(y >= 0) || y >= fTotal)
		return -1;
	// Blocks first, then rows; Seek() remembers where that was.
	bool ahead = y >= fCursor.blockTop;
	size_t block = ahead ? fCursor.block : 0;
	int32 firstRow = ahead ? fCursor.firstRow : 0;
	double top = ahead ? fCursor.blockTop : 0;
	while (y >= top + fBlocks[block].extent) {
		top += fBlocks[block].extent;
		firstRow += static_cast<int32>(fBlocks[block].heights.size());
		block++;
	}
	Seek(firstRow);
	const std::vector<float>& heights = fBlocks[block].heights;
	size_t index = 0;
	while (index + 1 < heights.size() && y >= top + double(heights[index]) + 1)
		top += double(heights[index++]) + 1;
	int32 row = firstRow + static_cast<int32>(index);
	Seek(row);
	return row;
}

// Replaces a block by as many as it takes to hold these rows.
void
BPrivate::RowLayout::SplitInto(size_t block, const std::vector<float>& heights)
{
	size_t pieces = (heights.size() + kBlockRows - 1) / kBlockRows;
	std::vector<Block> blocks(pieces);
	for (size_t i = 0; i < pieces; i++) {
		auto begin = heights.begin() + static_cast<ptrdiff_t>(heights.size() * i / pieces);
		auto end = heights.begin() + static_cast<ptrdiff_t>(heights.size() * (i + 1) / pieces);
		blocks[i].heights.assign(begin, end);
		blocks[i].extent = ExtentOf(blocks[i].heights);
	}
	auto place = fBlocks.begin() + static_cast<ptrdiff_t>(block);
	if (block < fBlocks.size())
		place = fBlocks.erase(place);
	fBlocks.insert(
		place, std::make_move_iterator(blocks.begin()), std::make_move_iterator(blocks.end()));
}

void
BPrivate::RowLayout::Insert(int32 row, const std::vector<float>& added)
{
	assert(row >= 0 && row <= fCount);
	if (added.empty())
		return;
	size_t block = 0;
	int32 index = 0;
	if (row < fCount) {
		Seek(row);
		block = fCursor.block;
		index = fCursor.index;
	} else if (!fBlocks.empty()) {
		block = fBlocks.size() - 1;
		index = static_cast<int32>(fBlocks[block].heights.size());
	}
	bool split = true;
	if (block == fBlocks.size()) {
		SplitInto(block, added);
	} else {
		std::vector<float>& heights = fBlocks[block].heights;
		heights.insert(heights.begin() + index, added.begin(), added.end());
		fBlocks[block].extent += ExtentOf(added);
		split = heights.size() > kMaxBlockRows;
		if (split)
			SplitInto(block, std::vector<float>(std::move(heights)));
	}
	fCount += static_cast<int32>(added.size());
	fTotal += ExtentOf(added);
	if (row <= fCursor.firstRow + fCursor.index || (split && block <= fCursor.block))
		fCursor = {};
}

void
BPrivate::RowLayout::Remove(int32 row, int32 count)
{
	assert(row >= 0 && count >= 0 && row + count <= fCount);
	if (count == 0)
		return;
	Seek(row);
	const size_t first = fCursor.block;
	int32 index = fCursor.index;
	size_t block = first;
	for (int32 left = count; left > 0; block++) {
		std::vector<float>& heights = fBlocks[block].heights;
		int32 here = std::min(left, static_cast<int32>(heights.size()) - index);
		heights.erase(heights.begin() + index, heights.begin() + index + here);
		fTotal -= fBlocks[block].extent;
		fBlocks[block].extent = ExtentOf(heights);
		fTotal += fBlocks[block].extent;
		left -= here;
		index = 0;
	}
	auto isEmpty = [](const Block& b) { return b.heights.empty(); };
	auto begin = fBlocks.begin() + static_cast<ptrdiff_t>(first);
	auto end = fBlocks.begin() + static_cast<ptrdiff_t>(block);
	fBlocks.erase(std::remove_if(begin, end, isEmpty), end);
	fCount -= count;
	fCursor = {};
}

bool
BPrivate::RowLayout::SetHeight(int32 row, float height)
{
	Seek(row);
	Block& block = fBlocks[fCursor.block];
	float& slot = block.heights[static_cast<size_t>(fCursor.index)];
	if (slot == height)
		return false;
	double difference = double(height) - double(slot);
	slot = height;
	block.extent += difference;
	fTotal += difference;
	return true; // the cursor stands on the row, whose top stays
}

void
BPrivate::RowLayout::MakeEmpty()
{
	*this = RowLayout();
}
