// SPDX-License-Identifier: MIT

// BButton: a push button; acts when the mouse is released inside it.

#pragma once

#include <interface/Control.h>

class BButton : public BControl {
public:
	BButton(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
		uint32 flags = B_WILL_DRAW | B_NAVIGABLE);

	// The default button gets the window's Enter, wherever the focus is. A window has one at most.
	void MakeDefault(bool isDefault);
	bool IsDefault() const { return fDefault; }

	// As if it were clicked; nothing while it is disabled.
	void Press();

	// BView
	void GetPreferredSize(float* width, float* height) override; // for the label
	void ResizeToPreferred() override;
	void AttachedToWindow() override;
	void DetachedFromWindow() override;
	void Draw(BRect updateRect) override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void MouseUp(BPoint where) override;
	void KeyDown(const char* bytes, int32 numBytes) override;

private:
	bool fDefault = false;
	bool fTracking = false; // pressed, until the release
};
