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
	~BApplication() override;

	// Runs the loop in the calling thread until the application quits; first come
	// B_ARGV_RECEIVED (when there are arguments) and B_READY_TO_RUN.
	thread_id Run() override;
	void Quit() override; // makes Run() return; deletes nothing

	// Asks every window in turn; all are closed when none refuses.
	bool QuitRequested() override;
	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;

	virtual void ReadyToRun();
	virtual void ArgvReceived(int32 argc, char** argv);
	virtual void RefsReceived(BMessage* message);
	virtual void AboutRequested();

	const char* Signature() const { return fSignature.c_str(); }

	// A 68-byte cursor, copied, for all windows until the next call; B_HAND_CURSOR is the
	// desktop's arrow. Any thread.
	void SetCursor(const void* cursor);

private:
	std::string fSignature;
	bool fQuitting = false;
};

extern BApplication* be_app;          // null outside an application's life
extern BMessenger be_app_messenger;
