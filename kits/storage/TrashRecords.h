// SPDX-License-Identifier: MIT

// The trash's folder of records. While an object lives no other program that uses this kit changes
// the trash: a record is seen and the entry moved as one step. Others of the desktop respect a
// record that is there, which is why it is always made exclusively.

#pragma once

#include <storage/FileDescriptor.h>
#include <storage/MoveEntry.h>

#include <optional>
#include <string>

namespace BPrivate {

class TrashRecords {
public:
	typedef std::optional<std::string> Undo; // the text that was there before

	// Opens the folder, and makes it when it is missing.
	explicit TrashRecords(const std::string& trash);

	status_t InitCheck() const { return fStatus; }

	// Writes the record of an entry that is to be at a place in the folder of files, all of it or
	// nothing. B_FILE_EXISTS when another entry's record is there, unless clobbering.
	status_t Write(const EntryPlace& entry, const std::string& text, bool clobber, Undo* undo);
	// After a Write() whose entry did not come.
	void TakeBack(const char* name, const Undo& undo);
	status_t Read(const char* name, std::string* text) const;
	void Remove(const char* name);

private:
	void Lock();
	status_t Create(const char* file, const std::string& text);
	status_t Replace(const char* file, const std::string& text);
	bool IsForsaken(const EntryPlace& entry, const char* file) const;

	FileDescriptor fFolder; // locked, unless another program keeps it locked for long
	status_t fStatus = B_OK;
};

} // namespace BPrivate
