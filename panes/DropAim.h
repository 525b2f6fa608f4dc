// SPDX-License-Identifier: MIT

// Which folder a drop means: the one that lay under the pointer on the screen when the button went
// up. A window is told of moves and drops a little later, and by then rows may have moved.
//
// Thread: the list's window's.

#pragma once

#include <interface/Point.h>
#include <kernel/OS.h>
#include <storage/EntryRef.h>

class DropAim {
public:
	void RowsMoved() { fRowsShownAt = B_INFINITE_TIMEOUT; } // until they are painted
	void Painted();

	// A drag was at this place of the screen at this time, and the folder lies there now. A drop
	// is told of as a move first.
	void MovedOver(BPoint place, bigtime_t when, const entry_ref& folder);
	void Left();

	// False when the folder has come under the pointer meanwhile.
	bool IsMeant(const entry_ref& folder) const;

private:
	bool fIsOver = false;
	BPoint fPlace;
	bigtime_t fMovedAt = 0; // to there
	bigtime_t fToldAt = 0;  // the last move
	entry_ref fFolder;      // there when the pointer came
	entry_ref fSeen;        // the same, painted
	bigtime_t fSeenAt = B_INFINITE_TIMEOUT;
	bigtime_t fRowsShownAt = 0; // since when the rows are where they are
};
