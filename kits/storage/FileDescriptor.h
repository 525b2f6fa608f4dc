// SPDX-License-Identifier: MIT

// A file descriptor with an owner, and the repetition of calls that a signal interrupted.

#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace BPrivate {

// Closes its descriptor in the end; -1 is none.
class FileDescriptor {
public:
	FileDescriptor() = default;
	explicit FileDescriptor(int descriptor) : fDescriptor(descriptor) {}
	FileDescriptor(FileDescriptor&& other) noexcept : fDescriptor(other.Release()) {}
	~FileDescriptor() { Close(); }

	FileDescriptor& operator=(FileDescriptor&& other) noexcept
	{
		if (this != &other) {
			Close();
			fDescriptor = other.Release();
		}
		return *this;
	}

	bool IsOpen() const { return fDescriptor >= 0; }
	int Get() const { return fDescriptor; }
	int Release() { return std::exchange(fDescriptor, -1); }

	// The kernel frees the number even when close() reports EINTR: never repeated.
	void Close()
	{
		if (fDescriptor >= 0)
			close(std::exchange(fDescriptor, -1));
	}

private:
	int fDescriptor = -1;
};

// Makes a system call again as long as a signal interrupts it.
template <typename Call>
auto
Retry(Call call)
{
	auto result = call();
	while (result < 0 && errno == EINTR)
		result = call();
	return result;
}

} // namespace BPrivate
