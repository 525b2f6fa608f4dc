// SPDX-License-Identifier: MIT

#include "tests/support/TempTree.h"

#include <storage/Entry.h>
#include <storage/FileDescriptor.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

using BPrivate::FileDescriptor;

namespace {

[[noreturn]] void
Throw(const std::string& what)
{
	throw std::system_error(errno, std::generic_category(), what);
}

void
Check(bool good, const std::string& what)
{
	if (!good)
		Throw(what);
}

// Steps through the folders of a path one by one; `leaf` is what remains.
FileDescriptor
OpenParent(int root, const std::string& path, bool create, std::string* leaf)
{
	FileDescriptor folder(openat(root, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
	Check(folder.IsOpen(), path);
	size_t start = 0;
	for (size_t slash; (slash = path.find('/', start)) != path.npos; start = slash + 1) {
		std::string name = path.substr(start, slash - start);
		if (create)
			mkdirat(folder.Get(), name.c_str(), 0755);
		FileDescriptor next(openat(folder.Get(), name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
		Check(next.IsOpen(), path);
		folder = std::move(next);
	}
	*leaf = path.substr(start);
	return folder;
}

std::vector<std::string>
ListFolder(int parent, const std::string& name)
{
	std::vector<std::string> names;
	int descriptor = openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	Check(descriptor >= 0, name);
	DIR* directory = fdopendir(descriptor);
	while (const dirent* entry = readdir(directory)) {
		if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
			names.push_back(entry->d_name);
	}
	closedir(directory);
	return Names(std::move(names));
}

// Full folders are moved up to the root first: no depth is too much then.
void
RemoveContents(int root)
{
	std::vector<std::string> folders{"."};
	for (int moved = 0; !folders.empty();) {
		std::string folder = std::move(folders.back());
		folders.pop_back();
		fchmodat(root, folder.c_str(), 0700, 0);
		FileDescriptor open(openat(root, folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
		for (const std::string& name : ListFolder(root, folder)) {
			if (unlinkat(open.Get(), name.c_str(), 0) == 0 ||
				unlinkat(open.Get(), name.c_str(), AT_REMOVEDIR) == 0)
				continue;
			std::string up = "\x01removed-" + std::to_string(moved++);
			fchmodat(open.Get(), name.c_str(), 0700, 0);
			Check(renameat(open.Get(), name.c_str(), root, up.c_str()) == 0, name);
			folders.push_back(up);
		}
		if (folder != ".")
			Check(unlinkat(root, folder.c_str(), AT_REMOVEDIR) == 0, folder);
	}
}

} // namespace

TempItem&
TempItem::Mode(mode_t value)
{
	mode = value;
	return *this;
}

TempItem&
TempItem::Time(time_t value)
{
	time = value;
	return *this;
}

TempItem
Text(std::string bytes)
{
	return {S_IFREG, std::move(bytes), 0644};
}

TempItem
Dir()
{
	return {S_IFDIR, {}, 0755};
}

TempItem
Link(std::string target)
{
	return {S_IFLNK, std::move(target), 0777};
}

std::vector<std::string>
Names(std::vector<std::string> names)
{
	std::sort(names.begin(), names.end());
	return names;
}

TempTree::TempTree(std::initializer_list<Item> items)
{
	const char* base = getenv("TMPDIR");
	std::string pattern = std::string(base != nullptr ? base : "/tmp") + "/korva-XXXXXX";
	Check(mkdtemp(pattern.data()) != nullptr, pattern);
	// Where the base is reached through a link, paths read back would differ from ours.
	char resolved[PATH_MAX];
	Check(realpath(pattern.c_str(), resolved) != nullptr, pattern);
	fPath = resolved;
	fRoot = open(resolved, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	Check(fRoot >= 0, fPath);
	for (const Item& item : items)
		Add(item.first, item.second);
}

TempTree::~TempTree()
{
	try {
		RemoveContents(fRoot);
	} catch (const std::exception& error) {
		fprintf(stderr, "%s stays: %s\n", fPath.c_str(), error.what());
	}
	close(fRoot);
	rmdir(fPath.c_str());
}

void
TempTree::Add(const std::string& path, const TempItem& item)
{
	std::string leaf;
	FileDescriptor parent = OpenParent(fRoot, path, true, &leaf);
	if (item.type == S_IFLNK) {
		Check(symlinkat(item.content.c_str(), parent.Get(), leaf.c_str()) == 0, path);
	} else if (item.type == S_IFDIR) {
		Check(mkdirat(parent.Get(), leaf.c_str(), 0700) == 0, path);
	} else {
		FileDescriptor file(
			openat(parent.Get(), leaf.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
		Check(file.IsOpen(), path);
		size_t size = item.content.size();
		Check(write(file.Get(), item.content.data(), size) == static_cast<ssize_t>(size), path);
	}
	if (item.type != S_IFLNK)
		Check(fchmodat(parent.Get(), leaf.c_str(), item.mode, 0) == 0, path);
	if (item.time != -1) {
		timespec times[2] = {{item.time, 0}, {item.time, 0}};
		Check(utimensat(parent.Get(), leaf.c_str(), times, AT_SYMLINK_NOFOLLOW) == 0, path);
	}
}

void
TempTree::Remove(const std::string& path)
{
	std::string leaf;
	FileDescriptor parent = OpenParent(fRoot, path, false, &leaf);
	Check(unlinkat(parent.Get(), leaf.c_str(), 0) == 0 ||
			unlinkat(parent.Get(), leaf.c_str(), AT_REMOVEDIR) == 0,
		path);
}

void
TempTree::Rename(const std::string& from, const std::string& to)
{
	std::string oldName;
	std::string newName;
	FileDescriptor source = OpenParent(fRoot, from, false, &oldName);
	FileDescriptor target = OpenParent(fRoot, to, false, &newName);
	Check(renameat(source.Get(), oldName.c_str(), target.Get(), newName.c_str()) == 0, from);
}

void
TempTree::SetMode(const std::string& path, mode_t mode)
{
	std::string leaf;
	FileDescriptor parent = OpenParent(fRoot, path, false, &leaf);
	Check(fchmodat(parent.Get(), leaf.c_str(), mode, 0) == 0, path);
}

std::string
TempTree::Path(const std::string& path) const
{
	return path == "." ? fPath : fPath + "/" + path;
}

entry_ref
TempTree::Ref(const std::string& path) const
{
	entry_ref ref;
	BEntry(Path(path).c_str()).GetRef(&ref);
	return ref;
}

BDirectory
TempTree::Folder(const std::string& path) const
{
	return BDirectory(Path(path).c_str());
}

std::string
TempTree::Read(const std::string& path) const
{
	std::string leaf;
	FileDescriptor parent = OpenParent(fRoot, path, false, &leaf);
	char buffer[65536];
	ssize_t size = readlinkat(parent.Get(), leaf.c_str(), buffer, sizeof(buffer));
	if (size >= 0)
		return std::string(buffer, size);
	FileDescriptor file(openat(parent.Get(), leaf.c_str(), O_RDONLY | O_CLOEXEC));
	Check(file.IsOpen(), path);
	std::string bytes;
	while ((size = read(file.Get(), buffer, sizeof(buffer))) > 0)
		bytes.append(buffer, size);
	Check(size == 0, path);
	return bytes;
}

std::vector<std::string>
TempTree::List(const std::string& path) const
{
	std::string leaf;
	FileDescriptor parent = OpenParent(fRoot, path, false, &leaf);
	return ListFolder(parent.Get(), leaf);
}
