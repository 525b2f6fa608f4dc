// SPDX-License-Identifier: MIT

// The table that ties status codes to the kernel's error numbers and to texts.

#include <support/Errors.h>

#include <cerrno>
#include <cstdio>

namespace {

// A row with several error numbers for one status code gives the text of the first.
struct Twin {
	status_t code;
	int error;
};

constexpr Twin kTwins[] = {
	{B_NO_MEMORY, ENOMEM},
	{B_IO_ERROR, EIO},
	{B_PERMISSION_DENIED, EACCES},
	{B_NOT_ALLOWED, EPERM},
	{B_BAD_VALUE, EINVAL},
	{B_INTERRUPTED, EINTR},
	{B_WOULD_BLOCK, EAGAIN},
	{B_TIMED_OUT, ETIMEDOUT},
	{B_BUSY, EBUSY},
	{B_BAD_ADDRESS, EFAULT},
	{B_NOT_AN_EXECUTABLE, ENOEXEC},
	{B_FILE_ERROR, EBADF},
	{B_ENTRY_NOT_FOUND, ENOENT},
	{B_ENTRY_NOT_FOUND, ENODATA}, // no such attribute
	{B_FILE_EXISTS, EEXIST},
	{B_NAME_TOO_LONG, ENAMETOOLONG},
	{B_NOT_A_DIRECTORY, ENOTDIR},
	{B_IS_A_DIRECTORY, EISDIR},
	{B_DIRECTORY_NOT_EMPTY, ENOTEMPTY},
	{B_READ_ONLY_DEVICE, EROFS},
	{B_LINK_LIMIT, ELOOP},
	{B_CROSS_DEVICE_LINK, EXDEV},
	{B_NO_MORE_FDS, EMFILE},
	{B_NO_MORE_FDS, ENFILE},
	{B_DEVICE_FULL, ENOSPC},
	{B_DEVICE_FULL, EDQUOT},
	{B_DEVICE_FULL, E2BIG}, // an attribute that the file system has no room for, as the next
	{B_DEVICE_FULL, ERANGE},
	{B_BUSTED_PIPE, EPIPE},
	{B_UNSUPPORTED, ENOTSUP},
	{B_UNSUPPORTED, ENOSYS},
};

struct OwnText {
	status_t code;
	const char* text;
};

constexpr OwnText kOwnTexts[] = {
	{B_ERROR, "General error"},
	{B_BAD_INDEX, "Index out of range"},
	{B_BAD_TYPE, "Wrong type of data"},
	{B_MISMATCHED_VALUES, "Values do not belong together"},
	{B_NAME_NOT_FOUND, "Name not found"},
	{B_NAME_IN_USE, "Name is in use"},
	{B_CANCELED, "Operation was canceled"},
	{B_NO_INIT, "Object is not initialized"},
	{B_BAD_SEM_ID, "No such semaphore"},
	{B_NO_MORE_SEMS, "No more semaphores"},
	{B_BAD_THREAD_ID, "No such thread"},
	{B_NO_MORE_THREADS, "No more threads"},
	{B_BAD_THREAD_STATE, "Thread is in the wrong state"},
	{B_BAD_TEAM_ID, "No such team"},
	{B_NO_MORE_TEAMS, "No more teams"},
	{B_BAD_PORT_ID, "No such port"},
	{B_NO_MORE_PORTS, "No more ports"},
	{B_BAD_IMAGE_ID, "No such image"},
	{B_DEBUGGER_ALREADY_INSTALLED, "A debugger is installed already"},
	{B_BAD_REPLY, "Unexpected reply"},
	{B_DUPLICATE_REPLY, "A reply was sent already"},
	{B_MESSAGE_TO_SELF, "Message to its own sender"},
	{B_BAD_HANDLER, "Handler belongs to no looper"},
	{B_ALREADY_RUNNING, "Application is running already"},
	{B_LAUNCH_FAILED, "Application could not be started"},
	{B_AMBIGUOUS_APP_LAUNCH, "Several applications match"},
	{B_UNKNOWN_MIME_TYPE, "Unknown file type"},
	{B_BAD_SCRIPT_SYNTAX, "Bad script syntax"},
	{B_LAUNCH_FAILED_NO_RESOLVE_LINK, "Link to the application is broken"},
	{B_LAUNCH_FAILED_EXECUTABLE, "Program file cannot be started"},
	{B_LAUNCH_FAILED_APP_NOT_FOUND, "Application not found"},
	{B_LAUNCH_FAILED_APP_IN_TRASH, "Application is in the Trash"},
	{B_LAUNCH_FAILED_NO_PREFERRED_APP, "No application opens this file type"},
	{B_LAUNCH_FAILED_FILES_APP_NOT_FOUND, "No application found for the file"},
	{B_FILE_NOT_FOUND, "File not found"},
};

thread_local char tText[128];

char*
CopyText(const char* text)
{
	std::snprintf(tText, sizeof(tText), "%s", text);
	return tText;
}

// strerror_r() answers in the C library's own memory or in ours; either way it is copied.
char*
SystemText(int error)
{
	char buffer[sizeof(tText)];
	return CopyText(strerror_r(error, buffer, sizeof(buffer)));
}

} // namespace

status_t
BPrivate::StatusFromErrno(int error)
{
	if (error == 0)
		return B_OK;
	for (const Twin& twin : kTwins) {
		if (twin.error == error)
			return twin.code;
	}
	return B_ERROR;
}

char*
BPrivate::StatusText(status_t code)
{
	if (code >= 0)
		return SystemText(code);
	for (const Twin& twin : kTwins) {
		if (twin.code == code)
			return SystemText(twin.error);
	}
	for (const OwnText& own : kOwnTexts) {
		if (own.code == code)
			return CopyText(own.text);
	}
	std::snprintf(tText, sizeof(tText), "Unknown error 0x%08x", static_cast<unsigned>(code));
	return tText;
}
