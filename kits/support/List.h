// SPDX-License-Identifier: MIT

// BList: an ordered list of untyped pointers, never owned.
//
// Not locked: whoever shares a list between threads guards it.
// Cost: an empty list allocates nothing, a small one a few slots. Adding and removing at either
// end is constant on average; elsewhere the shorter side is moved.

#pragma once

#include <support/SupportDefs.h>

#include <memory>

class BList {
public:
	explicit BList(int32 blockSize = 20); // room made at the latest by the blockSize-th item
	BList(const BList& other);
	virtual ~BList();
	BList& operator=(const BList& other);

	int32 CountItems() const { return fCount; }
	bool IsEmpty() const { return fCount == 0; }
	void* ItemAt(int32 index) const; // null when out of range, as the next two
	void* FirstItem() const { return ItemAt(0); }
	void* LastItem() const { return ItemAt(fCount - 1); }
	void*
	Items() const; // an array of CountItems() pointers, good until the next change; may be null
	int32 IndexOf(void* item) const; // of its first place, or -1
	bool HasItem(void* item) const { return IndexOf(item) >= 0; }

	// False, with the list unchanged, for an index outside 0..CountItems() or without memory.
	bool AddItem(void* item) { return AddItem(item, fCount); }
	bool AddItem(void* item, int32 index);
	bool AddList(const BList* other);
	bool AddList(const BList* other, int32 index);

	bool RemoveItem(void* item);                // its first place only
	void* RemoveItem(int32 index);              // the item, or null when out of range
	bool RemoveItems(int32 index, int32 count); // a count beyond the end takes the rest
	void MakeEmpty();                           // gives the memory back

	bool SwapItems(int32 a, int32 b);
	bool MoveItem(int32 from, int32 to); // `to` is its index afterwards

	// The callback gets the addresses of two pointers. Equal items end in any order.
	void SortItems(int (*compare)(const void*, const void*));

	// Walk in order and stop where the callback returns true. It may remove and add items.
	void DoForEach(bool (*visit)(void*));
	void DoForEach(bool (*visit)(void*, void*), void* argument);

private:
	void** Base() const { return fSlots.get() + fStart; }
	bool MakeGap(int32 index, int32 count);
	bool MakeRoom(bool atFront, int32 count);

	// The items lie in one piece somewhere in the slots, with free room on both sides.
	std::unique_ptr<void*[]> fSlots;
	int32 fCapacity = 0;
	int32 fStart = 0;
	int32 fCount = 0;
	int32 fBlockSize;
};
