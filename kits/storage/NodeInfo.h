// SPDX-License-Identifier: MIT

// BNodeInfo: the type of a node's content and the icon that stands for the node.

#pragma once

#include <storage/Mime.h>

#include <sys/stat.h>

class BNode;
struct entry_ref;

namespace BPrivate {
class NodeType;
}

class BNodeInfo {
public:
	BNodeInfo() = default;
	// Borrows the node, which must outlive this object.
	explicit BNodeInfo(BNode* node);

	status_t SetTo(BNode* node); // B_BAD_VALUE for NULL and nodes that are not initialised
	status_t InitCheck() const { return fStatus; }

	// The type attribute; else, for regular files, what the MIME database makes of the name, or of
	// the leading bytes when the name says nothing. The buffer has B_MIME_TYPE_LENGTH bytes and
	// stays as it is on failure: B_ENTRY_NOT_FOUND, as for folders and links without the attribute.
	status_t GetType(char* type) const;

	// The node's own icon, else its type's, else a general one. The bitmap must have just the size
	// asked for, in B_CMAP8, B_RGB32 or B_RGBA32: else B_BAD_VALUE. Fails otherwise only when the
	// node is not to be had, and then leaves the bitmap as it is. A link is not followed.
	// Implemented in the interface kit.
	status_t GetTrackerIcon(BBitmap* bitmap, icon_size size = B_LARGE_ICON) const;
	static status_t GetTrackerIcon(
		const entry_ref* ref, BBitmap* bitmap, icon_size size = B_LARGE_ICON);
	// Both at once, of an entry whose status is known; rows of lists read themselves so. For most
	// entries it is one system call. `type` is empty where GetType() would fail.
	static status_t GetTypeAndIcon(const entry_ref* ref, const struct stat& status, char* type,
		BBitmap* bitmap, icon_size size);

private:
	status_t GetNodeType(BPrivate::NodeType* type) const;

	BNode* fNode = nullptr;
	status_t fStatus = B_NO_INIT;
};
