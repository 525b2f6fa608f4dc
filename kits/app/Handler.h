// SPDX-License-Identifier: MIT

// BHandler: whatever can be the target of a message inside a looper.

#pragma once

#include <app/Message.h>

#include <atomic>
#include <string>
#include <vector>

class BHandler;
class BLooper;
class BMessageFilter;

enum filter_result { B_SKIP_MESSAGE = 0, B_DISPATCH_MESSAGE = 1 };
typedef filter_result (*filter_hook)(BMessage* message, BHandler** target, BMessageFilter* filter);

class BHandler {
public:
	explicit BHandler(const char* name = nullptr);
	virtual ~BHandler(); // leaves its looper; the looper must be locked by the caller or not
						 // running
	BHandler(const BHandler&) = delete;
	BHandler& operator=(const BHandler&) = delete;

	// Runs in the looper's thread with the looper locked. The base passes the message up to the
	// next handler; at the chain's end a waiting sender gets B_MESSAGE_NOT_UNDERSTOOD.
	virtual void MessageReceived(BMessage* message);

	// Null outside a looper. Any thread.
	BLooper* Looper() const { return fLooper.load(std::memory_order_acquire); }
	// False without a looper, or when that is gone: then nobody touches the handler any more.
	bool LockLooper();
	void UnlockLooper();

	const char* Name() const { return fHasName ? fName.c_str() : nullptr; }
	void SetName(const char* name);

	// The next handler must be in the same looper.
	BHandler* NextHandler() const { return fNextHandler; }
	void SetNextHandler(BHandler* handler) { fNextHandler = handler; }

	// The handler owns an added filter; RemoveFilter hands it back.
	void AddFilter(BMessageFilter* filter);
	bool RemoveFilter(BMessageFilter* filter);

	int64 _Token() const { return fToken; } // for the kits: names the handler, alive or not

private:
	friend class BLooper;
	friend class BMessenger;

	const int64 fToken; // never used again after this handler
	std::string fName;
	bool fHasName = false;
	std::atomic<BLooper*> fLooper = nullptr;
	BHandler* fNextHandler = nullptr;
	std::vector<BMessageFilter*> fFilters; // owned
};
