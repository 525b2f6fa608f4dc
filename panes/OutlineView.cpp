// SPDX-License-Identifier: MIT

// What the tree shows, and its messages.

#include "panes/OutlineView.h"

#include "app/Messages.h"
#include "panes/FileListView.h"
#include "panes/FolderItem.h"
#include "support/dprint.h"

#include <interface/ScrollView.h>
#include <interface/Window.h>
#include <storage/Entry.h>
#include <storage/Path.h>

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

constexpr uint32 kDebugLevel = 10;
constexpr float kLeastColumnWidth = 20;

struct RefHash {
	size_t operator()(const entry_ref& ref) const
	{
		const std::string_view name(ref.name != nullptr ? ref.name : "");
		return std::hash<std::string_view>()(name) ^ ref.directory * 0x9e3779b97f4a7c15ULL;
	}
};

// A folder and those above it, each with the steps up to it.
typedef std::unordered_map<entry_ref, size_t, RefHash> Ancestry;

Ancestry
AncestryOf(const entry_ref& folder)
{
	Ancestry ancestry{{folder, 0}};
	BEntry entry(&folder, true);
	BEntry parent;
	entry_ref ref;
	while (entry.GetParent(&parent) == B_OK && parent.GetRef(&ref) == B_OK &&
		ancestry.try_emplace(ref, ancestry.size()).second)
		entry = parent;
	return ancestry;
}

// Of two absolute paths, without asking the disk; at any depth.
std::string
CommonAncestor(std::string_view a, std::string_view b)
{
	const auto ends = [](std::string_view path, size_t i) {
		return i == path.size() || path[i] == '/';
	};
	size_t end = 0; // of what both begin with, in whole names
	for (size_t i = 0;; i++) {
		if (ends(a, i) && ends(b, i))
			end = i;
		if (i == a.size() || i == b.size() || a[i] != b[i])
			break;
	}
	return end == 0 ? "/" : std::string(a.substr(0, end));
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
	fList = new FileListView(bounds, &fScrollView, "outline", B_SINGLE_SELECTION_LIST, true);
	fList->AddColumn(new CLVColumn(nullptr, 0,
		CLV_COLUMN_EXPANDER | CLV_COLUMN_LOCK_AT_START | CLV_COLUMN_NOT_MOVABLE,
		kLeastColumnWidth));
	fList->AddColumn(new CLVColumn(nullptr, bounds.Width(),
		CLV_COLUMN_LOCK_AT_END | CLV_COLUMN_NOT_MOVABLE | CLV_COLUMN_SORTABLE, kLeastColumnWidth));
	AddChild(fScrollView);
	fList->SetSelectionMessage(new BMessage(kMSG_OutlineSelection));
	fList->SetInvocationMessage(new BMessage(kMSG_OutlineInvocation));
	fList->SetTarget(this);
	AddRoot();
	fScannedWindow = Window();
	fScanner = spawn_thread(AddFolders_threaded, "AddFolder", B_LOW_PRIORITY, this);
	if (fScanner >= 0)
		resume_thread(fScanner);
}

// The scanner may be anywhere: it ends when it next wants the window's lock, which is ours.
void
OutlineView::DetachedFromWindow()
{
	fStopping = true;
	if (fScanner >= 0)
		kill_thread(fScanner);
	fScanner = -1;
}

void
OutlineView::AddRoot()
{
	FolderItem* item = new FolderItem(new entry_ref(fRoot));
	fList->AddItem(item);
	AddFolders(item);
	fList->Expand(item);
}

void
OutlineView::SetRoot(entry_ref* ref)
{
	fRoot = *ref;
	fList->CloseEditor();
	DeleteRows();
	AddRoot();
	fList->Select(0);
}

void
OutlineView::DeleteRows()
{
	{
		std::lock_guard lock(fQueueLock);
		fQueue.Clear();
	}
	fFilling = Filling();
	FolderItems rows;
	for (int32 i = 0; i < fList->FullListCountItems(); i++)
		rows.emplace_back(static_cast<FolderItem*>(fList->FullListItemAt(i)));
	fList->MakeEmpty();
}

void
OutlineView::MessageReceived(BMessage* message)
{
	Debug.Print(kDebugLevel, message);
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
		// Each of these three goes on to the next: whenever a row asks for its scan, the selected
		// row is opened.
		case kMSG_ExpandSubItems:
			ExpandSubItems(*message);
			[[fallthrough]];
		case kMSG_ExpandThisItem:
			ExpandThisItem(*message);
			[[fallthrough]];
		case kMSG_SetFolder:
			SetFolder(*message);
			break;
		case kMSG_DragFile:
		case B_PASTE:
			fList->RefsAdded(message);
			break;
		case kMSG_Refresh: {
			// Its row may have been given another name; then the whole window is told.
			entry_ref root(*static_cast<FolderItem*>(fList->FullListItemAt(0))->GetRef());
			if (root != fRoot)
				AskForRoot(root);
			else
				SetRoot(&root);
			break;
		}
		default:
			BView::MessageReceived(message);
	}
}

