// SPDX-License-Identifier: MIT

// The editor inside a text control. For this kit's sources only.

#pragma once

#include <interface/TextView.h>

class BTextControl;

namespace BPrivate {

class ControlEditor : public BTextView {
public:
	explicit ControlEditor(BTextControl& control); // outlived by the control

	void SetCleanText(const char* text); // which counts as unchanged
	void Commit(); // sends the control's message; the text counts as unchanged
	void Press(BPoint where) { _Press(where); }

	// BTextView
	void KeyDown(const char* bytes, int32 numBytes) override;
	void MouseDown(BPoint where) override;
	void MakeFocus(bool focus = true) override;

private:
	void _UserChanged() override;

	BTextControl& fControl;
	std::string fCleanText;
};

} // namespace BPrivate
