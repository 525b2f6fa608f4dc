// SPDX-License-Identifier: MIT

// What a thread may not do: rights that root would have, and system calls that some kernels and
// file systems do not know.

#pragma once

#include <cstdint>
#include <sys/types.h>

// The calling thread has no more rights on files than somebody, until the end.
class AsNobody {
public:
	AsNobody();
	~AsNobody();
	AsNobody(const AsNobody&) = delete;
	AsNobody& operator=(const AsNobody&) = delete;

private:
	int fUser;
};

enum class Denial {
	kNothing,
	kExclusiveRename, // renameat2() knows no flags: EINVAL, as from NFS
	kAndHardLinks,    // and there are no hard links: EPERM, as from FAT
};

// For the calling thread and the processes that it starts, for good.
void Deny(Denial denial);
// Reading (SYS_pread64) or writing (SYS_pwrite64) fails with this error from an offset on, which
// stays below 4 GiB.
void DenyFrom(uint32_t offset, int call, int error);
