// SPDX-License-Identifier: MIT

#include <app/Application.h>

#include <app/AppDefs.h>
#include <desktop/GuiThread.h>
#include <interface/InterfaceDefs.h>

#include "kits/app/LooperCore.h"

using BPrivate::LooperCore;
using BPrivate::LooperRegistry;

BApplication* be_app = nullptr;
BMessenger be_app_messenger;

BApplication::BApplication(const char* signature) : BApplication(signature, nullptr)
{
}

BApplication::BApplication(const char* signature, status_t* error) :
	BLooper(signature), fSignature(signature)
{
	be_app = this;
	be_app_messenger = BMessenger(this);
	// From the GUI thread, which must take no lock of a looper: posting takes none.
	desktop::SetQuitHandler([messenger = be_app_messenger] {
		BMessage quit(B_QUIT_REQUESTED);
		messenger.SendMessage(&quit);
	});
	if (error != nullptr)
		*error = B_OK;
}

BApplication::~BApplication()
{
	desktop::SetQuitHandler({});
	// No window may outlive the application: what still runs is ended, and threads that are about
	// to end are waited for, since they may speak to be_app until then.
	BPrivate::PrepareToQuit();
	for (const std::shared_ptr<LooperCore>& core : LooperRegistry::All()) {
		if (core->Looper() != this && core->Lock().Lock() == B_OK)
			core->Looper()->Quit();
	}
	LooperRegistry::WaitForThreads();
	be_app = nullptr;
	be_app_messenger = BMessenger();
	// ~BLooper closes the lock that the constructor's thread may still hold.
	Lock();
}

thread_id
BApplication::Run()
{
	fCore->thread = find_thread(nullptr);
	PostMessage(B_READY_TO_RUN);
	Unlock();
	_Loop();
	return Thread();
}

void
BApplication::Quit()
{
	fQuitting = true;
	_EndLoop();
	fCore->Wake();
}

bool
BApplication::QuitRequested()
{
	BPrivate::PrepareToQuit();
	// A window that is closing itself cannot be locked any more, or is gone once it can: it agreed.
	std::vector<std::shared_ptr<LooperCore>> windows;
	for (std::shared_ptr<LooperCore>& core : LooperRegistry::All()) {
		if (!core->isWindow || core->Lock().Lock() != B_OK)
			continue;
		bool agreed = core->Looper()->QuitRequested();
		core->Lock().Unlock();
		if (!agreed)
			return false;
		windows.push_back(std::move(core));
	}
	for (const std::shared_ptr<LooperCore>& core : windows) {
		if (core->Lock().Lock() == B_OK)
			core->Looper()->Quit();
	}
	return true;
}

void
BApplication::DispatchMessage(BMessage* message, BHandler* target)
{
	if (target != this) {
		BLooper::DispatchMessage(message, target);
		return;
	}
	switch (message->what) {
		case B_QUIT_REQUESTED:
			if (!fQuitting && QuitRequested())
				Quit();
			break;
		case B_READY_TO_RUN:
			ReadyToRun();
			break;
		case B_REFS_RECEIVED:
			RefsReceived(message);
			break;
		case B_ABOUT_REQUESTED:
			AboutRequested();
			break;
		default:
			MessageReceived(message);
	}
}

void
BApplication::MessageReceived(BMessage* message)
{
	BLooper::MessageReceived(message);
}

void
BApplication::ReadyToRun()
{
}

void
BApplication::ArgvReceived(int32, char**)
{
}

void
BApplication::RefsReceived(BMessage*)
{
}

void
BApplication::AboutRequested()
{
}

void
BApplication::SetCursor(const void* cursor)
{
	const auto* data = static_cast<const unsigned char*>(cursor);
	desktop::SetCursor(data == B_HAND_CURSOR ? nullptr : data);
}
