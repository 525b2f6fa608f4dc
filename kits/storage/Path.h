// SPDX-License-Identifier: MIT

// BPath: the text of an absolute path. It may be longer than PATH_MAX and holds any bytes.

#pragma once

#include <storage/EntryRef.h>

#include <string>

class BDirectory;
class BEntry;

// A text is taken as it is when it is absolute and plain. It is normalised when asked for, and
// unasked when it is relative or has ".", "..", doubled or trailing slashes: links in the folder
// part are resolved, the last name is not and may be missing, the folder must exist
// (B_ENTRY_NOT_FOUND). An absolute `leaf` is B_BAD_VALUE.
class BPath {
public:
	BPath() = default;
	explicit BPath(const char* path, const char* leaf = nullptr, bool normalize = false);
	explicit BPath(const BDirectory* folder, const char* leaf = nullptr, bool normalize = false);
	explicit BPath(const BEntry* entry);
	explicit BPath(const entry_ref* ref);

	status_t SetTo(const char* path, const char* leaf = nullptr, bool normalize = false);
	status_t SetTo(const BDirectory* folder, const char* leaf = nullptr, bool normalize = false);
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const entry_ref* ref);
	void Unset();
	status_t InitCheck() const { return fStatus; }

	const char* Path() const; // NULL when unset, as Leaf()
	const char* Leaf() const; // "" for "/"
	// B_NO_INIT when unset; a failure leaves the path unset.
	status_t Append(const char* path, bool normalize = false);
	// Cuts the last name; `path` may be this object. B_ENTRY_NOT_FOUND at "/".
	status_t GetParent(BPath* path) const;

	BPath& operator=(const char* path);
	bool operator==(const BPath& other) const { return fPath == other.fPath; }
	bool operator!=(const BPath& other) const { return fPath != other.fPath; }
	bool operator==(const char* path) const; // text by text; NULL equals an unset path
	bool operator!=(const char* path) const { return !(*this == path); }

private:
	status_t SetText(std::string text, bool normalize);
	status_t Fail(status_t status);

	std::string fPath; // empty: unset
	status_t fStatus = B_NO_INIT;
};
