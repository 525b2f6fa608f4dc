// SPDX-License-Identifier: MIT

// A window with a menu, which the secondary button opens, or a start with --open. Prints a line for
// each thing that happens.

#include <app/Application.h>
#include <interface/PopUpMenu.h>
#include <interface/Window.h>

#include <cstdio>
#include <string>

namespace {

void
Tell(const std::string& line)
{
	std::printf("%s\n", line.c_str());
	std::fflush(stdout);
}

class Page : public BView {
public:
	explicit Page(BRect frame) : BView(frame, "page", B_FOLLOW_ALL_SIDES, B_WILL_DRAW)
	{
		SetViewColor(232, 232, 232);
		for (const char* label : {"Open", "", "Cut", "Copy", "Paste", "Paste Link", "", "Rename"}) {
			if (label[0] == '\0')
				fMenu.AddSeparatorItem();
			else
				fMenu.AddItem(new BMenuItem(label, new BMessage('item')));
		}
		fMenu.ItemAt(5)->SetEnabled(false);
		fMenu.ItemAt(7)->SetShortcut('r', 0);
		auto* more = new BMenu("More");
		more->AddItem(new BMenuItem("Refresh", nullptr));
		more->AddItem(new BMenuItem("About", nullptr));
		fMenu.AddItem(more);
	}

	void Draw(BRect) override
	{
		SetLowColor(ViewColor());
		SetHighColor(0, 0, 0);
		DrawString("Press here", BPoint(10, 20));
		// Another colour for another size: who looks sees that this was painted anew.
		const BRect bounds = Bounds();
		SetHighColor(uint8(bounds.Width()), 128, uint8(bounds.Height()));
		FillRect(BRect(bounds.right - 9, bounds.bottom - 9, bounds.right, bounds.bottom));
	}

	void MouseDown(BPoint where) override
	{
		int32 buttons = 0;
		Window()->CurrentMessage()->FindInt32("buttons", &buttons);
		Tell("pressed " + std::to_string(buttons));
		if ((buttons & B_PRIMARY_MOUSE_BUTTON) != 0)
			return;
		OpenMenu(ConvertToScreen(where), false);
	}

	void KeyDown(const char* bytes, int32) override { Tell(std::string("key ") + bytes); }
	void WindowActivated(bool active) override { Tell(active ? "active" : "inactive"); }

	void OpenMenu(BPoint where, bool openAnyway)
	{
		Tell("open");
		const BMenuItem* item = fMenu.Go(where, false, openAnyway);
		Tell(std::string("chose ") + (item != nullptr ? item->Label() : "nothing"));
		BPoint point;
		uint32 held = 0;
		GetMouse(&point, &held, false);
		Tell("buttons " + std::to_string(held));
	}

private:
	BPopUpMenu fMenu{"menu"};
};

class MenuProgramWindow : public BWindow {
public:
	MenuProgramWindow() :
		BWindow(BRect(50, 75, 349, 274), "Menu program", B_TITLED_WINDOW, 0),
		fPage(new Page(Bounds()))
	{
		AddChild(fPage);
		fPage->MakeFocus();
	}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'open')
			fPage->OpenMenu(BPoint(200, 200), true);
		else
			BWindow::MessageReceived(message);
	}

	bool QuitRequested() override
	{
		Tell("quit");
		be_app->PostMessage(B_QUIT_REQUESTED);
		return true;
	}

private:
	Page* fPage;
};

} // namespace

int
main(int argc, char** argv)
{
	BApplication app("application/x-vnd.menu-program");
	auto* window = new MenuProgramWindow;
	window->Show();
	if (argc >= 2 && std::string(argv[1]) == "--open")
		window->PostMessage('open');
	app.Run();
	return 0;
}
