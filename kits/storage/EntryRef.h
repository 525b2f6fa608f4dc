// SPDX-License-Identifier: MIT

// entry_ref and node_ref: names for entries and nodes. Plain values without dependencies, so that
// messages can carry them; the storage kit gives them meaning.

#pragma once

#include <support/SupportDefs.h>

namespace BPrivate {

// Messages carry device numbers as int32, so only the low 32 bits count.
inline bool
SameDevice(dev_t a, dev_t b)
{
	return static_cast<uint32>(a) == static_cast<uint32>(b);
}

} // namespace BPrivate

// An entry: its folder's device and inode and its own name. It implies no existence and survives
// renames of the folders above it. Equal when all three are equal, names byte by byte.
struct entry_ref {
	entry_ref() = default;
	entry_ref(dev_t dev, ino_t dir, const char* leaf);
	entry_ref(const entry_ref& other);
	entry_ref(entry_ref&& other) noexcept;
	~entry_ref();

	entry_ref& operator=(const entry_ref& other);
	entry_ref& operator=(entry_ref&& other) noexcept;
	bool operator==(const entry_ref& other) const;
	bool operator!=(const entry_ref& other) const { return !(*this == other); }

	// Copies the text; NULL clears. B_NO_MEMORY.
	status_t set_name(const char* leaf);

	dev_t device = static_cast<dev_t>(-1);
	ino_t directory = static_cast<ino_t>(-1);
	char* name = nullptr; // from malloc(), owned
};

struct node_ref {
	bool operator==(const node_ref& other) const
	{
		return BPrivate::SameDevice(device, other.device) && node == other.node;
	}
	bool operator!=(const node_ref& other) const { return !(*this == other); }

	dev_t device = static_cast<dev_t>(-1);
	ino_t node = static_cast<ino_t>(-1);
};
