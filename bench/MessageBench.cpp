// SPDX-License-Identifier: MIT

// Posts a million messages from one looper to another, until the last is handled; and beside it
// passes as many empty objects between two bare threads. Fails under half a million a second.

#include "bench/Figure.h"

#include <app/Looper.h>
#include <app/Message.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace {

constexpr int kMessages = 1000000;
constexpr int kRuns = 5;
constexpr double kLimit = 0.5; // millions a second

constexpr uint32 kMsgStart = 'strt';
constexpr uint32 kMsgCount = 'coun';

struct Finish {
	std::mutex mutex;
	std::condition_variable changed;
	bool done = false;

	void Tell()
	{
		std::lock_guard lock(mutex);
		done = true;
		changed.notify_one();
	}
	void Wait()
	{
		std::unique_lock lock(mutex);
		changed.wait(lock, [this] { return done; });
	}
};

class Counter : public BLooper {
public:
	explicit Counter(Finish& finish) : fFinish(finish) {}

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kMsgCount && ++fCount == kMessages)
			fFinish.Tell();
	}

private:
	Finish& fFinish;
	int fCount = 0;
};

class Poster : public BLooper {
public:
	Poster(BLooper* target, bool withFields) : fTarget(target), fWithFields(withFields) {}

	void MessageReceived(BMessage* message) override
	{
		if (message->what != kMsgStart)
			return;
		BMessage count(kMsgCount);
		if (fWithFields) {
			count.AddInt32("index", 1);
			count.AddString("name", "a name of usual length");
		}
		for (int i = 0; i < kMessages; i++)
			fTarget->PostMessage(&count);
	}

private:
	BLooper* fTarget;
	bool fWithFields;
};

double
Seconds(bigtime_t start)
{
	return double(system_time() - start) / 1e6;
}

void
End(BLooper* looper)
{
	if (looper->Lock())
		looper->Quit();
}

double
PassMessages(bool withFields)
{
	Finish finish;
	auto* counter = new Counter(finish);
	auto* poster = new Poster(counter, withFields);
	counter->Run();
	poster->Run();
	const bigtime_t start = system_time();
	poster->PostMessage(kMsgStart);
	finish.Wait();
	const double seconds = Seconds(start);
	End(poster);
	End(counter);
	return seconds;
}

double
PassBare()
{
	std::mutex mutex;
	std::condition_variable changed;
	std::deque<std::unique_ptr<int>> queue;
	const bigtime_t start = system_time();
	std::thread taker([&] {
		for (int i = 0; i < kMessages; i++) {
			std::unique_lock lock(mutex);
			changed.wait(lock, [&] { return !queue.empty(); });
			const std::unique_ptr<int> taken = std::move(queue.front());
			queue.pop_front();
		}
	});
	for (int i = 0; i < kMessages; i++) {
		auto object = std::make_unique<int>(i);
		std::lock_guard lock(mutex);
		queue.push_back(std::move(object));
		changed.notify_one();
	}
	taker.join();
	return Seconds(start);
}

double
Millions(const std::vector<double>& seconds)
{
	return kMessages / Median(seconds) / 1e6;
}

} // namespace

int
main()
{
	std::vector<double> plain, fields, bare;
	for (int run = 0; run < kRuns; run++) {
		plain.push_back(PassMessages(false));
		fields.push_back(PassMessages(true));
		bare.push_back(PassBare());
	}
	char beside[80];
	std::snprintf(beside, sizeof beside, "bare queue of two threads %.2f", Millions(bare));
	bool good = PrintFigure(
		"messages from looper to looper", Millions(plain), "M/s", Bound::kAtLeast, kLimit, beside);
	good &= PrintFigure("  with two fields", Millions(fields), "M/s", Bound::kAtLeast, kLimit, "");
	return good ? 0 : 1;
}
