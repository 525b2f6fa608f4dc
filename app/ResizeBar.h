// SPDX-License-Identifier: MIT

// The splitter between two views: dragged, it jumps to where it is let go, and both views are
// resized to meet it. Meanwhile only the cursor tells.

#pragma once

#include <interface/View.h>

class ResizeBar : public BView {
public:
	ResizeBar(
		BRect frame, const char* name, uint32 resizingMode, uint32 flags, orientation direction);

	// The view left of or above the bar, and the one right of or below it; borrowed. Null is
	// skipped.
	void SetFirstView(BView* view) { fFirst = view; }
	void SetSecondView(BView* view) { fSecond = view; }
	void SetLeftView(BView* view) { SetFirstView(view); }
	void SetRightView(BView* view) { SetSecondView(view); }

	// Resizes both views to meet a bar that lies at `edges`. Takes the window's lock.
	void ResizeEdges(const BRect& edges);

	// BView
	void AttachedToWindow() override;
	void Draw(BRect update) override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void FrameMoved(BPoint newPosition) override;
	void FrameResized(float width, float height) override; // the outline's old end goes
	void MessageReceived(BMessage* message) override;

private:
	void LetGo(const BMessage& message);

	orientation fOrientation;
	BView* fFirst = nullptr;
	BView* fSecond = nullptr;
	int32 fWatchers = 0; // that have not told of the release
};
