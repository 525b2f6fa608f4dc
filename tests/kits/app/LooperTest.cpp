// SPDX-License-Identifier: MIT

#include <app/AppDefs.h>
#include <app/Looper.h>
#include <app/Messenger.h>

#include "tests/support/Collector.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr uint32 kMsgNumber = 'numb';
constexpr uint32 kMsgAsk = 'ask?';

// Notes what it gets, and in which thread.
class Recorder : public BLooper {
public:
	Recorder() : BLooper("recorder") {}

	void MessageReceived(BMessage* message) override
	{
		EXPECT_EQ(find_thread(nullptr), Thread());
		EXPECT_TRUE(IsLocked());
		EXPECT_EQ(message, CurrentMessage());
		int32 number = -1;
		switch (message->what) {
			case kMsgNumber:
				message->FindInt32("number", &number);
				fNumbers.push_back(number);
				fCount++;
				break;
			case kMsgAsk: {
				BMessage answer(B_REPLY);
				answer.AddInt32("answer", 42);
				message->SendReply(&answer);
				break;
			}
			default:
				BLooper::MessageReceived(message);
		}
	}

	int Count() const { return fCount; }
	std::vector<int32> Numbers() // caller holds the lock
	{
		return fNumbers;
	}

private:
	std::vector<int32> fNumbers;
	std::atomic<int> fCount = 0;
};

status_t
PostNumber(BLooper* looper, int32 number)
{
	BMessage message(kMsgNumber);
	message.AddInt32("number", number);
	return looper->PostMessage(&message);
}

void
LockAndQuit(BLooper* looper)
{
	ASSERT_TRUE(looper->Lock());
	looper->Quit();
}

} // namespace

TEST(Looper, HandlesMessagesInTheOrderPosted)
{
	Recorder* looper = new Recorder;
	for (int32 i = 0; i < 10; i++)
		PostNumber(looper, i); // waits for Run()
	looper->Run();
	for (int32 i = 10; i < 1000; i++)
		PostNumber(looper, i);
	ASSERT_TRUE(WaitUntil([&] { return looper->Count() == 1000; }));
	ASSERT_TRUE(looper->Lock());
	std::vector<int32> numbers = looper->Numbers();
	for (int32 i = 0; i < 1000; i++)
		ASSERT_EQ(i, numbers[i]);
	looper->Quit();
}

TEST(Looper, IsBornLockedAndRunUnlocks)
{
	Recorder* looper = new Recorder;
	EXPECT_TRUE(looper->IsLocked());
	std::thread([looper] { EXPECT_EQ(B_TIMED_OUT, looper->LockWithTimeout(2000)); }).join();
	looper->Run();
	EXPECT_FALSE(looper->IsLocked());
	LockAndQuit(looper);
}

TEST(Looper, CallsThroughAStalePointerFail)
{
	Recorder* looper = new Recorder;
	looper->Run();
	BMessenger messenger(looper);
	EXPECT_TRUE(messenger.IsValid());
	LockAndQuit(looper);
	EXPECT_FALSE(looper->Lock());
	EXPECT_FALSE(looper->IsLocked());
	looper->Unlock();
	EXPECT_EQ(B_BAD_PORT_ID, looper->PostMessage(kMsgNumber));
	EXPECT_FALSE(messenger.IsValid());
	EXPECT_FALSE(messenger.LockTarget());
	EXPECT_EQ(nullptr, messenger.Target(nullptr));
	BMessage message(kMsgNumber), reply;
	EXPECT_EQ(B_BAD_PORT_ID, messenger.SendMessage(&message));
	EXPECT_EQ(B_BAD_PORT_ID, messenger.SendMessage(&message, &reply));
}

TEST(Looper, SendersThatWaitAreTold)
{
	Recorder* looper = new Recorder;
	looper->Run();
	BMessenger messenger(looper);
	BMessage ask(kMsgAsk), reply;
	ASSERT_EQ(B_OK, messenger.SendMessage(&ask, &reply));
	int32 answer = 0;
	EXPECT_EQ(B_OK, reply.FindInt32("answer", &answer));
	EXPECT_EQ(42, answer);

	BMessage unknown('unkn');
	ASSERT_EQ(B_OK, messenger.SendMessage(&unknown, &reply));
	EXPECT_EQ(B_MESSAGE_NOT_UNDERSTOOD, reply.what);

	// Locked by us the looper cannot answer in time; the late answer harms nobody.
	ASSERT_TRUE(looper->Lock());
	EXPECT_EQ(B_TIMED_OUT, messenger.SendMessage(&ask, &reply, B_INFINITE_TIMEOUT, 1000));
	// What is still queued when the looper ends is answered too.
	looper->Unlock();
	LockAndQuit(looper);
}

TEST(Looper, HandlersMayLeaveWhileMessagesForThemWait)
{
	Recorder* looper = new Recorder;
	Collector stays, leaves;
	looper->AddHandler(&stays);
	EXPECT_EQ(B_MISMATCHED_VALUES, looper->PostMessage(kMsgNumber, &leaves));
	looper->AddHandler(&leaves);
	EXPECT_EQ(B_OK, looper->PostMessage(kMsgNumber, &leaves));
	EXPECT_EQ(B_OK, looper->PostMessage(kMsgNumber, &stays));
	BMessenger messenger(&leaves);
	looper->RemoveHandler(&leaves);
	EXPECT_FALSE(messenger.LockTarget());
	looper->Run();
	EXPECT_TRUE(stays.Gets(1));
	EXPECT_TRUE(leaves.Codes().empty());
	ASSERT_TRUE(looper->Lock());
	looper->RemoveHandler(&stays);
	looper->Quit();
}

TEST(Looper, APolledLockDoesNotStarveTheLooper)
{
	Recorder* looper = new Recorder;
	looper->Run();
	for (int32 i = 0; i < 100; i++)
		PostNumber(looper, i);
	// Unlocking and locking again at once lets a looper that waits in between each time; one on a
	// busy machine may not come to wait for a while.
	int rounds = 0;
	while (looper->Count() < 100 && rounds < 3000000) {
		ASSERT_TRUE(looper->Lock());
		looper->Unlock();
		rounds++;
	}
	EXPECT_EQ(100, looper->Count());
	LockAndQuit(looper);
}
