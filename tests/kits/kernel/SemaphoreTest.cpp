// SPDX-License-Identifier: MIT

// Semaphores: order, deletion, time limits, use outside of main().

#include "tests/kits/kernel/Worker.h"

#include <cstdlib>
#include <deque>
#include <vector>

namespace {

// Works before main() and after it; a failure ends the test program.
struct StaticUser {
	StaticUser() : sem(create_sem(1, "static"))
	{
		if (acquire_sem(sem) != B_OK)
			std::abort();
	}
	~StaticUser()
	{
		if (acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 1000) != B_TIMED_OUT ||
			release_sem(sem) != B_OK || acquire_sem(sem) != B_OK || delete_sem(sem) != B_OK)
			std::abort();
	}
	sem_id sem;
};
const StaticUser sStaticUser;

} // namespace

TEST(Semaphore, BadOnesAreRefused)
{
	EXPECT_EQ(B_BAD_VALUE, create_sem(-1, "negative"));
	sem_id sem = create_sem(0, "gone");
	ASSERT_GE(sem, 0);
	EXPECT_EQ(B_BAD_VALUE, acquire_sem_etc(sem, 0, 0, 0));
	EXPECT_EQ(B_OK, delete_sem(sem));
	EXPECT_EQ(B_BAD_SEM_ID, delete_sem(sem));
	EXPECT_EQ(B_BAD_SEM_ID, acquire_sem(sem));
	EXPECT_EQ(B_BAD_SEM_ID, release_sem(sem));
	sem_id next = create_sem(0, "next");
	EXPECT_NE(sem, next) << "ids are not used again soon";
	delete_sem(next);
}

TEST(Semaphore, TimeLimitsAreKept)
{
	sem_id sem = create_sem(1, "timed");
	EXPECT_EQ(B_WOULD_BLOCK, acquire_sem_etc(sem, 2, B_RELATIVE_TIMEOUT, 0));
	EXPECT_EQ(B_WOULD_BLOCK, acquire_sem_etc(sem, 2, B_RELATIVE_TIMEOUT, -1));
	bigtime_t start = system_time();
	EXPECT_EQ(B_TIMED_OUT, acquire_sem_etc(sem, 2, B_RELATIVE_TIMEOUT, 5000));
	EXPECT_GE(system_time() - start, 5000);
	EXPECT_EQ(B_OK, acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0));
	delete_sem(sem);
}

TEST(Semaphore, WaitersAreServedInOrder)
{
	sem_id sem = create_sem(0, "ordered");
	std::atomic<int> served = 0;
	std::deque<Worker> waiters;
	for (int i = 0; i < 5; i++) {
		waiters.emplace_back([&, i] {
			acquire_sem(sem);
			EXPECT_EQ(i, served);
			served++;
		});
		waiters.back().StartToSleep();
	}
	for (Worker& waiter : waiters) {
		release_sem(sem);
		waiter.Join();
	}
	EXPECT_EQ(5, served);
	delete_sem(sem);
}

TEST(Semaphore, AGreedyWaiterIsNotOvertakenUntilItGivesUp)
{
	sem_id sem = create_sem(0, "greedy");
	Worker greedy([&] { acquire_sem_etc(sem, 3, 0, 0); });
	greedy.StartToSleep();
	Worker modest([&] { EXPECT_EQ(B_OK, acquire_sem(sem)); });
	modest.StartToSleep();
	release_sem(sem);
	EXPECT_EQ(B_WOULD_BLOCK, acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0));
	EXPECT_EQ(B_TIMED_OUT, acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 10'000));
	EXPECT_FALSE(modest.IsGone());
	EXPECT_EQ(B_OK, kill_thread(greedy.Id()));
	modest.Join();
	delete_sem(sem);
}

TEST(Semaphore, DeletionWakesAllWaiters)
{
	sem_id sem = create_sem(0, "deleted");
	std::deque<Worker> waiters;
	for (int i = 0; i < 4; i++) {
		waiters.emplace_back([&, i] {
			EXPECT_EQ(B_BAD_SEM_ID,
				i % 2 ? acquire_sem(sem) : acquire_sem_etc(sem, 1, B_TIMEOUT, 60'000'000));
		});
		waiters.back().StartToSleep();
	}
	EXPECT_EQ(B_OK, delete_sem(sem));
	for (Worker& waiter : waiters)
		waiter.Join();
}
