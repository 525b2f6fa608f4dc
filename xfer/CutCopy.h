// SPDX-License-Identifier: MIT

// The clipboard as seen by a paste.

#pragma once

#include "xfer/FileXFer.h"

class BMessage;

namespace NFileXFer {

// What a paste of the clipboard's contents does; false when they are not meant for pasting.
bool FindPasteType(const BMessage& data, ETransferType* type);

// Takes one file that was cut from the clipboard; others that were cut with it stay there.
void ForgetCutFile(const entry_ref& ref);

} // namespace NFileXFer
