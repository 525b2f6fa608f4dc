// SPDX-License-Identifier: MIT

// The integer types, limits and small helpers that every kit shares.

#pragma once

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

#include <support/Errors.h>

typedef std::int8_t int8;
typedef std::int16_t int16;
typedef std::int32_t int32;
typedef std::int64_t int64;
typedef std::uint8_t uint8;
typedef std::uint16_t uint16;
typedef std::uint32_t uint32;
typedef std::uint64_t uint64;

typedef int64 bigtime_t; // microseconds
typedef uint32 type_code;
typedef uint32 perform_code;

enum {
	B_OS_NAME_LENGTH = 32,
	B_FILE_NAME_LENGTH = 256, // with the terminating zero
	B_PATH_NAME_LENGTH = 4096,
	B_ATTR_NAME_LENGTH = 255,
	B_MIME_TYPE_LENGTH = 240,
};

constexpr bigtime_t B_INFINITE_TIMEOUT = 0x7fffffffffffffffLL;

// Adds `value` to *`target` as one step, fully ordered; returns what was there before.
inline int32
atomic_add(int32* target, int32 value)
{
	return __atomic_fetch_add(target, value, __ATOMIC_SEQ_CST);
}
