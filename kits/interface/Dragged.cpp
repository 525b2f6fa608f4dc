// SPDX-License-Identifier: MIT

#include "kits/interface/Dragged.h"

#include <app/MessagePrivate.h>
#include <support/Errors.h>

namespace BPrivate {

const BMessage&
Dragged::Message() const
{
	if (const auto* ours = dynamic_cast<const MessageContent*>(fContent.get()))
		return ours->Message();
	std::call_once(fOnce, [this] {
		const auto read = [this](const std::string& format, std::string* bytes) -> status_t {
			*bytes = fContent->Bytes(format);
			return B_OK;
		};
		ReadContent(fContent->Formats(), read, ContentUse::kDrag, &fForeign);
	});
	return fForeign;
}

BMessenger
Dragged::ReplyTo() const
{
	const auto* ours = dynamic_cast<const MessageContent*>(fContent.get());
	return ours != nullptr ? ours->ReplyTo() : BMessenger();
}

void
DragNotice::TurnIntoDrop(BPoint screen)
{
	int32 buttons = 0;
	if (FindInt32("buttons", &buttons) == B_OK)
		fDropButtons = static_cast<uint32>(buttons);
	BMessage::operator=(fDragged->Message());
	RemoveName("_drop_point_");
	AddPoint("_drop_point_", screen);
	if (!HasPoint("_drop_offset_")) {
		RemoveName("_drop_offset_");
		AddPoint("_drop_offset_", BPoint());
	}
	MessageAccess::SetDropped(*this, true);
	if (const BMessenger replyTo = fDragged->ReplyTo(); replyTo.IsValid())
		MessageAccess::ReplyTo(*this) = std::make_shared<BMessenger>(replyTo);
}

} // namespace BPrivate
