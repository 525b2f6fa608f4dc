// SPDX-License-Identifier: MIT

// The extended attributes of an open file, whatever its descriptor is good for.
//
// The kernel refuses O_PATH descriptors here, and going through /proc/self/fd instead costs three
// times as much as a descriptor that can read. The first call takes that way, since the rows of a
// list ask once; the second one opens such a descriptor if the file may be read.

#pragma once

#include <storage/FileDescriptor.h>

#include <support/SupportDefs.h>

#include <string>

namespace BPrivate {

class ExtendedAttributes {
public:
	// Borrows the descriptor until Unset(), which forgets it.
	void SetTo(int descriptor, bool isPath);
	void Unset();

	// As the system calls: a size of 0 asks for the length. Negative status codes, otherwise bytes.
	// B_DEVICE_FULL when a value is longer than the buffer.
	ssize_t Get(const char* name, void* buffer, size_t size) const;
	status_t Set(const char* name, const void* value, size_t size);
	status_t Remove(const char* name);
	// All names, each with its NUL.
	status_t List(std::string* names) const;

private:
	template <typename ByDescriptor, typename ByPath>
	ssize_t Call(ByDescriptor byDescriptor, ByPath byPath) const;
	void OpenForReading() const;

	int fDescriptor = -1;
	bool fIsPath = false;
	mutable int fCalls = 0;
	mutable FileDescriptor fReadable;
};

} // namespace BPrivate
