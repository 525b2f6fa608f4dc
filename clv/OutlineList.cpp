// SPDX-License-Identifier: MIT

#include "clv/OutlineList.h"

#include <algorithm>
#include <atomic>

static constexpr size_t kBlockItems = 512;
static constexpr size_t kMaxBlockItems = 2 * kBlockItems;

// Levels change rarely once a row is in a list. Which list that is the row does not know for
// certain, for lists die before their rows; so all lists look at this.
static std::atomic<uint64> sLevelChanges = 0;

struct OutlineList::Block {
	std::vector<CLVListItem*> items;
	size_t number = 0; // of this block
	int32 visible = 0; // so many of its rows are
	// Where it starts among all rows and among the visible ones, once that is known.
	int32 first = 0;
	int32 firstVisible = 0;
	mutable uint32 lowestLevel = 0;
	mutable bool knowsLevel = false;
};

OutlineList::OutlineList() = default;

OutlineList::~OutlineList() = default;

void
OutlineList::LevelChanged()
{
	sLevelChanges.fetch_add(1, std::memory_order_relaxed);
}

// After rows of this block came or went.
void
OutlineList::Changed(size_t block)
{
	fLocated = std::min(fLocated, block + 1);
	fVisibleLocated = std::min(fVisibleLocated, block + 1);
	fArray.clear();
}

// Makes the starts of the blocks good up to this one.
void
OutlineList::Locate(size_t block) const
{
	for (; fLocated <= block; fLocated++) {
		Block& next = *fBlocks[fLocated];
		next.first = 0;
		if (fLocated > 0) {
			const Block& before = *fBlocks[fLocated - 1];
			next.first = before.first + static_cast<int32>(before.items.size());
		}
	}
}

void
OutlineList::LocateVisible(size_t block) const
{
	for (; fVisibleLocated <= block; fVisibleLocated++) {
		Block& next = *fBlocks[fVisibleLocated];
		next.firstVisible = 0;
		if (fVisibleLocated > 0) {
			const Block& before = *fBlocks[fVisibleLocated - 1];
			next.firstVisible = before.firstVisible + before.visible;
		}
	}
}

// The block of a row that exists. Locates no blocks behind it: those move with every change.
size_t
OutlineList::BlockAt(int32 index) const
{
	Locate(0);
	const auto endOf = [this](size_t number) {
		return fBlocks[number]->first + static_cast<int32>(fBlocks[number]->items.size());
	};
	while (endOf(fLocated - 1) <= index)
		Locate(fLocated);
	auto behind =
		std::upper_bound(fBlocks.begin(), fBlocks.begin() + static_cast<ptrdiff_t>(fLocated), index,
			[](int32 value, const std::unique_ptr<Block>& block) { return value < block->first; });
	return static_cast<size_t>(behind - fBlocks.begin()) - 1;
}

CLVListItem*
OutlineList::ItemAt(int32 index) const
{
	if (index < 0 || index >= fCount)
		return nullptr;
	const Block& block = *fBlocks[BlockAt(index)];
	return block.items[static_cast<size_t>(index - block.first)];
}

int32
OutlineList::IndexOf(const CLVListItem* item) const
{
	if (!HasItem(item))
		return -1;
	const Block& block = *static_cast<const Block*>(item->fBlock);
	Locate(block.number);
	auto found = std::find(block.items.begin(), block.items.end(), item);
	return block.first + static_cast<int32>(found - block.items.begin());
}

int32
OutlineList::CountVisibleBefore(int32 index) const
{
	if (index <= 0 || fCount == 0)
		return 0;
	const Block& block = *fBlocks[BlockAt(std::min(index, fCount) - 1)];
	LocateVisible(block.number);
	if (block.visible == static_cast<int32>(block.items.size())) // as in a list without an outline
		return block.firstVisible + std::min(index, fCount) - block.first;
	auto end = block.items.begin() + (std::min(index, fCount) - block.first);
	return block.firstVisible +
		static_cast<int32>(std::count_if(
			block.items.begin(), end, [](const CLVListItem* item) { return item->fVisible; }));
}

uint32
OutlineList::LowestLevel(const Block& block) const
{
	const uint64 changes = sLevelChanges.load(std::memory_order_relaxed);
	if (changes != fLevelsSeen) {
		for (const std::unique_ptr<Block>& each : fBlocks)
			each->knowsLevel = false;
		fLevelsSeen = changes;
	}
	if (!block.knowsLevel) {
		block.lowestLevel = UINT32_MAX;
		for (const CLVListItem* item : block.items)
			block.lowestLevel = std::min(block.lowestLevel, item->OutlineLevel());
		block.knowsLevel = true;
	}
	return block.lowestLevel;
}

int32
OutlineList::LastBelowLevel(int32 index, uint32 level) const
{
	if (index <= 0 || level == 0)
		return -1;
	size_t number = BlockAt(index - 1);
	int32 offset = index - fBlocks[number]->first;
	for (;; number--) {
		const Block& block = *fBlocks[number];
		// A few rows before this one are looked at in any case: the wanted one is often near.
		const int32 near = std::max(offset - 16, 0);
		for (; offset > 0; offset--) {
			if (offset == near && LowestLevel(block) >= level)
				break;
			if (block.items[static_cast<size_t>(offset) - 1]->OutlineLevel() < level)
				return block.first + offset - 1;
		}
		if (number == 0)
			return -1;
		offset = static_cast<int32>(fBlocks[number - 1]->items.size());
		if (LowestLevel(*fBlocks[number - 1]) >= level)
			offset = 0;
	}
}

