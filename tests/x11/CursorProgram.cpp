// SPDX-License-Identifier: MIT

// A window in which each press sets the next cursor: the beam, one of the program's own, the hand.

#include <app/Application.h>
#include <interface/View.h>
#include <interface/Window.h>

namespace {

// An outlined square of 16 by 16 with its hot spot near the right bottom corner.
struct OwnCursor {
	OwnCursor() : data{16, 1, 13, 14}
	{
		for (int row = 0; row < 16; row++) {
			const bool edge = row == 0 || row == 15;
			data[4 + row * 2] = edge ? 0xff : 0x80;
			data[5 + row * 2] = edge ? 0xff : 0x01;
			// A hole in the middle row: there the mask is empty.
			data[36 + row * 2] = row == 8 ? 0 : 0xff;
			data[37 + row * 2] = row == 8 ? 0 : 0xff;
		}
	}
	unsigned char data[68];
};

class CursorView : public BView {
public:
	CursorView() : BView(BRect(0, 0, 199, 199), nullptr, B_FOLLOW_ALL, 0) {}

	void MouseDown(BPoint) override
	{
		OwnCursor own; // copied by the call
		const void* const cursors[] = {B_I_BEAM_CURSOR, own.data, B_HAND_CURSOR};
		be_app->SetCursor(cursors[fPresses++ % 3]);
	}

private:
	int fPresses = 0;
};

} // namespace

int
main(int, char**)
{
	BApplication app("application/x-vnd.cursor-test");
	BWindow* window = new BWindow(BRect(50, 75, 249, 274), "Cursor", B_TITLED_WINDOW, 0);
	window->AddChild(new CursorView);
	window->Show();
	app.Run();
	return 0;
}
