// SPDX-License-Identifier: MIT

// The copy engine: one file, first its data, then its attributes.

#include "xfer/FileXFer.h"

#include "app/Messages.h"
#include "support/GeneralFun.h"
#include "support/UpdateCounter.h"
#include "support/dprint.h"

#include <app/Looper.h>
#include <app/Message.h>
#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/File.h>
#include <storage/Node.h>

#include <cstdio>
#include <memory>
#include <new>

namespace NFileXFer {

namespace {

constexpr uint32 kDebugLevel = 12;
constexpr size_t kChunkSize = 1024;
constexpr size_t kErrorTextSize = 512;
constexpr size_t kAttrNameSize = 256;

void
ReportError(const char* format, const char* name, status_t status)
{
	char text[kErrorTextSize];
	Debug.StdOut(kDebugLevel, format, name, NGeneralFunction::ErrorString(text, status));
}

// Asked before opening, which can have an effect on a device, and after it, when it is certain.
status_t
RefuseAllButFiles(const BStatable& statable, node_ref* node = nullptr)
{
	struct stat status;
	if (status_t error = statable.GetStat(&status); error != B_OK)
		return error;
	if (node != nullptr) {
		node->device = status.st_dev;
		node->node = status.st_ino;
	}
	if (S_ISREG(status.st_mode))
		return B_OK;
	return S_ISDIR(status.st_mode) ? B_IS_A_DIRECTORY : B_NOT_ALLOWED;
}

// A file that is there already is not emptied yet.
status_t
OpenTarget(const BPath* path, BFile* file, node_ref* node)
{
	status_t status = BDirectory().CreateFile(path->Path(), file, true);
	if (status == B_FILE_EXISTS) {
		BEntry entry(path->Path(), true);
		uint32 mode = B_READ_WRITE;
		status = RefuseAllButFiles(entry);
		if (status == B_ENTRY_NOT_FOUND) { // a link whose target is missing gets it now
			mode |= B_CREATE_FILE;
			status = B_OK;
		}
		if (status == B_OK)
			status = file->SetTo(path->Path(), mode);
	}
	return status == B_OK ? RefuseAllButFiles(*file, node) : status;
}

// B_NOT_ALLOWED when the source is the target under another name.
status_t
OpenSource(const entry_ref* source, const node_ref& target, BFile* file)
{
	BEntry entry(source, true);
	node_ref node;
	status_t status = RefuseAllButFiles(entry);
	if (status == B_OK)
		status = file->SetTo(&entry, B_READ_ONLY);
	if (status == B_OK)
		status = RefuseAllButFiles(*file, &node);
	return status == B_OK && node == target ? B_NOT_ALLOWED : status;
}

// A new file is left alone: there are file systems that wait for the disk when a file that was cut
// to nothing is closed.
bool
Empty(BFile* target)
{
	off_t size;
	return target->GetSize(&size) == B_OK && (size == 0 || target->SetSize(0) == B_OK);
}

bool
CopyData(BFile* source, BFile* target)
{
	char chunk[kChunkSize];
	if (source->Seek(0, SEEK_SET) < 0)
		return false;
	for (;;) {
		ssize_t length = source->Read(chunk, sizeof(chunk));
		// The target gathers what it is given: whether all of it has arrived it knows only now.
		if (length <= 0)
			return length == 0 && target->Sync() == B_OK;
		Debug.StdOut(kDebugLevel, ".");
		fflush(stdout);
		if (target->Write(chunk, length) < length)
			return false;
	}
}

// One that cannot be read or written is left out: not every volume can hold every attribute.
void
CopyAttributes(BNode* source, BNode* target)
{
	char name[kAttrNameSize];
	source->RewindAttrs();
	while (source->GetNextAttrName(name) == B_OK) {
		Debug.StdOut(kDebugLevel, "%s ; ", name);
		fflush(stdout);
		attr_info info;
		if (source->GetAttrInfo(name, &info) != B_OK)
			continue;
		std::unique_ptr<char[]> value(new (std::nothrow) char[info.size]);
		if (value != nullptr &&
			source->ReadAttr(name, info.type, 0, value.get(), info.size) == info.size)
			target->WriteAttr(name, info.type, 0, value.get(), info.size);
	}
}

// Without the window's lock, which it keeps while its menu or its question is open: other copies
// wait for this one's end. A window that is gone gets nothing.
void
SendComplete(const FileXFerData& transfer)
{
	BMessage message(kMSG_CopyComplete);
	message.AddRef("source", &transfer.fSource);
	message.AddString("target", transfer.fTarget.Path());
	transfer.fMessenger->SendMessage(&message);
}

} // namespace

bool
CopyFile(const entry_ref* source, const BPath* target)
{
	Debug.StdOut(kDebugLevel, "CopyFile: %s -> %s\n", source->name, target->Path());
	BNode sourceNode(source);
	if (sourceNode.InitCheck() != B_OK)
		return false;
	BFile targetFile;
	node_ref made;
	if (status_t status = OpenTarget(target, &targetFile, &made); status != B_OK) {
		ReportError("Error creating %s - %s\n", target->Path(), status);
		return false;
	}
	BFile sourceFile;
	if (status_t status = OpenSource(source, made, &sourceFile); status != B_OK) {
		ReportError("Error opening %s - %s\n", source->name, status);
		return false;
	}
	bool isCopied = Empty(&targetFile) && CopyData(&sourceFile, &targetFile);
	sourceFile.Unset();
	targetFile.Unset();
	Debug.StdOut(kDebugLevel, "\n");
	if (!isCopied)
		return false;

	BNode targetNode(target->Path());
	node_ref found;
	if (targetNode.GetNodeRef(&found) != B_OK)
		return false;
	if (!(found == made) && !targetNode.IsSymLink())
		return false; // another file's name by now
	CopyAttributes(&sourceNode, &targetNode);
	Debug.StdOut(kDebugLevel, "\nDone.\n");
	return true;
}

int32
CopyFile_(void* data)
{
	std::unique_ptr<FileXFerData> transfer(static_cast<FileXFerData*>(data));
	gUpdateTolerance++;
	bool isCopied = CopyFile(&transfer->fSource, &transfer->fTarget);
	gUpdateTolerance--;
	SendComplete(*transfer);
	return isCopied;
}

} // namespace NFileXFer
