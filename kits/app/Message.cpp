// SPDX-License-Identifier: MIT

#include <app/Message.h>

#include <app/MessagePrivate.h>

#include <utility>

BMessage::BMessage(const BMessage& other) :
	what(other.what), fDropped(other.fDropped), fFields(other.fFields)
{}

BMessage::BMessage(BMessage&& other) noexcept = default;

BMessage::~BMessage()
{
	if (fReply != nullptr)
		fReply->Deliver(BMessage(B_NO_REPLY)); // comes to nothing when it was answered
}

BMessage&
BMessage::operator=(const BMessage& other)
{
	// By way of a copy, since `other` may be stored in a field of this message.
	return *this = BMessage(other);
}

BMessage&
BMessage::operator=(BMessage&& other) noexcept
{
	what = other.what;
	fDropped = other.fDropped;
	BPrivate::MessageFields fields = std::move(other.fFields);
	fFields = std::move(fields);
	return *this;
}

status_t
BMessage::GetInfo(const char* name, type_code* type, int32* count) const
{
	const BPrivate::Field* field = nullptr;
	status_t status = fFields.Find(name, &field);
	if (status != B_OK)
		return status;
	if (type != nullptr)
		*type = field->type;
	if (count != nullptr)
		*count = field->Count();
	return B_OK;
}

status_t
BMessage::RemoveName(const char* name)
{
	return fFields.Remove(name);
}

status_t
BMessage::RemoveData(const char* name, int32 index)
{
	return fFields.Remove(name, index);
}

void
BMessage::MakeEmpty()
{
	fFields.MakeEmpty();
}

BPoint
BMessage::DropPoint(BPoint* offset) const
{
	BPoint point;
	if (fDropped) {
		FindPoint("_drop_point_", &point);
		FindPoint("_drop_offset_", offset);
	}
	return point;
}

bool
BMessage::IsSourceWaiting() const
{
	return fReply != nullptr && fReply->IsAwaited();
}

status_t
BMessage::SendReply(BMessage* reply)
{
	if (reply == nullptr)
		return B_BAD_VALUE;
	if (fReply != nullptr)
		return fReply->Deliver(*reply);
	if (fReplyTo != nullptr)
		return fReplyTo->SendMessage(reply);
	return B_BAD_REPLY;
}

status_t
BMessage::SendReply(uint32 code)
{
	BMessage reply(code);
	return SendReply(&reply);
}
