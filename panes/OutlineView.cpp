// SPDX-License-Identifier: MIT

#include "panes/OutlineView.h"

#include "app/Messages.h"
#include "clv/ColumnListView.h"
#include "panes/FolderItem.h"

#include <interface/ScrollView.h>
#include <interface/Window.h>
#include <storage/Directory.h>
#include <storage/Entry.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr float kLeastColumnWidth = 20;
constexpr size_t kReadBytes = 32768;

// The folder itself where `ref` is a link to one.
entry_ref
TargetOf(const entry_ref& ref)
{
	entry_ref target;
	const BEntry entry(&ref, true);
	return entry.IsDirectory() && entry.GetRef(&target) == B_OK ? target : ref;
}

// Names of the folders in a folder; links to folders are none. Most file systems tell entries and
// folders apart without being asked for each one.
std::vector<std::string>
FoldersIn(BDirectory& folder)
{
	std::vector<std::string> names;
	const std::unique_ptr<char[]> buffer(new char[kReadBytes]); // aligned for anything
	int32 count;
	while (
		(count = folder.GetNextDirents(reinterpret_cast<dirent*>(buffer.get()), kReadBytes)) > 0) {
		const char* next = buffer.get();
		for (int32 i = 0; i < count; i++) {
			const dirent* entry = reinterpret_cast<const dirent*>(next);
			next += entry->d_reclen;
			if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
				continue;
			if (entry->d_type == DT_DIR ||
				(entry->d_type == DT_UNKNOWN && BEntry(&folder, entry->d_name).IsDirectory()))
				names.emplace_back(entry->d_name);
		}
	}
	return names;
}

} // namespace

OutlineView::OutlineView(BRect frame, entry_ref* root) :
	BView(frame, "outline", B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, B_WILL_DRAW | B_NAVIGABLE),
	fRoot(*root)
{}

OutlineView::~OutlineView()
{
	if (fList != nullptr)
		DeleteRows();
}

void
OutlineView::AttachedToWindow()
{
	BRect bounds = Bounds();
	bounds.right -= B_V_SCROLL_BAR_WIDTH;
	bounds.bottom -= B_H_SCROLL_BAR_HEIGHT;
	fList = new ColumnListView(bounds, &fScrollView, "outline", B_FOLLOW_ALL_SIDES,
		B_WILL_DRAW | B_PULSE_NEEDED | B_FRAME_EVENTS | B_NAVIGABLE, B_SINGLE_SELECTION_LIST, true,
		true, true, B_FANCY_BORDER, be_plain_font);
	fList->AddColumn(new CLVColumn(nullptr, 0,
		CLV_COLUMN_EXPANDER | CLV_COLUMN_LOCK_AT_START | CLV_COLUMN_NOT_MOVABLE,
		kLeastColumnWidth));
	fList->AddColumn(new CLVColumn(nullptr, bounds.Width(),
		CLV_COLUMN_LOCK_AT_END | CLV_COLUMN_NOT_MOVABLE | CLV_COLUMN_SORTABLE, kLeastColumnWidth));
	AddChild(fScrollView);
	fList->SetSelectionMessage(new BMessage(kMSG_OutlineSelection));
	fList->SetInvocationMessage(new BMessage(kMSG_OutlineInvocation));
	fList->SetTarget(this);
	AddRoot(fRoot);
	fShown = fRoot;
}

void
OutlineView::AddRoot(const entry_ref& root)
{
	fRoot = TargetOf(root);
	FolderItem* item = new FolderItem(new entry_ref(fRoot));
	fList->AddItem(item);
	AddFolders(item);
	if (item->IsSuperItem())
		fList->Expand(item);
}

void
OutlineView::SetRoot(entry_ref* ref)
{
	DeleteRows();
	AddRoot(*ref);
	fList->Select(0);
}

FolderItem*
OutlineView::RowAt(int32 index) const
{
	return static_cast<FolderItem*>(fList->FullListItemAt(index));
}

