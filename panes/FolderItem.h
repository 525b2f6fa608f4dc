// SPDX-License-Identifier: MIT

// FolderItem: the row of one folder in the tree. Asks the tree to look for its sub-folders when it
// is drawn for the first time, so that arrows are right one level ahead of what is seen.

#pragma once

#include "panes/FileListItem.h"

class FolderItem : public FileListItem {
public:
	explicit FolderItem(entry_ref* ref); // takes the reference over

	// Of sub-folders, as they were found once; -1 before.
	int32 Count() const { return fCount; }
	void SetCount(int32 count); // any gives it an arrow

	// FileListItem. The owner's container lies in the OutlineView.
	void DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete) override;

private:
	static const ColourSettings sColours;

	bool fExpansionRequested = false;
	int32 fCount = -1;
};
