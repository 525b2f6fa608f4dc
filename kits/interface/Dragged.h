// SPDX-License-Identifier: MIT

// Drags on their way from the desktop to the views. For the sources of this kit only.

#pragma once

#include <app/Messenger.h>
#include <desktop/Content.h>

#include "kits/app/MessageContent.h"

#include <mutex>

namespace BPrivate {

// What is dragged over a window, as a message. That of another program is made when first asked
// for, by the window's thread: its files must be looked up.
class Dragged {
public:
	explicit Dragged(std::shared_ptr<const desktop::Content> content) : fContent(std::move(content))
	{}

	bool Holds(const std::shared_ptr<const desktop::Content>& content) const
	{
		return fContent == content;
	}
	const BMessage& Message() const;
	BMessenger ReplyTo() const;

private:
	const std::shared_ptr<const desktop::Content> fContent;
	mutable std::once_flag fOnce;
	mutable BMessage fForeign;
};

constexpr uint32 kMsgDrop = '_DRP'; // until the window takes it from its queue

// A mouse move with a drag, or a drop, in a window's queue.
class DragNotice : public BMessage {
public:
	DragNotice(uint32 code, std::shared_ptr<const Dragged> dragged) :
		BMessage(code), fDragged(std::move(dragged))
	{}

	const BMessage& DragMessage() const { return fDragged->Message(); }

	// Becomes the message that was dragged, with the place of the drop.
	void TurnIntoDrop(BPoint screen);
	uint32 DropButtons() const { return fDropButtons; } // that were held last

private:
	const std::shared_ptr<const Dragged> fDragged;
	uint32 fDropButtons = 0;
};

} // namespace BPrivate
