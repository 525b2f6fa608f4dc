// SPDX-License-Identifier: MIT

// From a drop or a command of the user to the transfer that it means.

#include "xfer/CutCopy.h"
#include "xfer/FileXFer.h"

#include "app/Messages.h"
#include "support/GeneralFun.h"
#include "support/dprint.h"

#include <app/Clipboard.h>
#include <app/Message.h>
#include <interface/View.h>
#include <storage/Directory.h>
#include <storage/Entry.h>

#include <memory>

namespace NFileXFer {

namespace {

constexpr uint32 kDebugLevel = 12;
constexpr size_t kErrorTextSize = 512;

// False when nothing is to be done.
bool
ChooseForDrop(const BMessage& message, const BView* view, ETransferType* type)
{
	// Of several files all do what the keys said at the drop.
	int32 keysBefore;
	const uint32 keys = message.FindInt32("modifiers", &keysBefore) == B_OK
		? static_cast<uint32>(keysBefore)
		: modifiers();
	BPoint where;
	uint32 buttons = 0;
	int32 buttonsBefore;
	const bool knowsButtons = message.FindInt32(kName_DragButtons, &buttonsBefore) == B_OK;
	// Only when it must be: asking takes presses that wait for the window.
	if (view != nullptr && !(knowsButtons && message.WasDropped())) {
		view->GetMouse(&where, &buttons);
		where = view->ConvertToScreen(where);
	}
	if (knowsButtons)
		buttons = static_cast<uint32>(buttonsBefore);
	if (message.WasDropped())
		where = message.DropPoint();

	if ((keys & B_CONTROL_KEY) != 0 || (buttons & B_SECONDARY_MOUSE_BUTTON) != 0) {
		Debug.StdOut(kDebugLevel, "Ctrl => Menu\n");
		*type = view != nullptr ? FileTransferMenu(where) : eCancel;
		return *type != eCancel;
	}
	if ((keys & B_OPTION_KEY) != 0) {
		Debug.StdOut(kDebugLevel, "Opt => Copy\n");
		*type = eCopy;
	} else if ((keys & B_SHIFT_KEY) != 0) {
		Debug.StdOut(kDebugLevel, "Shift => Link\n");
		*type = eLink;
	} else if ((keys & B_COMMAND_KEY) != 0) {
		Debug.StdOut(kDebugLevel, "Cmd => Move\n");
		*type = eMove;
	} else {
		Debug.StdOut(kDebugLevel, "Drag => Default\n");
		*type = eMove;
	}
	return true;
}

bool
Choose(const BMessage& message, const entry_ref& ref, const BView* view, ETransferType* type)
{
	if (message.what == kMSG_CreateLink) {
		*type = eLink;
		return true;
	}
	if (message.what == B_PASTE && be_clipboard->Lock()) {
		// A menu may have been open since the file was found there.
		const BMessage& data = *be_clipboard->Data();
		const bool isPaste = HasRef(data, ref) && FindPasteType(data, type);
		be_clipboard->Unlock();
		return isPaste;
	}
	// A copy of the clipboard's contents: the keys that are held then belong to the command.
	if (!message.WasDropped() && FindPasteType(message, type))
		return true;
	return ChooseForDrop(message, view, type);
}

bool
Transfer(ETransferType type, const entry_ref* ref, const entry_ref* folderRef, const BView* view)
{
	auto entry = std::make_unique<BEntry>(ref, false);
	auto folder = std::make_unique<BDirectory>(folderRef);
	if (entry->InitCheck() != B_OK || folder->InitCheck() != B_OK) {
		char text[kErrorTextSize];
		Debug.StdOut(
			kDebugLevel, "ent(%s)\n", NGeneralFunction::ErrorString(text, entry->InitCheck()));
		Debug.StdOut(
			kDebugLevel, "dir(%s)\n", NGeneralFunction::ErrorString(text, folder->InitCheck()));
		return false;
	}
	bool isDone = FileOperation(type, entry.get(), folder.get(), view);
	if (type == eMove && isDone) { // the move's from now on
		entry.release();
		folder.release();
	}
	return isDone;
}

} // namespace

bool
HandleFileMessage(
	const BMessage* message, const entry_ref* entry, const entry_ref* folder, const BView* view)
{
	ETransferType type;
	if (!Choose(*message, *entry, view, &type) || !Transfer(type, entry, folder, view))
		return false;
	if (message->what == B_PASTE && type == eMove)
		ForgetCutFile(*entry);
	return true;
}

} // namespace NFileXFer
