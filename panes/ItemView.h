// SPDX-License-Identifier: MIT

// The right pane: the entries of the chosen folder.

#pragma once

#include <interface/View.h>
#include <storage/Entry.h>

class NameList;

class ItemView : public BView {
public:
	ItemView(BRect frame, entry_ref* folder);

	void Refresh(); // reads the folder again

	// BView
	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	void ItemInvoked();

	NameList* fList; // a child of our child
	entry_ref fFolder;
};
