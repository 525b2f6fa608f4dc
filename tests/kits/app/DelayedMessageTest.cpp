// SPDX-License-Identifier: MIT

#include <app/DelayedMessage.h>
#include <app/Looper.h>

#include <gtest/gtest.h>

#include <atomic>

using BPrivate::DelayedMessage;

namespace {

class Collector : public BLooper {
public:
	Collector() : fArrived(create_sem(0, "arrived")) {}
	~Collector() override { delete_sem(fArrived); }

	void MessageReceived(BMessage* message) override
	{
		last = message->what;
		release_sem(fArrived);
	}
	bool Wait(bigtime_t timeout)
	{
		return acquire_sem_etc(fArrived, 1, B_RELATIVE_TIMEOUT, timeout) == B_OK;
	}

	std::atomic<uint32> last = 0;

private:
	sem_id fArrived;
};

} // namespace

TEST(DelayedMessage, ArrivesNotBeforeItsTimeAndOnlyTheLastOne)
{
	Collector* collector = new Collector;
	collector->Run();
	{
		DelayedMessage late, early, given_up;
		bigtime_t start = system_time();
		late.Post(BMessenger(collector), BMessage('late'), 60000);
		early.Post(BMessenger(collector), BMessage('lost'), 20000);
		early.Post(BMessenger(collector), BMessage('earl'), 30000);
		given_up.Post(BMessenger(collector), BMessage('gone'), 1000000000);
		ASSERT_TRUE(collector->Wait(20000000));
		EXPECT_GE(system_time() - start, 30000);
		EXPECT_EQ(collector->last, uint32('earl'));
		ASSERT_TRUE(collector->Wait(20000000));
		EXPECT_GE(system_time() - start, 60000);
		EXPECT_EQ(collector->last, uint32('late'));
		late.Post(BMessenger(collector), BMessage('lost'), 30000);
		late.Cancel();
		EXPECT_FALSE(collector->Wait(60000));
	}
	collector->Lock();
	collector->Quit();
}
