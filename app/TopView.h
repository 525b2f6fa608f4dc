// SPDX-License-Identifier: MIT

// The strip along the top of the window: shows the path of the root folder.

#pragma once

#include <interface/View.h>
#include <storage/Entry.h>

#include <string>

class TopView : public BView {
public:
	TopView(BRect frame, entry_ref* root);

	// The path of `ref` from now on; nothing changes when it has none.
	void SetRoot(entry_ref* ref);

	// BView
	void AttachedToWindow() override;
	void Draw(BRect update) override;

private:
	std::string fRootPath; // bytes as on the disk
};
