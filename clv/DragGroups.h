// SPDX-License-Identifier: MIT

// Runs of columns that are moved together by dragging a label, and where they may go.

#pragma once

#include "clv/CLVColumn.h"

struct DragGroup {
	// Positions in the display order.
	int32 first = 0;
	int32 last = 0;
	// Begin of the first shown column, end of the last one; -1 when none is shown.
	float left = -1;
	float right = -1;
	CLVColumn* lastShown = nullptr;
	bool allLockedAtStart = false;
	bool allLockedAtEnd = false;
	uint32 flags = 0; // of all its columns: not movable, lock at start, lock at end

	bool IsShown() const { return lastShown != nullptr; }
};

// Where one group may go next: to the place of the group before or behind it.
struct DragSnap {
	int32 previous = -1; // these groups; -1 when it cannot go that way
	int32 next = -1;
	float left = -1; // a pointer left of this moves it before `previous`
	float right = -1;
};

std::vector<DragGroup> MakeDragGroups(const std::vector<CLVColumn*>& displayOrder);

// The group that holds this display position, or -1.
int32 DragGroupAt(const std::vector<DragGroup>& groups, int32 position);

DragSnap FindDragSnap(const std::vector<DragGroup>& groups, int32 moving);

// The display order with one group put before the one that is `newIndex` now; the number of groups
// stands for the end.
std::vector<CLVColumn*> ShiftedDisplayOrder(const std::vector<CLVColumn*>& displayOrder,
	const std::vector<DragGroup>& groups, int32 moving, int32 newIndex);
