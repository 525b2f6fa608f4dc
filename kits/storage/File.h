// SPDX-License-Identifier: MIT

// BFile: an open file with a position.
//
// It reads ahead and gathers small writes. Gathered bytes go to the kernel when there are enough
// of them and before Seek(), SetSize(), queries of the status, ReadAt(), WriteAt(), Sync() and
// Unset(). An error that only then comes up is what that call returns, and Sync() forever after:
// call it before Unset() to learn whether all bytes have arrived. What another object or program
// writes in the meantime may be seen only after one of those calls.

#pragma once

#include <storage/Node.h>

#include <fcntl.h>
#include <memory>

enum : uint32 {
	B_READ_ONLY = O_RDONLY,
	B_WRITE_ONLY = O_WRONLY,
	B_READ_WRITE = O_RDWR,
	B_FAIL_IF_EXISTS = O_EXCL, // with B_CREATE_FILE
	B_CREATE_FILE = O_CREAT,   // by the user's umask
	B_ERASE_FILE = O_TRUNC,
	B_OPEN_AT_END = O_APPEND, // all writes go to the end, wherever that is by then
};

namespace BPrivate {
class FileBuffer;
}

class BFile : public BNode {
public:
	BFile();
	BFile(const entry_ref* ref, uint32 mode);
	BFile(const BEntry* entry, uint32 mode);
	BFile(const char* path, uint32 mode);
	BFile(const BDirectory* folder, const char* path, uint32 mode);
	~BFile() override;

	// Follows links. A folder is B_IS_A_DIRECTORY. Never waits for the other end of a pipe.
	status_t SetTo(const entry_ref* ref, uint32 mode);
	status_t SetTo(const BEntry* entry, uint32 mode);
	status_t SetTo(const char* path, uint32 mode);
	status_t SetTo(const BDirectory* folder, const char* path, uint32 mode);
	void Unset() override;

	// The first error that any gathered byte has met. Does not wait for the device.
	status_t Sync() override;

	// B_FILE_ERROR when the mode does not allow it, for all that read or write. Read() is less
	// than `size` at the end only, 0 there.
	ssize_t Read(void* buffer, size_t size);
	ssize_t Write(const void* buffer, size_t size);
	ssize_t ReadAt(off_t position, void* buffer, size_t size); // these leave the position
	ssize_t WriteAt(off_t position, const void* buffer, size_t size);
	off_t Seek(off_t offset, uint32 from); // SEEK_SET, SEEK_CUR, SEEK_END; the new position
	off_t Position() const;
	status_t SetSize(off_t size); // leaves the position, new bytes are zeros

protected:
	// BStatable
	status_t GetLocation(Location* location) const override;

private:
	status_t Open(int folder, const char* name, uint32 mode);

	std::unique_ptr<BPrivate::FileBuffer> fBuffer; // null unless initialised
};
