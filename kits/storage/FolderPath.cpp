// SPDX-License-Identifier: MIT

#include <storage/FolderPath.h>

#include <storage/DirectorySnapshot.h>
#include <storage/DirectoryTable.h>

#include <kernel/OS.h>

#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace BPrivate {

namespace {

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr bigtime_t kMoment = 10000;

// The last path that a thread was given. For a moment it need not be read again as long as it
// leads to the folder: thousands of copies may be asked for in one go, and to read it is the
// longest part of that. Without a destructor: folders are let go while a thread ends as well.
struct RecentPath {
	node_ref node;
	uint64 mount;
	bigtime_t end;
	char path[1024]; // longer ones are read each time
};

thread_local RecentPath tRecent = {};

status_t
OpenShort(int base, const std::string& path, FileDescriptor* folder)
{
	FileDescriptor opened(Retry([&] { return openat(base, path.c_str(), kFolderFlags); }));
	if (!opened.IsOpen())
		return StatusFromErrno(errno);
	*folder = std::move(opened);
	return B_OK;
}

// The numbers of what has a name in a folder, or of the folder itself for an empty name.
bool
ReadNode(int folder, const char* name, node_ref* node)
{
	constexpr int kFlags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH;
	struct stat found;
	errno = 0;
	if (Retry([&] { return fstatat(folder, name, &found, kFlags); }) != 0)
		return false;
	node->device = found.st_dev;
	node->node = found.st_ino;
	return true;
}

bool
HasNode(int folder, const char* name, const node_ref& node)
{
	node_ref found;
	return ReadNode(folder, name, &found) && found == node;
}

// Searches a folder for the name of the folder `node` in it.
status_t
FindName(int parent, const node_ref& node, std::string* name)
{
	DirectorySnapshot snapshot;
	if (status_t error = snapshot.Read(parent); error != B_OK)
		return error;
	// The inode numbers in a listing save most of the stat calls, but lie about mount points.
	for (bool byNumber : {true, false}) {
		for (size_t i = 0; i < snapshot.Count(); i++) {
			const dirent64& entry = snapshot.At(i);
			if ((entry.d_ino == node.node) != byNumber ||
				(entry.d_type != DT_DIR && entry.d_type != DT_UNKNOWN))
				continue;
			if (HasNode(parent, entry.d_name, node)) {
				*name = entry.d_name;
				return B_OK;
			}
		}
	}
	return B_ENTRY_NOT_FOUND;
}

// The kernel's text for an open folder. It fails when that is PATH_MAX or longer, or without /proc.
bool
ReadKernelPath(int folder, std::string* path)
{
	const std::string link = "/proc/self/fd/" + std::to_string(folder);
	char text[PATH_MAX];
	ssize_t length = readlink(link.c_str(), text, sizeof(text));
	if (length < 0 || length == sizeof(text))
		return false;
	path->assign(text, length);
	return true;
}

// The kernel marks what was removed by a suffix that a living folder may bear as well, and gives
// folders of a volume that was unmounted while they were open paths from that volume's own root.
bool
IsLivingPath(const std::string& path, const node_ref& node)
{
	constexpr std::string_view kDeleted = " (deleted)";
	if (path.empty() || path[0] != '/')
		return false; // "(unreachable)/...": outside our root
	if (HasNode(AT_FDCWD, path.c_str(), node))
		return true;
	return errno == EACCES && !path.ends_with(kDeleted);
}

status_t
PathOf(int folder, node_ref node, std::string* path)
{
	std::string below; // what was walked up, each name after its slash
	FileDescriptor above;
	for (;;) {
		std::string text;
		if (ReadKernelPath(folder, &text)) {
			if (!IsLivingPath(text, node))
				return B_ENTRY_NOT_FOUND;
			if (text == "/" && !below.empty())
				text.clear();
			*path = std::move(text.append(below));
			return B_OK;
		}

		FileDescriptor parent;
		if (status_t error = OpenShort(folder, "..", &parent); error != B_OK)
			return error;
		node_ref parentNode;
		if (!ReadNode(parent.Get(), "", &parentNode))
			return StatusFromErrno(errno);
		if (parentNode == node) {
			*path = below.empty() ? std::string(1, '/') : below;
			return B_OK;
		}
		std::string name;
		if (status_t error = FindName(parent.Get(), node, &name); error != B_OK)
			return error;
		name.append(below);
		below.assign(1, '/').append(name);
		above = std::move(parent);
		folder = above.Get();
		node = parentNode;
	}
}

} // namespace

