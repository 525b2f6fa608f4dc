// SPDX-License-Identifier: MIT

#include <storage/FileBuffer.h>

#include <storage/FileDescriptor.h>

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

namespace BPrivate {

namespace {

// Two of them, one that is read and one that is written, stay in the processor's nearer caches.
constexpr size_t kBlockSize = 64 * 1024;
// To a page: the kernel copies from and to what begins as its pages do in fewer steps.
constexpr size_t kAlignment = 4096;
constexpr size_t kFirstAhead = 4096;

} // namespace

FileBuffer::FileBuffer(int descriptor, int openFlags, bool isRegular) :
	fDescriptor(descriptor), fFlags(openFlags), fIsRegular(isRegular), fNextAhead(kFirstAhead)
{
	if (fIsRegular && Appends()) {
		off_t end = lseek(fDescriptor, 0, SEEK_END);
		fPosition = end > 0 ? end : 0;
	}
}

bool
FileBuffer::CanRead() const
{
	return (fFlags & O_ACCMODE) != O_WRONLY;
}

bool
FileBuffer::CanWrite() const
{
	return (fFlags & O_ACCMODE) != O_RDONLY;
}

bool
FileBuffer::Appends() const
{
	return (fFlags & O_APPEND) != 0;
}

status_t
FileBuffer::MakeBlock()
{
	if (fBlock == nullptr)
		fBlock.reset(static_cast<char*>(std::aligned_alloc(kAlignment, kBlockSize)));
	return fBlock != nullptr ? B_OK : B_NO_MEMORY;
}

ssize_t
FileBuffer::Read(void* buffer, size_t size)
{
	if (!CanRead())
		return B_FILE_ERROR;
	size = std::min<size_t>(size, std::numeric_limits<ssize_t>::max());
	if (!fIsRegular) {
		ssize_t length = Retry([&] { return read(fDescriptor, buffer, size); });
		return length < 0 ? StatusFromErrno(errno) : length;
	}
	if (fGathered > 0) {
		if (status_t status = Flush(); status != B_OK)
			return status;
	}
	return ReadBuffered(static_cast<char*>(buffer), size);
}

ssize_t
FileBuffer::ReadBuffered(char* to, size_t size)
{
	size_t done = 0;
	while (done < size) {
		size_t part = std::min(fAhead, size - done);
		if (part > 0) {
			memcpy(to + done, fBlock.get() + fAheadStart, part);
			fAheadStart += part;
			fAhead -= part;
		} else if (size - done >= kBlockSize) {
			ssize_t length =
				Retry([&] { return pread(fDescriptor, to + done, size - done, fPosition); });
			if (length <= 0)
				return done > 0 || length == 0 ? done : StatusFromErrno(errno);
			part = length;
		} else {
			status_t status = FillAhead();
			if (status != B_OK)
				return done > 0 ? done : status;
			if (fAhead == 0)
				break;
		}
		fPosition += part;
		done += part;
	}
	return done;
}

status_t
FileBuffer::FillAhead()
{
	if (status_t status = MakeBlock(); status != B_OK)
		return status;
	ssize_t length = Retry([&] { return pread(fDescriptor, fBlock.get(), fNextAhead, fPosition); });
	if (length < 0)
		return StatusFromErrno(errno);
	fAheadStart = 0;
	fAhead = length;
	fNextAhead = std::min(fNextAhead * 4, kBlockSize);
	return B_OK;
}

ssize_t
FileBuffer::Write(const void* buffer, size_t size)
{
	if (!CanWrite())
		return B_FILE_ERROR;
	if (fFirstError != B_OK)
		return fFirstError;
	if (size == 0)
		return 0;
	size = std::min<size_t>(size, std::numeric_limits<ssize_t>::max());
	const char* from = static_cast<const char*>(buffer);
	if (!fIsRegular)
		return WriteSome(from, size);

	fAhead = 0;
	if (fGathered + size > kBlockSize) {
		if (status_t status = Flush(); status != B_OK)
			return status;
	}
	if (size >= kBlockSize)
		return WriteAll(from, size);
	if (status_t status = MakeBlock(); status != B_OK)
		return status;
	if (fGathered == 0 && Appends()) {
		struct stat status;
		if (fstat(fDescriptor, &status) != 0)
			return StatusFromErrno(errno);
		fPosition = status.st_size;
	}
	if (fPosition > std::numeric_limits<off_t>::max() - static_cast<off_t>(size))
		return B_BAD_VALUE;
	memcpy(fBlock.get() + fGathered, from, size);
	fGathered += size;
	fPosition += size;
	return size;
}

// At the kernel's own position: for files without one, and at the end when appending.
ssize_t
FileBuffer::WriteSome(const char* from, size_t size)
{
	ssize_t length = Retry([&] { return write(fDescriptor, from, size); });
	return length < 0 ? StatusFromErrno(errno) : length;
}

// From the position on, which moves; fewer bytes than asked for when an error stops it midway.
ssize_t
FileBuffer::WriteAll(const char* from, size_t size)
{
	size_t done = 0;
	while (done < size) {
		ssize_t length;
		if (Appends()) {
			length = WriteSome(from + done, size - done);
			off_t end = lseek(fDescriptor, 0, SEEK_CUR);
			fPosition = end >= 0 ? end : fPosition;
		} else {
			length =
				Retry([&] { return pwrite(fDescriptor, from + done, size - done, fPosition); });
			length = length < 0 ? StatusFromErrno(errno) : length;
			fPosition += std::max<ssize_t>(length, 0);
		}
		if (length <= 0)
			return done > 0 ? static_cast<ssize_t>(done) : length;
		done += length;
	}
	return done;
}

status_t
FileBuffer::Flush()
{
	fAhead = 0;
	if (fGathered == 0)
		return B_OK;
	size_t size = std::exchange(fGathered, 0);
	fPosition -= size;
	status_t status = B_OK;
	for (size_t done = 0; done < size && status == B_OK;) {
		ssize_t length = WriteAll(fBlock.get() + done, size - done);
		if (length <= 0)
			status = length < 0 ? static_cast<status_t>(length) : B_IO_ERROR;
		else
			done += length;
	}
	if (fFirstError == B_OK)
		fFirstError = status;
	return status;
}

off_t
FileBuffer::Position() const
{
	if (fIsRegular)
		return fPosition;
	off_t position = lseek(fDescriptor, 0, SEEK_CUR);
	return position < 0 ? StatusFromErrno(errno) : position;
}

off_t
FileBuffer::Seek(off_t offset, int from)
{
	if (from != SEEK_SET && from != SEEK_CUR && from != SEEK_END)
		return B_BAD_VALUE;
	if (!fIsRegular) {
		off_t position = lseek(fDescriptor, offset, from);
		return position < 0 ? StatusFromErrno(errno) : position;
	}
	if (status_t status = Flush(); status != B_OK)
		return status;
	fNextAhead = kFirstAhead;
	off_t base = from == SEEK_CUR ? fPosition : 0;
	if (from == SEEK_END) {
		struct stat status;
		if (fstat(fDescriptor, &status) != 0)
			return StatusFromErrno(errno);
		base = status.st_size;
	}
	off_t position;
	if (__builtin_add_overflow(base, offset, &position) || position < 0)
		return B_BAD_VALUE;
	return fPosition = position;
}

} // namespace BPrivate
