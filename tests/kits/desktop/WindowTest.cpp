// SPDX-License-Identifier: MIT

// A native window: what it shows, and what its client is told of the user's input.

#include <desktop/GuiThread.h>
#include <desktop/NativeWindow.h>

#include "tests/support/Inject.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

using namespace desktop;

namespace {

constexpr uint32 kRed = 0xffff0000;
constexpr uint32 kBlue = 0xff0000ff;
constexpr uint32 kPadding = 0xffd8d8d8;

// Writes down what it is told.
class TestClient : public WindowClient {
public:
	// What was told since the last time, in order: "pressed 1,2 1; ...".
	std::string Take()
	{
		std::lock_guard lock(fLock);
		return std::exchange(fTrace, std::string());
	}
	KeyEvent LastKey() const
	{
		std::lock_guard lock(fLock);
		return fKey;
	}
	MouseEvent LastMouse() const
	{
		std::lock_guard lock(fLock);
		return fMouse;
	}

	// WindowClient
	void WindowResized(int32 width, int32 height, double) override
	{
		Note("resized %dx%d", width, height);
	}
	void WindowMoved(int32 x, int32 y) override { Note("at %d,%d", x, y); }
	void WindowCloseRequested() override { Note("close"); }
	void WindowActivated(bool active) override { Note(active ? "active" : "inactive"); }
	void WindowMouse(const MouseEvent& event) override
	{
		static const char* const kKinds[] = {"pressed", "released", "moved", "left"};
		Note("%s %g,%g %u", kKinds[event.kind], double(event.x), double(event.y), event.buttons);
		std::lock_guard lock(fLock);
		fMouse = event;
	}
	void WindowWheel(const WheelEvent& event) override
	{
		Note("wheel %g,%g", double(event.deltaX), double(event.deltaY));
	}
	void WindowKey(const KeyEvent& event) override
	{
		Note("%s %s", event.down ? "key" : "key up", event.bytes.c_str());
		std::lock_guard lock(fLock);
		fKey = event;
	}
	void WindowModifiers(uint32 modifiers, bigtime_t) override { Note("modifiers %x", modifiers); }

private:
	[[gnu::format(printf, 2, 3)]] void Note(const char* format, ...)
	{
		char text[100];
		va_list arguments;
		va_start(arguments, format);
		std::vsnprintf(text, sizeof text, format, arguments);
		va_end(arguments);
		std::lock_guard lock(fLock);
		fTrace += (fTrace.empty() ? "" : "; ") + std::string(text);
	}

	mutable std::mutex fLock;
	std::string fTrace;
	KeyEvent fKey = {};
	MouseEvent fMouse = {};
};

// A shown window of 200 by 100 pixels, all red, and its user.
class WindowTest : public testing::Test {
protected:
	WindowTest()
	{
		Paint({255, 0, 0});
		fWindow.Show(fCanvas);
		fUser.Activate();
		fUser.Enter(1, 1);
		fUser.Snapshot();
		fClient.Take();
	}

	void Paint(rgb_color colour)
	{
		Ink ink;
		ink.high = colour;
		fCanvas.FillRect({0, 0, fCanvas.Width() - 1, fCanvas.Height() - 1}, ink);
	}
	std::string BytesOf(const std::string& bytes, uint32 modifiers = 0)
	{
		fUser.Key(bytes, modifiers);
		return fClient.LastKey().bytes;
	}

	TestClient fClient;
	NativeWindow fWindow{fClient, {50, 75, 249, 174}, "Window", {}};
	Canvas fCanvas{200, 100, fWindow.Scale()};
	InjectedUser fUser{fWindow};
};

} // namespace

TEST_F(WindowTest, PresentsTheRegionAndNothingElse)
{
	Paint({0, 0, 255});
	PixelRegion region(PixelRect{10, 10, 19, 19});
	region.Include(PixelRect{190, 90, 500, 500});
	fWindow.Present(fCanvas, region);
	const InjectedUser::Picture picture = fUser.Snapshot();
	EXPECT_EQ(picture.Count(kBlue), 200);
	EXPECT_EQ(picture.Count(kRed), 200 * 100 - 200);
	EXPECT_EQ(picture.BoundsOf(kBlue), (PixelRect{10, 10, 199, 99}));
}

TEST_F(WindowTest, PadsThePictureOfAClientThatIsBusy)
{
	fUser.Resize(210, 100);
	EXPECT_TRUE(WaitUntil([&] { return fUser.Snapshot().width == 210; }));
	EXPECT_EQ(fUser.Snapshot().At(199, 50), kRed);
	EXPECT_EQ(fUser.Snapshot().At(209, 50), kPadding);
	// A picture of the old size comes late.
	Paint({0, 0, 255});
	fWindow.Present(fCanvas, PixelRect{0, 0, 199, 99});
	EXPECT_EQ(fUser.Snapshot().At(199, 50), kBlue);
	EXPECT_EQ(fUser.Snapshot().At(209, 50), kPadding);
}

TEST(Window, ThatIsNotResizableKeepsItsSize)
{
	TestClient client;
	NativeWindow::Options options;
	options.resizable = false;
	NativeWindow window(client, {0, 0, 79, 59}, "fixed", options);
	Canvas canvas(80, 60, window.Scale());
	window.Show(canvas);
	InjectedUser user(window);
	user.Resize(100, 100);
	EXPECT_EQ(user.Snapshot().width, 80);
	window.ResizeTo(90, 60); // by the program
	user.Snapshot();
	EXPECT_NE(client.Take().find("resized 90x60"), std::string::npos);
}

