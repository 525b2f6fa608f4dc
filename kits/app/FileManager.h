// SPDX-License-Identifier: MIT

// The desktop's file manager as a program that takes messages. Internal to the app kit; any
// thread.

#pragma once

#include <support/SupportDefs.h>

class BMessage;

namespace BPrivate {

bool IsFileManagerSignature(const char* signature);

// Runs, or would be started by a message.
bool FileManagerIsRunning();

// B_REFS_RECEIVED opens its "refs": folders in the file manager, which is not waited for, files as
// BRoster::Launch() does. It understands nothing else, and never answers.
status_t SendToFileManager(const BMessage& message);

} // namespace BPrivate
