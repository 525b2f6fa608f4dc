// SPDX-License-Identifier: MIT

// The files of drops and pastes on their way to HandleFileMessage(): one after the other and in
// slices of time, so that a window which gets thousands of them answers. What was dropped or pasted
// is done, also when the window goes before.
//
// Thread: the view's.

#pragma once

#include <app/Message.h>
#include <storage/Directory.h>

#include <list>

class BView;

namespace NFileXFer {

class PendingFiles {
public:
	PendingFiles() = default;
	// A thread begins what is left, without a view: what the menu would have to ask is cancelled.
	~PendingFiles();
	PendingFiles(const PendingFiles&) = delete;
	PendingFiles& operator=(const PendingFiles&) = delete;

	// The keys and buttons held now count for all files, though later ones are begun after them.
	void AddDrop(const BMessage& dropped, const entry_ref& folder, const BView& view);
	// What the clipboard holds now; what is cut is forgotten with its first file that is begun.
	void AddPaste(const BMessage& command, const entry_ref& folder);

	bool IsEmpty() const { return fTransfers.empty(); }
	// Begins files for a while. False when none is left.
	bool BeginSome(const BView* view);

private:
	struct Transfer {
		BMessage message;
		BDirectory folder;  // where the files go, whatever its name is by then
		int32 next = 0;     // of the message's files
		bool isCut = false; // and still on the clipboard, for all that we know
	};

	static int32 BeginRest(void* transfers);
	void BeginNext(const BView* view);
	void ForgetCut(Transfer& pasted);

	std::list<Transfer> fTransfers; // not begun yet, or not with all files
};

} // namespace NFileXFer
