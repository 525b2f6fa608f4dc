// SPDX-License-Identifier: MIT

#include "panes/ItemListView.h"

#include "panes/ItemListItem.h"
#include "panes/ItemView.h"
#include "panes/ReadRows.h"
#include "support/dprint.h"

#include <support/List.h>

#include <algorithm>
#include <utility>

// So many rows that have left are kept until the list is filled anew: files may come and go in a
// folder that is shown for days.
static constexpr size_t kMostAside = 100000;
static constexpr uint32 kDebugLevel = 6;

ItemListView::ItemListView(BRect frame, BScrollView** container) :
	FileListView(frame, container, "itemlist", B_MULTIPLE_SELECTION_LIST, false)
{}

ItemListView::~ItemListView()
{
	DeleteRows();
}

int8
ItemListView::GetPane()
{
	return 'I';
}

// Files are pasted beside the rows, never into the folder of one.
entry_ref*
ItemListView::GetParentRef(FileListItem* item)
{
	ItemView* pane = Parent() != nullptr ? dynamic_cast<ItemView*>(Parent()->Parent()) : nullptr;
	return item == nullptr && pane != nullptr ? pane->Folder() : nullptr;
}

ItemListItem*
ItemListView::RowAt(int32 index) const
{
	return static_cast<ItemListItem*>(ItemAt(index));
}

void
ItemListView::DeleteRows()
{
	CloseEditor();
	ItemRows rows;
	rows.reserve(static_cast<size_t>(CountItems()));
	for (int32 i = 0; i < CountItems(); i++)
		rows.emplace_back(RowAt(i));
	MakeEmpty();
	fIndex.MakeEmpty();
	fIsIndexed = false;
	fComing.clear();
	fGoing.clear();
	fAside.clear();
	fUpdated.clear();
}

void
ItemListView::Display(entry_ref* ref, BDirectory& folder)
{
	// The same folder shows the same place again.
	const BPoint place = *ref == fShown ? Bounds().LeftTop() : BPoint(0, 0);
	fShown = *ref;
	DeleteRows();
	SetParentRef(ref);
	ScrollTo(BPoint(0, 0));
	ItemRows rows = ReadRows(folder);
	Debug.StdOut(kDebugLevel, "%d Items\n", static_cast<int>(rows.size()));
	BList items(static_cast<int32>(rows.size()));
	for (std::unique_ptr<ItemListItem>& row : rows)
		items.AddItem(static_cast<CLVListItem*>(row.release()));
	AddList(&items);
	SortItems();
	if (place != BPoint(0, 0))
		ScrollTo(place);
}

RowIndex&
ItemListView::Index()
{
	if (!fIsIndexed) {
		fIsIndexed = true;
		fIndex.Reserve(static_cast<size_t>(CountItems()));
		for (int32 i = 0; i < CountItems(); i++)
			fIndex.Add(RowAt(i));
	}
	return fIndex;
}

void
ItemListView::AddFileItem(entry_ref* ref)
{
	if (ItemListItem* row = Index().Find(*ref)) {
		Reread(row, nullptr);
		return;
	}
	auto row = std::make_unique<ItemListItem>();
	row->SetRef(new entry_ref(*ref)); // the row's
	fIndex.Add(row.get());
	fComing.push_back(std::move(row));
}

void
ItemListView::RemoveFileItem(entry_ref* ref)
{
	if (ItemListItem* row = Index().Find(*ref))
		TakeOut(row);
}

void
ItemListView::RemoveFileItem(int64 inode)
{
	const std::vector<ItemListItem*> rows = Index().FindAll(inode);
	if (rows.size() == 1)
		TakeOut(rows[0]);
}

void
ItemListView::UpdateFileItem(entry_ref* ref)
{
	if (ItemListItem* row = Index().Find(*ref))
		Reread(row, nullptr);
}

void
ItemListView::UpdateFileItem(int64 inode, entry_ref* ref)
{
	const std::vector<ItemListItem*> rows = Index().FindAll(inode);
	if (ref != nullptr && rows.size() != 1)
		return;
	for (ItemListItem* row : rows)
		Reread(row, ref);
}

void
ItemListView::RenameFileItem(entry_ref* from, entry_ref* to)
{
	if (ItemListItem* row = Index().Find(*from))
		Reread(row, to);
}

// Reads a row's entry again, under its new name if there is one. Its inode may be another one.
void
ItemListView::Reread(ItemListItem* row, const entry_ref* ref)
{
	if (ref != nullptr) {
		ItemListItem* other = fIndex.Find(*ref);
		if (other != nullptr && other != row)
			TakeOut(other);
	}
	fIndex.Remove(row);
	entry_ref place = ref != nullptr ? *ref : entry_ref();
	row->UpdateItem(ref != nullptr ? &place : nullptr);
	fIndex.Add(row);
	fUpdated.insert(row);
}

void
ItemListView::TakeOut(ItemListItem* row)
{
	fIndex.Remove(row);
	fUpdated.erase(row);
	auto coming = std::find_if(fComing.begin(), fComing.end(),
		[row](const std::unique_ptr<ItemListItem>& each) { return each.get() == row; });
	if (coming != fComing.end())
		fComing.erase(coming);
	else
		fGoing.push_back(row);
}

// Looks at what is seen only: to find where each row is would mean to walk them all each time.
void
ItemListView::DrawUpdated()
{
	const BRect bounds = Bounds();
	const int32 first = std::max(BListView::IndexOf(bounds.LeftTop()), 0);
	for (int32 i = first; !fUpdated.empty() && i < CountItems(); i++) {
		if (ItemFrame(i).top > bounds.bottom)
			break;
		if (fUpdated.count(RowAt(i)) != 0)
			InvalidateItem(i);
	}
	fUpdated.clear();
}

bool
ItemListView::ApplyChanges()
{
	const bool disordered = !fComing.empty() || !fUpdated.empty();
	DrawUpdated();
	if (!fGoing.empty()) {
		RemoveRows(fGoing);
		for (CLVListItem* row : fGoing)
			fAside.emplace_back(static_cast<ItemListItem*>(row));
		fGoing.clear();
		while (fAside.size() > kMostAside)
			fAside.pop_front();
	}
	if (!fComing.empty()) {
		BList items(static_cast<int32>(fComing.size()));
		for (std::unique_ptr<ItemListItem>& row : fComing)
			items.AddItem(static_cast<CLVListItem*>(row.release()));
		fComing.clear();
		AddList(&items);
	}
	return disordered;
}
