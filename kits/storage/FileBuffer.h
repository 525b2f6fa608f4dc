// SPDX-License-Identifier: MIT

// The position in an open file, with reading ahead and gathering of small sequential writes, so
// that programs which go in steps of a kilobyte are as fast as those with large buffers.
//
// One block of memory serves both, made at the first use. Reading ahead begins with 4 KiB and
// grows as long as the reads follow each other. Gathered bytes go to the kernel when the block is
// full and on Flush(); an error then is told once by that call, and stays for FirstError() and
// for further writes: the file has a hole from there on. Only for files with positions; others
// are passed on to the kernel as they are.

#pragma once

#include <support/SupportDefs.h>

#include <cstdlib>
#include <memory>

namespace BPrivate {

class FileBuffer {
public:
	// Borrows the descriptor. `openFlags` as open() took them.
	FileBuffer(int descriptor, int openFlags, bool isRegular);

	ssize_t Read(void* buffer, size_t size);
	ssize_t Write(const void* buffer, size_t size);
	off_t Seek(off_t offset, int from);
	off_t Position() const;

	// Hands gathered bytes to the kernel and forgets what was read ahead.
	status_t Flush();
	// The first error that gathered bytes have met.
	status_t FirstError() const { return fFirstError; }

	bool CanWrite() const;

private:
	struct FreeBlock {
		void operator()(char* block) const { std::free(block); }
	};

	bool CanRead() const;
	ssize_t ReadBuffered(char* to, size_t size);
	status_t FillAhead();
	ssize_t WriteAll(const char* from, size_t size);
	ssize_t WriteSome(const char* from, size_t size);
	status_t MakeBlock();
	bool Appends() const;

	int fDescriptor;
	int fFlags;
	bool fIsRegular;
	std::unique_ptr<char[], FreeBlock> fBlock;
	// The program's position. Read-ahead bytes begin there, gathered ones end there.
	off_t fPosition = 0;
	size_t fGathered = 0; // bytes at the block's start that are to be written
	size_t fAhead = 0;    // bytes that were read and not yet asked for
	size_t fAheadStart = 0;
	size_t fNextAhead;
	status_t fFirstError = B_OK;
};

} // namespace BPrivate
