// SPDX-License-Identifier: MIT

#include "xfer/RefDragMessage.h"

#include "app/Messages.h"

#include <interface/View.h>

namespace NFileXFer {

namespace {

const BPoint kOutlineStart(50, 50);

bool
IsUnset(float edge)
{
	return edge < 0;
}

} // namespace

RefDragMessage::RefDragMessage(const entry_ref* ref) : BMessage(kMSG_DragFile)
{
	if (ref != nullptr)
		AddEntryRef(ref);
	AddBool("Korva", true);
}

void
RefDragMessage::AddEntryRef(const entry_ref* ref)
{
	AddRef(kName_DragFile, ref);
	fPaths.AddTo(this, ref);
}

void
RefDragMessage::SetButtons(int32 buttons)
{
	AddInt32(kName_DragButtons, buttons);
}

void
RefDragMessage::SetPane(int8 pane)
{
	AddInt8("Pane", pane);
}

void
RefDragMessage::AddRect(const BRect& rect)
{
	if (IsUnset(fRect.left) || rect.left < fRect.left)
		fRect.left = rect.left;
	if (IsUnset(fRect.right) || fRect.right < rect.right)
		fRect.right = rect.right;
	if (IsUnset(fRect.bottom) || fRect.bottom < rect.bottom)
		fRect.bottom = rect.bottom;
	if (IsUnset(fRect.top) || rect.top < fRect.top)
		fRect.top = rect.top;
}

void
RefDragMessage::Post(BView* view)
{
	fRect.PrintToStream();
	fRect.OffsetTo(kOutlineStart);
	view->DragMessage(this, fRect, nullptr);
}

} // namespace NFileXFer
