// SPDX-License-Identifier: MIT

// BLooper: a thread that handles messages one after the other, and a lock that is held while it
// does.

#pragma once

#include <app/Handler.h>
#include <kernel/OS.h>

#include <memory>

enum { B_LOOPER_PORT_DEFAULT_CAPACITY = 100 };

namespace BPrivate {
class LooperCore;
}

class BLooper : public BHandler {
public:
	// Made locked by the calling thread, so that handlers can be added before Run(). The queue
	// grows as needed, whatever the capacity.
	explicit BLooper(const char* name = nullptr, int32 priority = B_NORMAL_PRIORITY,
		int32 portCapacity = B_LOOPER_PORT_DEFAULT_CAPACITY);

	// Starts the thread and undoes the constructor's lock.
	virtual thread_id Run();

	// Ends the looper and deletes it; the looper must be locked. In its own thread it does not
	// return; from another it waits for the end. Messages still queued are dropped, their waiting
	// senders answered.
	virtual void Quit();
	virtual bool QuitRequested(); // true: B_QUIT_REQUESTED may end the looper

	// Any thread, no lock needed, never handled before the call returns; a copy travels. Null
	// handler: the preferred handler, else the looper. B_MISMATCHED_VALUES when the handler is in
	// another looper or none; B_BAD_PORT_ID when the looper is gone, even deleted.
	status_t PostMessage(BMessage* message);
	status_t PostMessage(uint32 command);
	status_t PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo = nullptr);
	status_t PostMessage(uint32 command, BHandler* handler, BHandler* replyTo = nullptr);

	// Recursive, first come first served. False when the looper is gone, also when it goes during
	// the wait, and even for a pointer whose looper was deleted before the call.
	bool Lock();
	status_t LockWithTimeout(bigtime_t timeout); // B_OK, B_TIMED_OUT, B_BAD_VALUE (gone)
	void Unlock();
	bool IsLocked() const; // by the calling thread
	thread_id Thread() const;

	// All these need the lock.
	void AddHandler(BHandler* handler);
	bool RemoveHandler(BHandler* handler); // deletes nothing
	void SetPreferredHandler(BHandler* handler);
	BHandler* PreferredHandler() const { return fPreferred; }
	void AddCommonFilter(BMessageFilter* filter); // owned from now on

	// The message being handled; null between messages. Looper's thread only.
	BMessage* CurrentMessage() const;
	BMessage* DetachCurrentMessage(); // the caller owns it from now on

	virtual void DispatchMessage(BMessage* message, BHandler* target);

protected:
	~BLooper() override; // by Quit() only, or by an application on the stack

	// Hooks for windows and the application, in the looper's thread.
	//
	// When the loop should wake up without a message: system_time() or B_INFINITE_TIMEOUT. Locked.
	virtual bigtime_t _NextWakeUp();
	// Locked; after each message, and when a wake-up time has come.
	virtual void _AfterMessage();
	// Locked; may name another target for the message or drop it by null.
	virtual BHandler* _Retarget(BMessage* message, BHandler* target);

	// Runs the loop in the calling thread until _EndLoop().
	void _Loop();
	void _EndLoop() { fLoopEnds = true; }
	BPrivate::LooperCore& _Core() const { return *fCore; }

private:
	friend class BHandler;
	friend class BMessenger;
	friend class BApplication;

	static int32 _ThreadEntry(void* looper);
	status_t _Post(
		std::unique_ptr<BMessage> message, BHandler* handler, bool preferred, BHandler* replyTo);
	void _Deliver(std::unique_ptr<BMessage> message);
	BHandler* _FindTarget(BMessage* message);
	BHandler* _RunFilters(BMessage* message, BHandler* target);
	static bool _Filter(const std::vector<BMessageFilter*>& filters,
		std::vector<BMessageFilter*>& done, BMessage* message, BHandler** target);
	static void _Delete(BLooper* looper, BPrivate::LooperCore& core);

	std::shared_ptr<BPrivate::LooperCore> fCore;
	int32 fPriority;
	BHandler* fPreferred = nullptr;
	std::unique_ptr<BMessage> fCurrent;
	std::vector<BMessageFilter*> fCommonFilters; // owned
	bool fLoopEnds = false;
};
