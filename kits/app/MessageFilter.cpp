// SPDX-License-Identifier: MIT

#include <app/MessageFilter.h>

BMessageFilter::BMessageFilter(uint32 what, filter_hook hook) : fCommand(what), fHook(hook) {}

BMessageFilter::BMessageFilter(message_delivery delivery, message_source source, filter_hook hook) :
	fDelivery(delivery), fSource(source), fAnyCommand(true), fHook(hook)
{}

BMessageFilter::BMessageFilter(
	message_delivery delivery, message_source source, uint32 what, filter_hook hook) :
	fDelivery(delivery), fSource(source), fCommand(what), fHook(hook)
{}

filter_result
BMessageFilter::Filter(BMessage* message, BHandler** target)
{
	return fHook != nullptr ? fHook(message, target, this) : B_DISPATCH_MESSAGE;
}

bool
BMessageFilter::Accepts(const BMessage& message) const
{
	// Every message comes from this process: other programs speak to it through the desktop.
	if (fSource == B_REMOTE_SOURCE)
		return false;
	if (fDelivery == B_DROPPED_DELIVERY && !message.WasDropped())
		return false;
	if (fDelivery == B_PROGRAMMED_DELIVERY && message.WasDropped())
		return false;
	return fAnyCommand || message.what == fCommand;
}
