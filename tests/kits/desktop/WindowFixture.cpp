// SPDX-License-Identifier: MIT

#include "WindowFixture.h"

#include <cstdio>

using namespace desktop;

void
TestClient::Note(const std::string& what)
{
	if (!fTrace.empty())
		fTrace += "; ";
	fTrace += what;
}

std::string
TestClient::Take()
{
	std::lock_guard lock(fLock);
	return std::exchange(fTrace, std::string());
}

KeyEvent
TestClient::LastKey() const
{
	std::lock_guard lock(fLock);
	return fKey;
}

MouseEvent
TestClient::LastMouse() const
{
	std::lock_guard lock(fLock);
	return fMouse;
}

void
TestClient::WindowResized(int32 width, int32 height, double)
{
	std::lock_guard lock(fLock);
	Note("resized " + std::to_string(width) + "x" + std::to_string(height));
}

void
TestClient::WindowMoved(int32 x, int32 y)
{
	std::lock_guard lock(fLock);
	Note("at " + std::to_string(x) + "," + std::to_string(y));
}

void
TestClient::WindowCloseRequested()
{
	std::lock_guard lock(fLock);
	Note("close");
}

void
TestClient::WindowActivated(bool active)
{
	std::lock_guard lock(fLock);
	Note(active ? "active" : "inactive");
}

void
TestClient::WindowMouse(const MouseEvent& event)
{
	static const char* const kKinds[] = {"pressed", "released", "moved", "left"};
	char text[80];
	std::snprintf(text, sizeof text, "%s %g,%g %u", kKinds[event.kind], double(event.x),
		double(event.y), event.buttons);
	std::lock_guard lock(fLock);
	fMouse = event;
	Note(text);
}

void
TestClient::WindowWheel(const WheelEvent& event)
{
	char text[80];
	std::snprintf(text, sizeof text, "wheel %g,%g", double(event.deltaX), double(event.deltaY));
	std::lock_guard lock(fLock);
	Note(text);
}

void
TestClient::WindowKey(const KeyEvent& event)
{
	std::lock_guard lock(fLock);
	fKey = event;
	Note((event.down ? "key " : "key up ") + event.bytes);
}

void
TestClient::WindowModifiers(uint32 modifiers, bigtime_t)
{
	char text[40];
	std::snprintf(text, sizeof text, "modifiers %x", modifiers);
	std::lock_guard lock(fLock);
	Note(text);
}

WindowTest::WindowTest() :
	fWindow(fClient, {50, 75, 249, 174}, "Window", {}),
	fCanvas(200, 100, fWindow.Scale()),
	fUser(fWindow)
{
	Paint(fCanvas, {255, 0, 0});
	fWindow.Show(fCanvas);
	fUser.Activate();
	fUser.Enter(1, 1);
	fUser.Snapshot();
	fClient.Take();
}

void
WindowTest::Paint(Canvas& canvas, rgb_color colour)
{
	Ink ink;
	ink.high = colour;
	canvas.FillRect({0, 0, canvas.Width() - 1, canvas.Height() - 1}, ink);
}
