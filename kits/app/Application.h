// SPDX-License-Identifier: MIT

// BApplication: the process's main looper. One per process; it may live on the stack.

#pragma once

#include <app/Looper.h>
#include <app/Messenger.h>

class BWindow;

class BApplication : public BLooper {
public:
	explicit BApplication(const char* signature);
	BApplication(const char* signature, status_t* error);
	~BApplication() override; // ends all loopers that run

	// Runs the loop in the calling thread until the application quits; first come
	// B_ARGV_RECEIVED (when there are arguments) and B_READY_TO_RUN, even before what was posted
	// earlier.
	thread_id Run() override;
	void Quit() override; // makes Run() return; deletes nothing

	// Asks every window that was shown in turn; all are closed when none refuses. The
	// application's own lock is given up meanwhile.
	bool QuitRequested() override;
	void DispatchMessage(BMessage* message, BHandler* target) override;

	virtual void ReadyToRun();
	virtual void ArgvReceived(int32 argc, char** argv); // as main() gets them
	virtual void RefsReceived(BMessage* message);
	virtual void AboutRequested();

	const char* Signature() const { return fSignature.c_str(); }

	// A 68-byte cursor, copied, for all windows until the next call; B_HAND_CURSOR is the
	// desktop's arrow. Any thread.
	void SetCursor(const void* cursor);

private:
	bool _AskToQuit();
	void _ArgumentsReceived(const BMessage& message);

	std::string fSignature;
	bool fQuitting = false;
};

// Null outside an application's life. Threads that may outlive it use the messenger, which only
// becomes invalid.
extern BApplication* be_app;
extern BMessenger be_app_messenger;
