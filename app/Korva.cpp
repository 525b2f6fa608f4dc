// SPDX-License-Identifier: MIT

#include "app/Korva.h"

#include "app/Messages.h"
#include "app/ResizeBar.h"
#include "app/TopView.h"
#include "panes/ItemView.h"
#include "panes/OutlineView.h"

#include <interface/Alert.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include <cstdio>

namespace {

constexpr const char* VERS = "1.0";
constexpr const char* BUILD = "a2";
constexpr const char* DATE = "November 1998";

constexpr float kTopViewHeight = 26; // the root bar's bottom edge

} // namespace

const char* const KorvaApp::kSignature = "application/x-vnd.Tav-Korva";

KorvaApp::KorvaApp(const char* rootPath) : BApplication(kSignature)
{
	BRect frame(50, 75, 550, 550);
	entry_ref root;
	if (rootPath != nullptr && get_ref_for_path(rootPath, &root) != B_OK)
		rootPath = nullptr;
	if (rootPath == nullptr) {
		BPath home;
		find_directory(B_USER_DIRECTORY, &home, false, nullptr);
		get_ref_for_path(home.Path(), &root);
	}
	BWindow* window = new KorvaWindow(frame, &root);
	window->Show();
}

void
KorvaApp::MessageReceived(BMessage* message)
{
	BApplication::MessageReceived(message);
}

void
KorvaApp::AboutRequested()
{
	char text[256];
	snprintf(text, sizeof(text), "Korva v%s %s\n\t%s", VERS, BUILD, DATE);
	BAlert* alert =
		new BAlert("About", text, "Thanks", nullptr, nullptr, B_WIDTH_AS_USUAL, B_INFO_ALERT);
	alert->Go(); // deletes itself
}

KorvaWindow::KorvaWindow(BRect frame, entry_ref* root) :
	BWindow(frame, "Korva", B_TITLED_WINDOW, 0, B_CURRENT_WORKSPACE)
{
	BRect bounds = Bounds();
	float left = bounds.Width() / 3.0f; // not rounded: the panes meet on whole pixels all the same

	fTopView = new TopView(BRect(bounds.left, bounds.top, bounds.right, kTopViewHeight), root);
	AddChild(fTopView);

	fOutlineView =
		new OutlineView(BRect(bounds.left, kTopViewHeight + 1, left, bounds.bottom), root);
	AddChild(fOutlineView);

	fItemView =
		new ItemView(BRect(left + 7, kTopViewHeight + 1, bounds.right, bounds.bottom), root);
	AddChild(fItemView);

	fResizeBar = new ResizeBar(BRect(left + 1, kTopViewHeight + 1, left + 6, bounds.bottom), "bar",
		B_FOLLOW_LEFT | B_FOLLOW_TOP_BOTTOM, 0, B_VERTICAL);
	fResizeBar->SetLeftView(fOutlineView);
	fResizeBar->SetRightView(fItemView);
	AddChild(fResizeBar);
}

void
KorvaWindow::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_ChangeFolder: {
			void* source = nullptr;
			if (message->FindPointer("source", &source) != B_OK)
				break;
			// A pane is not told what it has itself just chosen; the right one always is.
			message->what = kMSG_SetFolder;
			if (source != fTopView)
				PostMessage(message, fTopView);
			PostMessage(message, fItemView);
			if (source != fOutlineView)
				PostMessage(message, fOutlineView);
			break;
		}
		case kMSG_SetRoot: {
			entry_ref root;
			if (message->FindRef(kName_Folder, &root) == B_OK) {
				fOutlineView->SetRoot(&root);
				fTopView->SetRoot(&root);
			}
			break;
		}
		case kMSG_Refresh:
			fItemView->Refresh();
			break;
		case B_PASTE:
		case B_SELECT_ALL:
			PostMessage(message, fItemView);
			break;
		case B_ABOUT_REQUESTED:
			be_app->PostMessage(message);
			break;
		default:
			BWindow::MessageReceived(message);
	}
}

bool
KorvaWindow::QuitRequested()
{
	BMessage quit(B_QUIT_REQUESTED);
	be_app->PostMessage(&quit);
	return BWindow::QuitRequested();
}
