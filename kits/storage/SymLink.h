// SPDX-License-Identifier: MIT

// BSymLink: a symbolic link itself, as a node.

#pragma once

#include <storage/Node.h>

class BSymLink : public BNode {
public:
	using BNode::BNode;

	// The target as it was stored: bytes put into the buffer, with a NUL behind them where there is
	// room. B_BAD_VALUE for what is no link.
	ssize_t ReadLink(char* buffer, size_t size) const;
};
