// SPDX-License-Identifier: MIT

// What text views are told by the kits themselves.

#pragma once

#include <support/SupportDefs.h>

namespace BPrivate {

enum : uint32 {
	kMsgBlink = '_TBL',
	kMsgAutoScroll = '_TAS',
	kMsgComposing = '_TCM', // to the focus view: "text" string, "caret" int32 in bytes
};

} // namespace BPrivate
