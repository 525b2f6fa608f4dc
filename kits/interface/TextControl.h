// SPDX-License-Identifier: MIT

// BTextControl: a label and a box with one line of text to edit.
//
// Its only child is the editor, whose presses come to the control's MouseDown() first. Sends its
// message on Enter, and when the focus leaves a text that was changed since it was set or sent.

#pragma once

#include <interface/Control.h>

#include <memory>

class BTextView;

namespace BPrivate {
class ControlEditor;
}

class BTextControl : public BControl {
public:
	BTextControl(BRect frame, const char* name, const char* label, const char* text,
		BMessage* message, uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
		uint32 flags = B_WILL_DRAW | B_NAVIGABLE);

	virtual void SetText(const char* text); // sends nothing
	const char* Text() const;
	BTextView* TextView() const;
	// Sent at each change by the user; owned from now on, null for none.
	virtual void SetModificationMessage(BMessage* message);
	BMessage* ModificationMessage() const { return fModification.get(); }

	// Where the box begins; behind the label until it is set.
	virtual void SetDivider(float divider);
	float Divider() const;

	// BControl
	void SetEnabled(bool enabled) override;
	void SetLabel(const char* label) override;
	void AttachedToWindow() override;
	void Draw(BRect update) override;
	void MouseDown(BPoint where) override;
	void MakeFocus(bool focus = true) override; // of the editor, and selects all
	void WindowActivated(bool active) override;
	void FrameResized(float width, float height) override;
	void GetPreferredSize(float* width, float* height) override;
	void ResizeToPreferred() override;

private:
	friend class BPrivate::ControlEditor;

	BRect _Box() const;
	void _PlaceEditor();

	BPrivate::ControlEditor* fEditor; // a child view: deleted with the others
	std::unique_ptr<BMessage> fModification;
	float fDivider = -1; // negative: not set
};
