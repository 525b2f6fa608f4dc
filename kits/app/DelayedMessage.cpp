// SPDX-License-Identifier: MIT

#include <app/DelayedMessage.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

class Timer {
public:
	static Timer& Get()
	{
		static Timer sTimer;
		return sTimer;
	}

	~Timer()
	{
		{
			std::lock_guard lock(fLock);
			fEnding = true;
		}
		fChanged.notify_one();
		if (fThread.joinable())
			fThread.join();
	}

	int64 Add(const BMessenger& target, const BMessage& message, bigtime_t delay)
	{
		Clock::time_point when = Clock::now() + std::chrono::microseconds(delay);
		std::lock_guard lock(fLock);
		int64 ticket = ++fLastTicket;
		fWaiting.emplace(Key{when, ticket}, Entry{target, message});
		fTimes.emplace(ticket, when);
		Start();
		fChanged.notify_one();
		return ticket;
	}

	void Remove(int64 ticket)
	{
		std::lock_guard lock(fLock);
		auto time = fTimes.find(ticket);
		if (time == fTimes.end())
			return;
		fWaiting.erase(Key{time->second, ticket});
		fTimes.erase(time);
	}

private:
	using Clock = std::chrono::steady_clock;
	using Key = std::pair<Clock::time_point, int64>;
	struct Entry {
		BMessenger target;
		BMessage message;
	};

	// When the system has no thread left the messages wait for the next one.
	void Start()
	{
		if (fThread.joinable())
			return;
		try {
			fThread = std::thread([this] { Run(); });
		} catch (const std::system_error&) {
		}
	}

	void Run()
	{
		std::unique_lock lock(fLock);
		while (!fEnding) {
			if (fWaiting.empty()) {
				fChanged.wait(lock);
				continue;
			}
			auto first = fWaiting.begin();
			const Clock::time_point when = first->first.first;
			if (when > Clock::now()) {
				fChanged.wait_until(lock, when);
				continue;
			}
			Entry entry = std::move(first->second);
			fTimes.erase(first->first.second);
			fWaiting.erase(first);
			lock.unlock();
			// An error means that the target is gone: nobody is left to be told.
			entry.target.SendMessage(&entry.message);
			lock.lock();
		}
	}

	std::mutex fLock;
	std::condition_variable fChanged;
	std::map<Key, Entry> fWaiting;             // by time
	std::map<int64, Clock::time_point> fTimes; // the same, by ticket
	int64 fLastTicket = 0;
	bool fEnding = false;
	std::thread fThread;
};

} // namespace

void
BPrivate::DelayedMessage::Post(const BMessenger& target, const BMessage& message, bigtime_t delay)
{
	Cancel();
	fTicket = Timer::Get().Add(target, message, delay);
}

void
BPrivate::DelayedMessage::Cancel()
{
	if (fTicket != 0)
		Timer::Get().Remove(fTicket);
	fTicket = 0;
}
