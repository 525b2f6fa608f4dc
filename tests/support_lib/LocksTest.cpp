// SPDX-License-Identifier: MIT

// Benaphore, TQueue and UpdateCounter.

#include "support/Queue.h"
#include "support/UpdateCounter.h"

#include "tests/support/Printed.h"
#include "tests/support/Storm.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <thread>

TEST(Benaphore, OneThreadAtATimeIsInside)
{
	Benaphore lock;
	int inside = 0; // not atomic: the lock has to guard it
	int entries = 0;
	InThreads(4, [&](int) {
		for (int i = 0; i < 5000; i++) {
			ASSERT_EQ(lock.Lock(), B_OK);
			ASSERT_EQ(++inside, 1);
			entries++;
			if (i % 100 == 0)
				std::this_thread::yield(); // lets others queue up at the semaphore
			inside--;
			lock.Unlock();
		}
	});
	EXPECT_EQ(entries, 20000);
}

TEST(Benaphore, FailsForGoodOnceItsSemaphoreIsGone)
{
	// Ids count upwards, so the semaphore of the lock is the one between these two.
	sem_id before = create_sem(0, "before");
	Benaphore lock("doomed");
	sem_id after = create_sem(0, "after");
	ASSERT_EQ(after, before + 2);

	EXPECT_EQ(lock.Lock(), B_OK);
	status_t first = B_OK;
	std::thread waiter([&] { first = lock.Lock(); });
	EXPECT_EQ(delete_sem(before + 1), B_OK);
	waiter.join();
	EXPECT_EQ(first, B_BAD_SEM_ID);
	EXPECT_EQ(lock.Lock(), B_ERROR);
	lock.Unlock();
	EXPECT_EQ(lock.Lock(), B_ERROR);
	delete_sem(before);
	delete_sem(after);
}

TEST(Queue, AgreesWithADequeOverRandomSteps)
{
	std::mt19937 random(7);
	std::deque<void*> model;
	TQueue queue;
	int items[16];
	for (int step = 0; step < 5000; step++) {
		ASSERT_EQ(queue.Empty(), model.empty());
		unsigned action = random() % 100;
		if (action == 0) {
			queue.Clear();
			model.clear();
		} else if (action < 50) {
			void* item = random() % 10 == 0 ? nullptr : &items[random() % 16];
			queue.Add(item);
			model.push_back(item);
		} else if (model.empty()) {
			ASSERT_THROW(queue.Next(), XQueueEmpty);
		} else {
			ASSERT_EQ(queue.Next(), model.front());
			model.pop_front();
		}
	}
}

TEST(Queue, ALongQueueDies)
{
	auto queue = std::make_unique<TQueue>();
	for (int i = 0; i < 1000000; i++)
		queue->Add(queue.get());
	queue.reset();
}

TEST(UpdateCounter, CountsNeverBelowZero)
{
	UpdateCounter counter;
	PrintedBy([&] {
		EXPECT_EQ(--counter, 0);
		EXPECT_EQ(counter--, 0);
		EXPECT_EQ(++counter, 1);
		EXPECT_EQ(counter++, 1);
		EXPECT_EQ(counter--, 2);
		EXPECT_EQ(--counter, 0);
		counter = -5;
		EXPECT_EQ(--counter, 0);
		EXPECT_EQ(counter--, 0);
		EXPECT_TRUE(counter == -5);
		EXPECT_EQ(++counter, -4);
	});
}

TEST(UpdateCounter, TracesThePostfixStepsAndOneComparison)
{
	UpdateCounter counter;
	EXPECT_EQ(PrintedBy([&] {
		counter++;
		counter++;
		counter--;
		(void)(counter <= 7);
		counter = 0;
		counter--;
	}),
		">> UC(0)++\n<< UC(1)++\n>> UC(1)++\n<< UC(2)++\n>> UC(2)--\n<< UC(1)--\n"
		">> UC(1) <= 7\n<< UC(1) <= 7\n>> UC(0)--\n<< UC(0)--\n");
	EXPECT_EQ(PrintedBy([&] {
		++counter;
		--counter;
		(void)(counter < 7);
		(void)(counter == 7);
	}),
		"");
}

TEST(UpdateCounter, ThreadsLoseNoStep)
{
	UpdateCounter& counter = gUpdateTolerance;
	EXPECT_TRUE(counter == 0);
	PrintedBy([&] {
		InThreads(4, [&](int) {
			for (int i = 0; i < 1000; i++) {
				counter++;
				++counter;
				counter--;
			}
		});
	});
	EXPECT_TRUE(counter == 4000);
	counter = 0;
}
