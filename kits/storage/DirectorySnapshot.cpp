// SPDX-License-Identifier: MIT

#include <storage/DirectorySnapshot.h>

#include <storage/FileDescriptor.h>

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <string>

namespace BPrivate {

namespace {

constexpr size_t kBlockSize = 65536;

size_t
CommonLength(const char* a, const char* b, size_t limit)
{
	size_t length = 0;
	while (length < limit && a[length] != '\0' && a[length] == b[length])
		length++;
	return length;
}

uint64
SortKey(const char* text)
{
	uint64 key = 0;
	for (int shift = 56; shift >= 0 && *text != '\0'; shift -= 8)
		key |= static_cast<uint64>(static_cast<uint8>(*text++)) << shift;
	return key;
}

} // namespace

status_t
DirectorySnapshot::Read(int folder)
{
	fItems.clear();
	fBlocks.clear();
	constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
	FileDescriptor descriptor(Retry([&] { return openat(folder, ".", kFlags); }));
	if (!descriptor.IsOpen() && errno == EACCES) {
		// Who may list it without searching it cannot look up "." in it.
		const std::string path = "/proc/self/fd/" + std::to_string(folder);
		descriptor = FileDescriptor(Retry([&] { return open(path.c_str(), kFlags); }));
	}
	status_t status = descriptor.IsOpen() ? ReadBlocks(descriptor.Get()) : StatusFromErrno(errno);
	if (status != B_OK) {
		fItems.clear();
		fBlocks.clear();
	}
	Sort();
	return status;
}

const dirent64*
DirectorySnapshot::Find(const char* name) const
{
	auto found = std::lower_bound(fItems.begin(), fItems.end(), name,
		[](const Item& item, const char* text) { return strcmp(item.entry->d_name, text) < 0; });
	return found != fItems.end() && strcmp(found->entry->d_name, name) == 0 ? found->entry
																			: nullptr;
}

status_t
DirectorySnapshot::ReadBlocks(int descriptor)
{
	std::unique_ptr<char[]> buffer(new char[kBlockSize]);
	for (;;) {
		ssize_t size = Retry([&] { return getdents64(descriptor, buffer.get(), kBlockSize); });
		if (size < 0)
			return StatusFromErrno(errno);
		if (size == 0)
			return B_OK;
		std::unique_ptr<char[]> block(new char[size]);
		memcpy(block.get(), buffer.get(), size);
		AddItems(block.get(), size);
		fBlocks.push_back(std::move(block));
	}
}

void
DirectorySnapshot::AddItems(char* block, size_t size)
{
	for (size_t offset = 0; offset < size;) {
		const dirent64* entry = reinterpret_cast<const dirent64*>(block + offset);
		offset += entry->d_reclen;
		if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
			fItems.push_back({0, entry});
	}
}

void
DirectorySnapshot::Sort()
{
	if (fItems.empty())
		return;
	// Names of one folder often begin alike, "IMG_2024...": what they share tells nothing.
	const char* first = fItems.front().entry->d_name;
	size_t common = strlen(first);
	for (const Item& item : fItems)
		common = CommonLength(first, item.entry->d_name, common);
	for (Item& item : fItems)
		item.key = SortKey(item.entry->d_name + common);

	std::sort(fItems.begin(), fItems.end(), [common](const Item& a, const Item& b) {
		if (a.key != b.key)
			return a.key < b.key;
		if ((a.key & 0xff) == 0)
			return false; // the names end within the key: they are the same
		return strcmp(a.entry->d_name + common + 8, b.entry->d_name + common + 8) < 0;
	});
}

} // namespace BPrivate
