// SPDX-License-Identifier: MIT

// BVolume: a mounted file system, as it was when the object was set.

#pragma once

#include <kernel/fs_info.h>

class BDirectory;

class BVolume {
public:
	BVolume() = default;
	explicit BVolume(dev_t device);

	status_t SetTo(dev_t device); // B_BAD_VALUE for an unknown device
	void Unset();
	status_t InitCheck() const { return fStatus; }

	dev_t Device() const { return fDevice; } // -1 when not initialised
	bool IsPersistent() const { return (fFlags & B_FS_IS_PERSISTENT) != 0; }
	bool IsShared() const { return (fFlags & B_FS_IS_SHARED) != 0; }
	bool IsRemovable() const { return (fFlags & B_FS_IS_REMOVABLE) != 0; }
	bool IsReadOnly() const { return (fFlags & B_FS_IS_READONLY) != 0; }

	status_t GetRootDirectory(BDirectory* folder) const;

private:
	dev_t fDevice = static_cast<dev_t>(-1);
	uint32 fFlags = 0;
	status_t fStatus = B_NO_INIT;
};
