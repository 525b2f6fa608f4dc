// SPDX-License-Identifier: MIT

// Threads: life and death, suspension, thread data.

#include "tests/kits/kernel/Worker.h"
#include "tests/support/Storm.h"

#include <kernel/DeferKill.h>
#include <kernel/FairLock.h>
#include <kernel/FinishThreads.h>
#include <kernel/WakeUp.h>

#include <climits>
#include <cstring>
#include <deque>
#include <memory>
#include <random>
#include <sys/resource.h>
#include <thread>
#include <vector>

using BPrivate::DeferKill;
using BPrivate::FairLock;
using BPrivate::WakeUp;

TEST(Thread, StartsOnlyWhenWantedAndLeavesItsResult)
{
	auto answer = [](void* data) -> int32 { return *static_cast<int32*>(data); };
	int32 value = 1;
	thread_id thread = spawn_thread(answer, "a name that is longer than 31 bytes", 5, &value);
	ASSERT_GT(thread, 0);
	EXPECT_EQ(thread, find_thread("a name that is longer than 31 bytes"));
	EXPECT_EQ(thread, find_thread("a name that is longer than 31 b"));
	value = 42;
	status_t result = 0;
	EXPECT_EQ(B_OK, wait_for_thread(thread, &result));
	EXPECT_EQ(42, result);

	EXPECT_EQ(B_BAD_THREAD_ID, wait_for_thread(thread, &result));
	EXPECT_EQ(B_BAD_THREAD_ID, resume_thread(thread));
	EXPECT_EQ(B_BAD_THREAD_ID, suspend_thread(thread));
	EXPECT_EQ(B_BAD_THREAD_ID, kill_thread(thread));
	EXPECT_EQ(B_BAD_THREAD_ID, send_data(thread, 1, nullptr, 0));
	EXPECT_EQ(B_NAME_NOT_FOUND, find_thread("a name that is longer than 31 b"));
}

TEST(Thread, ForeignThreadsHaveAnIdWhileTheyLive)
{
	thread_id mine = find_thread(nullptr);
	EXPECT_GT(mine, 0);
	EXPECT_EQ(mine, find_thread(nullptr));
	thread_id other = -1;
	status_t sent = B_ERROR;
	std::thread foreign([&] {
		other = find_thread(nullptr);
		sent = send_data(mine, 7, "x", 1);
	});
	foreign.join();
	EXPECT_EQ(B_OK, sent);
	EXPECT_NE(mine, other);
	EXPECT_EQ(B_BAD_THREAD_ID, send_data(other, 7, nullptr, 0));
	thread_id sender = -1;
	EXPECT_EQ(7, receive_data(&sender, nullptr, 0));
	EXPECT_EQ(other, sender);
	EXPECT_EQ(B_NOT_ALLOWED, kill_thread(mine)) << "there is no frame of ours to unwind to";
}

TEST(Thread, AWakeUpBeforeTheSuspensionIsKept)
{
	std::atomic<int> rounds = 0;
	sem_id go = create_sem(0, "go");
	Worker worker([&] {
		acquire_sem(go);
		for (;;) {
			suspend_thread(find_thread(nullptr));
			rounds++;
		}
	});
	worker.StartToSleep();
	EXPECT_EQ(B_BAD_THREAD_STATE, resume_thread(worker.Id()));
	EXPECT_EQ(B_BAD_THREAD_STATE, resume_thread(worker.Id())) << "only one is kept";
	release_sem(go);
	EXPECT_TRUE(WaitUntil([&] { return rounds == 1 && worker.IsAsleep(); }));
	EXPECT_EQ(B_OK, resume_thread(worker.Id()));
	EXPECT_TRUE(WaitUntil([&] { return rounds == 2 && worker.IsAsleep(); }));
	EXPECT_EQ(B_OK, kill_thread(worker.Id()));
	delete_sem(go);
}

