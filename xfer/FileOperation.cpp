// SPDX-License-Identifier: MIT

// From what is wanted to the transfer that does it: names, and which thread.

#include "xfer/FileXFer.h"
#include "xfer/Transfers.h"

#include "support/dprint.h"

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/File.h>

namespace NFileXFer {

namespace {

constexpr uint32 kDebugLevel = 12;

// The root folder is in no folder, not even in itself.
bool
IsIn(const BEntry& entry, const entry_ref& ref, const BDirectory& folder)
{
	BDirectory parent;
	node_ref own;
	node_ref other;
	own.device = ref.device;
	own.node = ref.directory;
	return entry.GetParent(&parent) == B_OK && folder.GetNodeRef(&other) == B_OK && own == other;
}

// Taken is also what a copy is on its way to.
bool
IsTaken(const entry_ref& original, const BPath& folder, const std::string& name)
{
	entry_ref candidate(original);
	candidate.set_name(name.c_str());
	BPath path(folder.Path(), name.c_str());
	return BEntry(&candidate).Exists() ||
		(path.InitCheck() == B_OK && IsTransferTarget(path.Path()));
}

// The name of a copy of or link to an entry in the entry's own folder. A copy's is taken by an
// empty file at once: what came to it before the copy begins would be overwritten.
std::string
FreeName(ETransferType type, const entry_ref& original, BDirectory* folder, node_ref* made)
{
	const BPath path(folder);
	const bool takes = type == eCopy && BEntry(&original).Exists();
	const auto isLost = [&](const std::string& name) {
		if (IsTaken(original, path, name))
			return true;
		BFile file;
		const status_t status =
			takes ? folder->CreateFile(name.c_str(), &file, true) : B_NOT_ALLOWED;
		file.GetNodeRef(made);
		return status == B_FILE_EXISTS;
	};
	const std::string verb = type == eCopy ? "Copy" : "Link";
	const std::string rest = (type == eCopy ? " of " : " to ") + std::string(original.name);
	std::string name = verb + rest;
	for (int32 count = 2; isLost(name); count++)
		name = verb + " " + std::to_string(count) + rest;
	return name;
}

// For a copy that does not come.
void
GiveUpName(BDirectory* folder, const std::string& name, const node_ref& made)
{
	BEntry entry(folder, name.c_str());
	node_ref node;
	off_t size;
	if (entry.GetNodeRef(&node) == B_OK && node == made && entry.GetSize(&size) == B_OK &&
		size == 0)
		entry.Remove();
}

bool
Copy(BEntry* entry, const BDirectory* folder, const std::string& name, const BHandler* handler)
{
	auto transfer = std::make_unique<FileXFerData>(entry, folder, handler);
	if (transfer->fSource.name == nullptr || transfer->fTarget.Append(name.c_str()) != B_OK)
		return false;
	std::string thread = std::string("cp ") + transfer->fSource.name;
	std::string target = transfer->fTarget.Path();
	if (!StartTransfer(thread.c_str(), CopyFile_, transfer.get(), std::move(target)))
		return false;
	transfer.release(); // the thread's from now on
	return true;
}

bool
Link(const BEntry& entry, BDirectory* folder, const std::string& name)
{
	BPath path;
	return entry.GetPath(&path) == B_OK &&
		folder->CreateSymLink(name.c_str(), path.Path(), nullptr) == B_OK;
}

} // namespace

bool
FileOperation(ETransferType type, BEntry* entry, BDirectory* folder, const BHandler* handler)
{
	entry_ref ref;
	if (entry->GetRef(&ref) != B_OK)
		return false;
	std::string name = ref.name;
	node_ref made; // the file that keeps the name
	if (IsIn(*entry, ref, *folder)) {
		Debug.StdOut(kDebugLevel, "Parent == Directory\n");
		if (type == eMove)
			return false;
		if (type == eCopy || type == eLink)
			name = FreeName(type, ref, folder, &made);
	}
	Debug.StdOut(kDebugLevel, "FileTransferType : %s\n",
		type == eMove       ? "move"
			: type == eLink ? "link"
							: "copy");
	switch (type) {
		case eCopy:
			if (Copy(entry, folder, name, handler))
				return true;
			GiveUpName(folder, name, made);
			return false;
		case eMove:
			return MoveFile(entry, folder);
		case eLink:
			return Link(*entry, folder, name);
		default:
			return true;
	}
}

} // namespace NFileXFer
