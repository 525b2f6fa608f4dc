// SPDX-License-Identifier: MIT

#include <storage/ExtendedAttributes.h>

#include <cstdio>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace BPrivate {

namespace {

// Also for what is removed and for links, which are not followed here.
struct LinkToDescriptor {
	explicit LinkToDescriptor(int descriptor)
	{
		snprintf(text, sizeof(text), "/proc/self/fd/%d", descriptor);
	}
	char text[32];
};

} // namespace

void
ExtendedAttributes::SetTo(int descriptor, bool isPath)
{
	Unset();
	fDescriptor = descriptor;
	fIsPath = isPath;
}

void
ExtendedAttributes::Unset()
{
	fReadable.Close();
	fDescriptor = -1;
	fCalls = 0;
}

// Never opens what is neither file nor folder: with devices that alone can do something.
void
ExtendedAttributes::OpenForReading() const
{
	struct stat status;
	if (fstat(fDescriptor, &status) != 0 || !(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)))
		return;
	LinkToDescriptor link(fDescriptor);
	fReadable = FileDescriptor(
		Retry([&] { return open(link.text, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
}

template <typename ByDescriptor, typename ByPath>
ssize_t
ExtendedAttributes::Call(ByDescriptor byDescriptor, ByPath byPath) const
{
	if (fIsPath && fCalls < 2 && ++fCalls == 2)
		OpenForReading();
	int descriptor = fIsPath ? fReadable.Get() : fDescriptor;
	ssize_t result = descriptor >= 0
		? Retry([&] { return byDescriptor(descriptor); })
		: Retry([&] { return byPath(LinkToDescriptor(fDescriptor).text); });
	return result >= 0 ? result : StatusFromErrno(errno);
}

ssize_t
ExtendedAttributes::Get(const char* name, void* buffer, size_t size) const
{
	return Call([&](int descriptor) { return fgetxattr(descriptor, name, buffer, size); },
		[&](const char* path) { return getxattr(path, name, buffer, size); });
}

status_t
ExtendedAttributes::Set(const char* name, const void* value, size_t size)
{
	return static_cast<status_t>(
		Call([&](int descriptor) { return fsetxattr(descriptor, name, value, size, 0); },
			[&](const char* path) { return setxattr(path, name, value, size, 0); }));
}

status_t
ExtendedAttributes::Remove(const char* name)
{
	return static_cast<status_t>(
		Call([&](int descriptor) { return fremovexattr(descriptor, name); },
			[&](const char* path) { return removexattr(path, name); }));
}

status_t
ExtendedAttributes::List(std::string* names) const
{
	names->resize(XATTR_LIST_MAX);
	ssize_t size =
		Call([&](int descriptor) { return flistxattr(descriptor, names->data(), names->size()); },
			[&](const char* path) { return listxattr(path, names->data(), names->size()); });
	names->resize(size > 0 ? size : 0);
	names->shrink_to_fit();
	return size < 0 ? static_cast<status_t>(size) : B_OK;
}

} // namespace BPrivate
