// SPDX-License-Identifier: MIT

// Tests that mount something run in a process with a mount namespace of its own.

#pragma once

#include <string>

// True in that process. Otherwise the running test is run once more in one, which decides its
// result; it is skipped where the system allows no such namespace:
//
//	if (!InMountNamespace())
//		return;
bool InMountNamespace();

// A file system in memory on a folder, until the end.
class MemoryVolume {
public:
	explicit MemoryVolume(const std::string& path, const std::string& options = "");
	~MemoryVolume();
	MemoryVolume(const MemoryVolume&) = delete;
	MemoryVolume& operator=(const MemoryVolume&) = delete;

	void MakeReadOnly();
	bool Unmount(); // false while it is in use

private:
	std::string fPath;
	bool fIsMounted = true;
};
