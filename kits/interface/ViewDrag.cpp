// SPDX-License-Identifier: MIT

// Drags: how a view begins one, and how one ends in a view.

#include <interface/View.h>

#include <desktop/GuiThread.h>
#include <interface/Bitmap.h>
#include <interface/Modal.h>
#include <interface/Window.h>

#include "kits/app/LooperCore.h"
#include <app/MessagePrivate.h>

#include "kits/app/MessageContent.h"
#include "kits/interface/Dragged.h"
#include "kits/interface/WindowSurface.h"

#include <cmath>

using BPrivate::ContentUse;
using BPrivate::DragNotice;
using BPrivate::MessageContent;

void
BView::DragMessage(BMessage* message, BRect rect, BHandler* replyTo)
{
	if (message == nullptr || fWindow == nullptr)
		return;
	BPoint pointer;
	GetMouse(&pointer, nullptr, false);
	desktop::DragImage image;
	if (rect.IsValid()) {
		image.width = rect.IntegerWidth() + 1;
		image.height = rect.IntegerHeight() + 1;
	}
	_Drag(*message, image, pointer - rect.LeftTop(), replyTo);
}

void
BView::DragMessage(BMessage* message, BBitmap* bitmap, BPoint offset, BHandler* replyTo)
{
	DragMessage(message, bitmap, B_OP_OVER, offset, replyTo);
}

// The desktop blends the bitmap with whatever is below, in every mode.
void
BView::DragMessage(
	BMessage* message, BBitmap* bitmap, drawing_mode, BPoint offset, BHandler* replyTo)
{
	const std::unique_ptr<BBitmap> owned(bitmap);
	if (message == nullptr || fWindow == nullptr)
		return;
	desktop::DragImage image;
	if (bitmap != nullptr && bitmap->IsValid())
		image.picture = bitmap->Picture();
	_Drag(*message, image, offset, replyTo);
}

void
BView::_Drag(
	const BMessage& message, desktop::DragImage image, BPoint offset, const BHandler* replyTo)
{
	desktop::NativeWindow* native = fWindow->fSurface->Native();
	if (native == nullptr || desktop::CurrentInput().buttons == 0)
		return;
	image.pointerX = static_cast<int32>(std::floor(offset.x));
	image.pointerY = static_cast<int32>(std::floor(offset.y));
	BMessage dragged(message);
	dragged.RemoveName("_drop_point_");
	dragged.RemoveName("_drop_offset_");
	dragged.AddPoint("_drop_offset_", offset);
	BPrivate::MessageAccess::SetDropped(dragged, false);
	native->StartDrag(std::make_shared<MessageContent>(dragged, ContentUse::kDrag,
						  replyTo != nullptr ? BMessenger(replyTo) : BMessenger()),
		image);
}

BHandler*
BWindow::_RetargetDrop(DragNotice& drop)
{
	// Nothing that we understand is no drop.
	if (BPrivate::InputBlockedBy(this) || drop.DragMessage().IsEmpty())
		return nullptr;
	BPoint where;
	drop.FindPoint("where", &where);
	drop.TurnIntoDrop(ConvertToScreen(where));
	BView* view = FindView(where);
	return view != nullptr ? static_cast<BHandler*>(view) : this;
}

// Of the window's own thread, while it handles a drop: what was held before it.
bool
BWindow::_DropButtons(uint32* buttons) const
{
	if (!fDropButtons || find_thread(nullptr) != Thread())
		return false;
	*buttons = *fDropButtons;
	return true;
}

void
BWindow::_Drop(const DragNotice& drop, BHandler* target)
{
	// Not when the hook has deleted the window: then nothing is left of this but the frame.
	struct Ending {
		~Ending()
		{
			if (!core->IsClosed())
				buttons.reset();
		}
		const std::shared_ptr<BPrivate::LooperCore> core;
		std::optional<uint32>& buttons;
	} ending{BPrivate::LooperRegistry::Find(this), fDropButtons};
	fDropButtons = drop.DropButtons();
	target->MessageReceived(CurrentMessage());
}
