// SPDX-License-Identifier: MIT

// A window for tests: shown on the test's platform, quit at the test's end. It brings gtest.

#pragma once

#include <app/Messenger.h>
#include <interface/Window.h>

#include "tests/support/Inject.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>

// Holds a lock for a scope.
class Locked {
public:
	explicit Locked(BLooper* looper) : fLooper(looper) { EXPECT_TRUE(looper->Lock()); }
	~Locked() { fLooper->Unlock(); }
	Locked(const Locked&) = delete;
	Locked& operator=(const Locked&) = delete;

private:
	BLooper* fLooper;
};

// Titles are unique, so that injected input finds the right window.
class TestWindow : public BWindow {
public:
	TestWindow(float columns, float rows, uint32 flags = 0) :
		BWindow(BRect(100, 100, 100 + columns - 1, 100 + rows - 1), NextTitle().c_str(),
			B_TITLED_WINDOW, flags)
	{}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'sync')
			message->SendReply(B_REPLY);
		else
			BWindow::MessageReceived(message);
	}

	// Returns when everything posted so far was handled and painted. Not locked.
	void Settle()
	{
		for (int i = 0; i < 2; i++) { // what the first one causes is done at the second
			BMessage sync('sync'), reply;
			ASSERT_EQ(B_OK, BMessenger(this).SendMessage(&sync, &reply));
			Locked painted(this); // the window keeps its lock until it has painted
		}
	}

	void ShowAndSettle()
	{
		Show();
		Settle();
	}

	// With these children, the last one in front.
	void ShowWith(std::initializer_list<BView*> views)
	{
		for (BView* view : views)
			AddChild(view);
		ShowAndSettle();
	}

	InjectedUser User() { return InjectedUser(Title()); }
	InjectedUser::Picture Snapshot() { return User().Snapshot(); }

	// Runs in the window's stead: with its lock held, by the calling thread. Then all is painted.
	void Do(const std::function<void()>& action)
	{
		{
			Locked lock(this);
			action();
		}
		Settle();
	}

	void QuitNow()
	{
		ASSERT_TRUE(Lock());
		Quit();
	}

private:
	static std::string NextTitle()
	{
		static std::atomic<int> count = 0;
		return "test window " + std::to_string(++count);
	}
};

// Owns a window for a test's scope.
template <typename Window = TestWindow>
class Shown {
public:
	template <typename... Arguments>
	explicit Shown(Arguments&&... arguments) :
		fWindow(new Window(std::forward<Arguments>(arguments)...))
	{}
	~Shown() { fWindow->QuitNow(); }
	Shown(const Shown&) = delete;
	Shown& operator=(const Shown&) = delete;
	Window* operator->() const { return fWindow; }
	Window* Get() const { return fWindow; }

private:
	Window* fWindow;
};
