// SPDX-License-Identifier: MIT

// The icons that we draw ourselves, for machines and types without one in the desktop's theme.
// Internal to this folder.

#pragma once

#include <support/SupportDefs.h>

#include <QImage>

namespace desktop {

enum class BuiltinIcon {
	kFolder,
	kLink,
	kBrokenLink,
	kText,
	kImage,
	kAudio,
	kVideo,
	kArchive,
	kProgram,
	kUnknown,
};

// Any thread; waits until the desktop is up, and is empty without one.
QImage DrawBuiltinIcon(BuiltinIcon icon, int32 size);

} // namespace desktop
