// SPDX-License-Identifier: MIT

#include <app/DelayedMessage.h>
#include <app/Looper.h>

#include "tests/support/Collector.h"

#include <gtest/gtest.h>

using BPrivate::DelayedMessage;

TEST(DelayedMessage, ArrivesNotBeforeItsTimeAndOnlyTheLastOne)
{
	BLooper* looper = new BLooper;
	Collector collector;
	looper->AddHandler(&collector);
	looper->Run();
	const BMessenger target(&collector);
	{
		DelayedMessage late, early, given_up;
		bigtime_t start = system_time();
		late.Post(target, BMessage('late'), 60000);
		early.Post(target, BMessage('lost'), 20000);
		early.Post(target, BMessage('earl'), 30000);
		given_up.Post(target, BMessage('gone'), 1000000000);
		ASSERT_TRUE(collector.Gets(1));
		EXPECT_GE(system_time() - start, 30000);
		ASSERT_TRUE(collector.Gets(2));
		EXPECT_GE(system_time() - start, 60000);
		late.Post(target, BMessage('lost'), 30000);
		late.Cancel();
		early.Post(target, BMessage('last'), 60000);
		ASSERT_TRUE(collector.Gets(3));
	}
	EXPECT_EQ(collector.Codes(), (std::vector<uint32>{'earl', 'late', 'last'}));
	looper->Lock();
	looper->RemoveHandler(&collector);
	looper->Quit();
}
