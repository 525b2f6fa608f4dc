// SPDX-License-Identifier: MIT

// Windows that stand for a folder each. What is dropped or pasted there goes into the folder, as
// the program's panes do it; a press drags all files of the folder; Control with C and X puts the
// first of them on the clipboard. Each window says on standard output what it does.
//
//	transfer_program TITLE LEFT FOLDER [TITLE LEFT FOLDER ...]

#include "app/Messages.h"
#include "xfer/CutCopy.h"

#include <app/Application.h>
#include <app/Clipboard.h>
#include <interface/Window.h>
#include <storage/Directory.h>
#include <storage/Entry.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr float kSide = 200;
constexpr float kTop = 100;

class Folder : public BView {
public:
	Folder(BRect frame, const char* path) : BView(frame, "folder", B_FOLLOW_ALL, B_WILL_DRAW)
	{
		SetViewColor(90, 160, 90);
		get_ref_for_path(path, &fRef);
	}

	void AttachedToWindow() override { MakeFocus(); }

	void MouseDown(BPoint) override
	{
		int32 buttons = 0;
		Window()->CurrentMessage()->FindInt32("buttons", &buttons);
		NFileXFer::RefDragMessage drag;
		BDirectory folder(&fRef);
		for (entry_ref ref; folder.GetNextRef(&ref) == B_OK;)
			drag.AddEntryRef(&ref);
		drag.AddRect(BRect(10, 10, 110, 40));
		drag.SetButtons(buttons);
		drag.SetPane('I');
		drag.Post(this);
	}

	void MouseMoved(BPoint, uint32 transit, const BMessage* drag) override
	{
		const bool isOver =
			drag != nullptr && transit != B_EXITED_VIEW && transit != B_OUTSIDE_VIEW;
		if (isOver && !fIsDraggedOver)
			Say("enter");
		fIsDraggedOver = isOver;
	}

	void KeyDown(const char* bytes, int32) override
	{
		if (bytes[0] == 'p')
			Say("alive");
	}

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case B_COPY:
			case B_CUT: {
				entry_ref ref;
				BDirectory(&fRef).GetNextRef(&ref);
				NFileXFer::CutCopy(static_cast<int32>(message->what), &ref);
				Say("clipboard");
				break;
			}
			case B_PASTE:
				Paste();
				break;
			case kMSG_CopyComplete:
				Say("copied");
				break;
			default:
				if (message->WasDropped())
					Take(*message, "dropped ");
				else
					BView::MessageReceived(message);
		}
	}

private:
	void Say(const std::string& text)
	{
		std::printf("%s: %s\n", Window()->Title(), text.c_str());
		std::fflush(stdout);
	}

	void Paste()
	{
		if (!be_clipboard->Lock())
			return Say("no clipboard");
		const BMessage contents = *be_clipboard->Data();
		be_clipboard->Unlock();
		Take(contents, "pasted ");
		NFileXFer::ForgetCut(contents);
	}

	void Take(const BMessage& message, const std::string& how)
	{
		entry_ref ref;
		int32 begun = 0;
		for (int32 i = 0; message.FindRef(kName_Refs, i, &ref) == B_OK; i++)
			begun += NFileXFer::HandleFileMessage(&message, &ref, &fRef, this) ? 1 : 0;
		Say(how + std::to_string(begun));
	}

	entry_ref fRef;
	bool fIsDraggedOver = false;
};

class FolderWindow : public BWindow {
public:
	FolderWindow(const char* title, float left, const char* path) :
		BWindow(BRect(left, kTop, left + kSide - 1, kTop + kSide - 1), title, B_TITLED_WINDOW,
			B_NOT_RESIZABLE)
	{
		AddChild(new Folder(Bounds(), path));
	}

	bool QuitRequested() override
	{
		be_app->PostMessage(B_QUIT_REQUESTED);
		return true;
	}
};

} // namespace

int
main(int argc, char** argv)
{
	BApplication application("application/x-vnd.Korva-transfer");
	for (int i = 1; i + 2 < argc; i += 3)
		(new FolderWindow(argv[i], std::strtof(argv[i + 1], nullptr), argv[i + 2]))->Show();
	application.Run();
	return 0;
}
