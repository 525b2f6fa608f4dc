// SPDX-License-Identifier: MIT

#include <interface/RowLayout.h>

#include <algorithm>
#include <cassert>

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

static int32
CountAlike(const std::vector<float>& heights, float height)
{
	return static_cast<int32>(std::count(heights.begin(), heights.end(), height));
}

BPrivate::RowLayout::Block::Block(std::vector<float> rows) :
	heights(std::move(rows)), extent(ExtentOf(heights)), alike(CountAlike(heights, heights[0]))
{}

// After rows of this block changed, came or went.
void
BPrivate::RowLayout::Changed(size_t block)
{
	fLocated = std::min(fLocated, block + 1);
	if (fCursor.block >= block)
		fCursor = {};
}

void
BPrivate::RowLayout::LocateNext() const
{
	Block& next = fBlocks[fLocated];
	next.firstRow = 0;
	next.top = 0;
	if (fLocated > 0) {
		const Block& before = fBlocks[fLocated - 1];
		next.firstRow = before.firstRow + before.Count();
		next.top = before.top + before.extent;
	}
	fLocated++;
}

// The block of a row that exists. Locates no blocks behind it: those move with every change.
size_t
BPrivate::RowLayout::BlockOf(int32 row) const
{
	assert(row >= 0 && row < fCount);
	const auto end = [this] {
		return fBlocks[fLocated - 1].firstRow + fBlocks[fLocated - 1].Count();
	};
	while (fLocated == 0 || end() <= row)
		LocateNext();
	const auto begin = fBlocks.begin();
	const auto behind = std::upper_bound(begin, begin + static_cast<ptrdiff_t>(fLocated), row,
		[](int32 value, const Block& block) { return value < block.firstRow; });
	return static_cast<size_t>(behind - begin) - 1;
}

// The block that covers a place above the end.
size_t
BPrivate::RowLayout::BlockAt(double y) const
{
	const auto end = [this] { return fBlocks[fLocated - 1].top + fBlocks[fLocated - 1].extent; };
	while (fLocated == 0 || (end() <= y && fLocated < fBlocks.size()))
		LocateNext();
	const auto begin = fBlocks.begin();
	const auto behind = std::upper_bound(begin, begin + static_cast<ptrdiff_t>(fLocated), y,
		[](double value, const Block& block) { return value < block.top; });
	return static_cast<size_t>(behind - begin) - 1;
}

double
BPrivate::RowLayout::TopInBlock(size_t number, int32 index) const
{
	const Block& block = fBlocks[number];
	if (block.IsEven())
		return index * (double(block.heights[0]) + 1);
	Cursor& at = fCursor;
	if (at.block != number || index < at.index)
		at = {number, 0, 0};
	for (; at.index < index; at.index++)
		at.top += double(block.heights[static_cast<size_t>(at.index)]) + 1;
	return at.top;
}

int32
BPrivate::RowLayout::IndexInBlock(size_t number, double y) const
{
	const Block& block = fBlocks[number];
	const int32 last = block.Count() - 1;
	int32 index = 0;
	if (block.IsEven()) {
		const double row = y / (double(block.heights[0]) + 1);
		index = row < last ? std::max(static_cast<int32>(row), 0) : last;
		// Division rounds.
		while (index > 0 && TopInBlock(number, index) > y)
			index--;
	}
	while (index < last && TopInBlock(number, index + 1) <= y)
		index++;
	return index;
}

float
BPrivate::RowLayout::HeightOf(int32 row) const
{
	const Block& block = fBlocks[BlockOf(row)];
	return block.heights[static_cast<size_t>(row - block.firstRow)];
}

double
BPrivate::RowLayout::TopOf(int32 row) const
{
	if (row >= fCount)
		return fTotal;
	const size_t number = BlockOf(row);
	return fBlocks[number].top + TopInBlock(number, row - fBlocks[number].firstRow);
}

int32
BPrivate::RowLayout::RowAt(double y) const
{
	if (!(y >= 0) || y >= fTotal)
		return -1;
	const size_t number = BlockAt(y);
	return fBlocks[number].firstRow + IndexInBlock(number, y - fBlocks[number].top);
}