FolderItem*
OutlineView::ItemIn(const BMessage& message) const
{
	void* item;
	if (message.FindPointer("item", &item) != B_OK)
		return nullptr;
	FolderItem* folder = static_cast<FolderItem*>(item);
	return fList->FullListHasItem(folder) ? folder : nullptr;
}

void
OutlineView::ExpandSubItems(const BMessage& message)
{
	FolderItem* item = ItemIn(message);
	if (item == nullptr)
		return;
	const auto enqueue = [](CLVListItem* below, void* view) -> CLVListItem* {
		if (!below->IsSuperItem())
			static_cast<OutlineView*>(view)->Enqueue(static_cast<FolderItem*>(below));
		return nullptr;
	};
	fList->EachItemUnder(item, true, enqueue, this);
	WakeScanner();
}

void
OutlineView::ExpandThisItem(const BMessage& message)
{
	Debug.StdOut(kDebugLevel, "ExThisI\n");
	FolderItem* item = ItemIn(message);
	if (item == nullptr)
		return;
	if (item->IsSuperItem())
		Debug.StdOut(kDebugLevel, "Already SuperItem\n");
	else
		Enqueue(item);
	WakeScanner();
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
	BMessage change(kMSG_ChangeFolder);
	change.AddPointer("source", this);
	change.AddRef(kName_Folder, item->GetRef());
	Window()->PostMessage(&change);
	AddFolders(item);
}

void
OutlineView::SetFolder(const BMessage& message)
{
	entry_ref folder;
	message.FindRef(kName_Folder, &folder);
	SetFolder(folder);
}

// An unset ref comes with every request of a row: it opens the selected row and does no more.
void
OutlineView::SetFolder(const entry_ref& folder)
{
	CLVListItem* selected = static_cast<CLVListItem*>(fList->ItemAt(fList->CurrentSelection()));
	if (selected != nullptr && selected->IsSuperItem())
		fList->Expand(selected);
	if (folder.name == nullptr)
		return;
	if (selected != nullptr && selected->IsSuperItem()) {
		const auto isIt = [](CLVListItem* below, void* ref) -> CLVListItem* {
			const bool equal =
				*static_cast<FolderItem*>(below)->GetRef() == *static_cast<const entry_ref*>(ref);
			return equal ? below : nullptr;
		};
		void* wanted = const_cast<entry_ref*>(&folder);
		if (CLVListItem* child = fList->EachItemUnder(selected, true, isIt, wanted)) {
			fList->Select(fList->IndexOf(child));
			return;
		}
	}
	const BEntry entry(&folder, true);
	entry_ref target;
	if (entry.InitCheck() != B_OK || entry.GetRef(&target) != B_OK)
		return;
	CheckRoot(target);
	if (FolderItem* item = DisplayFolder(target))
		fList->Select(fList->IndexOf(item));
}

// Null when the folder's own row is not known: its parent may not have been scanned yet.
FolderItem*
OutlineView::DisplayFolder(const entry_ref& folder)
{
	if (fFilling.parent != nullptr)
		AddSlice(fFilling, SIZE_MAX);
	const Ancestry ancestry = AncestryOf(folder);
	FolderItem* nearest = nullptr;
	size_t steps = ancestry.size();
	for (int32 i = 0; i < fList->FullListCountItems() && steps > 0; i++) {
		FolderItem* item = static_cast<FolderItem*>(fList->FullListItemAt(i));
		const auto found = ancestry.find(*item->GetRef());
		if (found != ancestry.end() && found->second < steps) {
			nearest = item;
			steps = found->second;
		}
	}
	if (nearest == nullptr)
		return nullptr;
	// Only the folder's own row tells the window, which else would show the one above instead.
	if (steps != 0)
		fList->SetSelectionMessage(nullptr);
	ExpandItem(nearest);
	if (steps != 0)
		fList->SetSelectionMessage(new BMessage(kMSG_OutlineSelection));
	return steps == 0 ? nearest : nullptr;
}

void
OutlineView::ExpandItem(FolderItem* item)
{
	for (CLVListItem* above = fList->Superitem(item); above != nullptr;
		 above = fList->Superitem(above))
		fList->Expand(above);
	if (item->IsSuperItem())
		fList->Expand(item);
	fList->Select(fList->IndexOf(item));
	fList->ScrollToSelection();
}

// The window answers by setting the root: until then the old tree is there.
void
OutlineView::CheckRoot(const entry_ref& folder)
{
	const BPath wanted(&folder);
	// What is below a link to a folder is below its target.
	entry_ref target, ancestor;
	if (BEntry(&fRoot, true).GetRef(&target) != B_OK)
		target = fRoot;
	const BPath root(&target);
	if (wanted.InitCheck() != B_OK || root.InitCheck() != B_OK ||
		get_ref_for_path(CommonAncestor(wanted.Path(), root.Path()).c_str(), &ancestor) != B_OK ||
		ancestor == target)
		return;
	AskForRoot(ancestor);
}

void
OutlineView::AskForRoot(const entry_ref& root)
{
	BMessage change(kMSG_SetRoot);
	change.AddRef(kName_Folder, &root);
	Window()->PostMessage(&change, Parent());
}
