// SPDX-License-Identifier: MIT

// The splitter between two views.

#pragma once

#include <interface/View.h>

class ResizeBar : public BView {
public:
	ResizeBar(
		BRect frame, const char* name, uint32 resizingMode, uint32 flags, orientation direction);

	// The view left of or above the bar, and the one right of or below it; borrowed.
	void SetFirstView(BView* view) { fFirst = view; }
	void SetSecondView(BView* view) { fSecond = view; }
	void SetLeftView(BView* view) { SetFirstView(view); }
	void SetRightView(BView* view) { SetSecondView(view); }

	// BView
	void AttachedToWindow() override;
	void Draw(BRect update) override;
	void FrameResized(float width, float height) override; // the outline's old end goes

private:
	orientation fOrientation;
	BView* fFirst = nullptr;
	BView* fSecond = nullptr;
};
