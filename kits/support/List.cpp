// SPDX-License-Identifier: MIT

// BList keeps its items in one array with room at both ends.

#include <support/List.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

static constexpr int32 kFirstCapacity = 4;

BList::BList(int32 blockSize) : fBlockSize(std::max(blockSize, 1)) {}

BList::BList(const BList& other) : fBlockSize(other.fBlockSize)
{
	AddList(&other);
}

BList::~BList() = default;

BList&
BList::operator=(const BList& other)
{
	if (this != &other) {
		MakeEmpty();
		fBlockSize = other.fBlockSize;
		AddList(&other);
	}
	return *this;
}

void*
BList::ItemAt(int32 index) const
{
	return index >= 0 && index < fCount ? Base()[index] : nullptr;
}

void*
BList::Items() const
{
	return Base();
}

int32
BList::IndexOf(void* item) const
{
	void** end = Base() + fCount;
	void** found = std::find(Base(), end, item);
	return found == end ? -1 : static_cast<int32>(found - Base());
}

bool
BList::AddItem(void* item, int32 index)
{
	if (!MakeGap(index, 1))
		return false;
	Base()[index] = item;
	return true;
}

bool
BList::AddList(const BList* other)
{
	return AddList(other, fCount);
}

bool
BList::AddList(const BList* other, int32 index)
{
	if (other == nullptr)
		return false;
	int32 count = other->fCount;
	if (!MakeGap(index, count))
		return false;
	if (other != this) {
		std::copy_n(other->Base(), count, Base() + index);
	} else {
		// The list itself is now split by the gap that its copy goes into.
		std::copy_n(Base(), index, Base() + index);
		std::copy_n(Base() + index + count, count - index, Base() + index + index);
	}
	return true;
}

bool
BList::RemoveItem(void* item)
{
	return RemoveItems(IndexOf(item), 1);
}

void*
BList::RemoveItem(int32 index)
{
	void* item = ItemAt(index);
	RemoveItems(index, 1);
	return item;
}

bool
BList::RemoveItems(int32 index, int32 count)
{
	if (index < 0 || index >= fCount || count < 0)
		return false;
	count = std::min(count, fCount - index);
	int32 after = fCount - index - count;
	if (index < after) {
		std::move_backward(Base(), Base() + index, Base() + index + count);
		fStart += count;
	} else
		std::move(Base() + index + count, Base() + fCount, Base() + index);
	fCount -= count;
	return true;
}

void
BList::MakeEmpty()
{
	fSlots.reset();
	fCapacity = fStart = fCount = 0;
}

bool
BList::SwapItems(int32 a, int32 b)
{
	if (a < 0 || a >= fCount || b < 0 || b >= fCount)
		return false;
	std::swap(Base()[a], Base()[b]);
	return true;
}

bool
BList::MoveItem(int32 from, int32 to)
{
	if (from < 0 || from >= fCount || to < 0 || to >= fCount)
		return false;
	void** items = Base();
	if (from < to)
		std::rotate(items + from, items + from + 1, items + to + 1);
	else
		std::rotate(items + to, items + from, items + from + 1);
	return true;
}

void
BList::SortItems(int (*compare)(const void*, const void*))
{
	// qsort() rather than std::sort(): a callback that contradicts itself must stay harmless.
	if (fCount > 1 && compare != nullptr)
		std::qsort(Base(), static_cast<size_t>(fCount), sizeof(void*), compare);
}

void
BList::DoForEach(bool (*visit)(void*))
{
	for (int32 i = 0; i < fCount; i++) {
		if (visit(Base()[i]))
			return;
	}
}

void
BList::DoForEach(bool (*visit)(void*, void*), void* argument)
{
	for (int32 i = 0; i < fCount; i++) {
		if (visit(Base()[i], argument))
			return;
	}
}

// Opens `count` slots before `index`, whose contents are left over; false changes nothing.
bool
BList::MakeGap(int32 index, int32 count)
{
	if (index < 0 || index > fCount)
		return false;
	bool atFront = index < fCount - index;
	if (!MakeRoom(atFront, count))
		return false;
	if (atFront) {
		fStart -= count;
		std::move(Base() + count, Base() + count + index, Base());
	} else
		std::move_backward(Base() + index, Base() + fCount, Base() + fCount + count);
	fCount += count;
	return true;
}

// Makes room for `count` items at one end. When half of the slots are free anyway the items go to
// the middle; else the slots are doubled, with all new ones at this end. Either way an end has
// to be filled by a share of all items before they move again.
bool
BList::MakeRoom(bool atFront, int32 count)
{
	int32 free = fCapacity - fCount;
	if ((atFront ? fStart : free - fStart) >= count)
		return true;
	if (free >= fCount && free / 2 >= count) {
		void** from = Base();
		fStart = atFront ? free - free / 2 : free / 2;
		if (from < Base())
			std::move_backward(from, from + fCount, Base() + fCount);
		else
			std::move(from, from + fCount, Base());
		return true;
	}

	int32 limit = INT_MAX - fCapacity;
	int32 first = std::min(kFirstCapacity, fBlockSize);
	int32 growth = std::max({std::min(fCapacity, limit), count, first});
	if (growth > limit)
		return false;
	std::unique_ptr<void*[]> slots(
		new (std::nothrow) void*[static_cast<size_t>(fCapacity) + growth]);
	if (slots == nullptr)
		return false;
	int32 start = atFront ? fStart + growth : fStart;
	std::copy_n(Base(), fCount, slots.get() + start);
	fSlots = std::move(slots);
	fCapacity += growth;
	fStart = start;
	return true;
}
