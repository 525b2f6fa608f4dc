// SPDX-License-Identifier: MIT

#include "support/GeneralFun.h"

#include <cstdio>
#include <cstring>

namespace {

struct CodeName {
	status_t code;
	const char* name;
};

#define NAMED(code)                                                                                \
	{                                                                                              \
		code, #code                                                                                \
	}

// clang-format off
const CodeName kCodeNames[] = {
	NAMED(B_NO_ERROR), NAMED(B_ERROR),
	NAMED(B_NO_MEMORY), NAMED(B_IO_ERROR), NAMED(B_PERMISSION_DENIED), NAMED(B_BAD_INDEX),
	NAMED(B_BAD_TYPE), NAMED(B_BAD_VALUE), NAMED(B_MISMATCHED_VALUES), NAMED(B_NAME_NOT_FOUND),
	NAMED(B_NAME_IN_USE), NAMED(B_TIMED_OUT), NAMED(B_INTERRUPTED), NAMED(B_WOULD_BLOCK),
	NAMED(B_CANCELED), NAMED(B_NO_INIT), NAMED(B_BUSY), NAMED(B_NOT_ALLOWED),
	NAMED(B_BAD_SEM_ID), NAMED(B_NO_MORE_SEMS), NAMED(B_BAD_THREAD_ID), NAMED(B_NO_MORE_THREADS),
	NAMED(B_BAD_THREAD_STATE), NAMED(B_BAD_TEAM_ID), NAMED(B_NO_MORE_TEAMS), NAMED(B_BAD_PORT_ID),
	NAMED(B_NO_MORE_PORTS), NAMED(B_BAD_IMAGE_ID), NAMED(B_BAD_ADDRESS),
	NAMED(B_NOT_AN_EXECUTABLE), NAMED(B_DEBUGGER_ALREADY_INSTALLED),
	NAMED(B_BAD_REPLY), NAMED(B_DUPLICATE_REPLY), NAMED(B_MESSAGE_TO_SELF), NAMED(B_BAD_HANDLER),
	NAMED(B_ALREADY_RUNNING), NAMED(B_LAUNCH_FAILED), NAMED(B_AMBIGUOUS_APP_LAUNCH),
	NAMED(B_UNKNOWN_MIME_TYPE), NAMED(B_BAD_SCRIPT_SYNTAX), NAMED(B_LAUNCH_FAILED_NO_RESOLVE_LINK),
	NAMED(B_LAUNCH_FAILED_EXECUTABLE), NAMED(B_LAUNCH_FAILED_APP_NOT_FOUND),
	NAMED(B_LAUNCH_FAILED_APP_IN_TRASH), NAMED(B_LAUNCH_FAILED_NO_PREFERRED_APP),
	NAMED(B_LAUNCH_FAILED_FILES_APP_NOT_FOUND),
	NAMED(B_FILE_ERROR), NAMED(B_FILE_NOT_FOUND), NAMED(B_FILE_EXISTS), NAMED(B_ENTRY_NOT_FOUND),
	NAMED(B_NAME_TOO_LONG), NAMED(B_NOT_A_DIRECTORY), NAMED(B_DIRECTORY_NOT_EMPTY),
	NAMED(B_DEVICE_FULL), NAMED(B_READ_ONLY_DEVICE), NAMED(B_IS_A_DIRECTORY),
	NAMED(B_NO_MORE_FDS), NAMED(B_CROSS_DEVICE_LINK), NAMED(B_LINK_LIMIT), NAMED(B_BUSTED_PIPE),
	NAMED(B_UNSUPPORTED),
};
// clang-format on

#undef NAMED

const char*
NameOf(status_t code)
{
	for (const CodeName& each : kCodeNames) {
		if (each.code == code)
			return each.name;
	}
	return "Unknown Error Code";
}

} // namespace

Benaphore NGeneralFunction::fStrErrorLock("strerror");

char*
NGeneralFunction::ErrorString(char* buf, status_t code)
{
	std::strcpy(buf, NameOf(code));
	std::strcat(buf, " ");

	bool locked = fStrErrorLock.Lock() == B_OK;
	std::sprintf(StrEnd(buf), "(%ld) : %s", static_cast<long>(code), strerror(code));
	if (locked)
		fStrErrorLock.Unlock();
	return buf;
}

int
NGeneralFunction::intcmp(int a, int b)
{
	return a < b ? -1 : a > b ? 1 : 0;
}

char*
NGeneralFunction::StrEnd(char* s)
{
	return s + std::strlen(s);
}
