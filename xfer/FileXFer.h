// SPDX-License-Identifier: MIT

// Moving, copying, linking and deleting files.
//
// Each move and each copy runs in a thread of its own; the calls return at once, and the panes
// learn of the result from the disk. What a function takes over it deletes.

#pragma once

#include "xfer/FileXFerData.h"

#include <storage/EntryRef.h>

class BDirectory;
class BEntry;
class BHandler;
class BPath;

namespace NFileXFer {

enum ETransferType {
	eCopy,
	eMove,
	eLink,
	eCancel,
};

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

// Copies the data and attributes of a regular file, in the calling thread. A target that is there
// is overwritten in place, but not before the source is known to be readable and another file;
// after a failure the target stays as far as it was filled.
bool CopyFile(const entry_ref* source, const BPath* target);
int32 CopyFile_(void* data); // a copying thread's function; takes over its FileXFerData

// True for the folders that the system or the user's session depends on.
bool IsSpecialFolder(BEntry& entry);

} // namespace NFileXFer
