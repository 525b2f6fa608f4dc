// SPDX-License-Identifier: MIT

// ItemListView: the list of the contents pane, which shows the entries of one folder.
//
// It deletes its rows, all of them ItemListItems.

#pragma once

#include "panes/FileListView.h"

class BDirectory;
class ItemListItem;

class ItemListView : public FileListView {
public:
	ItemListView(BRect frame, BScrollView** container);
	~ItemListView() override;

	// Replaces the rows by those of the folder's entries, sorted.
	void Display(BDirectory& folder);
	ItemListItem* RowAt(int32 index) const; // null when out of range
	int8 GetPane() override;

private:
	void DeleteRows();
};
