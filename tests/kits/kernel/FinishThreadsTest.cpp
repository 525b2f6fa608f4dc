// SPDX-License-Identifier: MIT

// The end of all threads before the process ends: who is waited for and who is ended.

#include "tests/kits/kernel/Worker.h"

#include <kernel/FairLock.h>
#include <kernel/FinishThreads.h>
#include <kernel/WakeUp.h>

#include <deque>

using BPrivate::FairLock;
using BPrivate::FinishThreads;
using BPrivate::WakeUp;

TEST(FinishThreads, WaitsForWorkAndEndsWhatOnlyWaits)
{
	sem_id never = create_sem(0, "never");
	WakeUp wakeUp;
	Worker suspended([] { suspend_thread(find_thread(nullptr)); });
	Worker listening([] { receive_data(nullptr, nullptr, 0); });
	Worker waiting([&] { acquire_sem(never); });
	Worker idle([&] { wakeUp.Wait(B_INFINITE_TIMEOUT); });
	Worker joining([&] { wait_for_thread(suspended.Id()); });
	Worker neverRan([] { ADD_FAILURE() << "must not run"; });
	std::deque<Worker*> resting = {&suspended, &listening, &waiting, &idle};
	for (Worker* worker : resting)
		worker->StartToSleep();
	joining.StartToSleep();
	Worker working([&] {
		for (int i = 0; i < 20; i++) {
			snooze(1000);
			for (Worker* worker : resting)
				EXPECT_FALSE(worker->IsGone()) << "it might still be woken";
		}
	});
	working.Start();
	FinishThreads();
	EXPECT_TRUE(working.IsGone() && !working.WasUnwound());
	for (Worker* worker : resting)
		EXPECT_TRUE(worker->IsGone() && worker->WasUnwound());
	EXPECT_TRUE(joining.IsGone()) << "killed, or done with its wait when that one was";
	EXPECT_EQ(B_OK, kill_thread(neverRan.Id()));
	delete_sem(never);
}

// Threads that wake each other in a circle, each at rest for a moment: none may be taken for idle.
TEST(FinishThreads, WorkThatIsHandedFromThreadToThreadIsDone)
{
	constexpr int kRounds = 300;
	for (int i = 0; i < 5; i++) {
		sem_id turns[3];
		for (sem_id& turn : turns)
			turn = create_sem(0, "turn");
		std::atomic<int> done = 0;
		std::deque<Worker> workers;
		for (int j = 0; j < 3; j++) {
			workers.emplace_back([&, j] {
				for (int round = 0; round < kRounds; round++) {
					acquire_sem(turns[j]);
					done++;
					release_sem(turns[(j + 1) % 3]);
				}
			});
			workers.back().StartToSleep();
		}
		// One that is suspended again and again by another.
		Worker suspender([&, target = workers[0].Id()] {
			while (done < 3 * kRounds - 30) {
				suspend_thread(target);
				snooze(1);
				resume_thread(target);
			}
		});
		suspender.Start();
		release_sem(turns[0]);
		FinishThreads();
		EXPECT_EQ(3 * kRounds, done);
		for (const Worker& worker : workers)
			EXPECT_TRUE(worker.IsGone() && !worker.WasUnwound());
		for (sem_id turn : turns)
			delete_sem(turn);
	}
}

TEST(FinishThreads, WaitsForDestructorsAndForThreadsThatAreStartedMeanwhile)
{
	std::atomic<bool> cleared = false;
	struct Clears {
		~Clears()
		{
			snooze(5000);
			cleared = true;
		}
		std::atomic<bool>& cleared;
	};
	Worker resting([&] {
		Clears clears{cleared};
		suspend_thread(find_thread(nullptr));
	});
	Worker child([] { snooze(5000); });
	Worker parent([&] {
		snooze(5000);
		child.Start();
	});
	resting.StartToSleep();
	parent.Start();
	FinishThreads();
	EXPECT_TRUE(cleared && resting.IsGone());
	EXPECT_TRUE(child.IsGone() && !child.WasUnwound());
}

// As toolkits keep it for each thread, in a key made long after the kits' own.
TEST(FinishThreads, WhatLibrariesKeepOfAThreadIsGoneBeforeTheEnd)
{
	static std::atomic<int> sDestroyed;
	static pthread_key_t sKey;
	sDestroyed = 0;
	ASSERT_EQ(0, pthread_key_create(&sKey, [](void* again) {
		usleep(5000);
		// What it does itself may make the library set it once more.
		if (sDestroyed++ == 0)
			pthread_setspecific(sKey, again);
	}));
	int data = 0;
	Worker worker([&] { pthread_setspecific(sKey, &data); });
	worker.Start();
	FinishThreads();
	EXPECT_EQ(2, sDestroyed);
	pthread_key_delete(sKey);
}

TEST(FinishThreads, OneThatRestsWithALockDoesNotHoldUpTheEnd)
{
	FairLock lock;
	sem_id go = create_sem(0, "go");
	Worker holder([&] {
		lock.Lock();
		acquire_sem(go);
		lock.Unlock();
	});
	Worker wanting([&] { lock.Lock(); });
	holder.StartToSleep();
	wanting.StartToSleep();
	FinishThreads();
	EXPECT_TRUE(wanting.IsGone());
	EXPECT_FALSE(holder.IsGone());
	release_sem(go);
	holder.Join();
	delete_sem(go);
}
