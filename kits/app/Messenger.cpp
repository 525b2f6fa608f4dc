// SPDX-License-Identifier: MIT

#include <app/Messenger.h>

#include <app/Looper.h>
#include <app/MessagePrivate.h>

#include "kits/app/FileManager.h"
#include "kits/app/LooperCore.h"

#include <unistd.h>

using BPrivate::LooperCore;
using BPrivate::LooperRegistry;
using BPrivate::MessageAccess;

namespace {

constexpr int64 kFileManager = -1;

} // namespace

BMessenger::BMessenger() = default;

BMessenger::BMessenger(const BHandler* handler, const BLooper* looper, status_t* error)
{
	status_t status = B_OK;
	if (handler == nullptr && looper == nullptr)
		status = B_BAD_VALUE;
	else if (handler != nullptr) {
		const BLooper* its = handler->Looper();
		if (its == nullptr)
			status = B_BAD_HANDLER;
		else if (looper != nullptr && looper != its)
			status = B_MISMATCHED_VALUES;
		else {
			fCore = LooperRegistry::Find(its);
			fToken = handler->fToken;
		}
	} else
		fCore = LooperRegistry::Find(looper);
	if (status == B_OK && !fCore)
		status = B_BAD_VALUE; // a looper that is gone
	if (error != nullptr)
		*error = status;
}

BMessenger::BMessenger(const char* signature, team_id team, status_t* error)
{
	if (team < 0 || team == getpid())
		*this = BPrivate::RunningApplication(signature);
	if (!fCore && team < 0 && BPrivate::IsFileManagerSignature(signature) &&
		BPrivate::FileManagerIsRunning())
		fToken = kFileManager;
	if (error != nullptr)
		*error = fCore || fToken == kFileManager ? B_OK : B_BAD_VALUE;
}

bool
BMessenger::IsValid() const
{
	return fCore ? !fCore->IsClosed() : fToken == kFileManager;
}

bool
BMessenger::LockTarget() const
{
	if (!fCore || fCore->Lock().Lock() != B_OK)
		return false;
	if (fToken == 0 || fCore->handlers.count(fToken) != 0)
		return true;
	fCore->Lock().Unlock();
	return false;
}

BHandler*
BMessenger::Target(BLooper** looper) const
{
	BLooper* its = nullptr;
	BHandler* target = nullptr;
	if (fCore && fCore->Lock().Lock() == B_OK) {
		its = fCore->Looper();
		auto found = fCore->handlers.find(fToken);
		if (found != fCore->handlers.end())
			target = found->second;
		fCore->Lock().Unlock();
	}
	if (looper != nullptr)
		*looper = its;
	return target;
}

status_t
BMessenger::_Send(std::unique_ptr<BMessage> message) const
{
	if (fToken == kFileManager)
		return BPrivate::SendToFileManager(*message);
	if (!fCore)
		return B_BAD_PORT_ID;
	if (fToken == 0)
		MessageAccess::PrefersFocus(*message) = true;
	else
		MessageAccess::Target(*message) = fToken;
	return fCore->Post(std::move(message)) ? B_OK : B_BAD_PORT_ID;
}

status_t
BMessenger::SendMessage(BMessage* message, BHandler* replyTo, bigtime_t) const
{
	// The queue grows as needed, so there is never a wait for room in it.
	auto copy = std::make_unique<BMessage>(*message);
	if (replyTo != nullptr)
		MessageAccess::ReplyTo(*copy) = std::make_shared<BMessenger>(replyTo);
	return _Send(std::move(copy));
}

status_t
BMessenger::SendMessage(uint32 command, BHandler* replyTo) const
{
	BMessage message(command);
	return SendMessage(&message, replyTo);
}

status_t
BMessenger::SendMessage(BMessage* message, BMessage* reply, bigtime_t, bigtime_t replyTimeout) const
{
	auto slot = std::make_shared<BPrivate::ReplySlot>();
	auto copy = std::make_unique<BMessage>(*message);
	MessageAccess::Reply(*copy) = slot;
	status_t status = _Send(std::move(copy));
	if (status != B_OK)
		return status;
	return slot->Wait(reply, replyTimeout) ? B_OK : B_TIMED_OUT;
}

bool
BMessenger::operator==(const BMessenger& other) const
{
	return fCore == other.fCore && fToken == other.fToken;
}
