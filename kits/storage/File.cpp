// SPDX-License-Identifier: MIT

#include <storage/File.h>

#include <storage/Entry.h>
#include <storage/FileBuffer.h>

#include <sys/stat.h>

using namespace BPrivate;

namespace {

constexpr uint32 kModes =
	O_ACCMODE | B_FAIL_IF_EXISTS | B_CREATE_FILE | B_ERASE_FILE | B_OPEN_AT_END;
constexpr mode_t kNewFile = 0666; // less the umask

// Without waiting: a pipe without another end would hold us for ever.
int
OpenAt(int folder, const char* name, int flags)
{
	int descriptor = Retry([&] { return openat(folder, name, flags | O_NONBLOCK, kNewFile); });
	struct stat status;
	if (descriptor >= 0 || errno != EWOULDBLOCK || fstatat(folder, name, &status, 0) != 0 ||
		!S_ISREG(status.st_mode))
		return descriptor;
	// A file server has a lease on this file and is being asked to give it back.
	return Retry([&] { return openat(folder, name, flags, kNewFile); });
}

} // namespace

BFile::BFile() = default;

BFile::BFile(const entry_ref* ref, uint32 mode)
{
	SetTo(ref, mode);
}

BFile::BFile(const BEntry* entry, uint32 mode)
{
	SetTo(entry, mode);
}

BFile::BFile(const char* path, uint32 mode)
{
	SetTo(path, mode);
}

BFile::BFile(const BDirectory* folder, const char* path, uint32 mode)
{
	SetTo(folder, path, mode);
}

BFile::~BFile()
{
	BFile::Unset();
}

status_t
BFile::SetTo(const entry_ref* ref, uint32 mode)
{
	BEntry entry(ref);
	return SetTo(&entry, mode);
}

status_t
BFile::SetTo(const BEntry* entry, uint32 mode)
{
	Unset();
	if (entry == nullptr)
		return Fail(B_BAD_VALUE);
	if (entry->InitCheck() != B_OK)
		return Fail(entry->InitCheck());
	return Open(entry->fFolder->Descriptor(), entry->fRef.name, mode);
}

status_t
BFile::SetTo(const char* path, uint32 mode)
{
	BEntry entry(path);
	return SetTo(&entry, mode);
}

status_t
BFile::SetTo(const BDirectory* folder, const char* path, uint32 mode)
{
	BEntry entry(folder, path);
	return SetTo(&entry, mode);
}

status_t
BFile::Open(int folder, const char* name, uint32 mode)
{
	if ((mode & ~kModes) != 0 || (mode & O_ACCMODE) == O_ACCMODE)
		return Fail(B_BAD_VALUE);
	if ((mode & B_CREATE_FILE) == 0)
		mode &= ~B_FAIL_IF_EXISTS; // alone it locks disks
	int flags = static_cast<int>(mode) | O_CLOEXEC | O_NOCTTY;
	FileDescriptor descriptor(OpenAt(folder, name, flags));
	struct stat status;
	if (!descriptor.IsOpen() || fstat(descriptor.Get(), &status) != 0)
		return Fail(StatusFromErrno(errno));
	// The kernel opens folders for reading.
	if (S_ISDIR(status.st_mode))
		return Fail(B_IS_A_DIRECTORY);
	bool isRegular = S_ISREG(status.st_mode);
	if (isRegular)
		fcntl(descriptor.Get(), F_SETFL, flags & O_APPEND);
	fBuffer = std::make_unique<FileBuffer>(descriptor.Get(), flags, isRegular);
	return SetDescriptor(std::move(descriptor), false);
}

void
BFile::Unset()
{
	if (fBuffer != nullptr)
		fBuffer->Flush();
	fBuffer.reset();
	BNode::Unset();
}

status_t
BFile::Sync()
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	fBuffer->Flush();
	return fBuffer->FirstError();
}

ssize_t
BFile::Read(void* buffer, size_t size)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	return fBuffer->Read(buffer, size);
}

ssize_t
BFile::Write(const void* buffer, size_t size)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	return fBuffer->Write(buffer, size);
}

ssize_t
BFile::ReadAt(off_t position, void* buffer, size_t size)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	if (status_t status = fBuffer->Flush(); status != B_OK)
		return status;
	ssize_t length = Retry([&] { return pread(Descriptor(), buffer, size, position); });
	return length < 0 ? StatusFromErrno(errno) : length;
}

ssize_t
BFile::WriteAt(off_t position, const void* buffer, size_t size)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	if (status_t status = fBuffer->Flush(); status != B_OK)
		return status;
	ssize_t length = Retry([&] { return pwrite(Descriptor(), buffer, size, position); });
	return length < 0 ? StatusFromErrno(errno) : length;
}

off_t
BFile::Seek(off_t offset, uint32 from)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	return fBuffer->Seek(offset, static_cast<int>(from));
}

off_t
BFile::Position() const
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	return fBuffer->Position();
}

status_t
BFile::SetSize(off_t size)
{
	if (fBuffer == nullptr)
		return B_NO_INIT;
	if (!fBuffer->CanWrite())
		return B_FILE_ERROR;
	if (status_t status = fBuffer->Flush(); status != B_OK)
		return status;
	int result = Retry([&] { return ftruncate(Descriptor(), size); });
	return result == 0 ? B_OK : StatusFromErrno(errno);
}

status_t
BFile::GetLocation(Location* location) const
{
	if (fBuffer != nullptr) {
		if (status_t status = fBuffer->Flush(); status != B_OK)
			return status;
	}
	return BNode::GetLocation(location);
}
