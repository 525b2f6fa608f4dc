// SPDX-License-Identifier: MIT

// Answers to messages whose senders wait: who gets which, and what becomes of those that never
// come.

#include <app/AppDefs.h>
#include <app/Looper.h>
#include <app/MessagePrivate.h>

#include "tests/support/Collector.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

using BPrivate::MessageAccess;
using BPrivate::ReplySlot;

namespace {

constexpr bigtime_t kDeadline = 20'000'000;

// A message as it comes out of a looper's queue, and the slot at which its sender waits.
struct Delivered {
	Delivered() { MessageAccess::Reply(*message) = slot; }

	// Code of the answer, or 0 when there is none.
	uint32 Answer(bigtime_t timeout = kDeadline)
	{
		BMessage reply;
		return slot->Wait(&reply, timeout) ? reply.what : 0;
	}

	std::shared_ptr<ReplySlot> slot = std::make_shared<ReplySlot>();
	std::optional<BMessage> message = BMessage('ask ');
};

// Waits without limit for the answer of the slot that it is given; returns its code.
int32
WaitForAnswer(void* slot)
{
	// A reference of its own, as a sender has one.
	std::shared_ptr<ReplySlot> own = *static_cast<std::shared_ptr<ReplySlot>*>(slot);
	BMessage reply;
	return own->Wait(&reply, B_INFINITE_TIMEOUT) ? static_cast<int32>(reply.what) : 0;
}

} // namespace

TEST(Reply, TheFirstAnswerCountsAndTheSecondIsRefused)
{
	Delivered delivered;
	EXPECT_TRUE(delivered.message->IsSourceWaiting());
	BMessage reply('yes ');
	EXPECT_EQ(delivered.message->SendReply(&reply), B_OK);
	EXPECT_FALSE(delivered.message->IsSourceWaiting());
	EXPECT_EQ(delivered.message->SendReply('no  '), B_DUPLICATE_REPLY);
	EXPECT_EQ(delivered.Answer(), static_cast<uint32>('yes '));
	EXPECT_EQ(delivered.message->SendReply('no  '), B_DUPLICATE_REPLY);
	EXPECT_EQ(delivered.message->SendReply(nullptr), B_BAD_VALUE);
}

TEST(Reply, AnUnansweredMessageAnswersAtItsEnd)
{
	Delivered delivered;
	delivered.message.reset();
	EXPECT_EQ(delivered.Answer(), B_NO_REPLY);

	Delivered answered;
	answered.message->SendReply('yes ');
	answered.message.reset();
	EXPECT_EQ(answered.Answer(), static_cast<uint32>('yes '));
}

TEST(Reply, OnlyTheDeliveredObjectAnswers)
{
	Delivered delivered;
	{
		BMessage copy(*delivered.message);
		EXPECT_FALSE(copy.IsSourceWaiting());
		EXPECT_EQ(copy.SendReply('copy'), B_BAD_REPLY);
		// New contents leave the duty where it is.
		*delivered.message = copy;
		*delivered.message = BMessage('new ');
	}
	EXPECT_TRUE(delivered.message->IsSourceWaiting());

	BMessage heir(std::move(*delivered.message));
	delivered.message.reset();
	EXPECT_TRUE(heir.IsSourceWaiting());
	EXPECT_EQ(heir.SendReply('heir'), B_OK);
	EXPECT_EQ(delivered.Answer(), static_cast<uint32>('heir'));
}

TEST(Reply, ASenderWhoseTimeIsUpIsNotAnsweredAnyMore)
{
	Delivered delivered;
	bigtime_t start = system_time();
	EXPECT_EQ(delivered.Answer(20'000), 0u);
	EXPECT_GE(system_time() - start, 20'000);
	EXPECT_FALSE(delivered.message->IsSourceWaiting());
	EXPECT_EQ(delivered.message->SendReply('late'), B_BAD_REPLY);

	// The sender is gone with its share of the slot before the message is.
	delivered.slot.reset();
	delivered.message.reset();

	Delivered ready;
	ready.message->SendReply('now ');
	EXPECT_EQ(ready.Answer(0), static_cast<uint32>('now '));
}

TEST(Reply, AKilledSenderIsFreedAndNotAnswered)
{
	Delivered delivered;
	thread_id thread = spawn_thread(WaitForAnswer, "sender", B_NORMAL_PRIORITY, &delivered.slot);
	ASSERT_EQ(resume_thread(thread), B_OK);
	ASSERT_TRUE(WaitUntil([&] { return delivered.slot.use_count() == 3; }));
	EXPECT_EQ(kill_thread(thread), B_OK);
	EXPECT_EQ(delivered.slot.use_count(), 2);
	EXPECT_FALSE(delivered.message->IsSourceWaiting());
	EXPECT_EQ(delivered.message->SendReply('late'), B_BAD_REPLY);
}

TEST(Reply, AnAddressGetsEveryAnswerUntilItsLooperIsGone)
{
	BLooper* looper = new BLooper("listening");
	Collector listener;
	looper->AddHandler(&listener);
	looper->Run();

	BMessage message('ask ');
	MessageAccess::ReplyTo(message) = std::make_shared<BMessenger>(&listener, looper);
	EXPECT_FALSE(message.IsSourceWaiting());
	EXPECT_EQ(message.SendReply('one '), B_OK);
	EXPECT_EQ(message.SendReply('two '), B_OK);
	EXPECT_TRUE(listener.Gets(2));
	EXPECT_EQ(listener.Codes(), (std::vector<uint32>{'one ', 'two '}));
	EXPECT_EQ(BMessage(message).SendReply('copy'), B_BAD_REPLY);

	ASSERT_TRUE(looper->Lock());
	looper->RemoveHandler(&listener);
	looper->Quit();
	EXPECT_EQ(message.SendReply('late'), B_BAD_PORT_ID);
}
