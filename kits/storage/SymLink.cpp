// SPDX-License-Identifier: MIT

#include <storage/SymLink.h>

#include <unistd.h>

using namespace BPrivate;

ssize_t
BSymLink::ReadLink(char* buffer, size_t size) const
{
	if (buffer == nullptr || size == 0)
		return B_BAD_VALUE;
	if (InitCheck() != B_OK)
		return B_NO_INIT;
	ssize_t length = Retry([&] { return readlinkat(Descriptor(), "", buffer, size); });
	if (length < 0)
		// Asked so, the kernel says ENOENT for all that is no link.
		return errno == ENOENT ? B_BAD_VALUE : StatusFromErrno(errno);
	if (static_cast<size_t>(length) < size)
		buffer[length] = '\0';
	return length;
}
