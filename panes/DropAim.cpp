// SPDX-License-Identifier: MIT

#include "panes/DropAim.h"

#include <algorithm>

void
DropAim::Painted()
{
	const bigtime_t now = system_time();
	fRowsShownAt = std::min(fRowsShownAt, now);
	if (fIsOver && fSeen != fFolder) {
		fSeen = fFolder;
		fSeenAt = now;
	}
}

// A pointer that rests means the folder that it was moved to, wherever that is now.
void
DropAim::MovedOver(BPoint place, bigtime_t when, const entry_ref& folder)
{
	if (!fIsOver || place != fPlace) {
		fPlace = place;
		fMovedAt = when;
		fFolder = folder;
	}
	fIsOver = true;
	fToldAt = when;
}

void
DropAim::Left()
{
	fIsOver = false;
	fFolder = entry_ref();
	fSeen = entry_ref();
}

bool
DropAim::IsMeant(const entry_ref& folder) const
{
	return !fIsOver || fRowsShownAt <= fMovedAt || (folder == fSeen && fSeenAt <= fToldAt);
}
