// SPDX-License-Identifier: MIT

#include <storage/Path.h>

#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/FolderPath.h>

#include <fcntl.h>

using namespace BPrivate;

namespace {

void
AppendName(std::string* path, std::string_view name)
{
	if (name.empty())
		return;
	if (path->empty() || path->back() != '/')
		*path += '/';
	*path += name;
}

// True for an absolute path that has no ".", "..", doubled or trailing slash.
bool
IsPlain(std::string_view path)
{
	if (path.empty() || path[0] != '/')
		return false;
	if (path == "/")
		return true;
	for (size_t start = 1;;) {
		size_t end = path.find('/', start);
		std::string_view name = path.substr(start, end - start);
		if (name.empty() || name == "." || name == "..")
			return false;
		if (end == path.npos)
			return true;
		start = end + 1;
	}
}

} // namespace

BPath::BPath(const char* path, const char* leaf, bool normalize)
{
	SetTo(path, leaf, normalize);
}

BPath::BPath(const BDirectory* folder, const char* leaf, bool normalize)
{
	SetTo(folder, leaf, normalize);
}

BPath::BPath(const BEntry* entry)
{
	SetTo(entry);
}

BPath::BPath(const entry_ref* ref)
{
	SetTo(ref);
}

status_t
BPath::SetTo(const char* path, const char* leaf, bool normalize)
{
	if (path == nullptr || (leaf != nullptr && leaf[0] == '/'))
		return Fail(B_BAD_VALUE);
	std::string text(path);
	if (text.empty())
		return Fail(B_ENTRY_NOT_FOUND);
	if (leaf != nullptr)
		AppendName(&text, leaf);
	return SetText(std::move(text), normalize);
}

status_t
BPath::SetTo(const BDirectory* folder, const char* leaf, bool normalize)
{
	if (folder == nullptr || folder->InitCheck() != B_OK || (leaf != nullptr && leaf[0] == '/'))
		return Fail(B_BAD_VALUE);
	std::string text;
	if (status_t status = GetFolderPath(*folder->fFolder, &text); status != B_OK)
		return Fail(status);
	if (leaf != nullptr)
		AppendName(&text, leaf);
	return SetText(std::move(text), normalize);
}

status_t
BPath::SetTo(const BEntry* entry)
{
	if (entry == nullptr)
		return Fail(B_BAD_VALUE);
	if (entry->InitCheck() != B_OK)
		return Fail(entry->InitCheck());
	std::string text;
	if (status_t status = GetFolderPath(*entry->fFolder, &text); status != B_OK)
		return Fail(status);
	if (IsLeafName(entry->fRef.name))
		AppendName(&text, entry->fRef.name);
	fPath = std::move(text);
	return fStatus = B_OK;
}

status_t
BPath::SetTo(const entry_ref* ref)
{
	BEntry entry(ref);
	return SetTo(&entry);
}

status_t
BPath::SetText(std::string text, bool normalize)
{
	if (normalize || !IsPlain(text)) {
		FolderHandle folder;
		std::string name;
		status_t status = LocateEntry(AT_FDCWD, text, &folder, &name);
		if (status == B_OK)
			status = GetFolderPath(folder->Descriptor(), &text); // no link is left in it
		if (status != B_OK)
			return Fail(status);
		if (IsLeafName(name.c_str()))
			AppendName(&text, name);
	}
	fPath = std::move(text);
	return fStatus = B_OK;
}

status_t
BPath::Fail(status_t status)
{
	Unset();
	return fStatus = status;
}

void
BPath::Unset()
{
	fPath.clear();
	fStatus = B_NO_INIT;
}

const char*
BPath::Path() const
{
	return fPath.empty() ? nullptr : fPath.c_str();
}

const char*
BPath::Leaf() const
{
	return fPath.empty() ? nullptr : fPath.c_str() + fPath.rfind('/') + 1;
}

status_t
BPath::Append(const char* path, bool normalize)
{
	if (fPath.empty())
		return B_NO_INIT;
	if (path == nullptr)
		return Fail(B_BAD_VALUE);
	return SetTo(Path(), path, normalize);
}

status_t
BPath::GetParent(BPath* path) const
{
	if (path == nullptr)
		return B_BAD_VALUE;
	if (fPath.empty())
		return B_NO_INIT;
	if (fPath == "/")
		return B_ENTRY_NOT_FOUND;
	size_t slash = fPath.rfind('/');
	return path->SetTo(fPath.substr(0, slash == 0 ? 1 : slash).c_str());
}

BPath&
BPath::operator=(const char* path)
{
	SetTo(path);
	return *this;
}

bool
BPath::operator==(const char* path) const
{
	return path == nullptr ? fPath.empty() : !fPath.empty() && fPath == path;
}