int32
OutlineList::FirstUpToLevel(int32 index, uint32 level) const
{
	if (index < 0 || index >= fCount)
		return fCount;
	size_t number = BlockAt(index);
	size_t offset = static_cast<size_t>(index - fBlocks[number]->first);
	for (; number < fBlocks.size(); number++, offset = 0) {
		const Block& block = *fBlocks[number];
		if (offset == 0 && LowestLevel(block) > level)
			continue;
		for (; offset < block.items.size(); offset++) {
			if (block.items[offset]->OutlineLevel() <= level) {
				Locate(number);
				return block.first + static_cast<int32>(offset);
			}
		}
	}
	return fCount;
}

int32
OutlineList::EndOfSubtree(int32 index) const
{
	const CLVListItem* item = ItemAt(index);
	return item != nullptr ? FirstUpToLevel(index + 1, item->OutlineLevel()) : fCount;
}

bool
OutlineList::Insert(int32 index, CLVListItem* item, bool visible)
{
	if (index < 0 || index > fCount || item == nullptr || !fItems.insert(item).second)
		return false;
	if (fBlocks.empty())
		fBlocks.push_back(std::make_unique<Block>());
	const size_t number = fCount > 0 ? BlockAt(std::max(index - 1, 0)) : 0;
	Block& block = *fBlocks[number];
	block.items.insert(block.items.begin() + (fCount > 0 ? index - block.first : 0), item);
	block.visible += visible;
	block.lowestLevel = std::min(block.lowestLevel, item->OutlineLevel());
	item->fBlock = &block;
	item->fVisible = visible;
	fCount++;
	Changed(number);
	if (block.items.size() > kMaxBlockItems)
		Split(number);
	return true;
}

void
OutlineList::Split(size_t number)
{
	Block& block = *fBlocks[number];
	auto rest = std::make_unique<Block>();
	rest->items.assign(block.items.begin() + kBlockItems, block.items.end());
	block.items.resize(kBlockItems);
	block.items.shrink_to_fit();
	block.knowsLevel = false;
	for (CLVListItem* item : rest->items) {
		item->fBlock = rest.get();
		rest->visible += item->fVisible;
	}
	block.visible -= rest->visible;
	fBlocks.insert(fBlocks.begin() + static_cast<ptrdiff_t>(number) + 1, std::move(rest));
	Renumber(number);
}

void
OutlineList::Renumber(size_t number)
{
	for (size_t i = number; i < fBlocks.size(); i++)
		fBlocks[i]->number = i;
}

void
OutlineList::Remove(int32 index, int32 count)
{
	if (index < 0 || index >= fCount || count <= 0)
		return;
	count = std::min(count, fCount - index);
	const size_t number = BlockAt(index);
	fCount -= count;
	size_t last = number;
	for (auto begin = static_cast<ptrdiff_t>(index - fBlocks[number]->first); count > 0; last++) {
		Block& block = *fBlocks[last];
		const auto here = std::min(
			static_cast<ptrdiff_t>(count), static_cast<ptrdiff_t>(block.items.size()) - begin);
		for (auto i = block.items.begin() + begin; i < block.items.begin() + begin + here; i++) {
			block.visible -= (*i)->fVisible;
			fItems.erase(*i);
			(*i)->fBlock = nullptr;
		}
		block.items.erase(block.items.begin() + begin, block.items.begin() + begin + here);
		block.knowsLevel = false;
		count -= static_cast<int32>(here);
		begin = 0;
	}
	Changed(number);
	auto from = fBlocks.begin() + static_cast<ptrdiff_t>(number);
	auto empty = std::remove_if(from, fBlocks.begin() + static_cast<ptrdiff_t>(last),
		[](const std::unique_ptr<Block>& block) { return block->items.empty(); });
	if (empty != fBlocks.begin() + static_cast<ptrdiff_t>(last)) {
		fBlocks.erase(empty, fBlocks.begin() + static_cast<ptrdiff_t>(last));
		fLocated = std::min(fLocated, number);
		fVisibleLocated = std::min(fVisibleLocated, number);
		Renumber(number);
	}
}

// Touches no row: their maker may delete them right afterwards, or has already.
void
OutlineList::MakeEmpty()
{
	fBlocks.clear();
	fItems.clear();
	fArray.clear();
	fCount = 0;
	fLocated = fVisibleLocated = 0;
}

void
OutlineList::SetVisible(CLVListItem* item, bool visible)
{
	if (item->fVisible == visible)
		return;
	Block& block = *static_cast<Block*>(item->fBlock);
	item->fVisible = visible;
	block.visible += visible ? 1 : -1;
	fVisibleLocated = std::min(fVisibleLocated, block.number + 1);
}

void
OutlineList::Reorder(const std::vector<CLVListItem*>& items)
{
	size_t next = 0;
	for (const std::unique_ptr<Block>& block : fBlocks) {
		block->visible = 0;
		block->knowsLevel = false;
		for (CLVListItem*& item : block->items) {
			item = items[next++];
			item->fBlock = block.get();
			block->visible += item->fVisible;
		}
	}
	fVisibleLocated = 0;
	fArray.clear();
}

std::vector<CLVListItem*>
OutlineList::Copy() const
{
	std::vector<CLVListItem*> items;
	items.reserve(static_cast<size_t>(fCount));
	for (const std::unique_ptr<Block>& block : fBlocks)
		items.insert(items.end(), block->items.begin(), block->items.end());
	return items;
}

const BListItem**
OutlineList::Array() const
{
	if (fArray.empty() && fCount > 0) {
		fArray.reserve(static_cast<size_t>(fCount));
		for (const std::unique_ptr<Block>& block : fBlocks)
			fArray.insert(fArray.end(), block->items.begin(), block->items.end());
	}
	return fArray.data();
}
