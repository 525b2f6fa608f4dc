// SPDX-License-Identifier: MIT

// A test window that remembers the messages it gets, and one user in front of it.

#pragma once

#include "tests/support/TestWindow.h"

#include <memory>
#include <mutex>
#include <vector>

class RecordingWindow : public TestWindow {
public:
	using TestWindow::TestWindow;

	void MessageReceived(BMessage* message) override
	{
		{
			std::lock_guard lock(fGuard);
			fReceived.push_back(*message);
		}
		TestWindow::MessageReceived(message);
	}

	// The messages of this code since the last call.
	std::vector<BMessage> Take(uint32 what)
	{
		std::lock_guard lock(fGuard);
		std::vector<BMessage> taken;
		std::erase_if(fReceived, [&](const BMessage& message) {
			if (message.what != what)
				return false;
			taken.push_back(message);
			return true;
		});
		return taken;
	}

private:
	std::mutex fGuard;
	std::vector<BMessage> fReceived;
};

// Shows a window with one view in it. Its user remembers the buttons that are held.
class ListenedWindow {
public:
	ListenedWindow(float columns, float rows, BView* view) : fWindow(columns, rows)
	{
		fWindow->AddChild(view);
		fWindow->ShowAndSettle();
		fUser = std::make_unique<InjectedUser>(fWindow->Title());
	}

	InjectedUser& User() { return *fUser; }
	RecordingWindow* operator->() { return fWindow.Get(); }
	RecordingWindow* Get() { return fWindow.Get(); }
	void Settle() { fWindow->Settle(); }

	// With the window locked.
	template <typename Function>
	auto Under(Function function)
	{
		Locked lock(fWindow.Get());
		return function();
	}

private:
	Shown<RecordingWindow> fWindow;
	std::unique_ptr<InjectedUser> fUser;
};
