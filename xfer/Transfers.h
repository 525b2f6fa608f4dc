// SPDX-License-Identifier: MIT

// The threads that move and copy.
//
// There is one for each file, and all are made at once; but only a few run at a time, and each that
// ends lets the next one start. Thousands at work would take gigabytes for their stacks and
// buffers, and a window would wait behind all of them for the processor. A slow one does not hold
// the others up: whenever none has ended for a moment one more may run. One that waits for an
// answer of the user makes room for another.
//
// Two copies to the same path come one after the other: together they would leave a mixture of
// both. A path that a copy is on its way to counts as taken from the call on.

#pragma once

#include <kernel/OS.h>

#include <string>

namespace NFileXFer {

// Makes a thread of this name that will run function(data); false when there is none. `target` is
// the path that is written to, empty when others may write there at the same time.
bool StartTransfer(const char* name, thread_func function, void* data, std::string target = "");

// True while a transfer that runs or waits writes to this path.
bool IsTransferTarget(const std::string& path);

// The calling transfer waits for the user as long as this lives.
class TransferPause {
public:
	TransferPause();
	~TransferPause();
	TransferPause(const TransferPause&) = delete;
	TransferPause& operator=(const TransferPause&) = delete;
};

} // namespace NFileXFer
