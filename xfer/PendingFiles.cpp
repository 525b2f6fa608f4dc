// SPDX-License-Identifier: MIT

#include "xfer/PendingFiles.h"

#include "xfer/CutCopy.h"

#include "app/Messages.h"
#include "support/dprint.h"

#include <app/Clipboard.h>
#include <interface/View.h>
#include <storage/Entry.h>

#include <memory>

namespace NFileXFer {

namespace {

constexpr uint32 kDebugLevel = 8;
constexpr bigtime_t kSlice = 20000;

void
SetInt32(BMessage* message, const char* name, uint32 value)
{
	message->RemoveName(name);
	message->AddInt32(name, static_cast<int32>(value));
}

} // namespace

PendingFiles::~PendingFiles()
{
	if (IsEmpty())
		return;
	auto rest = std::make_unique<PendingFiles>();
	rest->fTransfers.swap(fTransfers);
	const thread_id thread = spawn_thread(BeginRest, "drop", B_NORMAL_PRIORITY, rest.get());
	if (thread < 0)
		BeginRest(rest.release());
	else if (resume_thread(thread) == B_OK)
		rest.release(); // the thread's from now on
}

int32
PendingFiles::BeginRest(void* pending)
{
	std::unique_ptr<PendingFiles> rest(static_cast<PendingFiles*>(pending));
	while (rest->BeginSome(nullptr)) {
	}
	return B_OK;
}

void
PendingFiles::AddDrop(const BMessage& dropped, const entry_ref& folder, const BView& view)
{
	BMessage& message = fTransfers.emplace_back(Transfer{dropped, BDirectory(&folder)}).message;
	// A drag from elsewhere does not tell its buttons.
	int32 buttonsBefore;
	if (message.FindInt32(kName_DragButtons, &buttonsBefore) != B_OK) {
		uint32 buttons = 0;
		view.GetMouse(nullptr, &buttons);
		SetInt32(&message, kName_DragButtons, buttons);
	}
	SetInt32(&message, "modifiers", modifiers());
}

void
PendingFiles::AddPaste(const BMessage& command, const entry_ref& folder)
{
	Transfer paste{command, BDirectory(&folder)};
	if (be_clipboard->Lock()) {
		paste.message = *be_clipboard->Data();
		be_clipboard->Unlock();
		ETransferType type;
		if (!FindPasteType(paste.message, &type))
			return;
		paste.isCut = type == eMove;
	}
	fTransfers.push_back(std::move(paste));
}

bool
PendingFiles::BeginSome(const BView* view)
{
	const bigtime_t end = system_time() + kSlice;
	while (!IsEmpty() && system_time() <= end)
		BeginNext(view);
	return !IsEmpty();
}

void
PendingFiles::BeginNext(const BView* view)
{
	Transfer& transfer = fTransfers.front();
	entry_ref ref;
	if (transfer.message.FindRef(kName_Refs, transfer.next, &ref) != B_OK) {
		fTransfers.pop_front();
		return;
	}
	transfer.next++;
	BEntry place;
	entry_ref folder;
	const bool isBegun = transfer.folder.GetEntry(&place) == B_OK &&
		place.GetRef(&folder) == B_OK && HandleFileMessage(&transfer.message, &ref, &folder, view);
	Debug.StdOut(kDebugLevel, "HFM (%d)\n", isBegun);
	if (isBegun && transfer.isCut)
		ForgetCut(transfer);
}

// Nor is it for a later paste that waits here.
void
PendingFiles::ForgetCut(Transfer& pasted)
{
	pasted.isCut = false;
	NFileXFer::ForgetCut(pasted.message);
	fTransfers.remove_if([&pasted](const Transfer& other) {
		return other.isCut && HaveSameRefs(other.message, pasted.message);
	});
}

} // namespace NFileXFer
