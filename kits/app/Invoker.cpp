// SPDX-License-Identifier: MIT

#include <app/Invoker.h>

BInvoker::BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper) :
	fMessage(message)
{
	BInvoker::SetTarget(handler, looper);
}

BInvoker::BInvoker(BMessage* message, const BMessenger& target) : fMessage(message)
{
	BInvoker::SetTarget(target);
}

BInvoker::~BInvoker() = default;

status_t
BInvoker::SetMessage(BMessage* message)
{
	if (message != fMessage.get())
		fMessage.reset(message);
	return B_OK;
}

status_t
BInvoker::SetTarget(const BHandler* handler, const BLooper* looper)
{
	status_t status;
	BMessenger messenger(handler, looper, &status);
	return status == B_OK ? SetTarget(messenger) : status;
}

status_t
BInvoker::SetTarget(const BMessenger& messenger)
{
	fMessenger = messenger;
	fHasTarget = true;
	return B_OK;
}

status_t
BInvoker::Invoke(BMessage* message)
{
	if (message == nullptr)
		message = fMessage.get();
	if (message == nullptr)
		return B_BAD_VALUE;
	return fMessenger.SendMessage(message, static_cast<BHandler*>(nullptr));
}
