// SPDX-License-Identifier: MIT

#include <app/Looper.h>

#include <app/AppDefs.h>
#include <app/MessageFilter.h>
#include <app/MessagePrivate.h>
#include <kernel/DeferKill.h>

#include "kits/app/LooperCore.h"

#include <algorithm>
#include <cassert>

using BPrivate::LooperCore;
using BPrivate::LooperRegistry;
using BPrivate::MessageAccess;

BLooper::BLooper(const char* name, int32 priority, int32) :
	BHandler(name), fCore(LooperRegistry::Add(this)), fPriority(priority)
{
	fLooper = this;
	fCore->handlers[fToken] = this;
}

BLooper::~BLooper()
{
	// Handlers that were added and not removed live on without a looper. They are let go before
	// anybody's Lock() fails: their owners may delete them from then on.
	for (const auto& entry : fCore->handlers) {
		if (entry.second == this)
			continue;
		entry.second->fNextHandler = nullptr;
		entry.second->fLooper = nullptr;
	}
	fCore->Close();
	LooperRegistry::Remove(this);
	fLooper = nullptr;
	for (BMessageFilter* filter : fCommonFilters)
		delete filter;
	// Nobody gets the lock any more; its holder must not count as one for ever.
	while (fCore->Lock().IsLockedByCaller())
		fCore->Lock().Unlock();
}

thread_id
BLooper::Run()
{
	if (fCore->thread >= 0)
		return B_BAD_THREAD_STATE;
	thread_id thread = spawn_thread(_ThreadEntry, Name(), fPriority, this);
	if (thread < 0)
		return thread;
	fCore->thread = thread;
	resume_thread(thread);
	Unlock();
	return thread;
}

int32
BLooper::_ThreadEntry(void* looper)
{
	BLooper* self = static_cast<BLooper*>(looper);
	// On every way out: the end of the loop, a hook that called exit_thread(), a kill.
	struct Ending {
		~Ending()
		{
			_Delete(looper, *core);
			LooperRegistry::ThreadEnded();
		}
		BLooper* looper;
		const std::shared_ptr<LooperCore> core;
	} ending{self, self->fCore};
	LooperRegistry::ThreadStarted();
	self->_Loop();
	return B_OK;
}

// Unless somebody has done it already.
void
BLooper::_Delete(BLooper* looper, LooperCore& core)
{
	const BPrivate::DeferKill noKill; // destructors call this
	if (core.Lock().Lock() == B_OK)
		delete looper;
}

void
BLooper::_Loop()
{
	const std::shared_ptr<LooperCore> core = fCore;
	bigtime_t wakeUp = B_INFINITE_TIMEOUT;
	for (;;) {
		core->Wait(wakeUp);
		if (core->Lock().Lock() != B_OK || core->quitNow)
			return;
		if (std::unique_ptr<BMessage> message = core->Take())
			_Deliver(std::move(message));
		if (fLoopEnds)
			break;
		_AfterMessage();
		wakeUp = _NextWakeUp();
		core->Lock().Unlock();
	}
	core->Lock().Unlock();
}

// Does not come back when a hook quits the looper: nothing here may touch it while unwinding.
void
BLooper::_Deliver(std::unique_ptr<BMessage> message)
{
	BHandler* target = _FindTarget(message.get());
	if (target != nullptr)
		target = _Retarget(message.get(), target);
	if (target == nullptr)
		return;
	fCurrent = std::move(message);
	target = _RunFilters(fCurrent.get(), target);
	if (target != nullptr && fCurrent)
		DispatchMessage(fCurrent.get(), target);
	fCurrent.reset();
}

BHandler*
BLooper::_FindTarget(BMessage* message)
{
	if (MessageAccess::PrefersFocus(*message))
		return fPreferred != nullptr ? fPreferred : this;
	int64 token = MessageAccess::Target(*message);
	if (token == 0)
		return this;
	auto found = fCore->handlers.find(token);
	return found == fCore->handlers.end() ? nullptr : found->second;
}

// Runs the filters that accept the message and have not seen it. False: it is dropped.
bool
BLooper::_Filter(const std::vector<BMessageFilter*>& filters, std::vector<BMessageFilter*>& done,
	BMessage* message, BHandler** target)
{
	// A hook may add or remove filters: work on a copy and look whether each is still there.
	const std::vector<BMessageFilter*> snapshot = filters;
	for (BMessageFilter* filter : snapshot) {
		if (std::find(filters.begin(), filters.end(), filter) == filters.end() ||
			std::find(done.begin(), done.end(), filter) != done.end() || !filter->Accepts(*message))
			continue;
		done.push_back(filter);
		BHandler* before = *target;
		if (filter->Filter(message, target) == B_SKIP_MESSAGE || *target == nullptr)
			return false;
		if (*target != before)
			break;
	}
	return true;
}

