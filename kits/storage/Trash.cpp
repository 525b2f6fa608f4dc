// SPDX-License-Identifier: MIT

#include <storage/Trash.h>

#include <storage/FolderPath.h>
#include <storage/MoveEntry.h>
#include <storage/TrashRecords.h>
#include <storage/UserFolders.h>

#include <cstring>
#include <sys/stat.h>

namespace BPrivate {

namespace {

// The numbers of the trash's folder of files; unset ones, which no folder has, without a trash.
node_ref
FindFiles(const std::string& trash)
{
	node_ref node;
	struct stat status;
	if (!trash.empty() && stat((trash + "/files").c_str(), &status) == 0) {
		node.device = status.st_dev;
		node.node = status.st_ino;
	}
	return node;
}

std::string
TrashPath()
{
	std::string path = UserData();
	return path.empty() ? path : path + "/Trash";
}

EntryPlace
PlaceOf(const NamedEntry& entry)
{
	return {entry.folder->Descriptor(), entry.name};
}

status_t
NewRecord(const NamedEntry& entry, std::string* text)
{
	std::string path;
	if (status_t status = GetFolderPath(entry.folder->Descriptor(), &path); status != B_OK)
		return status;
	if (path.back() != '/')
		path += '/';
	*text = TrashRecord(path.append(entry.name), time(nullptr));
	return B_OK;
}

// With a record for the new name; `isInside` says that the entry has had one under the old name.
status_t
MoveIn(TrashRecords& records, const NamedEntry& from, const NamedEntry& to, bool clobber,
	bool isInside)
{
	std::string text;
	if (!isInside || records.Read(from.name, &text) != B_OK) {
		if (status_t status = NewRecord(from, &text); status != B_OK)
			return status;
	}
	TrashRecords::Undo undo;
	if (status_t status = records.Write(PlaceOf(to), text, clobber, &undo); status != B_OK)
		return status;
	status_t status = MoveEntry(PlaceOf(from), PlaceOf(to), clobber);
	if (status != B_OK)
		records.TakeBack(to.name, undo);
	else if (isInside)
		records.Remove(from.name);
	return status;
}

} // namespace

status_t
MoveWithRecord(const NamedEntry& from, const NamedEntry& to, bool clobber)
{
	std::string trash = TrashPath();
	node_ref files = FindFiles(trash);
	bool isLeaving = from.folder->Node() == files;
	bool isComing = to.folder->Node() == files;
	if ((!isLeaving && !isComing) ||
		(isLeaving && isComing && strcmp(from.name, to.name) == 0)) // moved onto itself
		return MoveEntry(PlaceOf(from), PlaceOf(to), clobber);

	TrashRecords records(trash);
	if (isComing) {
		if (records.InitCheck() != B_OK)
			return records.InitCheck();
		return MoveIn(records, from, to, clobber, isLeaving);
	}
	status_t status = MoveEntry(PlaceOf(from), PlaceOf(to), clobber);
	if (status == B_OK)
		records.Remove(from.name);
	return status;
}

status_t
RemoveWithRecord(const NamedEntry& entry)
{
	std::string trash = TrashPath();
	if (entry.folder->Node() != FindFiles(trash))
		return RemoveEntry(PlaceOf(entry));
	TrashRecords records(trash);
	status_t status = RemoveEntry(PlaceOf(entry));
	if (status == B_OK)
		records.Remove(entry.name);
	return status;
}

std::string
TrashRecord(std::string_view path, time_t when)
{
	constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
										"0123456789-._~/";
	constexpr char kDigits[] = "0123456789ABCDEF";
	std::string text = "[Trash Info]\nPath=";
	for (char letter : path) {
		uint8 byte = static_cast<uint8>(letter);
		if (kPlain.find(letter) != kPlain.npos)
			text += letter;
		else
			text.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
	}
	struct tm local = {};
	localtime_r(&when, &local);
	char date[32];
	strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &local);
	return text + "\nDeletionDate=" + date + "\n";
}

} // namespace BPrivate