void
OutlineView::DeleteRows()
{
	std::vector<std::unique_ptr<FolderItem>> rows;
	for (int32 i = 0; i < fList->FullListCountItems(); i++)
		rows.emplace_back(RowAt(i));
	fList->MakeEmpty();
}

void
OutlineView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_OutlineInvocation: {
			int32 index;
			if (message->FindInt32("index", &index) == B_OK)
				fList->Select(index);
			FolderSelected(*message);
			break;
		}
		case kMSG_OutlineSelection:
			FolderSelected(*message);
			break;
		case kMSG_ExpandThisItem:
			FolderDrawn(*message);
			break;
		case kMSG_SetFolder: {
			entry_ref folder;
			if (message->FindRef(kName_Folder, &folder) == B_OK)
				SetFolder(folder);
			break;
		}
		default:
			BView::MessageReceived(message);
	}
}

// Once for each row; the new ones are hidden until it is opened.
void
OutlineView::AddFolders(FolderItem* item)
{
	if (item->Count() >= 0)
		return;
	BDirectory folder(item->GetRef());
	node_ref node;
	folder.GetNodeRef(&node);
	const std::vector<std::string> names = FoldersIn(folder);
	for (const std::string& name : names)
		fList->AddUnder(new FolderItem(new entry_ref(node.device, node.node, name.c_str())), item);
	item->SetCount(static_cast<int32>(names.size()));
	if (!names.empty())
		fList->InvalidateItem(fList->IndexOf(item)); // for its arrow
}

void
OutlineView::FolderDrawn(const BMessage& request)
{
	void* item;
	// It may have gone since; only its address is looked at before it is known to be here.
	if (request.FindPointer("item", &item) == B_OK &&
		fList->FullListHasItem(static_cast<FolderItem*>(item)))
		AddFolders(static_cast<FolderItem*>(item));
}

void
OutlineView::FolderSelected(const BMessage& message)
{
	int32 index;
	if (message.FindInt32("index", &index) != B_OK)
		return;
	FolderItem* item = static_cast<FolderItem*>(fList->ItemAt(index));
	if (item == nullptr)
		return;
	// What the other panes show already they need not be told.
	if (*item->GetRef() != fShown) {
		fShown = *item->GetRef();
		BMessage change(kMSG_ChangeFolder);
		change.AddPointer("source", this);
		change.AddRef(kName_Folder, item->GetRef());
		Window()->PostMessage(&change);
	}
	AddFolders(item);
}

void
OutlineView::SetFolder(const entry_ref& folder)
{
	fShown = TargetOf(folder);
	if (FolderItem* item = DisplayFolder(fShown))
		ExpandItem(item);
	else
		fList->DeselectAll();
}

FolderItem*
OutlineView::FindFolder(const entry_ref& folder) const
{
	for (int32 i = 0; i < fList->FullListCountItems(); i++) {
		if (*RowAt(i)->GetRef() == folder)
			return RowAt(i);
	}
	return nullptr;
}

// The folder's row, made if need be with those on the way to it; null outside the root.
FolderItem*
OutlineView::DisplayFolder(const entry_ref& folder)
{
	std::vector<entry_ref> missing; // rows, from the folder upwards
	BEntry entry(&folder);
	entry_ref ref = folder;
	FolderItem* item;
	while ((item = FindFolder(ref)) == nullptr) {
		missing.push_back(ref);
		BEntry parent;
		if (entry.GetParent(&parent) != B_OK || parent.GetRef(&ref) != B_OK)
			return nullptr;
		entry = parent;
	}
	for (; !missing.empty(); missing.pop_back()) {
		AddFolders(item);
		item = FindFolder(missing.back());
		if (item == nullptr)
			return nullptr;
	}
	return item;
}

void
OutlineView::ExpandItem(FolderItem* item)
{
	AddFolders(item);
	if (item->IsSuperItem())
		fList->Expand(item);
	for (CLVListItem* above = fList->Superitem(item); above != nullptr;
		 above = fList->Superitem(above))
		fList->Expand(above);
	fList->Select(fList->IndexOf(item));
	fList->ScrollToSelection();
}
