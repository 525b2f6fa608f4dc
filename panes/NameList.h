// SPDX-License-Identifier: MIT

// A plain list of the names in a folder, in name order, with its scroll bar.

#pragma once

#include <interface/ListItem.h>
#include <interface/ListView.h>
#include <storage/Entry.h>

class NameItem : public BStringItem {
public:
	explicit NameItem(const entry_ref& ref) : BStringItem(ref.name), fRef(ref) {}
	const entry_ref& Ref() const { return fRef; }

private:
	entry_ref fRef;
};

// A row of the list is a NameItem; the list deletes its rows.
class NameList : public BListView {
public:
	NameList(BRect frame, const char* name, list_view_type type);
	~NameList() override;

	// Replaces the rows. An unreadable folder, or what is none, has no rows.
	void ShowFolder(const entry_ref& folder, bool foldersOnly);

	const NameItem* RowAt(int32 index) const;

	// The list in a scroll view that fills `bounds` and follows it.
	static BView* InScrollView(
		BRect bounds, NameList** list, const char* name, list_view_type type);

private:
	void DeleteRows();
};
