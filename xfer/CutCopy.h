// SPDX-License-Identifier: MIT

// The clipboard as seen by a paste.

#pragma once

#include "xfer/FileXFer.h"

class BMessage;

namespace NFileXFer {

// What a paste of the clipboard's contents does; false when they are not meant for pasting.
bool FindPasteType(const BMessage& data, ETransferType* type);

// A file that was cut is pasted once: what is there under its name later is another one. Others
// that were cut with it stay on the clipboard.
void ForgetCut(const entry_ref& ref);

} // namespace NFileXFer
