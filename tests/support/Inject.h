// SPDX-License-Identifier: MIT

// Puts input into our windows as the display server would, and takes pictures of what they show.
// Each call returns when the window's client was told.

#pragma once

#include <desktop/NativeWindow.h>

#include <map>
#include <string>
#include <vector>

// One window as seen by its user. Positions are logical pixels; of the content unless said
// otherwise. Any thread but the GUI thread.
class InjectedUser {
public:
	explicit InjectedUser(desktop::NativeWindow& window);
	// By its title; of several the newest. Waits for it to appear, fails the test after 20 s.
	explicit InjectedUser(const std::string& title);

	// `modifiers` are B_*_KEY bits, as with all calls below.
	void Press(float x, float y, uint32 button = B_PRIMARY_MOUSE_BUTTON, uint32 modifiers = 0);
	void Release(float x, float y, uint32 button = B_PRIMARY_MOUSE_BUTTON, uint32 modifiers = 0);
	void Click(float x, float y, uint32 button = B_PRIMARY_MOUSE_BUTTON, uint32 modifiers = 0)
	{
		Press(x, y, button, modifiers);
		Release(x, y, button, modifiers);
	}
	void Move(float x, float y, uint32 modifiers = 0); // with the buttons pressed so far
	void MoveOnScreen(float screenX, float screenY, uint32 modifiers = 0);
	void Enter(float x, float y);
	void Leave();
	// Forgets the buttons held, as when another program takes the pointer.
	void LoseButtons() { fButtons = 0; }
	// From now on drags of this process follow injected moves over all our windows, to the release.
	// They begin at the pointer as the display server knows it, which now is moved along, too.
	void AllowDrags();
	// A drag of another program's comes, moves, and goes or is dropped. `texts` are bytes by
	// format. True when it is accepted, and the source was told of a copy.
	typedef std::map<std::string, std::string> Texts;
	bool DragOver(float x, float y, const Texts& texts, uint32 modifiers = 0);
	bool Drop(float x, float y, const Texts& texts, uint32 modifiers = 0);
	void DragLeaves();

	// The clipboard as another program fills and sees it. It hands each of the texts out after so
	// many microseconds.
	static void PutOnClipboard(const Texts& texts, bigtime_t delay = 0);
	static Texts Clipboard();

	// In notches, right and down positive.
	void Wheel(float x, float y, float deltaX, float deltaY, uint32 modifiers = 0);

	// Presses and releases. `bytes`: a B_* key byte, or text of one character; B_FUNCTION_KEY is
	// F1.
	void Key(const std::string& bytes, uint32 modifiers = 0)
	{
		KeyDown(bytes, modifiers);
		KeyUp(bytes, modifiers);
	}
	void KeyDown(const std::string& bytes, uint32 modifiers = 0, bool repeat = false);
	void KeyUp(const std::string& bytes, uint32 modifiers = 0);
	// B_LEFT_SHIFT_KEY ... B_RIGHT_OPTION_KEY, B_MENU_KEY or B_SCROLL_LOCK; `modifiers` are those
	// held before.
	void ModifierKey(uint32 sidedKey, bool down, uint32 modifiers = 0);

	// What an input method or a dead key has made; false when the window takes none at present.
	bool Compose(const std::string& text);
	// What it shows while it has not; `caret` in characters of the Basic Plane.
	bool ShowComposing(const std::string& text, int32 caret);
	// Where it would show what can be chosen; not valid when the window takes no text.
	desktop::PixelRect InputCaret() const;

	void Close();
	void Activate();
	void Deactivate();
	void Resize(int32 width, int32 height);
	// The user gives the screen another scale, from 1; for all windows until it is put back.
	void Rescale(double factor);

	// The window's present picture: device pixels as 0xffRRGGBB, or 0 outside.
	struct Picture {
		uint32 At(int32 x, int32 y) const;
		int32 Count(uint32 colour) const;
		// Around the pixels of this colour; empty when there are none.
		desktop::PixelRect BoundsOf(uint32 colour) const;

		int32 width = 0;
		int32 height = 0;
		std::vector<uint32> pixels;
	};
	Picture Snapshot() const;

	// A click into one of the windows that are shown at this moment, if there is one; `which` picks
	// it. They may go meanwhile.
	static void ClickAnyWindow(uint32 which, float x, float y);

private:
	void Mouse(int type, float x, float y, bool onScreen, uint32 button, uint32 modifiers);

	class QWindow* fWindow = nullptr;
	uint32 fButtons = 0;
	bool fMovesCursor = false;
};
