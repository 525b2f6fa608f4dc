// SPDX-License-Identifier: MIT

#include "clv/DragGroups.h"

#include <algorithm>

static constexpr uint32 kGroupFlags =
	CLV_COLUMN_NOT_MOVABLE | CLV_COLUMN_LOCK_AT_START | CLV_COLUMN_LOCK_AT_END;

std::vector<DragGroup>
MakeDragGroups(const std::vector<CLVColumn*>& displayOrder)
{
	std::vector<DragGroup> groups;
	bool joined = false;
	for (size_t i = 0; i < displayOrder.size(); i++) {
		CLVColumn* column = displayOrder[i];
		const uint32 flags = column->Flags();
		if (!joined) {
			DragGroup group;
			group.first = static_cast<int32>(i);
			group.allLockedAtStart = group.allLockedAtEnd = true;
			groups.push_back(group);
		}
		DragGroup& group = groups.back();
		group.last = static_cast<int32>(i);
		if (column->IsShown()) {
			if (!group.IsShown())
				group.left = column->Begin();
			group.right = column->End();
			group.lastShown = column;
		}
		group.allLockedAtStart = group.allLockedAtStart && (flags & CLV_COLUMN_LOCK_AT_START) != 0;
		group.allLockedAtEnd = group.allLockedAtEnd && (flags & CLV_COLUMN_LOCK_AT_END) != 0;
		group.flags |= flags & kGroupFlags;
		joined = (flags & CLV_COLUMN_DRAG_WITH_RIGHT) != 0;
	}
	return groups;
}

int32
DragGroupAt(const std::vector<DragGroup>& groups, int32 position)
{
	for (size_t i = 0; i < groups.size(); i++) {
		if (position >= groups[i].first && position <= groups[i].last)
			return static_cast<int32>(i);
	}
	return -1;
}

// Locked columns stay at their end of the list: a group may only come before another one when the
// locks of both allow it.
static bool
MayComeBefore(const DragGroup& group, const DragGroup& other)
{
	return ((other.flags & CLV_COLUMN_LOCK_AT_START) == 0 || group.allLockedAtStart) &&
		((group.flags & CLV_COLUMN_LOCK_AT_END) == 0 || other.allLockedAtEnd);
}

DragSnap
FindDragSnap(const std::vector<DragGroup>& groups, int32 moving)
{
	DragSnap snap;
	const int32 count = static_cast<int32>(groups.size());
	if (moving < 0 || moving >= count)
		return snap;
	const DragGroup& group = groups[static_cast<size_t>(moving)];
	const float width = group.right - group.left;
	int32 previous = moving - 1;
	while (previous >= 0 && !groups[static_cast<size_t>(previous)].IsShown())
		previous--;
	int32 next = moving + 1;
	while (next < count && !groups[static_cast<size_t>(next)].IsShown())
		next++;
	if (previous >= 0) {
		const DragGroup& other = groups[static_cast<size_t>(previous)];
		if (MayComeBefore(group, other)) {
			snap.previous = previous;
			snap.left = std::min(other.left + width, other.right);
		}
	}
	if (next < count) {
		const DragGroup& other = groups[static_cast<size_t>(next)];
		if (MayComeBefore(other, group)) {
			snap.next = next;
			snap.right = std::max(other.right - width, other.left);
		}
	}
	return snap;
}

std::vector<CLVColumn*>
ShiftedDisplayOrder(const std::vector<CLVColumn*>& displayOrder,
	const std::vector<DragGroup>& groups, int32 moving, int32 newIndex)
{
	std::vector<CLVColumn*> order;
	order.reserve(displayOrder.size());
	auto append = [&](size_t index) {
		const DragGroup& group = groups[index];
		order.insert(
			order.end(), displayOrder.begin() + group.first, displayOrder.begin() + group.last + 1);
	};
	for (size_t i = 0; i <= groups.size(); i++) {
		if (static_cast<int32>(i) == newIndex)
			append(static_cast<size_t>(moving));
		if (i < groups.size() && static_cast<int32>(i) != moving)
			append(i);
	}
	return order;
}
