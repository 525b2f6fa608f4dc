// SPDX-License-Identifier: MIT

#include <app/DelayedMessage.h>
#include <app/Looper.h>

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

using BPrivate::DelayedMessage;

namespace {

class Collector : public BLooper {
public:
	Collector() : fArrived(create_sem(0, "arrived")) {}
	~Collector() override { delete_sem(fArrived); }

	void MessageReceived(BMessage* message) override
	{
		{
			std::lock_guard lock(fMutex);
			fCodes.push_back(message->what);
		}
		release_sem(fArrived);
	}
	bool Wait(bigtime_t timeout)
	{
		return acquire_sem_etc(fArrived, 1, B_RELATIVE_TIMEOUT, timeout) == B_OK;
	}

	uint32 Code(size_t index) // of the message that came as number `index`, or 0
	{
		std::lock_guard lock(fMutex);
		return index < fCodes.size() ? fCodes[index] : 0;
	}

private:
	std::mutex fMutex;
	std::vector<uint32> fCodes;
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
		EXPECT_EQ(collector->Code(0), uint32('earl'));
		ASSERT_TRUE(collector->Wait(20000000));
		EXPECT_GE(system_time() - start, 60000);
		EXPECT_EQ(collector->Code(1), uint32('late'));
		late.Post(BMessenger(collector), BMessage('lost'), 30000);
		late.Cancel();
		EXPECT_FALSE(collector->Wait(60000));
	}
	collector->Lock();
	collector->Quit();
}
