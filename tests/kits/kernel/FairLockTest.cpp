// SPDX-License-Identifier: MIT

// FairLock: recursion, order, closing, time limits.

#include "tests/kits/kernel/Worker.h"

#include <kernel/FairLock.h>

#include <deque>
#include <memory>
#include <vector>

using BPrivate::FairLock;
using BPrivate::HoldsAnyLock;

TEST(FairLock, CountsItsHoldersNesting)
{
	FairLock lock;
	EXPECT_EQ(-1, lock.Holder());
	EXPECT_FALSE(HoldsAnyLock());
	lock.Lock();
	lock.Lock(0);
	EXPECT_EQ(2, lock.Depth());
	EXPECT_EQ(find_thread(nullptr), lock.Holder());
	Worker other([&] {
		EXPECT_FALSE(lock.IsLockedByCaller());
		EXPECT_FALSE(HoldsAnyLock());
		bigtime_t start = system_time();
		EXPECT_EQ(B_TIMED_OUT, lock.Lock(5000));
		EXPECT_GE(system_time() - start, 5000);
	});
	other.Start().Join();
	lock.Unlock();
	EXPECT_TRUE(lock.IsLockedByCaller());
	EXPECT_TRUE(HoldsAnyLock());
	lock.Unlock();
	EXPECT_FALSE(lock.IsLockedByCaller());
	EXPECT_FALSE(HoldsAnyLock());
}

TEST(FairLock, AHolderThatDeletesItHoldsNothing)
{
	auto lock = std::make_unique<FairLock>();
	lock->Lock();
	lock->Lock();
	lock.reset();
	EXPECT_FALSE(HoldsAnyLock());
}

TEST(FairLock, WhoLocksAgainAtOnceComesAfterThoseWhoWait)
{
	FairLock lock;
	std::vector<int> order;
	lock.Lock();
	std::deque<Worker> waiters;
	for (int i = 0; i < 5; i++) {
		waiters.emplace_back([&, i] {
			// One that gives up and one that is killed leave the order of the others alone.
			if (lock.Lock(i == 1 ? 1000 : B_INFINITE_TIMEOUT) == B_OK) {
				order.push_back(i);
				lock.Unlock();
			}
		});
		waiters.back().StartToSleep();
	}
	waiters[1].Join();
	EXPECT_EQ(B_OK, kill_thread(waiters[3].Id()));
	lock.Unlock();
	EXPECT_EQ(B_OK, lock.Lock());
	EXPECT_EQ((std::vector<int>{0, 2, 4}), order);
	lock.Unlock();
	for (Worker& waiter : waiters)
		waiter.Join();
}

TEST(FairLock, ClosingSendsAllWaitersAwayAndItMayBeDeleted)
{
	for (int round = 0; round < 20; round++) {
		auto lock = std::make_unique<FairLock>();
		lock->Lock();
		std::deque<Worker> waiters;
		for (int i = 0; i < 3; i++) {
			waiters.emplace_back([&, i] {
				EXPECT_EQ(B_BAD_VALUE, lock->Lock(i == 1 ? 60'000'000 : B_INFINITE_TIMEOUT));
				EXPECT_FALSE(HoldsAnyLock());
			});
			waiters.back().StartToSleep();
		}
		lock->Close();
		EXPECT_TRUE(lock->IsLockedByCaller());
		EXPECT_EQ(B_BAD_VALUE, lock->Lock()) << "its holder's too";
		if (round % 2 == 0) {
			lock->Unlock();
			EXPECT_EQ(B_BAD_VALUE, lock->Lock(0));
		}
		lock.reset();
		EXPECT_FALSE(HoldsAnyLock());
		for (Worker& waiter : waiters)
			waiter.Join();
	}
}
