// SPDX-License-Identifier: MIT

// Status codes of the kits, their texts, and the one place where the kernel's error numbers
// become status codes.

#pragma once

#include <climits>
#include <cstdint>
#include <cstring> // before the macro below, which would maim its declaration of strerror()

typedef std::int32_t status_t;

enum : std::int32_t {
	B_GENERAL_ERROR_BASE = INT_MIN,
	B_OS_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x1000,
	B_APP_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x2000,
	B_INTERFACE_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x3000,
	B_MEDIA_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x4000,
	B_STORAGE_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x6000,
	B_POSIX_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x7000,
};

enum : std::int32_t {
	B_OK = 0,
	B_NO_ERROR = 0,
	B_ERROR = -1,

	B_NO_MEMORY = B_GENERAL_ERROR_BASE,
	B_IO_ERROR,
	B_PERMISSION_DENIED,
	B_BAD_INDEX,
	B_BAD_TYPE,
	B_BAD_VALUE,
	B_MISMATCHED_VALUES,
	B_NAME_NOT_FOUND,
	B_NAME_IN_USE,
	B_TIMED_OUT,
	B_INTERRUPTED,
	B_WOULD_BLOCK,
	B_CANCELED,
	B_NO_INIT,
	B_BUSY,
	B_NOT_ALLOWED,

	B_BAD_SEM_ID = B_OS_ERROR_BASE,
	B_NO_MORE_SEMS,
	B_BAD_THREAD_ID = B_OS_ERROR_BASE + 0x100,
	B_NO_MORE_THREADS,
	B_BAD_THREAD_STATE,
	B_BAD_TEAM_ID,
	B_NO_MORE_TEAMS,
	B_BAD_PORT_ID = B_OS_ERROR_BASE + 0x200,
	B_NO_MORE_PORTS,
	B_BAD_IMAGE_ID = B_OS_ERROR_BASE + 0x300,
	B_BAD_ADDRESS,
	B_NOT_AN_EXECUTABLE,
	B_DEBUGGER_ALREADY_INSTALLED = B_OS_ERROR_BASE + 0x400,

	B_BAD_REPLY = B_APP_ERROR_BASE,
	B_DUPLICATE_REPLY,
	B_MESSAGE_TO_SELF,
	B_BAD_HANDLER,
	B_ALREADY_RUNNING,
	B_LAUNCH_FAILED,
	B_AMBIGUOUS_APP_LAUNCH,
	B_UNKNOWN_MIME_TYPE,
	B_BAD_SCRIPT_SYNTAX,
	B_LAUNCH_FAILED_NO_RESOLVE_LINK,
	B_LAUNCH_FAILED_EXECUTABLE,
	B_LAUNCH_FAILED_APP_NOT_FOUND,
	B_LAUNCH_FAILED_APP_IN_TRASH,
	B_LAUNCH_FAILED_NO_PREFERRED_APP,
	B_LAUNCH_FAILED_FILES_APP_NOT_FOUND,

	B_FILE_ERROR = B_STORAGE_ERROR_BASE,
	B_FILE_NOT_FOUND,
	B_FILE_EXISTS,
	B_ENTRY_NOT_FOUND,
	B_NAME_TOO_LONG,
	B_NOT_A_DIRECTORY,
	B_DIRECTORY_NOT_EMPTY,
	B_DEVICE_FULL,
	B_READ_ONLY_DEVICE,
	B_IS_A_DIRECTORY,
	B_NO_MORE_FDS,
	B_CROSS_DEVICE_LINK,
	B_LINK_LIMIT,
	B_BUSTED_PIPE,
	B_UNSUPPORTED,
};

namespace BPrivate {

// The status code for one of the kernel's error numbers (a positive errno value).
status_t StatusFromErrno(int error);

// The text that strerror() gives; never null. The pointer is the calling thread's until its
// next call.
char* StatusText(status_t code);

} // namespace BPrivate

// The C library's strerror() knows nothing of negative status codes: code that includes this
// header gets ours instead.
#define strerror(code) ::BPrivate::StatusText(code)
