// SPDX-License-Identifier: MIT

// What cut and copy put on the clipboard, and what a paste takes from it.

#include "xfer/CutCopy.h"

#include "xfer/FileXFer.h"
#include "xfer/PathText.h"

#include "app/Messages.h"
#include "support/dprint.h"

#include <app/Clipboard.h>
#include <app/Message.h>

namespace NFileXFer {

namespace {

constexpr uint32 kDebugLevel = 12;
constexpr const char* kCut = "Cut";
constexpr const char* kCopy = "Copy";

void
Fill(BMessage* data, int32 command, const entry_ref* ref)
{
	data->what = kMSG_DragFile;
	PathTexts().AddTo(data, ref);
	data->AddRef(kName_Refs, ref);
	data->AddBool("Korva", true);
	data->AddBool(static_cast<uint32>(command) == B_COPY ? kCopy : kCut, true);
}

} // namespace

bool
CutCopy(int32 command, const entry_ref* ref)
{
	if (!be_clipboard->Lock())
		return true;
	be_clipboard->Clear();
	if (BMessage* data = be_clipboard->Data(); data != nullptr) {
		Fill(data, command, ref);
		Debug.StdOut(kDebugLevel, "Set Clipboard::\n");
		Debug.Print(kDebugLevel, data);
	}
	be_clipboard->Commit();
	be_clipboard->Unlock();
	return true;
}

bool
FindPasteType(const BMessage& data, ETransferType* type)
{
	if (data.HasBool(kCut)) {
		Debug.StdOut(kDebugLevel, "Cut\n");
		*type = eMove;
		return true;
	}
	if (data.HasBool(kCopy)) {
		Debug.StdOut(kDebugLevel, "Copy\n");
		*type = eCopy;
		return true;
	}
	return false;
}

bool
HaveSameRefs(const BMessage& a, const BMessage& b)
{
	entry_ref first;
	entry_ref second;
	for (int32 i = 0;; i++) {
		const bool isThere = a.FindRef(kName_Refs, i, &first) == B_OK;
		if ((b.FindRef(kName_Refs, i, &second) == B_OK) != isThere || first != second)
			return false;
		if (!isThere)
			return true;
	}
}

bool
HasRef(const BMessage& message, const entry_ref& ref)
{
	entry_ref other;
	for (int32 i = 0; message.FindRef(kName_Refs, i, &other) == B_OK; i++) {
		if (other == ref)
			return true;
	}
	return false;
}

void
ForgetCutFile(const entry_ref& ref)
{
	if (!be_clipboard->Lock())
		return;
	BMessage* data = be_clipboard->Data();
	entry_ref cut;
	for (int32 i = 0; data->HasBool(kCut) && data->FindRef(kName_Refs, i, &cut) == B_OK; i++) {
		if (cut != ref)
			continue;
		data->RemoveData(kName_Refs, i);
		data->RemoveData(kPathText, i);
		if (!data->HasRef(kName_Refs))
			be_clipboard->Clear();
		be_clipboard->Commit();
		break;
	}
	be_clipboard->Unlock();
}

void
ForgetCut(const BMessage& pasted)
{
	if (!pasted.HasBool(kCut) || !be_clipboard->Lock())
		return;
	if (be_clipboard->Data()->HasBool(kCut) && HaveSameRefs(*be_clipboard->Data(), pasted)) {
		be_clipboard->Clear();
		be_clipboard->Commit();
	}
	be_clipboard->Unlock();
}

} // namespace NFileXFer
