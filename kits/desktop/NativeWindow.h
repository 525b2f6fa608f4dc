// SPDX-License-Identifier: MIT

// A window of the desktop: shows finished pictures and reports what the user does.

#pragma once

#include <desktop/Canvas.h>
#include <desktop/Content.h>

#include <string>

namespace desktop {

// Positions are logical pixels: x, y in the window's content, screenX, screenY on the screen.
// `when` is system_time() of the arrival.
struct MouseEvent {
	enum Kind { kDown, kUp, kMoved, kLeft };

	Kind kind;
	float x;
	float y;
	float screenX;
	float screenY;
	uint32 buttons; // held after the event
	uint32 button;  // the one that changed, or 0
	int32 clicks;   // kDown: 1, 2, 3 ... for presses of one button close in time and place
	uint32 modifiers;
	bigtime_t when;
};

struct WheelEvent {
	float x;
	float y;
	float deltaX; // in notches, right and down positive; fractions from touch pads
	float deltaY;
	uint32 modifiers;
	uint32 buttons;
	bigtime_t when;
};

struct KeyEvent {
	bool down;
	bool repeat;
	int32 key;         // native key code
	int32 rawChar;     // the character without modifiers
	std::string bytes; // UTF-8 or one B_* key byte; empty for keys that send nothing
	uint32 modifiers;
	bigtime_t when;
};

// A drag, ours or another program's, over the window. What is dragged stays the same object from
// the drag's coming to its going; another program's holds the bytes of one or two formats.
struct DragEvent {
	enum Kind { kMoved, kLeft, kDropped };

	Kind kind;
	MouseEvent mouse; // its kind means nothing; the buttons are those held last
	std::shared_ptr<const Content> content;
};

// What is shown beside the pointer: a picture, or the outline of a rectangle without one.
struct DragImage {
	Picture picture;
	int32 width = 0; // logical pixels, as the pointer's place in the image
	int32 height = 0;
	int32 pointerX = 0;
	int32 pointerY = 0;
};

// Told by the GUI thread; every call must return without waiting.
class WindowClient {
public:
	virtual ~WindowClient() = default;
	virtual void WindowResized(int32 width, int32 height, double scale) = 0; // columns, rows
	virtual void WindowMoved(int32 x, int32 y) = 0; // the content's left top on the screen
	virtual void WindowCloseRequested() = 0;
	virtual void WindowActivated(bool active) = 0;
	virtual void WindowMouse(const MouseEvent& event) = 0;
	virtual void WindowWheel(const WheelEvent& event) = 0;
	virtual void WindowKey(const KeyEvent& event) = 0;
	virtual void WindowModifiers(uint32 modifiers, bigtime_t when) = 0;
	virtual void WindowDrag(const DragEvent&) {}
	// The text that an input method is composing, empty when it has ended, and its caret in bytes.
	virtual void WindowComposing(const std::string& text, size_t caret);
};

// A pop-up has no decoration. From Show() to Hide() all mouse and key events of the program are its
// own, wherever the pointer is; with another pop-up open they stay the first one's. It never gets
// the focus; when the program loses that it is asked to close.
enum class WindowKind { kTitled, kDialog, kPopUp };

// Thread: any one at a time. Show(), Hide(), Scale(), Present() and the destructor wait for the
// GUI thread, the others leave a job to it. With the display gone every call does nothing.
// Owns the desktop's window; borrows the client, which hears nothing any more once the destructor
// has returned.
class NativeWindow {
public:
	struct Options {
		WindowKind kind = WindowKind::kTitled;
		bool movable = true;
		bool resizable = true;
		bool closable = true;
	};

	// `frame`: the content on the screen. Nothing is shown before Show().
	NativeWindow(WindowClient& client, const PixelRect& frame, const std::string& title,
		const Options& options);
	~NativeWindow();
	NativeWindow(const NativeWindow&) = delete;
	NativeWindow& operator=(const NativeWindow&) = delete;

	// Maps the window with the canvas as its first picture, so that it never shows an empty one.
	// The canvas must have the window's size and Scale(). `parent` (may be null) stays below.
	void Show(const Canvas& canvas, NativeWindow* parent = nullptr);
	void Hide();
	bool IsShown() const;
	void Activate();
	// The client hears of no release of the buttons that are held.
	void ForgetButtons();

	void SetTitle(const std::string& title);
	void MoveTo(int32 x, int32 y);
	void ResizeTo(int32 width, int32 height);
	void SetSizeLimits(int32 minWidth, int32 maxWidth, int32 minHeight, int32 maxHeight);

	// Whether keys may be composed to text (dead keys, input methods), with the candidates shown
	// at `caret`. The text arrives as a key press of several bytes, key and rawChar 0. What is
	// being composed is given up when it is no longer wanted.
	void SetTextInput(bool wanted, const PixelRect& caret);

	// Begins a drag with the buttons that are held, and comes to nothing when none is or another
	// drag is under way. Until its end the window hears of the pointer by WindowDrag() only; then
	// its client is told of the release, wherever it was.
	void StartDrag(std::shared_ptr<const Content> content, const DragImage& image);

	double Scale(); // device pixels per logical pixel; waits for the desktop

	// Shows `region` of the canvas, and returns when its pixels were taken over. After a resize the
	// first canvas of the new size is shown whole; until it comes (40 ms at most) the window keeps
	// what it shows, then the old picture is padded with grey. The pixels of `inverted` are shown
	// with the opposite colours.
	void Present(const Canvas& canvas, const PixelRegion& region, const PixelRegion& inverted = {});

private:
	friend struct NativeWindowAccess;

	std::shared_ptr<struct WindowPeer> fPeer; // for jobs of the GUI thread
	bool fShown = false;
};

} // namespace desktop
