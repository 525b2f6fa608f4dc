// SPDX-License-Identifier: MIT

// A window of a benchmark that says when its picture is done, and what the process uses. Nobody
// has to see it: it is offscreen on any machine.

#pragma once

#include <app/Messenger.h>
#include <interface/Window.h>
#include <kernel/OS.h>

#include <cstdlib>
#include <fstream>
#include <string>

[[maybe_unused]] static const int sOffscreen = setenv("QT_QPA_PLATFORM", "offscreen", 1);

class BenchWindow : public BWindow {
public:
	BenchWindow(BRect frame, const char* title) : BWindow(frame, title, B_TITLED_WINDOW, 0) {}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'sync')
			message->SendReply(B_REPLY);
		else
			BWindow::MessageReceived(message);
	}

	// Returns when all that was posted so far is handled and painted. Not locked.
	void WaitForPicture()
	{
		for (int i = 0; i < 2; i++) { // what the first one causes is done at the second
			BMessage sync('sync'), reply;
			BMessenger(this).SendMessage(&sync, &reply);
			Lock(); // the window keeps its lock until it has painted
			Unlock();
		}
	}
};

inline double
Milliseconds(bigtime_t start)
{
	return static_cast<double>(system_time() - start) / 1000;
}

// Of this process, in bytes, with all of the libraries that it has touched: what it shares of them
// with others changes as those come and go.
inline double
Memory()
{
	std::ifstream file("/proc/self/smaps_rollup");
	std::string word;
	double kilobytes = 0;
	while (file >> word && word != "Rss:") {
	}
	file >> kilobytes;
	return kilobytes * 1024;
}
