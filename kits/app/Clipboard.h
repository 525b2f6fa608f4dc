// SPDX-License-Identifier: MIT

// BClipboard: the desktop's clipboard as a message.
//
// Between programs of these kits every field travels but messengers. Other programs see "refs" as
// a list of files, to be moved when there is a bool "Cut", and "text/plain" (B_MIME_TYPE, several
// items are lines) as text. Theirs comes as B_SIMPLE_DATA with "refs" and a bool "Cut" or "Copy",
// or as B_MIME_DATA with "text/plain".
//
// Thread: any; each for itself between Lock() and Unlock(), while all others wait. Hold it only
// for as long as you read or write.
// Cost: Lock() is a round trip to the display server, plus reading the contents when they are
// another program's and new. One that does not answer counts as empty after a second, one that is
// too slow with it after three.

#pragma once

#include <app/Message.h>
#include <kernel/FairLock.h>

#include <string>

class BClipboard {
public:
	explicit BClipboard(const char* name);
	~BClipboard() = default;
	BClipboard(const BClipboard&) = delete;
	BClipboard& operator=(const BClipboard&) = delete;

	const char* Name() const { return fName.c_str(); }

	// Takes the present contents into Data(). False without a desktop. May be nested.
	bool Lock();
	void Unlock(); // changes that were not committed are dropped
	bool IsLocked() const;

	// All of these need the lock: B_ERROR, or NULL, without. What is filled into Data(), `what`
	// included, shows outside only when it is committed.
	status_t Clear(); // Data() only
	status_t Commit();
	status_t Revert();
	BMessage* Data() const; // the clipboard's own; good until Unlock()

private:
	bool _Load();

	const std::string fName;
	mutable BPrivate::FairLock fLock; // guards all below
	BMessage fContents;               // as in the desktop's clipboard
	mutable BMessage fData;           // the holder's copy
	uint64 fChange = 0;               // to which fContents belongs; 0: to none
	bigtime_t fAskAgain = 0;          // system_time(), when the owner did not answer
};

extern BClipboard* be_clipboard; // from the first moment to the last
