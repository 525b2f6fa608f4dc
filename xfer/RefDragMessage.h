// SPDX-License-Identifier: MIT

// What is dragged when rows are dragged: the files, their paths as text for whoever takes text, and
// a mark that they come from this program.

#pragma once

#include "xfer/PathText.h"

#include <app/Message.h>
#include <interface/Rect.h>

class BView;

namespace NFileXFer {

class RefDragMessage : public BMessage {
public:
	explicit RefDragMessage(const entry_ref* ref = nullptr);

	void AddEntryRef(const entry_ref* ref);
	void SetButtons(int32 buttons); // those held when the drag began
	void SetPane(int8 pane);        // FileListView::GetPane()

	// The outline that is shown. It grows edge by edge; an edge below 0 counts as not set yet.
	void SetRect(const BRect& rect) { fRect = rect; }
	void AddRect(const BRect& rect);
	const BRect& Rect() const { return fRect; }

	// Starts the drag; the message stays the caller's. The outline has the size of the rows but
	// begins at a fixed place of the view.
	void Post(BView* view);

private:
	BRect fRect{-1, -1, -1, -1};
	PathTexts fPaths;
};

} // namespace NFileXFer
