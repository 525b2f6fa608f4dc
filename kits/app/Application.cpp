// SPDX-License-Identifier: MIT

#include <app/Application.h>

#include <app/AppDefs.h>
#include <desktop/GuiThread.h>
#include <interface/InterfaceDefs.h>
#include <kernel/DeferKill.h>

#include "kits/app/LooperCore.h"

using BPrivate::LooperCore;
using BPrivate::LooperRegistry;

BApplication* be_app = nullptr;
BMessenger be_app_messenger;

namespace {

// How long the way out is waited for before alerts are dismissed once more; microseconds.
constexpr bigtime_t kPatience = 100000;

// Sets the caller's lock aside, however deep it is.
class Unlocked {
public:
	explicit Unlocked(BPrivate::FairLock& lock) :
		fLock(lock), fDepth(lock.IsLockedByCaller() ? lock.Depth() : 0)
	{
		for (int32 i = 0; i < fDepth; i++)
			fLock.Unlock();
	}
	~Unlocked()
	{
		const BPrivate::DeferKill noKill;
		for (int32 i = 0; i < fDepth; i++)
			fLock.Lock();
	}
	Unlocked(const Unlocked&) = delete;
	Unlocked& operator=(const Unlocked&) = delete;

private:
	BPrivate::FairLock& fLock;
	const int32 fDepth;
};

// False when the looper is gone. One that waits in an alert holds its lock, and may open another
// alert after the first: they are all dismissed until it can be had.
bool
LockToQuit(LooperCore& core)
{
	for (;;) {
		status_t status = core.Lock().Lock(kPatience);
		if (status != B_TIMED_OUT)
			return status == B_OK;
		BPrivate::PrepareToQuit();
	}
}

// Quits all other loopers that there are now; false when there was none. What another thread has
// made and never run cannot be had: that thread alone may quit it.
bool
EndLoopers(const BApplication* application)
{
	BPrivate::PrepareToQuit();
	bool found = false;
	for (const std::shared_ptr<LooperCore>& core : LooperRegistry::All()) {
		if (core->Looper() == application)
			continue;
		if (core->thread < 0 && !core->Lock().IsLockedByCaller())
			continue;
		found = true;
		if (LockToQuit(*core))
			core->Looper()->Quit();
	}
	return found;
}

// B_ARGV_RECEIVED, or null when there are no arguments.
std::unique_ptr<BMessage>
ArgumentsMessage()
{
	const std::vector<std::string>& arguments = desktop::ProgramArguments();
	if (arguments.size() <= 1)
		return nullptr;
	auto message = std::make_unique<BMessage>(B_ARGV_RECEIVED);
	message->AddInt32("argc", static_cast<int32>(arguments.size()));
	for (const std::string& argument : arguments)
		message->AddString("argv", argument.c_str());
	return message;
}

} // namespace

BApplication::BApplication(const char* signature) : BApplication(signature, nullptr) {}

BApplication::BApplication(const char* signature, status_t* error) :
	BLooper(signature), fSignature(signature)
{
	be_app = this;
	be_app_messenger = BMessenger(this);
	BPrivate::SetRunningApplication(signature, be_app_messenger);
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
	const BPrivate::DeferKill noKill;
	desktop::SetQuitHandler({});
	BPrivate::SetRunningApplication("", BMessenger());
	// A window's thread may wait for this lock before it lets go of its own.
	while (IsLocked())
		Unlock();
	// No window may outlive the application: what still runs is ended, and threads that are about
	// to end are waited for, since they may speak to be_app until then. They may also make windows
	// until then.
	for (bool ended = false; !ended;) {
		const bool found = EndLoopers(this);
		ended = LooperRegistry::WaitForThreads(kPatience) && !found;
	}
	be_app = nullptr;
	Lock(); // as ~BLooper wants it
}

thread_id
BApplication::Run()
{
	fCore->thread = find_thread(nullptr);
	// Before what was posted until now. The last one posted comes first.
	fCore->PostFirst(std::make_unique<BMessage>(B_READY_TO_RUN));
	if (std::unique_ptr<BMessage> arguments = ArgumentsMessage())
		fCore->PostFirst(std::move(arguments));
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
	// Windows are asked with their own lock only: one that waits for ours in a hook holds its own.
	const Unlocked unlocked(fCore->Lock());
	BPrivate::PrepareToQuit();
	// A window that is closing itself cannot be locked any more, or is gone once it can: it agreed.
	// One that was never shown is locked by its maker, and has nothing to say.
	std::vector<std::shared_ptr<LooperCore>> windows;
	for (std::shared_ptr<LooperCore>& core : LooperRegistry::All()) {
		if (!core->isWindow || core->thread < 0 || !LockToQuit(*core))
			continue;
		bool agreed = core->Looper()->QuitRequested();
		if (core->Lock().IsLockedByCaller()) // else it has quit
			core->Lock().Unlock();
		if (!agreed)
			return false;
		windows.push_back(std::move(core));
	}
	for (const std::shared_ptr<LooperCore>& core : windows) {
		if (LockToQuit(*core))
			core->Looper()->Quit();
	}
	return true;
}

// A window may answer by asking the application to quit. That is the same question: taken for
// another it would never end where a second window refuses.
bool
BApplication::_AskToQuit()
{
	int32 earlier = 0;
	auto count = [&](const BMessage& message) {
		earlier += message.what == B_QUIT_REQUESTED;
		return false;
	};
	fCore->Visit(count);
	const bool agreed = QuitRequested();
	int32 seen = 0;
	auto isNew = [&](const BMessage& message) {
		return message.what == B_QUIT_REQUESTED && seen++ >= earlier;
	};
	while (fCore->TakeFirst(isNew))
		seen = 0;
	return agreed;
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
			if (!fQuitting && _AskToQuit())
				Quit();
			break;
		case B_ARGV_RECEIVED:
			_ArgumentsReceived(*message);
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
BApplication::_ArgumentsReceived(const BMessage& message)
{
	std::vector<std::string> texts;
	const char* text = nullptr;
	while (message.FindString("argv", static_cast<int32>(texts.size()), &text) == B_OK)
		texts.emplace_back(text);
	// As main() gets them: the program may write into the texts, and a null ends the array.
	std::vector<char*> arguments;
	for (std::string& each : texts)
		arguments.push_back(each.data());
	arguments.push_back(nullptr);
	ArgvReceived(static_cast<int32>(texts.size()), arguments.data());
}

void
BApplication::ReadyToRun()
{}

void
BApplication::ArgvReceived(int32, char**)
{}

void
BApplication::RefsReceived(BMessage*)
{}

void
BApplication::AboutRequested()
{}

void
BApplication::SetCursor(const void* cursor)
{
	const auto* data = static_cast<const unsigned char*>(cursor);
	desktop::SetCursor(data == B_HAND_CURSOR ? nullptr : data);
}
