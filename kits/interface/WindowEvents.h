// SPDX-License-Identifier: MIT

// Turns what the desktop's window reports into messages for our window's queue.
//
// Thread: the GUI thread; it takes no lock of a looper, posting needs none. For the sources of
// this kit only.

#pragma once

#include <desktop/NativeWindow.h>

#include "kits/app/LooperCore.h"
#include "kits/interface/Dragged.h"

namespace BPrivate {

class WindowEvents : public desktop::WindowClient {
public:
	explicit WindowEvents(LooperCore& window) : fWindow(window) {} // outlived by the window's core

	void WindowResized(int32 width, int32 height, double scale) override;
	void WindowMoved(int32 x, int32 y) override;
	void WindowCloseRequested() override;
	void WindowActivated(bool active) override;
	void WindowMouse(const desktop::MouseEvent& event) override;
	void WindowWheel(const desktop::WheelEvent& event) override;
	void WindowKey(const desktop::KeyEvent& event) override;
	void WindowModifiers(uint32 modifiers, bigtime_t when) override;
	void WindowDrag(const desktop::DragEvent& event) override;
	void WindowComposing(const std::string& text, size_t caret) override;

private:
	LooperCore& fWindow;
	std::shared_ptr<Dragged> fDragged; // by the last event of a drag
};

} // namespace BPrivate
