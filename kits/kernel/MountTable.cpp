// SPDX-License-Identifier: MIT

#include <kernel/MountTable.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace BPrivate {

namespace {

constexpr const char* kShared[] = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "9p", "afs", "ceph",
	"coda", "lustre", "fuse.sshfs", "fuse.glusterfs", "fuse.rclone", "fuse.s3fs", "fuse.davfs",
	"fuse.gvfsd-fuse"};
constexpr const char* kVolatile[] = {"tmpfs", "ramfs", "proc", "sysfs", "devtmpfs", "devpts",
	"cgroup", "cgroup2", "debugfs", "tracefs", "securityfs", "configfs", "mqueue", "bpf", "fusectl",
	"hugetlbfs", "binfmt_misc", "efivarfs", "nsfs", "autofs"};
// Each subvolume of these has a device number of its own, which the kernel's list does not tell.
constexpr const char* kManyDevices[] = {"btrfs", "bcachefs"};
constexpr const char* kGuestFolders[] = {"/media", "/run/media", "/mnt"};

template <size_t count>
bool
IsOneOf(const std::string& text, const char* const (&list)[count])
{
	return std::find(list, list + count, text) != list + count;
}

bool
SameLowBits(dev_t a, dev_t b)
{
	return static_cast<uint32>(a) == static_cast<uint32>(b); // all that messages carry
}

// Blanks, tabs, newlines and backslashes stand as three octal digits.
std::string
Unescape(const std::string& text)
{
	std::string plain;
	for (size_t i = 0; i < text.size(); i++) {
		bool isEscape = text[i] == '\\' && i + 3 < text.size();
		plain += isEscape ? static_cast<char>(strtol(text.substr(i + 1, 3).c_str(), nullptr, 8))
						  : text[i];
		i += isEscape ? 3 : 0;
	}
	return plain;
}

// 36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue
bool
ParseLine(const std::string& line, Mount* mount)
{
	std::istringstream fields(line);
	std::string parent;
	std::string device;
	std::string field;
	fields >> mount->id >> parent >> device >> mount->root >> mount->point;
	unsigned major;
	unsigned minor;
	if (!fields || sscanf(device.c_str(), "%u:%u", &major, &minor) != 2)
		return false;
	mount->device = makedev(major, minor);
	mount->root = Unescape(mount->root);
	mount->point = Unescape(mount->point);
	while (fields >> field && field != "-") {
	}
	std::string source;
	std::string options;
	fields >> mount->type >> source >> options;
	constexpr std::string_view kUpper = ",upperdir=";
	if (size_t start = options.find(kUpper); start != options.npos) {
		start += kUpper.size();
		mount->upper = Unescape(options.substr(start, options.find(',', start) - start));
	}
	return !mount->type.empty();
}

bool
IsForGuests(const Mount& mount)
{
	for (std::string folder : kGuestFolders) {
		if (mount.point == folder || mount.point.starts_with(folder + "/"))
			return true;
	}
	return mount.type.starts_with("fuse") || mount.type == "iso9660" || mount.type == "udf" ||
		mount.IsShared() || mount.IsRemovable();
}

std::shared_ptr<const Mounts>
ReadMounts(int descriptor)
{
	std::string text;
	char buffer[16384];
	ssize_t size;
	while ((size = pread(descriptor, buffer, sizeof(buffer), text.size())) > 0 ||
		(size < 0 && errno == EINTR))
		text.append(buffer, std::max<ssize_t>(size, 0));
	auto mounts = std::make_shared<Mounts>();
	std::istringstream lines(text);
	for (std::string line; std::getline(lines, line);) {
		Mount mount;
		if (!ParseLine(line, &mount))
			continue;
		mount.isForGuests = IsForGuests(mount);
		mounts->push_back(std::move(mount));
	}
	return mounts;
}

bool
HasDevice(const Mount& mount, dev_t device, struct stat* root)
{
	// Another file system may be mounted on top, and then it is that one's folder.
	return stat(mount.point.c_str(), root) == 0 && SameLowBits(root->st_dev, device);
}

} // namespace

bool
Mount::IsShared() const
{
	return IsOneOf(type, kShared);
}

bool
Mount::IsPersistent() const
{
	// A system that runs from a read-only medium has all that changes in memory.
	struct statfs status;
	if (!upper.empty() && statfs(upper.c_str(), &status) == 0)
		return status.f_type != TMPFS_MAGIC && status.f_type != RAMFS_MAGIC;
	return !IsOneOf(type, kVolatile);
}

bool
Mount::IsRemovable() const
{
	std::string disk =
		"/sys/dev/block/" + std::to_string(major(device)) + ":" + std::to_string(minor(device));
	char place[4096];
	ssize_t length = readlink(disk.c_str(), place, sizeof(place));
	if (length < 0)
		return false;
	// Disks behind USB call themselves fixed.
	if (std::string_view(place, length).find("/usb") != std::string_view::npos)
		return true;
	for (const char* file : {"/removable", "/../removable"}) { // of the disk, of its partition
		int descriptor = open((disk + file).c_str(), O_RDONLY | O_CLOEXEC);
		if (descriptor < 0)
			continue;
		char flag = '0';
		bool isRead = read(descriptor, &flag, 1) == 1;
		close(descriptor);
		return isRead && flag == '1';
	}
	return false;
}

MountTable&
MountTable::Instance()
{
	// Never deleted: threads may still ask while the process ends.
	static MountTable* table = new MountTable;
	return *table;
}

MountTable::MountTable() : fDescriptor(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {}

std::shared_ptr<const Mounts>
MountTable::Current()
{
	std::lock_guard<std::mutex> lock(fLock);
	// The kernel reports each change once, first those since the opening.
	struct pollfd changes = {fDescriptor, POLLPRI, 0};
	if (poll(&changes, 1, 0) != 0 || fMounts == nullptr)
		fMounts = ReadMounts(fDescriptor);
	return fMounts;
}

status_t
FindMount(dev_t device, Mount* mount, struct stat* root)
{
	std::shared_ptr<const Mounts> mounts = MountTable::Instance().Current();
	for (bool isWhole : {true, false}) {
		for (const Mount& candidate : *mounts) {
			if (SameLowBits(candidate.device, device) && (candidate.root == "/") == isWhole &&
				HasDevice(candidate, device, root)) {
				*mount = candidate;
				return B_OK;
			}
		}
	}
	for (const Mount& candidate : *mounts) {
		if (IsOneOf(candidate.type, kManyDevices) && HasDevice(candidate, device, root)) {
			*mount = candidate;
			return B_OK;
		}
	}
	return B_BAD_VALUE;
}

} // namespace BPrivate
