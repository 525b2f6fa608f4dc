// SPDX-License-Identifier: MIT

// The node monitor: messages about what happens to folders and in them, whoever does it.
//
// Each message is a B_NODE_MONITOR with "opcode" and "device" (int32) and:
//
//	B_ENTRY_CREATED   "directory", "node" (int64), "name"
//	B_ENTRY_REMOVED   "directory", "node" (int64), "name"
//	B_ENTRY_MOVED     "from directory", "to directory", "node" (int64), "name", "from name"
//	B_STAT_CHANGED    "node" (int64)
//	B_ATTR_CHANGED    "node" (int64)
//
// The names tell hard links apart, and "node" is -1 of what was gone before anybody could look.
// They say how what the target knows of the folder differs from what is there now: a file that
// came and went at once is not told of. What the target knows is what it was told, from what was
// there when it asked to watch, or at the first listing by its thread with a BDirectory after that.
// Later listings there may be somebody else's: how they differ from what the target knew is told,
// of each such name a removal and what is there now. To list a folder anew, watch it anew before.
//
// A target has at most 64 messages waiting; what else happens meanwhile is merged for each name.
// Changes of one entry's status or attributes are told at most once in 250 ms, the last one always.
//
// Any thread may call. Changes made by other machines are not seen.

#pragma once

#include <storage/EntryRef.h>

class BHandler;
class BLooper;
class BMessenger;

enum {
	B_STOP_WATCHING = 0,
	B_WATCH_NAME = 1, // the folder itself is moved or removed
	B_WATCH_STAT = 2, // its status, and with B_WATCH_DIRECTORY that of its entries
	B_WATCH_ATTR = 4, // the same of attributes
	B_WATCH_DIRECTORY = 8,
	B_WATCH_ALL = 0x0f
};

enum {
	B_ENTRY_CREATED = 1,
	B_ENTRY_REMOVED = 2,
	B_ENTRY_MOVED = 3,
	B_STAT_CHANGED = 4,
	B_ATTR_CHANGED = 5
};

// Watches a folder that was met before, not another kind of node. A second call for the same
// folder and target replaces the flags; B_STOP_WATCHING ends it. What the target was not yet
// handed of a watch that ends is taken back. A target that is deleted ends its watches.
//
// B_BAD_VALUE: unset or unknown node, or flags of no meaning. B_ENTRY_NOT_FOUND: the folder is
// gone, or there is nothing to stop. B_BAD_HANDLER: the handler is in no looper.
// B_PERMISSION_DENIED: it may not be read. B_NO_MEMORY: the system's watches are used up.
status_t watch_node(
	const node_ref* node, uint32 flags, const BHandler* handler, const BLooper* looper = nullptr);
status_t watch_node(const node_ref* node, uint32 flags, BMessenger target);

// Ends all watches of a target. B_ENTRY_NOT_FOUND when it has none.
status_t stop_watching(const BHandler* handler, const BLooper* looper = nullptr);
status_t stop_watching(BMessenger target);
