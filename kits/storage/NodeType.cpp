// SPDX-License-Identifier: MIT

#include <storage/NodeType.h>

#include <storage/FileDescriptor.h>

#include <desktop/Types.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>

namespace BPrivate {

namespace {

constexpr const char* kTypeAttribute = "user.BEOS:TYPE";
constexpr const char* kPreferredAppAttribute = "user.BEOS:PREF_APP";
constexpr const char* kDesktopTypeAttribute = "user.mime_type";

// listxattr() below an open folder; ENOSYS where the kernel has no such call, before 6.13. The way
// through /proc that is left then takes three times as long.
ssize_t
ListAt(int folder, const char* name, char* buffer, size_t size)
{
	constexpr long kListXattrAt = 465; // on all architectures; the C library does not know it yet
	static std::atomic<bool> sMissing = false;
	if (sMissing.load(std::memory_order_relaxed)) {
		errno = ENOSYS;
		return -1;
	}
	const ssize_t length = Retry(
		[&] { return syscall(kListXattrAt, folder, name, AT_SYMLINK_NOFOLLOW, buffer, size); });
	// Sandboxes that do not know a call refuse it with EPERM.
	if (length < 0 && (errno == ENOSYS || errno == EPERM)) {
		sMissing = true;
		errno = ENOSYS;
	}
	return length;
}

} // namespace

NodeType::NodeType(std::string path, std::string name, mode_t mode) :
	fPath(std::move(path)), fName(std::move(name)), fMode(mode)
{
	ListAttributes();
}

NodeType::NodeType(int folder, const char* name, mode_t mode) :
	fFolder(folder), fName(name), fMode(mode)
{
	ListAttributes();
}

void
NodeType::ListAttributes()
{
	if (!S_ISREG(fMode) && !S_ISDIR(fMode))
		return;
	char names[1024];
	ssize_t length = fFolder < 0 ? -1 : ListAt(fFolder, fName.c_str(), names, sizeof(names));
	if (fFolder < 0 || (length < 0 && errno == ENOSYS))
		length = Retry([&] { return listxattr(Path().c_str(), names, sizeof(names)); });
	if (length > 0) {
		fAttributes.assign(names, static_cast<size_t>(length));
	} else if (length < 0 && errno == ERANGE) {
		fAttributes.resize(XATTR_LIST_MAX);
		length = Retry(
			[&] { return listxattr(Path().c_str(), fAttributes.data(), fAttributes.size()); });
		fAttributes.resize(length > 0 ? static_cast<size_t>(length) : 0);
	}
}

std::string
NodeType::Path() const
{
	return fFolder < 0 ? fPath : "/proc/self/fd/" + std::to_string(fFolder) + "/" + fName;
}

status_t
NodeType::GetType(std::string* type) const
{
	if (ReadText(kTypeAttribute, type) || ReadText(kDesktopTypeAttribute, type))
		return B_OK;
	if (!S_ISREG(fMode))
		return B_ENTRY_NOT_FOUND;
	std::string name = fName;
	if (name.empty()) {
		char path[PATH_MAX];
		ssize_t length = Retry([&] { return readlink(Path().c_str(), path, sizeof(path)); });
		const std::string text(path, length > 0 ? static_cast<size_t>(length) : 0);
		name = text.substr(text.rfind('/') + 1);
	}
	*type = desktop::TypeByName(name.c_str());
	if (type->empty())
		*type = TypeOfContent();
	return B_OK;
}

bool
NodeType::GetPreferredApp(std::string* signature) const
{
	return ReadText(kPreferredAppAttribute, signature);
}

bool
NodeType::IsBrokenLink() const
{
	// The path of an open link ends at the link, and what that holds is relative to its folder.
	if (!S_ISLNK(fMode))
		return false;
	const std::string place = Path();
	struct stat status;
	if (stat(place.c_str(), &status) != 0)
		return true;
	if (!S_ISLNK(status.st_mode))
		return false;
	char path[PATH_MAX];
	const ssize_t length = readlink(place.c_str(), path, sizeof(path) - 1);
	if (length <= 0)
		return true;
	path[length] = '\0';
	return stat(path, &status) != 0;
}

bool
NodeType::ReadFixed(const char* attribute, void* buffer, size_t length) const
{
	return HasAttribute(attribute) && Retry([&] {
		return getxattr(Path().c_str(), attribute, buffer, length);
	}) == static_cast<ssize_t>(length);
}

bool
NodeType::HasAttribute(const char* attribute) const
{
	for (size_t at = 0; at < fAttributes.size(); at += strlen(&fAttributes[at]) + 1) {
		if (strcmp(&fAttributes[at], attribute) == 0)
			return true;
	}
	return false;
}

// Texts that are empty or too long for a type count as none.
bool
NodeType::ReadText(const char* attribute, std::string* text) const
{
	if (!HasAttribute(attribute))
		return false;
	char value[B_MIME_TYPE_LENGTH];
	ssize_t length =
		Retry([&] { return getxattr(Path().c_str(), attribute, value, sizeof(value) - 1); });
	if (length <= 0)
		return false;
	value[length] = '\0';
	*text = value;
	return !text->empty();
}

std::string
NodeType::TypeOfContent() const
{
	constexpr int kMode = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
	FileDescriptor file(Retry([&] {
		return fFolder < 0 ? open(fPath.c_str(), kMode) : openat(fFolder, fName.c_str(), kMode);
	}));
	if (!file.IsOpen())
		return desktop::kUnknownType;
	char start[desktop::kTypeContentLength];
	ssize_t length = Retry([&] { return pread(file.Get(), start, sizeof(start), 0); });
	if (length < 0)
		return desktop::kUnknownType;
	return desktop::TypeByContent(start, static_cast<size_t>(length));
}

} // namespace BPrivate
