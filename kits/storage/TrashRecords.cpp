// SPDX-License-Identifier: MIT

#include <storage/TrashRecords.h>

#include <kernel/OS.h>
#include <storage/SpareName.h>

#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace BPrivate {

namespace {

// Other programs write the record an instant before the entry comes.
constexpr time_t kForsakenAfter = 30; // seconds
constexpr size_t kMostBytes = 1 << 20;
constexpr bigtime_t kLockPatience = 1000000;
constexpr bigtime_t kLockInterval = 5000;

std::string
FileOf(const char* name)
{
	return std::string(name).append(".trashinfo");
}

} // namespace

TrashRecords::TrashRecords(const std::string& trash)
{
	std::string path = trash + "/info";
	mkdir(path.c_str(), 0700);
	fFolder = FileDescriptor(
		Retry([&] { return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
	if (!fFolder.IsOpen())
		fStatus = StatusFromErrno(errno);
	else
		Lock();
}

// A program that was stopped while it holds the lock stops nobody for long: what keeps names apart
// is that each is taken exclusively.
void
TrashRecords::Lock()
{
	const bigtime_t end = system_time() + kLockPatience;
	while (Retry([&] { return flock(fFolder.Get(), LOCK_EX | LOCK_NB); }) != 0 &&
		errno == EWOULDBLOCK && system_time() < end)
		snooze(kLockInterval);
}

status_t
TrashRecords::Write(const EntryPlace& entry, const std::string& text, bool clobber, Undo* undo)
{
	std::string file = FileOf(entry.name);
	status_t status = Create(file.c_str(), text);
	if (status != B_FILE_EXISTS)
		return status;
	if (!clobber && !IsForsaken(entry, file.c_str()))
		return B_FILE_EXISTS;
	// What could not be put back is not replaced.
	std::string before;
	if (status_t error = Read(entry.name, &before); error != B_OK)
		return clobber ? error : B_FILE_EXISTS;
	*undo = std::move(before);
	return Replace(file.c_str(), text);
}

void
TrashRecords::TakeBack(const char* name, const Undo& undo)
{
	if (undo.has_value())
		Replace(FileOf(name).c_str(), *undo);
	else
		Remove(name);
}

// A record whose entry never came, or is gone: its writer was killed.
bool
TrashRecords::IsForsaken(const EntryPlace& entry, const char* file) const
{
	struct stat status;
	if (fstatat(entry.folder, entry.name, &status, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT ||
		fstatat(fFolder.Get(), file, &status, AT_SYMLINK_NOFOLLOW) != 0)
		return false;
	time_t now = time(nullptr);
	return status.st_mtime <= now - kForsakenAfter;
}

status_t
TrashRecords::Read(const char* name, std::string* text) const
{
	FileDescriptor file(Retry([&] {
		return openat(
			fFolder.Get(), FileOf(name).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
	}));
	if (!file.IsOpen())
		return StatusFromErrno(errno);
	text->clear();
	char buffer[4096];
	ssize_t length;
	while ((length = Retry([&] { return read(file.Get(), buffer, sizeof(buffer)); })) > 0) {
		text->append(buffer, length);
		if (text->size() > kMostBytes)
			return B_BAD_VALUE; // no record of anybody's
	}
	return length < 0 ? StatusFromErrno(errno) : B_OK;
}

void
TrashRecords::Remove(const char* name)
{
	if (fFolder.IsOpen())
		unlinkat(fFolder.Get(), FileOf(name).c_str(), 0);
}

status_t
TrashRecords::Create(const char* name, const std::string& text)
{
	FileDescriptor file(Retry([&] {
		return openat(fFolder.Get(), name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
	}));
	if (!file.IsOpen())
		return StatusFromErrno(errno);
	for (size_t done = 0; done < text.size();) {
		ssize_t length =
			Retry([&] { return write(file.Get(), text.data() + done, text.size() - done); });
		if (length <= 0) {
			status_t status = length < 0 ? StatusFromErrno(errno) : B_IO_ERROR;
			unlinkat(fFolder.Get(), name, 0);
			return status;
		}
		done += length;
	}
	return B_OK;
}

// In one step: nobody finds half a record, or none.
status_t
TrashRecords::Replace(const char* name, const std::string& text)
{
	SpareName spare;
	if (status_t status = Create(spare.Text(), text); status != B_OK)
		return status;
	if (renameat(fFolder.Get(), spare.Text(), fFolder.Get(), name) == 0)
		return B_OK;
	status_t status = StatusFromErrno(errno);
	unlinkat(fFolder.Get(), spare.Text(), 0);
	return status;
}

} // namespace BPrivate
