// SPDX-License-Identifier: MIT

// BScrollView: a border around a view, with scroll bars at its right and bottom.

#pragma once

#include <interface/View.h>

class BScrollView : public BView {
public:
	// The target must have no parent. It stays where it is on the screen: the scroll view's frame
	// is the target's, grown by the bars and the border, and the target becomes its child.
	BScrollView(const char* name, BView* target, uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
		uint32 flags = 0, bool horizontal = false, bool vertical = false,
		border_style border = B_FANCY_BORDER);

	BScrollBar* ScrollBar(orientation direction) const;
	BView* Target() const { return fTarget; } // borrowed: a child like others
	border_style Border() const { return fBorder; }
	// The fancy border in the colour of the keyboard's focus. The target asks for it.
	void SetBorderHighlighted(bool highlighted);

	// BView
	void Draw(BRect updateRect) override;
	void FrameResized(float width, float height) override;

private:
	void InvalidateBorder();

	BView* fTarget;
	BScrollBar* fHorizontal = nullptr; // children
	BScrollBar* fVertical = nullptr;
	border_style fBorder;
	bool fHighlighted = false;
};
