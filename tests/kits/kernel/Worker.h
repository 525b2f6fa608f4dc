// SPDX-License-Identifier: MIT

// A spawned thread that runs a function object.

#pragma once

#include <kernel/OS.h>

#include "tests/support/Waiting.h"

#include <atomic>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

// One thread; the test must see to its end before the object goes.
class Worker {
public:
	explicit Worker(std::function<void()> run, const char* name = "worker") : fRun(std::move(run))
	{
		fId = spawn_thread(Entry, name, B_NORMAL_PRIORITY, this);
		EXPECT_GT(fId, 0);
	}

	Worker& Start()
	{
		EXPECT_EQ(B_OK, resume_thread(fId));
		return *this;
	}

	// Starts it and returns once it sleeps in its first wait, or even is through.
	Worker& StartToSleep()
	{
		Start();
		EXPECT_TRUE(WaitUntil([this] { return IsGone() || IsAsleep(); }));
		return *this;
	}

	thread_id Id() const { return fId; }
	bool WasUnwound() const { return fUnwound; } // ended in the middle of its function
	bool IsGone() const { return fEnded; }

	// Asleep at two looks: a moment's wait for a mutex is none that the tests mean.
	bool IsAsleep() const { return LooksAsleep() && snooze(100) == B_OK && LooksAsleep(); }

	void Join()
	{
		status_t status = wait_for_thread(fId);
		EXPECT_TRUE(status == B_OK || status == B_BAD_THREAD_ID);
		EXPECT_TRUE(fEnded);
	}

private:
	struct Mark {
		~Mark()
		{
			worker->fUnwound = !worker->fReturned;
			worker->fEnded = true;
		}
		Worker* worker;
	};

	bool LooksAsleep() const
	{
		if (fNative == 0)
			return false;
		std::ifstream file("/proc/self/task/" + std::to_string(fNative) + "/stat");
		std::string text;
		std::getline(file, text);
		size_t name = text.rfind(')');
		return name != std::string::npos && text.substr(name, 3) == ") S";
	}

	static int32 Entry(void* data)
	{
		Worker* self = static_cast<Worker*>(data);
		Mark mark{self};
		self->fNative = gettid();
		self->fRun();
		self->fReturned = true;
		return B_OK;
	}

	std::function<void()> fRun;
	thread_id fId = -1;
	std::atomic<pid_t> fNative = 0;
	std::atomic<bool> fReturned = false;
	std::atomic<bool> fUnwound = false;
	std::atomic<bool> fEnded = false;
};