bool
IsLeafName(const char* name)
{
	return name[0] != '\0' && strchr(name, '/') == nullptr && strcmp(name, ".") != 0 &&
		strcmp(name, "..") != 0;
}

status_t
OpenFolderAt(int base, std::string_view path, FileDescriptor* folder)
{
	if (path.empty())
		return B_ENTRY_NOT_FOUND;

	// The kernel takes at most PATH_MAX bytes at a time: go in steps that end at a slash.
	FileDescriptor reached;
	while (path.size() >= PATH_MAX) {
		size_t cut = path.rfind('/', PATH_MAX - 2);
		size_t next = path.find_first_not_of('/', cut);
		if (cut == path.npos)
			return B_NAME_TOO_LONG;
		status_t error = OpenShort(base, std::string(path.substr(0, cut + 1)), &reached);
		if (error != B_OK)
			return error;
		base = reached.Get();
		if (next == path.npos) {
			*folder = std::move(reached);
			return B_OK;
		}
		path.remove_prefix(next);
	}
	return OpenShort(base, std::string(path), folder);
}

status_t
GetFolderPath(const OpenFolder& folder, std::string* path)
{
	RecentPath& recent = tRecent;
	if (recent.mount == folder.Mount() && recent.node == folder.Node() &&
		system_time() < recent.end && HasNode(AT_FDCWD, recent.path, recent.node)) {
		*path = recent.path;
		return B_OK;
	}
	status_t status = PathOf(folder.Descriptor(), folder.Node(), path);
	if (status == B_OK && path->size() < sizeof(recent.path)) {
		recent.node = folder.Node();
		recent.mount = folder.Mount();
		recent.end = system_time() + kMoment;
		strcpy(recent.path, path->c_str());
	}
	return status;
}

status_t
GetFolderPath(int folder, std::string* path)
{
	node_ref node;
	return ReadNode(folder, "", &node) ? PathOf(folder, node, path) : StatusFromErrno(errno);
}

status_t
GetFolderEntry(const FolderHandle& folder, FolderHandle* parent, std::string* name)
{
	DirectoryTable& table = DirectoryTable::Instance();
	if (table.IsRoot(folder->Node())) {
		name->assign(1, '/');
		*parent = folder;
		return B_OK;
	}

	FileDescriptor above;
	if (status_t error = OpenShort(folder->Descriptor(), "..", &above); error != B_OK)
		return error;

	std::string text;
	if (ReadKernelPath(folder->Descriptor(), &text))
		text.erase(0, text.rfind('/') + 1);
	if (text.empty() || !HasNode(above.Get(), text.c_str(), folder->Node())) {
		if (status_t error = FindName(above.Get(), folder->Node(), &text); error != B_OK)
			return error;
	}
	*name = std::move(text);
	return table.Add(std::move(above), parent);
}

status_t
LocateEntry(int base, std::string_view path, FolderHandle* folder, std::string* name)
{
	if (path.empty())
		return B_ENTRY_NOT_FOUND;
	DirectoryTable& table = DirectoryTable::Instance();
	std::string_view folderPath = path;
	std::string_view leaf;
	if (size_t end = path.find_last_not_of('/'); end != path.npos) {
		size_t start = path.rfind('/', end) + 1; // 0 when there is none
		leaf = path.substr(start, end + 1 - start);
		if (leaf != "." && leaf != "..")
			folderPath = start == 0 ? "." : path.substr(0, start);
		else
			leaf = {};
	}
	if (leaf.size() >= B_FILE_NAME_LENGTH)
		return B_NAME_TOO_LONG;

	FolderHandle opened;
	if (status_t error = table.Open(base, std::string(folderPath), &opened); error != B_OK)
		return error;
	if (leaf.empty())
		return GetFolderEntry(opened, folder, name);
	*name = leaf;
	*folder = std::move(opened);
	return B_OK;
}

} // namespace BPrivate