// The pattern of a scanner with a queue: take until it is empty, then suspend oneself.
TEST(Thread, StormOfWakeUpsLosesNone)
{
	constexpr int kItems = 20000;
	std::atomic<int> queued = 0;
	std::atomic<int> taken = 0;
	Worker scanner([&] {
		for (;;) {
			while (queued > 0) {
				queued--;
				taken++;
			}
			suspend_thread(find_thread(nullptr));
		}
	});
	scanner.Start();
	InThreads(2, [&](int seed) {
		std::minstd_rand random(static_cast<unsigned>(seed));
		for (int i = 0; i < kItems / 2; i++) {
			queued++;
			resume_thread(scanner.Id());
			if (random() % 4 == 0)
				sched_yield();
		}
	});
	EXPECT_TRUE(WaitUntil([&] { return taken == kItems; })) << taken << " taken";
	EXPECT_EQ(B_OK, kill_thread(scanner.Id()));
}

TEST(Thread, SuspensionByAnotherThreadHoldsAtAWait)
{
	sem_id in = create_sem(0, "in");
	sem_id out = create_sem(0, "out");
	Worker worker([&] {
		while (acquire_sem(in) == B_OK)
			release_sem(out);
	});
	worker.StartToSleep();
	EXPECT_EQ(B_OK, suspend_thread(worker.Id()));
	release_sem(in);
	EXPECT_EQ(B_TIMED_OUT, acquire_sem_etc(out, 1, B_RELATIVE_TIMEOUT, 20'000));
	EXPECT_EQ(B_OK, resume_thread(worker.Id()));
	EXPECT_EQ(B_OK, acquire_sem(out));
	delete_sem(in);
	worker.Join();
	delete_sem(out);
}

TEST(Thread, KillEndsEveryKindOfWait)
{
	sem_id sem = create_sem(0, "never");
	FairLock lock;
	WakeUp wakeUp;
	Worker full([] { suspend_thread(find_thread(nullptr)); });
	send_data(full.Id(), 1, nullptr, 0);
	struct Case {
		const char* name;
		std::function<void()> wait;
	};
	const Case cases[] = {
		{"suspended", [] { suspend_thread(find_thread(nullptr)); }},
		{"asleep", [] { snooze(B_INFINITE_TIMEOUT); }},
		{"semaphore", [&] { acquire_sem(sem); }},
		{"timed semaphore", [&] { acquire_sem_etc(sem, 2, B_TIMEOUT, 3'600'000'000); }},
		{"receive_data", [] { receive_data(nullptr, nullptr, 0); }},
		{"send_data", [&] { send_data(full.Id(), 2, "data", 4); }},
		{"the end of the killer", [main = find_thread(nullptr)] { wait_for_thread(main); }},
		{"lock of the killer", [&] { lock.Lock(); }},
		{"wake-up", [&] { wakeUp.Wait(B_INFINITE_TIMEOUT); }},
		{"timed wake-up", [&] { wakeUp.Wait(system_time() + 3'600'000'000); }},
	};
	ASSERT_EQ(B_OK, lock.Lock());
	for (const Case& test : cases) {
		Worker victim(test.wait);
		victim.StartToSleep();
		EXPECT_EQ(B_OK, kill_thread(victim.Id())) << test.name;
		EXPECT_TRUE(victim.WasUnwound()) << test.name;
		EXPECT_EQ(B_BAD_THREAD_ID, kill_thread(victim.Id())) << test.name;
	}
	lock.Unlock();
	EXPECT_EQ(B_OK, lock.Lock(0)) << "a waiter that is gone must not keep the lock";
	lock.Unlock();
	Worker lone([&] {
		while (lock.Lock() == B_OK)
			lock.Unlock();
	});
	lone.Start();
	EXPECT_EQ(B_OK, kill_thread(lone.Id())) << "a lock that is always free";

	full.Start();
	EXPECT_EQ(B_OK, kill_thread(full.Id()));
	delete_sem(sem);
}

TEST(Thread, KillFreesAThreadThatNeverRan)
{
	Worker worker([] { ADD_FAILURE() << "must not run"; });
	Worker sender([&] {
		send_data(worker.Id(), 1, nullptr, 0);
		EXPECT_EQ(B_BAD_THREAD_ID, send_data(worker.Id(), 2, nullptr, 0));
	});
	sender.StartToSleep();
	EXPECT_EQ(B_OK, kill_thread(worker.Id()));
	EXPECT_EQ(B_BAD_THREAD_ID, resume_thread(worker.Id()));
	sender.Join();
}

TEST(Thread, KillSparesTheHolderOfALockUntilItLetsGo)
{
	FairLock lock;
	sem_id go = create_sem(0, "go");
	std::atomic<bool> worked = false;
	Worker victim([&] {
		lock.Lock();
		acquire_sem(go);
		worked = true;
		lock.Unlock();
		snooze(B_INFINITE_TIMEOUT);
	});
	victim.StartToSleep();
	Worker killer([&] {
		EXPECT_EQ(B_OK, kill_thread(victim.Id()));
		EXPECT_TRUE(worked && victim.WasUnwound());
	});
	killer.StartToSleep();
	EXPECT_FALSE(victim.IsGone());
	release_sem(go);
	killer.Join();
	delete_sem(go);
}

TEST(Thread, KillWaitsForDestructorsThatWait)
{
	sem_id go = create_sem(0, "go");
	std::vector<std::string> done;
	struct AtItsEnd {
		~AtItsEnd() { run(); }
		std::function<void()> run;
	};
	Worker victim([&] {
		AtItsEnd unwinding{[&] {
			EXPECT_EQ(B_OK, acquire_sem(go));
			done.push_back("unwound");
		}};
		{
			DeferKill shield;
			EXPECT_EQ(B_OK, acquire_sem(go));
			done.push_back("deferred");
		}
		snooze(B_INFINITE_TIMEOUT);
	});
	victim.StartToSleep();
	Worker killer([&] { EXPECT_EQ(B_OK, kill_thread(victim.Id())); });
	killer.StartToSleep();
	release_sem(go);
	release_sem(go);
	killer.Join();
	EXPECT_EQ((std::vector<std::string>{"deferred", "unwound"}), done);
	delete_sem(go);
}

TEST(Thread, EndingOneselfUnwinds)
{
	Worker suicide([] { kill_thread(find_thread(nullptr)); });
	suicide.Start().Join();
	EXPECT_TRUE(suicide.WasUnwound());

	status_t result = 0;
	auto quit = [](void*) -> int32 { exit_thread(17); };
	EXPECT_EQ(B_OK, wait_for_thread(spawn_thread(quit, "quit", 10, nullptr), &result));
	EXPECT_EQ(17, result);
}

TEST(Thread, DataComesInTheOrderOfItsSenders)
{
	std::vector<int32> codes;
	char buffer[4] = "---";
	sem_id go = create_sem(0, "go");
	Worker receiver([&] {
		acquire_sem(go);
		for (int i = 0; i < 5; i++)
			codes.push_back(receive_data(nullptr, buffer, 2));
	});
	EXPECT_EQ(B_OK, send_data(receiver.Id(), 0, nullptr, 0)) << "works before the start";
	receiver.StartToSleep();
	std::deque<Worker> senders;
	for (int i = 1; i <= 3; i++) {
		senders.emplace_back(
			[&receiver, i] { EXPECT_EQ(B_OK, send_data(receiver.Id(), i, "", 1)); });
		senders.back().StartToSleep();
	}
	release_sem(go);
	for (Worker& sender : senders)
		sender.Join();
	EXPECT_TRUE(WaitUntil([&] { return receiver.IsAsleep(); }));
	EXPECT_EQ(B_OK, send_data(receiver.Id(), 4, "abc", 3));
	receiver.Join();
	EXPECT_EQ((std::vector<int32>{0, 1, 2, 3, 4}), codes);
	EXPECT_STREQ("ab-", buffer) << "what does not fit is lost";
	delete_sem(go);
}

// Threads that wait in all ways at random while others kill, suspend and resume them.
TEST(Thread, StormOfKillsEndsAll)
{
	Dice dice(20240611);
	FairLock lock;
	sem_id sem = create_sem(2, "shared");
	std::atomic<int> inside = 0;
	auto live = [&](int seed) {
		std::minstd_rand own(static_cast<unsigned>(seed));
		for (;;) {
			switch (own() % 5) {
				case 0:
					snooze(own() % 50);
					break;
				case 1:
					if (acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, own() % 100) == B_OK)
						release_sem(sem);
					break;
				case 2:
					suspend_thread(find_thread(nullptr));
					break;
				default:
					if (lock.Lock(own() % 3 == 0 ? 20 : B_INFINITE_TIMEOUT) == B_OK) {
						EXPECT_EQ(1, ++inside);
						if (own() % 4 == 0)
							snooze(1);
						--inside;
						lock.Unlock();
					}
			}
		}
	};
	const int rounds = Rounds(60, 3000);
	for (int round = 0; round < rounds; round++) {
		std::deque<Worker> workers;
		for (int i = 0; i < 6; i++)
			workers.emplace_back([&live, seed = dice(INT_MAX)] { live(seed); }).Start();
		for (int i = 0; i < 40; i++) {
			thread_id thread = workers[static_cast<size_t>(dice(6))].Id();
			dice(3) == 0 ? suspend_thread(thread) : resume_thread(thread);
		}
		bool locked = dice(2) == 0;
		// The lock may be held by one that is suspended; kill_thread makes it run on.
		if (locked && lock.Lock(1000) != B_OK)
			locked = false;
		for (Worker& worker : workers)
			ASSERT_EQ(B_OK, kill_thread(worker.Id())) << "round " << round;
		if (locked)
			lock.Unlock();
	}
	EXPECT_EQ(B_OK, lock.Lock(0));
	lock.Unlock();
	EXPECT_EQ(B_OK, acquire_sem_etc(sem, 2, B_RELATIVE_TIMEOUT, 0)) << "no unit may be lost";
	delete_sem(sem);
}

// In a process of its own, whose user may have no further threads: those wanted start late.
static void
RunMoreThreadsThanAllowed(bool atTheEnd)
{
	sem_id go = create_sem(0, "go");
	std::atomic<int> ran = 0;
	std::deque<Worker> workers;
	for (int i = 0; i < 3; i++)
		workers.emplace_back([&] { acquire_sem(go); }).StartToSleep();
	// The limit binds no privileged user.
	if (getuid() == 0 && setuid(65534) != 0)
		_exit(2);
	rlimit before;
	getrlimit(RLIMIT_NPROC, &before);
	rlimit none = {1, before.rlim_max};
	setrlimit(RLIMIT_NPROC, &none);
	for (int i = 0; i < 30; i++)
		workers.emplace_back([&] { ran++; }).Start();
	bool early = ran > 0;
	Worker never([] { _exit(4); });
	never.Start();
	kill_thread(never.Id());
	if (atTheEnd)
		BPrivate::FinishThreads();
	for (int i = 0; i < 3; i++)
		release_sem(go);
	bool all = WaitUntil([&] { return ran == 30; });
	setrlimit(RLIMIT_NPROC, &before);
	_exit(early ? 3 : all ? 0 : 1);
}

TEST(ThreadDeathTest, ThreadsBeyondTheSystemsLimitStartLate)
{
	testing::GTEST_FLAG(death_test_style) = "threadsafe";
	EXPECT_EXIT(RunMoreThreadsThanAllowed(false), testing::ExitedWithCode(0), "");
	EXPECT_EXIT(RunMoreThreadsThanAllowed(true), testing::ExitedWithCode(0), "");
}