// The target after all filters, or null when the message is dropped. A changed target's own
// filters run too, each filter once.
BHandler*
BLooper::_RunFilters(BMessage* message, BHandler* target)
{
	std::vector<BMessageFilter*> done;
	BHandler* before;
	if (!fCommonFilters.empty()) {
		do { // a redirection ends a round, and spares none of the common filters
			before = target;
			if (!_Filter(fCommonFilters, done, message, &target))
				return nullptr;
		} while (target != before);
	}
	for (;;) {
		if (target->Looper() != this)
			return nullptr;
		before = target;
		if (!target->fFilters.empty() && !_Filter(target->fFilters, done, message, &target))
			return nullptr;
		if (target == before)
			return target;
	}
}

void
BLooper::Quit()
{
	assert(IsLocked());
	const std::shared_ptr<LooperCore> core = fCore;
	thread_id thread = core->thread;
	if (thread < 0) { // never ran
		delete this;
		return;
	}
	if (thread == find_thread(nullptr)) {
		delete this;
		exit_thread(B_OK);
	}

	core->quitNow = true;
	core->Wake();
	while (core->Lock().IsLockedByCaller())
		core->Lock().Unlock();
	wait_for_thread(thread);
	_Delete(this, *core); // a thread that was killed before it began has left it behind
}

bool
BLooper::QuitRequested()
{
	return true;
}

status_t
BLooper::PostMessage(BMessage* message)
{
	return _Post(std::make_unique<BMessage>(*message), this, false, nullptr);
}

status_t
BLooper::PostMessage(uint32 command)
{
	return _Post(std::make_unique<BMessage>(command), this, false, nullptr);
}

status_t
BLooper::PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo)
{
	return _Post(std::make_unique<BMessage>(*message), handler, handler == nullptr, replyTo);
}

status_t
BLooper::PostMessage(uint32 command, BHandler* handler, BHandler* replyTo)
{
	return _Post(std::make_unique<BMessage>(command), handler, handler == nullptr, replyTo);
}

// `this` may be a pointer to a looper that is gone: nothing is read from it before the registry
// has said that it lives.
status_t
BLooper::_Post(
	std::unique_ptr<BMessage> message, BHandler* handler, bool preferred, BHandler* replyTo)
{
	std::shared_ptr<LooperCore> core = LooperRegistry::Find(this);
	if (!core)
		return B_BAD_PORT_ID;
	if (preferred)
		MessageAccess::PrefersFocus(*message) = true;
	else if (handler != this) {
		if (handler->Looper() != this)
			return B_MISMATCHED_VALUES;
		MessageAccess::Target(*message) = handler->fToken;
	}
	if (replyTo != nullptr)
		MessageAccess::ReplyTo(*message) = std::make_shared<BMessenger>(replyTo);
	return core->Post(std::move(message)) ? B_OK : B_BAD_PORT_ID;
}

bool
BLooper::Lock()
{
	return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t
BLooper::LockWithTimeout(bigtime_t timeout)
{
	std::shared_ptr<LooperCore> core = LooperRegistry::Find(this);
	return core ? core->Lock().Lock(timeout) : B_BAD_VALUE;
}

// A looper that quit in its own hook is gone when the hook's frames unlock it.
void
BLooper::Unlock()
{
	std::shared_ptr<LooperCore> core = LooperRegistry::Find(this);
	if (core && core->Lock().IsLockedByCaller())
		core->Lock().Unlock();
}

bool
BLooper::IsLocked() const
{
	std::shared_ptr<LooperCore> core = LooperRegistry::Find(this);
	return core && core->Lock().IsLockedByCaller();
}

thread_id
BLooper::Thread() const
{
	std::shared_ptr<LooperCore> core = LooperRegistry::Find(this);
	return core ? core->thread.load() : B_BAD_THREAD_ID;
}

void
BLooper::AddHandler(BHandler* handler)
{
	if (handler->Looper() != nullptr)
		return;
	handler->fLooper = this;
	handler->fNextHandler = this;
	fCore->handlers[handler->fToken] = handler;
}

bool
BLooper::RemoveHandler(BHandler* handler)
{
	if (handler == this || handler->Looper() != this)
		return false;
	if (fPreferred == handler)
		fPreferred = nullptr;
	fCore->handlers.erase(handler->fToken);
	handler->fLooper = nullptr;
	handler->fNextHandler = nullptr;
	return true;
}

void
BLooper::SetPreferredHandler(BHandler* handler)
{
	fPreferred = handler != nullptr && handler->Looper() == this ? handler : nullptr;
}

void
BLooper::AddCommonFilter(BMessageFilter* filter)
{
	filter->fLooper = this;
	fCommonFilters.push_back(filter);
}

BMessage*
BLooper::CurrentMessage() const
{
	return fCurrent.get();
}

BMessage*
BLooper::DetachCurrentMessage()
{
	return fCurrent.release();
}

void
BLooper::DispatchMessage(BMessage* message, BHandler* target)
{
	if (message->what == B_QUIT_REQUESTED && target == this) {
		if (QuitRequested())
			Quit();
		return;
	}
	target->MessageReceived(message);
}

bigtime_t
BLooper::_NextWakeUp()
{
	return B_INFINITE_TIMEOUT;
}

void
BLooper::_AfterMessage()
{}

BHandler*
BLooper::_Retarget(BMessage*, BHandler* target)
{
	return target;
}
