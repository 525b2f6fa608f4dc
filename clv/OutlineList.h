// SPDX-License-Identifier: MIT

// OutlineList: all rows of a list in outline order, each behind the one it belongs to, and which of
// them are visible.
//
// Rows are borrowed. A row that is looked up may be deleted already: only addresses are compared
// until it is known to be here.
// Thread: one at a time, queries too.
// Cost, for n rows in blocks of about 500: ItemAt O(log n); everything else O(n / 500), which is
// microseconds for a million rows; Array() walks all after a change.

#pragma once

#include "clv/CLVListItem.h"

#include <memory>
#include <unordered_set>
#include <vector>

class OutlineList {
public:
	OutlineList();
	~OutlineList();

	int32 CountItems() const { return fCount; }
	CLVListItem* ItemAt(int32 index) const; // null when out of range
	bool HasItem(const CLVListItem* item) const { return fItems.count(item) != 0; }
	int32 IndexOf(const CLVListItem* item) const; // or -1

	// Visible rows among the first `index` ones: what a visible row there has for its index among
	// the visible ones.
	int32 CountVisibleBefore(int32 index) const;
	// Nearest row before this one with a level below `level`, or -1.
	int32 LastBelowLevel(int32 index, uint32 level) const;
	// First row from this one on whose level is not above `level`, or the number of rows.
	int32 FirstUpToLevel(int32 index, uint32 level) const;
	// Where the rows below this one end.
	int32 EndOfSubtree(int32 index) const;

	// False for an index that does not fit and for a row that is here already.
	bool Insert(int32 index, CLVListItem* item, bool visible);
	void Remove(int32 index, int32 count);
	void MakeEmpty();
	void SetVisible(CLVListItem* item, bool visible);
	// The same rows in another order.
	void Reorder(const std::vector<CLVListItem*>& items);

	std::vector<CLVListItem*> Copy() const;
	const BListItem** Array() const; // good until the next change

	// For CLVListItem: the level of a row that may be in a list has changed.
	static void LevelChanged();

private:
	struct Block;

	void Changed(size_t block);
	void Locate(size_t block) const;
	void LocateVisible(size_t block) const;
	size_t BlockAt(int32 index) const;
	uint32 LowestLevel(const Block& block) const;
	void Split(size_t block);
	void Renumber(size_t block);

	std::vector<std::unique_ptr<Block>> fBlocks; // none is empty
	int32 fCount = 0;
	std::unordered_set<const CLVListItem*> fItems;
	// So many blocks know where they start, among all rows and among the visible ones.
	mutable size_t fLocated = 0;
	mutable size_t fVisibleLocated = 0;
	mutable uint64 fLevelsSeen = 0;
	mutable std::vector<const BListItem*> fArray; // empty: not made yet
};
