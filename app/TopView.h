// SPDX-License-Identifier: MIT

// The root bar: the strip along the top of the window, with the path of the root folder to edit.
//
// A new root is typed, dropped, or chosen from a menu of the folders above; when it is one it goes
// to the window as kMSG_SetRoot, which answers with SetRoot(). Paths are bytes as on the disk.

#pragma once

#include <app/MessageFilter.h>
#include <interface/TextControl.h>
#include <storage/Entry.h>

#include <string>

// The field. Its message is kMSG_RootChanged.
class FileStringControl : public BTextControl {
public:
	FileStringControl(
		BRect frame, const char* name, const char* label, const char* text, BMessage* message);

	// BTextControl
	void MessageReceived(BMessage* message) override;
	void MouseDown(BPoint where) override;

	// True when a folder was chosen, which is then the text and was sent. The window waits.
	bool PopupDirectoryMenu();

private:
	void TakeFile(const BMessage& message);
};

class TopView : public BView {
public:
	TopView(BRect frame, entry_ref* root);

	// The path of `ref` from now on; nothing changes when it has none.
	void SetRoot(entry_ref* ref);

	// BView
	void AttachedToWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	void CommitRoot();
	void Reject(const char* why);

	std::string fRootPath; // what the field falls back to
	FileStringControl* fField;
};

// Gives messages with files that were dropped on a view to the view's parent; others pass.
filter_result catch_file_string(BMessage* message, BHandler** target, BMessageFilter* filter);