TEST_F(WindowTest, InputReachesTheClientInOrder)
{
	fUser.Move(10, 20);
	fUser.Press(10, 20);
	fUser.Press(10, 20, B_SECONDARY_MOUSE_BUTTON);
	fUser.Move(300, -5);
	fUser.Release(300, -5);
	fUser.Release(300, -5, B_SECONDARY_MOUSE_BUTTON);
	fUser.Wheel(4, 4, 0, 1);
	fUser.Wheel(4, 4, -2, -0.5f);
	fUser.Key("q");
	fUser.Leave();
	fUser.Close();
	EXPECT_EQ(fClient.Take(),
		"moved 10,20 0; pressed 10,20 1; pressed 10,20 3; moved 300,-5 3; released 300,-5 2; "
		"released 300,-5 0; wheel 0,1; wheel -2,-0.5; key q; key up q; left 4,4 0; close");
}

TEST_F(WindowTest, CountsPressesCloseInTimeAndPlace)
{
	const auto clicks = [this](float x, uint32 button) {
		fUser.Press(x, 20, button);
		const int32 counted = fClient.LastMouse().clicks;
		fUser.Release(x, 20, button);
		return counted;
	};
	for (const int32 times : {1, 2, 3})
		EXPECT_EQ(clicks(20, B_PRIMARY_MOUSE_BUTTON), times);
	EXPECT_EQ(clicks(30, B_PRIMARY_MOUSE_BUTTON), 1) << "another place";
	EXPECT_EQ(clicks(30, B_TERTIARY_MOUSE_BUTTON), 1) << "another button";
}

TEST_F(WindowTest, ReleasesThatWereLostAreMadeUpFor)
{
	fUser.Press(10, 20);
	fUser.Press(10, 20, B_SECONDARY_MOUSE_BUTTON);
	fClient.Take();
	fUser.LoseButtons();
	fUser.Move(12, 20);
	EXPECT_EQ(fClient.Take(), "released 12,20 2; released 12,20 0; moved 12,20 0");
	EXPECT_EQ(CurrentInput().buttons, 0u);
}

TEST_F(WindowTest, KeysSendTheirByteOrTheirText)
{
	for (const char byte : {B_HOME, B_END, B_INSERT, B_BACKSPACE, B_TAB, B_ENTER, B_PAGE_UP,
			 B_PAGE_DOWN, B_FUNCTION_KEY, B_ESCAPE, B_LEFT_ARROW, B_RIGHT_ARROW, B_UP_ARROW,
			 B_DOWN_ARROW, B_DELETE, B_SPACE}) {
		const std::string bytes(1, byte);
		for (const int modifiers : {0, +B_SHIFT_KEY, +B_CONTROL_KEY, +B_COMMAND_KEY})
			EXPECT_EQ(BytesOf(bytes, uint32(modifiers)), bytes) << int(byte);
	}
	EXPECT_EQ(BytesOf("A", B_SHIFT_KEY), "A");
	EXPECT_EQ(fClient.LastKey().rawChar, 'a');
	EXPECT_EQ(BytesOf("\xc3\xa9"), "\xc3\xa9");
	// Control never makes control bytes.
	for (char letter = 'a'; letter <= 'z'; letter++)
		EXPECT_EQ(BytesOf({letter}, B_CONTROL_KEY), std::string(1, letter));
	EXPECT_EQ(BytesOf("[", B_CONTROL_KEY), "[");
	EXPECT_EQ(fClient.LastKey().modifiers, uint32(B_CONTROL_KEY));
	fUser.KeyDown("k", 0, true);
	EXPECT_TRUE(fClient.LastKey().repeat);
}

TEST_F(WindowTest, ModifierKeysAreToldApartAndSendNoKey)
{
	fUser.ModifierKey(B_LEFT_SHIFT_KEY, true);
	EXPECT_EQ(fClient.Take(), "modifiers 101");
	fUser.ModifierKey(B_RIGHT_SHIFT_KEY, true, B_SHIFT_KEY);
	EXPECT_EQ(fClient.Take(), "modifiers 301");
	fUser.ModifierKey(B_LEFT_SHIFT_KEY, false, B_SHIFT_KEY);
	EXPECT_EQ(fClient.Take(), "modifiers 201") << "the right one is still held";
	EXPECT_EQ(CurrentInput().modifiers, uint32(B_SHIFT_KEY | B_RIGHT_SHIFT_KEY));
	fUser.Move(5, 5); // without: the release was not seen
	EXPECT_EQ(fClient.Take(), "modifiers 0; moved 5,5 0");

	fUser.ModifierKey(B_RIGHT_COMMAND_KEY, true);
	EXPECT_EQ(fClient.Take(), "modifiers 802");
	fUser.Deactivate();
	EXPECT_EQ(fClient.Take(), "modifiers 0; inactive");
}

TEST_F(WindowTest, TheMenuKeyIsHeldAndScrollLockSwitches)
{
	fUser.ModifierKey(B_MENU_KEY, true);
	fUser.ModifierKey(B_MENU_KEY, false);
	fUser.ModifierKey(B_SCROLL_LOCK, true);
	fUser.ModifierKey(B_SCROLL_LOCK, false);
	EXPECT_EQ(fClient.Take(), "modifiers 80; modifiers 0; modifiers 10");
	fUser.Key("k");
	EXPECT_EQ(fClient.LastKey().modifiers, uint32(B_SCROLL_LOCK));
	fClient.Take();
	fUser.ModifierKey(B_SCROLL_LOCK, true);
	EXPECT_EQ(fClient.Take(), "modifiers 0");
}
