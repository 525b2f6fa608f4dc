// SPDX-License-Identifier: MIT

// The left pane: the folders in the root folder. Selecting one asks the window to show it.

#pragma once

#include <interface/View.h>
#include <storage/Entry.h>

class NameList;

class OutlineView : public BView {
public:
	OutlineView(BRect frame, entry_ref* root);

	void SetRoot(entry_ref* ref);

	// BView
	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	void SelectFolder(const entry_ref& folder);
	void FolderSelected();

	NameList* fList;  // a child of our child
	entry_ref fShown; // the folder that the other panes show
};