// Replaces a block by as many as it takes to hold these rows.
void
BPrivate::RowLayout::SplitInto(size_t number, const std::vector<float>& heights)
{
	const size_t pieces = (heights.size() + kBlockRows - 1) / kBlockRows;
	std::vector<Block> blocks;
	blocks.reserve(pieces);
	for (size_t i = 0; i < pieces; i++) {
		auto begin = heights.begin() + static_cast<ptrdiff_t>(heights.size() * i / pieces);
		auto end = heights.begin() + static_cast<ptrdiff_t>(heights.size() * (i + 1) / pieces);
		blocks.emplace_back(std::vector<float>(begin, end));
	}
	auto place = fBlocks.begin() + static_cast<ptrdiff_t>(number);
	if (number < fBlocks.size())
		place = fBlocks.erase(place);
	fBlocks.insert(
		place, std::make_move_iterator(blocks.begin()), std::make_move_iterator(blocks.end()));
	fLocated = std::min(fLocated, number);
}

void
BPrivate::RowLayout::Insert(int32 row, const std::vector<float>& added)
{
	assert(row >= 0 && row <= fCount);
	if (added.empty())
		return;
	const size_t number = fBlocks.empty() ? 0 : BlockOf(std::min(row, fCount - 1));
	if (fBlocks.empty()) {
		SplitInto(0, added);
	} else {
		Block& block = fBlocks[number];
		const int32 index = row - block.firstRow;
		block.heights.insert(block.heights.begin() + index, added.begin(), added.end());
		block.extent += ExtentOf(added);
		block.alike = index > 0 ? block.alike + CountAlike(added, block.heights[0])
								: CountAlike(block.heights, block.heights[0]);
		if (block.Count() > kMaxBlockRows)
			SplitInto(number, std::vector<float>(std::move(block.heights)));
	}
	fCount += static_cast<int32>(added.size());
	fTotal += ExtentOf(added);
	Changed(number);
}

void
BPrivate::RowLayout::Remove(int32 row, int32 count)
{
	assert(row >= 0 && count >= 0 && row + count <= fCount);
	if (count == 0)
		return;
	const size_t first = BlockOf(row);
	int32 index = row - fBlocks[first].firstRow;
	size_t number = first;
	for (int32 left = count; left > 0; number++) {
		Block& block = fBlocks[number];
		const int32 here = std::min(left, block.Count() - index);
		const auto begin = block.heights.begin() + index;
		const std::vector<float> gone(begin, begin + here);
		block.heights.erase(begin, begin + here);
		block.extent -= ExtentOf(gone);
		fTotal -= ExtentOf(gone);
		if (index > 0)
			block.alike -= CountAlike(gone, block.heights[0]);
		else if (block.Count() > 0)
			block.alike = CountAlike(block.heights, block.heights[0]);
		left -= here;
		index = 0;
	}
	fCount -= count;
	Changed(first);
	const auto begin = fBlocks.begin() + static_cast<ptrdiff_t>(first);
	const auto end = fBlocks.begin() + static_cast<ptrdiff_t>(number);
	const auto empty =
		std::remove_if(begin, end, [](const Block& block) { return block.heights.empty(); });
	if (empty != end) {
		fBlocks.erase(empty, end);
		fLocated = std::min(fLocated, first);
	}
}

bool
BPrivate::RowLayout::SetHeight(int32 row, float height)
{
	const size_t number = BlockOf(row);
	Block& block = fBlocks[number];
	const int32 index = row - block.firstRow;
	float& slot = block.heights[static_cast<size_t>(index)];
	if (slot == height)
		return false;
	const double difference = double(height) - double(slot);
	block.alike += int32(height == block.heights[0]) - int32(slot == block.heights[0]);
	slot = height;
	if (index == 0)
		block.alike = CountAlike(block.heights, height);
	block.extent += difference;
	fTotal += difference;
	// The cursor may stay where it is above the row's end: rows are often changed in order.
	if (fCursor.block > number || (fCursor.block == number && fCursor.index > index))
		fCursor = {};
	fLocated = std::min(fLocated, number + 1);
	return true;
}

void
BPrivate::RowLayout::MakeEmpty()
{
	*this = RowLayout();
}
