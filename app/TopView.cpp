// SPDX-License-Identifier: MIT

#include "app/TopView.h"

#include "app/Messages.h"
#include "clv/MouseDragOrPopupWatcher.h"

#include <interface/Alert.h>
#include <interface/MenuItem.h>
#include <interface/PopUpMenu.h>
#include <interface/TextView.h>
#include <interface/Window.h>
#include <storage/Directory.h>
#include <storage/Path.h>

static constexpr const char* kDirectory = "Directory"; // of a menu item's message

filter_result
catch_file_string(BMessage* message, BHandler** target, BMessageFilter*)
{
	entry_ref ref;
	if (BView* view = dynamic_cast<BView*>(*target)) {
		if (message->FindRef(kName_Refs, 0, &ref) == B_OK && view->Parent() != nullptr)
			*target = view->Parent();
	}
	return B_DISPATCH_MESSAGE;
}

FileStringControl::FileStringControl(
	BRect frame, const char* name, const char* label, const char* text, BMessage* message) :
	BTextControl(
		frame, name, label, text, message, B_FOLLOW_LEFT | B_FOLLOW_TOP, B_WILL_DRAW | B_NAVIGABLE)
{
	TextView()->AddFilter(new BMessageFilter(B_SIMPLE_DATA, catch_file_string));
}

void
FileStringControl::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMSG_DragFile:
			TakeFile(*message);
			break;
		case MW_MOUSE_POPUP:
			PopupDirectoryMenu();
			break;
		default:
			BTextControl::MessageReceived(message);
	}
}

void
FileStringControl::TakeFile(const BMessage& message)
{
	entry_ref ref;
	BPath path;
	if (message.FindRef(kName_Refs, 0, &ref) != B_OK || BEntry(&ref, false).GetPath(&path) != B_OK)
		return;
	SetText(path.Path());
	Invoke();
}

void
FileStringControl::MouseDown(BPoint where)
{
	int32 buttons = 0;
	if (const BMessage* message = Window()->CurrentMessage())
		message->FindInt32("buttons", &buttons);
	if ((buttons & B_SECONDARY_MOUSE_BUTTON) != 0) {
		PopupDirectoryMenu();
		return;
	}
	StartMouseDragOrPopupWatcher(this, 0, MW_TWO_CLICKS);
	BTextControl::MouseDown(where);
}

bool
FileStringControl::PopupDirectoryMenu()
{
	const BPoint anchor = ConvertToScreen(Bounds().LeftTop());
	BPopUpMenu menu("directories");
	const std::string text = Text();
	for (size_t slash = text.find('/'); slash != std::string::npos;
		 slash = text.find('/', slash + 1)) {
		const std::string folder = text.substr(0, slash + 1);
		BMessage* message = new BMessage(kMSG_Null); // the item's
		message->AddString(kDirectory, folder.c_str());
		menu.AddItem(new BMenuItem(folder.c_str(), message));
	}
	BMenuItem* chosen = menu.Go(anchor, false, false, false);
	const char* folder = nullptr;
	if (chosen == nullptr || chosen->Message()->FindString(kDirectory, &folder) != B_OK)
		return false;
	SetText(folder);
	Invoke();
	return true;
}

TopView::TopView(BRect frame, entry_ref* root) :
	BView(frame, "top", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, B_WILL_DRAW)
{
	BDirectory directory(root);
	BPath path(&directory, nullptr, false);
	if (path.InitCheck() == B_OK)
		fRootPath = path.Path();
	BRect place;
	place.left = frame.left + 5;
	place.right = place.left + 500;
	place.bottom = frame.bottom - 2.5f;
	place.top = place.bottom - 16;
	fField = new FileStringControl(
		place, "root", "Root:", fRootPath.c_str(), new BMessage(kMSG_RootChanged));
	AddChild(fField);
}

void
TopView::AttachedToWindow()
{
	SetViewColor(232, 232, 232);
	fField->ResizeToPreferred();
	fField->ResizeTo(150, fField->Frame().Height());
	fField->SetTarget(this);
}

void
TopView::SetRoot(entry_ref* ref)
{
	BPath path;
	if (BEntry(ref, false).GetPath(&path) != B_OK)
		return;
	fRootPath = path.Path();
	fField->SetText(fRootPath.c_str());
}

void
TopView::MessageReceived(BMessage* message)
{
	if (message->what == kMSG_RootChanged)
		CommitRoot();
	else
		BView::MessageReceived(message);
}

// The field shows the new path when the window has taken it.
void
TopView::CommitRoot()
{
	entry_ref ref;
	if (get_ref_for_path(fField->Text(), &ref) != B_OK) {
		Reject("The requested root directory does not exist.");
		return;
	}
	if (BDirectory(&ref).InitCheck() != B_OK) {
		Reject("The requested root is not a directory.");
		return;
	}
	BMessage message(kMSG_SetRoot);
	message.AddRef(kName_Folder, &ref);
	Looper()->PostMessage(&message, Parent());
}

void
TopView::Reject(const char* why)
{
	BAlert* alert =
		new BAlert("Error", why, "OK", nullptr, nullptr, B_WIDTH_AS_USUAL, B_STOP_ALERT);
	alert->Go(); // deletes itself
	fField->SetText(fRootPath.c_str());
}
