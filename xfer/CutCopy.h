// SPDX-License-Identifier: MIT

// The clipboard as seen by a paste.

#pragma once

#include "xfer/FileXFer.h"

class BMessage;

namespace NFileXFer {

// What a paste of the clipboard's contents does; false when they are not meant for pasting.
bool FindPasteType(const BMessage& data, ETransferType* type);

// What is cut is pasted once, since what is there under its name later is another file. After a
// paste has begun: empties the clipboard if the message is a cut and is still there.
void ForgetCut(const BMessage& pasted);

// Takes one file that was cut from the clipboard; others that were cut with it stay there.
void ForgetCutFile(const entry_ref& ref);

bool HasRef(const BMessage& message, const entry_ref& ref);
bool HaveSameRefs(const BMessage& a, const BMessage& b);

} // namespace NFileXFer
