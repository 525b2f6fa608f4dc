// SPDX-License-Identifier: MIT

// The right pane: the entries of the chosen folder, in columns.

#pragma once

#include "clv/CLVColumn.h"
#include "panes/ItemColumns.h"

#include <interface/View.h>
#include <storage/Directory.h>

#include <memory>

class BScrollView;
class ItemListView;

class ItemView : public BView {
public:
	ItemView(BRect frame, entry_ref* folder);
	~ItemView() override;

	// Shows a folder, or the present one again for null. `force`: also when it is shown already.
	// The rows stay when it cannot be opened.
	void SetFolder(entry_ref* ref, bool force);
	void Refresh(); // reads the folder again
	// Opens a row, the `which`-th of `count` that are opened together: a single folder is shown.
	void ItemInvoked(int32 index, int32 which, int32 count);

	// BView
	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	BRect SubBounds() const;
	void Invoked(const BMessage& message);

	ItemListView* fList = nullptr;      // a child of the next one
	BScrollView* fScrollView = nullptr; // a child; the list has made it
	std::unique_ptr<CLVColumn> fColumns[kItemColumns];
	BDirectory fDirectory;
	entry_ref fFolder;
};
