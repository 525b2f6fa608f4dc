// SPDX-License-Identifier: MIT

// The codes (`what`) of the messages that the kits themselves send.

#pragma once

#include <support/SupportDefs.h>

enum : uint32 {
	// application
	B_ABOUT_REQUESTED = '_ABR',
	B_QUIT_REQUESTED = '_QRQ',
	B_READY_TO_RUN = '_RTR',
	B_ARGV_RECEIVED = '_ARG',
	B_REFS_RECEIVED = '_RRC',

	// windows and views
	B_KEY_DOWN = '_KYD',
	B_KEY_UP = '_KYU',
	B_MODIFIERS_CHANGED = '_MCH',
	B_MOUSE_DOWN = '_MDN',
	B_MOUSE_UP = '_MUP',
	B_MOUSE_MOVED = '_MMV',
	B_MOUSE_WHEEL_CHANGED = '_MWC',
	B_PULSE = '_PUL',
	B_VALUE_CHANGED = '_VCH',
	B_VIEW_MOVED = '_VMV',
	B_VIEW_RESIZED = '_VRS',
	B_WINDOW_MOVED = '_WMV',
	B_WINDOW_RESIZED = '_WRS',
	B_WINDOW_ACTIVATED = '_ACT',

	// editing, drags and the clipboard
	B_CUT = 'CCUT',
	B_COPY = 'COPY',
	B_PASTE = 'PSTE',
	B_SELECT_ALL = 'SALL',
	B_UNDO = 'UNDO',
	B_REDO = 'REDO',
	B_SIMPLE_DATA = 'DATA',
	B_MIME_DATA = 'MIME',

	// storage
	B_NODE_MONITOR = 'NDMN',

	// answers
	B_REPLY = 'RPLY',
	B_NO_REPLY = 'NONE',
	B_MESSAGE_NOT_UNDERSTOOD = 'MNOT',
};
