// SPDX-License-Identifier: MIT

// Moving, copying, linking and deleting files.
//
// Each move and each copy runs in a thread of its own; the calls return at once, and the panes
// learn of the result from the disk. What a function takes over it deletes.

#pragma once

#include "xfer/FileXFerData.h"
#include "xfer/RefDragMessage.h"

#include <interface/Point.h>

class BDirectory;
class BEntry;
class BHandler;
class BPath;
class BView;

namespace NFileXFer {

enum ETransferType {
	eCopy,
	eMove,
	eLink,
	eCancel,
};

// Does with one entry what a drop, a paste ('PSTE') or a wish for a link ('ILnk') means: as the
// clipboard says, else as the buttons of the drag and the keys held by now say, or the user. The
// view's window is told of the end of a copy. False when nothing was begun, as by a paste of what
// is not on the clipboard any more. The view's thread; it waits while the menu is open. Without a
// view any thread: what would be asked is cancelled.
bool HandleFileMessage(
	const BMessage* message, const entry_ref* entry, const entry_ref* folder, const BView* view);

// Asks at a point of the screen what to do; eCancel without an answer.
ETransferType FileTransferMenu(const BPoint& where);

// Copies, moves or links an entry into a folder. In its own folder a copy or link gets a name that
// is free, and a move does nothing: false. The handler hears of the end of a copy by 'CpDn'.
// Takes over entry and folder only for a move that was started: true.
bool FileOperation(ETransferType type, BEntry* entry, BDirectory* folder, const BHandler* handler);

// Starts the thread that moves; it takes over both objects unless it could not be started: false.
bool MoveFile(BEntry* entry, BDirectory* folder);
int32 MoveFile_(void* record); // the thread's function
// The move itself; asks before it moves a folder of the system or replaces a file, and waits for
// the answer. Without one, and between volumes, both sides stay as they were.
bool MoveFile_(BEntry* entry, BDirectory* folder);

// A link itself, not what it points to; folders go only into the trash or when they are empty.
bool DeleteFile(const entry_ref* ref, bool toTrash);

// Puts an entry on the clipboard in place of what is there: to be copied for B_COPY, else to be
// moved by the next paste. True, also when there is no clipboard.
bool CutCopy(int32 command, const entry_ref* ref);

// Copies the data and attributes of a regular file, in the calling thread. A target that is there
// is overwritten in place, but not before the source is known to be readable and another file;
// after a failure the target stays as far as it was filled.
bool CopyFile(const entry_ref* source, const BPath* target);
int32 CopyFile_(void* data); // a copying thread's function; takes over its FileXFerData

// True for the folders that the system or the user's session depends on.
bool IsSpecialFolder(BEntry& entry);

} // namespace NFileXFer
