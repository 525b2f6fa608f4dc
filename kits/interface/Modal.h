// SPDX-License-Identifier: MIT

// Which alert has the input, and how a thread waits for the user. While alerts are open every other
// window takes no input, and of several alerts only the newest does. Any thread.

#pragma once

#include <app/Messenger.h>

#include <functional>
#include <memory>

class BWindow;

namespace BPrivate {

class LooperCore;

// Posted to alerts.
constexpr uint32 kMsgShowAlert = '_ALS';
constexpr uint32 kMsgCloseAlert = '_ALC';
constexpr uint32 kMsgActivateAlert = '_ALV';

// True when input of this window must be ignored.
bool InputBlockedBy(const BWindow* window);
// True when its close box must be. What workers ask does not keep a window open: they are told -1
// when the program ends.
bool CloseBlockedBy(const BWindow* window);

// Gives the newest open alert the keys: for a window that was activated and takes none.
void ActivateAlert();

// Every alert, open or waiting, is dismissed with -1. Does not wait for that.
void CloseAllAlerts();

// Shows an alert whose loop runs or will: at once or, when it `queues`, after the queueing ones
// that came before. After the program's main function it is dismissed instead. Undone by
// AlertGone(), at the latest before the alert is freed.
void AlertReady(const BWindow* alert, const BMessenger& messenger, bool queues);
void AlertGone(const BWindow* alert);

// A call in which the calling thread waits for what the user does in another window. When the
// thread is a window's, that one repaints meanwhile and handles nothing.
class ModalCall {
public:
	ModalCall();

	bool IsOfLooper() const { return fCaller != nullptr; }
	BWindow* Window() const { return fWindow; } // the calling thread's, or null
	bool HandlesPress() const; // what the window's thread does now is the answer to a press
	void EndCapture();         // who captures the mouse in the window gets its MouseUp()
	void DropInput();          // what the user tried in the window meanwhile does not come later

	// Who releases the semaphore calls this afterwards, for a looper that sleeps. Any thread, and
	// longer than the call lives.
	std::function<void()> Waker() const;
	// Until the semaphore is released; a window's thread takes its own cursor off. `askedToQuit` is
	// called each time that the thread's looper is seen to have been asked to quit.
	void Wait(sem_id done, const std::function<void()>& askedToQuit);

private:
	std::shared_ptr<LooperCore> fCaller;
	BWindow* fWindow = nullptr;
};

} // namespace BPrivate
