// SPDX-License-Identifier: MIT

// Moving, with the questions that are asked before something is lost.

#include "xfer/FileXFer.h"
#include "xfer/Transfers.h"

#include "support/UpdateCounter.h"

#include <interface/Alert.h>
#include <storage/Directory.h>
#include <storage/Entry.h>

#include <memory>
#include <mutex>
#include <string>

namespace NFileXFer {

namespace {

// The window's own work comes first. Counted from the call: of thousands that are asked for at once
// those that had to wait for others have paused enough.
constexpr bigtime_t kPauseBefore = 10000;
constexpr int32 kYes = 0;

struct MoveRecord {
	std::unique_ptr<BEntry> entry;
	std::unique_ptr<BDirectory> folder;
	bigtime_t asked = system_time();
};

// An alert takes half a megabyte and a thread: those that wait for others are not made yet.
std::mutex sAsking;

// False also when the question is closed without an answer, as at the program's end.
bool
Ask(const char* title, const std::string& question)
{
	TransferPause pause;
	std::lock_guard turn(sAsking);
	BAlert* alert =
		new BAlert(title, question.c_str(), "Yes", "No", nullptr, B_WIDTH_AS_USUAL, B_STOP_ALERT);
	return alert->Go() == kYes;
}

std::string
NameOf(const BEntry& entry)
{
	char name[B_FILE_NAME_LENGTH];
	return entry.GetName(name) == B_OK ? name : "";
}

std::string
NameOf(const BDirectory& folder)
{
	BEntry entry;
	return folder.GetEntry(&entry) == B_OK ? NameOf(entry) : "";
}

} // namespace

bool
MoveFile(BEntry* entry, BDirectory* folder)
{
	auto record = std::make_unique<MoveRecord>();
	record->entry.reset(entry);
	record->folder.reset(folder);
	if (StartTransfer("move", MoveFile_, record.get())) {
		record.release(); // the thread's from now on
		return true;
	}
	record->entry.release();
	record->folder.release();
	return false;
}

int32
MoveFile_(void* data)
{
	std::unique_ptr<MoveRecord> record(static_cast<MoveRecord*>(data));
	gUpdateTolerance++;
	snooze(record->asked + kPauseBefore - system_time());
	bool isMoved = MoveFile_(record->entry.get(), record->folder.get());
	record.reset();
	gUpdateTolerance--;
	return isMoved;
}

bool
MoveFile_(BEntry* entry, BDirectory* folder)
{
	std::string name = NameOf(*entry);
	if (IsSpecialFolder(*entry) &&
		!Ask("Warning!",
			"The folder " + name +
				" is a special folder. Moving it may damage your BeOS installation.\n"
				"Are you sure you want to move it?"))
		return false;
	status_t status = entry->MoveTo(folder);
	if (status == B_FILE_EXISTS &&
		Ask("Delete File?",
			"A file named \"" + name + "\" already exists in the folder \"" + NameOf(*folder) +
				"\".\nReplace existing file?"))
		status = entry->MoveTo(folder, nullptr, true);
	return status == B_OK;
}

} // namespace NFileXFer
