// SPDX-License-Identifier: MIT

// A window that drags, drops, copies and pastes files, and says on standard output what it gets.
//
//	drag_program TITLE LEFT TOP [PATH ...]
//
// A press drags the paths; Control with C, X, V puts them on the clipboard and reads it; Control
// with A empties it; P says that the window lives.

#include <app/Application.h>
#include <app/Clipboard.h>
#include <interface/View.h>
#include <interface/Window.h>
#include <storage/Entry.h>
#include <storage/Path.h>
#include <storage/UriList.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr float kSide = 200;

std::vector<std::string> sPaths;

void
Say(const std::string& line)
{
	std::printf("%s\n", line.c_str());
	std::fflush(stdout);
}

// One word for each field that we know; paths as URIs, since they may hold anything.
std::string
Described(const BMessage& message)
{
	std::string text = message.what == B_SIMPLE_DATA ? "DATA"
		: message.what == B_MIME_DATA                ? "MIME"
													 : "?";
	entry_ref ref;
	for (int32 i = 0; message.FindRef("refs", i, &ref) == B_OK; i++) {
		const BPath path(&ref);
		text += " " + (path.Path() != nullptr ? BPrivate::UriOf(path.Path()) : "unknown");
	}
	for (const char* name : {"Cut", "Copy", "Korva"}) {
		if (message.HasBool(name))
			text += std::string(" ") + name;
	}
	int32 buttons = 0;
	if (message.FindInt32("buttons", &buttons) == B_OK)
		text += " buttons=" + std::to_string(buttons);
	int8 pane = 0;
	if (message.FindInt8("Pane", &pane) == B_OK)
		text += std::string(" pane=") + static_cast<char>(pane);
	const void* data = nullptr;
	ssize_t length = 0;
	if (message.FindData("text/plain", B_MIME_TYPE, &data, &length) == B_OK)
		text +=
			" text=" + BPrivate::UriOf(std::string(static_cast<const char*>(data), size_t(length)));
	return text;
}

void
Fill(BMessage* message)
{
	message->what = B_SIMPLE_DATA;
	for (const std::string& path : sPaths) {
		entry_ref ref;
		if (get_ref_for_path(path.c_str(), &ref) == B_OK)
			message->AddRef("refs", &ref);
		message->AddData("text/plain", B_MIME_TYPE, path.c_str(), ssize_t(path.size()) + 1);
	}
	message->AddBool("Korva", true);
}

class Target : public BView {
public:
	explicit Target(BRect frame) : BView(frame, "target", B_FOLLOW_ALL, B_WILL_DRAW)
	{
		SetViewColor(90, 160, 90);
	}

	void AttachedToWindow() override { MakeFocus(); }

	void MouseDown(BPoint) override
	{
		int32 buttons = 0;
		Window()->CurrentMessage()->FindInt32("buttons", &buttons);
		BMessage message;
		Fill(&message);
		message.AddInt32("buttons", buttons);
		message.AddInt8("Pane", 'I');
		Say("press");
		SetMouseEventMask(B_POINTER_EVENTS); // a release elsewhere, too
		DragMessage(&message, BRect(50, 50, 150, 70));
	}
	void MouseUp(BPoint) override { Say("release"); }
	void MouseMoved(BPoint, uint32 transit, const BMessage* drag) override
	{
		const bool over = drag != nullptr && transit != B_EXITED_VIEW && transit != B_OUTSIDE_VIEW;
		if (over != fDraggedOver)
			Say(over ? "enter " + Described(*drag) : "exit");
		fDraggedOver = over;
	}
	void KeyDown(const char* bytes, int32) override
	{
		if (bytes[0] == 'p')
			Say("alive");
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->WasDropped()) {
			const BPoint where = ConvertFromScreen(message->DropPoint());
			uint32 held = 0;
			GetMouse(nullptr, &held);
			Say("drop " + Described(*message) + " held=" + std::to_string(held) +
				" at=" + std::to_string(int(where.x)) + "," + std::to_string(int(where.y)));
		} else if (message->what == B_COPY || message->what == B_CUT)
			Put(message->what == B_COPY ? "Copy" : "Cut");
		else if (message->what == B_SELECT_ALL)
			Put(nullptr);
		else if (message->what == B_PASTE)
			Paste();
		else
			BView::MessageReceived(message);
	}

private:
	static void Put(const char* action)
	{
		if (!be_clipboard->Lock())
			return;
		be_clipboard->Clear();
		if (action != nullptr) {
			Fill(be_clipboard->Data());
			be_clipboard->Data()->AddBool(action, true);
		}
		be_clipboard->Commit();
		be_clipboard->Unlock();
		Say(action != nullptr ? action : "Clear");
	}
	static void Paste()
	{
		Say("pasting");
		if (!be_clipboard->Lock()) {
			Say("paste refused");
			return;
		}
		Say("paste " +
			(be_clipboard->Data()->IsEmpty() ? "nothing" : Described(*be_clipboard->Data())));
		be_clipboard->Unlock();
	}

	bool fDraggedOver = false;
};

class Frame : public BWindow {
public:
	Frame(const char* title, BPoint leftTop) :
		BWindow(BRect(leftTop.x, leftTop.y, leftTop.x + kSide - 1, leftTop.y + kSide - 1), title,
			B_TITLED_WINDOW, B_NOT_RESIZABLE)
	{
		AddChild(new Target(Bounds()));
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
	if (argc < 4)
		return 2;
	sPaths.assign(argv + 4, argv + argc);
	BApplication application("application/x-vnd.Korva-drag");
	(new Frame(argv[1], BPoint(float(std::atoi(argv[2])), float(std::atoi(argv[3])))))->Show();
	application.Run();
	return 0;
}
