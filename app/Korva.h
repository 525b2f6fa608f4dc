// SPDX-License-Identifier: MIT

// The application and its one window, the switchboard between the panes.

#pragma once

#include <app/Application.h>
#include <interface/Window.h>

class ItemView;
class OutlineView;
class ResizeBar;
class TopView;

class KorvaApp : public BApplication {
public:
	static const char* const kSignature;

	// Shows the window on the folder at `rootPath`; on the user's home folder for a null path or
	// one that cannot be resolved.
	explicit KorvaApp(const char* rootPath);

	// BApplication
	void MessageReceived(BMessage* message) override;
	void AboutRequested() override;
};

// Passes messages that concern more than one pane on to those that have to hear them, in the
// order posted.
class KorvaWindow : public BWindow {
public:
	KorvaWindow(BRect frame, entry_ref* root);

	// BWindow
	void MessageReceived(BMessage* message) override;
	bool QuitRequested() override; // ends the program too

private:
	// Children; the window deletes them.
	TopView* fTopView;
	OutlineView* fOutlineView;
	ItemView* fItemView;
	ResizeBar* fResizeBar;
};
