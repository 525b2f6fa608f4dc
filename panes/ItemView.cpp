// SPDX-License-Identifier: MIT

// The pane, its folder and what is opened in it. How it follows changes is in FollowFolder.cpp.

#include "panes/ItemView.h"

#include "app/Messages.h"
#include "panes/ItemListItem.h"
#include "panes/ItemListView.h"
#include "support/GeneralFun.h"
#include "support/dprint.h"
#include "xfer/FileXFer.h"

#include <app/Messenger.h>
#include <app/Roster.h>
#include <interface/Alert.h>
#include <interface/ScrollView.h>
#include <interface/Window.h>
#include <storage/Entry.h>

#include <cstring>
#include <string>

namespace {

constexpr uint32 kDebugLevel = 6;
constexpr const char* kFileManager = "application/x-vnd.Be-TRAK";

} // namespace

ItemView::ItemView(BRect frame, entry_ref* folder) :
	BView(frame, "item", B_FOLLOW_ALL_SIDES, B_WILL_DRAW | B_NAVIGABLE), fFolder(*folder)
{}

// The list would delete its columns, which are ours.
ItemView::~ItemView()
{
	for (const std::unique_ptr<CLVColumn>& column : fColumns) {
		if (column != nullptr)
			fList->RemoveColumn(column.get());
	}
}

BRect
ItemView::SubBounds() const
{
	BRect bounds = Bounds();
	bounds.right -= B_V_SCROLL_BAR_WIDTH;
	bounds.bottom -= B_H_SCROLL_BAR_HEIGHT;
	return bounds;
}

void
ItemView::AttachedToWindow()
{
	Debug.StdOut(kDebugLevel, "Creating New View\n");
	if (fList == nullptr) {
		fList = new ItemListView(SubBounds(), &fScrollView);
		fList->SetSortFunction(ItemListItem::CompareFiles);
		for (int32 i = 0; i < kItemColumns; i++) {
			fColumns[i] = std::make_unique<CLVColumn>(
				gColumnNames[i], gColumnWidths[i], gColumnFlags[i], kLeastColumnWidth);
			fList->AddColumn(fColumns[i].get());
		}
		fList->SetSortKey(kNameColumn); // only a column that is there can be the key
		AddChild(fScrollView);
		fList->SetInvocationMessage(new BMessage(kMSG_ItemInvocation));
		fList->SetTarget(this);
		fList->MakeFocus(true);
	}
	SetFolder(&fFolder, true);
}

void
ItemView::DetachedFromWindow()
{
	Unwatch();
	// The thread that waits to sort finds nobody, or another window's view, which it may sort.
	fSortThread = -1;
	fChangesWait = false;
}

void
ItemView::SetFolder(entry_ref* ref, bool force)
{
	if (ref != nullptr) {
		if (*ref == fFolder && !force)
			return;
		Unwatch();
		fFolder = *ref;
		fDirectory.SetTo(&fFolder);
		Watch(); // before the folder is listed: what happens in between is told, not lost
	}
	// Not opened by its name again, which may be another folder's by now.
	if (fDirectory.InitCheck() != B_OK)
		return;
	fList->Display(&fFolder, fDirectory);
	fIsDisordered = false;
	Invalidate();
}

void
ItemView::Refresh()
{
	SetFolder(&fFolder, true);
}

void
ItemView::MessageReceived(BMessage* message)
{
	Debug.StdOut(kDebugLevel, "[ItemView]\n");
	Debug.Print(kDebugLevel, message);
	switch (message->what) {
		case kMSG_SetFolder: {
			entry_ref folder;
			if (message->FindRef(kName_Folder, &folder) == B_OK)
				SetFolder(&folder, false);
			break;
		}
		case kMSG_ItemInvocation:
			Invoked(*message);
			break;
		case kMSG_Rename:
			Rename(*message);
			break;
		case kMSG_Refresh:
			Refresh();
			break;
		case kMSG_DragFile:
		case B_PASTE:
			fList->RefsAdded(message);
			break;
		case B_COPY:
		case B_CUT:
			CutCopy(message->what);
			break;
		case B_SELECT_ALL:
			fList->SelectAll();
			break;
		case B_NODE_MONITOR:
			HandleNodeMonitor(message);
			Sort();
			break;
		case kMSG_ShowChanges:
			ShowChanges();
			break;
		default:
			BView::MessageReceived(message);
	}
}

void
ItemView::KeyDown(const char* bytes, int32 numBytes)
{
	Debug.StdOut(kDebugLevel, "KeyDown %d\n", numBytes > 0 ? bytes[0] : 0);
	BView::KeyDown(bytes, numBytes);
}

void
ItemView::CutCopy(uint32 command)
{
	if (const ItemListItem* row = fList->RowAt(fList->CurrentSelection()))
		NFileXFer::CutCopy(static_cast<int32>(command), row->GetRef());
}

void
ItemView::Rename(const BMessage& message)
{
	bool invoked = false;
	entry_ref ref;
	const char* name;
	if (message.FindBool("invoked", &invoked) != B_OK || !invoked ||
		message.FindRef(kName_Refs, &ref) != B_OK || message.FindString("text", &name) != B_OK ||
		name[0] == '\0')
		return;
	BEntry(&ref, false).Rename(name, false);
	Refresh();
}

// A message without an index means all selected rows.
void
ItemView::Invoked(const BMessage& message)
{
	int32 index;
	if (message.FindInt32("index", &index) == B_OK) {
		ItemInvoked(index, 0, 1);
		return;
	}
	int32 count = 0;
	while (fList->CurrentSelection(count) >= 0)
		count++;
	for (int32 i = 0; i < count; i++)
		ItemInvoked(fList->CurrentSelection(i), i, count);
}

void
ItemView::ItemInvoked(int32 index, int32, int32 count)
{
	const ItemListItem* row = fList->RowAt(index);
	if (row == nullptr)
		return;
	const entry_ref ref = *row->GetRef();
	if (!row->IsFolder()) {
		Launch(ref, row->Name());
	} else if (count == 1) {
		// The other panes hear of it through the window.
		BMessage change(kMSG_ChangeFolder);
		change.AddPointer("source", this);
		change.AddRef(kName_Folder, &ref);
		Window()->PostMessage(&change);
	} else {
		BMessage open(B_REFS_RECEIVED);
		open.AddRef(kName_Refs, &ref);
		const BMessenger fileManager(kFileManager);
		if (fileManager.IsValid())
			fileManager.SendMessage(&open);
	}
}

void
ItemView::Launch(const entry_ref& ref, const char* name)
{
	const status_t status = be_roster->Launch(&ref);
	if (status == B_OK || status == B_ALREADY_RUNNING)
		return;
	std::string text = std::string(name) + ": Launch failed dude!!!\n";
	const bool locked = NGeneralFunction::fStrErrorLock.Lock() == B_OK;
	text += strerror(status);
	if (locked)
		NGeneralFunction::fStrErrorLock.Unlock();
	BAlert* alert = new BAlert(
		"Launch Failed", text.c_str(), "Sigh", nullptr, nullptr, B_WIDTH_AS_USUAL, B_WARNING_ALERT);
	alert->Go(nullptr); // deletes itself
}
