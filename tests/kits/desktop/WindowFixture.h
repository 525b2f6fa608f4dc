// SPDX-License-Identifier: MIT

// A shown window of 200 by 100 pixels, its client that writes down what it is told, and a user.

#pragma once

#include <desktop/GuiThread.h>
#include <desktop/NativeWindow.h>

#include "tests/support/Inject.h"

#include <gtest/gtest.h>
#include <mutex>
#include <string>

class TestClient : public desktop::WindowClient {
public:
	// What was told since the last time, in order: "pressed 1,2 1; ...".
	std::string Take();
	desktop::KeyEvent LastKey() const;
	desktop::MouseEvent LastMouse() const;

	// WindowClient
	void WindowResized(int32 width, int32 height, double scale) override;
	void WindowMoved(int32 x, int32 y) override;
	void WindowCloseRequested() override;
	void WindowActivated(bool active) override;
	void WindowMouse(const desktop::MouseEvent& event) override;
	void WindowWheel(const desktop::WheelEvent& event) override;
	void WindowKey(const desktop::KeyEvent& event) override;
	void WindowModifiers(uint32 modifiers, bigtime_t when) override;

private:
	void Note(const std::string& what);

	mutable std::mutex fLock;
	std::string fTrace;
	desktop::KeyEvent fKey = {};
	desktop::MouseEvent fMouse = {};
};

class WindowTest : public testing::Test {
protected:
	WindowTest();

	// Paints the whole canvas in one colour.
	static void Paint(desktop::Canvas& canvas, rgb_color colour);

	TestClient fClient;
	desktop::NativeWindow fWindow;
	desktop::Canvas fCanvas;
	InjectedUser fUser;
};
