// SPDX-License-Identifier: MIT

#include <app/Handler.h>

#include <app/Looper.h>
#include <app/MessageFilter.h>

#include "kits/app/LooperCore.h"

#include <algorithm>

BHandler::BHandler(const char* name) : fToken(BPrivate::NewHandlerToken())
{
	SetName(name);
}

BHandler::~BHandler()
{
	if (BLooper* looper = Looper(); looper != nullptr && looper != this)
		looper->RemoveHandler(this);
	BPrivate::EndWatching(fToken);
	for (BMessageFilter* filter : fFilters)
		delete filter;
}

void
BHandler::MessageReceived(BMessage* message)
{
	if (fNextHandler != nullptr)
		fNextHandler->MessageReceived(message);
	else if (message->IsSourceWaiting())
		message->SendReply(B_MESSAGE_NOT_UNDERSTOOD);
}

bool
BHandler::LockLooper()
{
	// The handler may be moved to another looper while this one waits for the lock.
	while (BLooper* looper = Looper()) {
		if (!looper->Lock())
			return false;
		if (looper == Looper())
			return true;
		looper->Unlock();
	}
	return false;
}

void
BHandler::UnlockLooper()
{
	if (BLooper* looper = Looper())
		looper->Unlock();
}

void
BHandler::SetName(const char* name)
{
	fHasName = name != nullptr;
	fName = name != nullptr ? name : "";
}

void
BHandler::AddFilter(BMessageFilter* filter)
{
	filter->fLooper = Looper();
	fFilters.push_back(filter);
}

bool
BHandler::RemoveFilter(BMessageFilter* filter)
{
	auto found = std::find(fFilters.begin(), fFilters.end(), filter);
	if (found == fFilters.end())
		return false;
	fFilters.erase(found);
	filter->fLooper = nullptr;
	return true;
}
