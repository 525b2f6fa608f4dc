// SPDX-License-Identifier: MIT

#include <app/Looper.h>
#include <app/MessageFilter.h>

#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

class Counter : public BHandler {
public:
	void MessageReceived(BMessage* message) override
	{
		last = message->what;
		count++;
	}
	std::atomic<uint32> last = 0;
	std::atomic<int> count = 0;
};

Counter* gOther = nullptr;
std::atomic<int> gFilterRuns = 0;

filter_result
ToOther(BMessage*, BHandler** target, BMessageFilter*)
{
	gFilterRuns++;
	*target = gOther;
	return B_DISPATCH_MESSAGE;
}

filter_result
Drop(BMessage*, BHandler**, BMessageFilter*)
{
	gFilterRuns++;
	return B_SKIP_MESSAGE;
}

class Filters : public testing::Test {
protected:
	void SetUp() override
	{
		gFilterRuns = 0;
		gOther = &fOther;
		fLooper->AddHandler(&fFirst);
		fLooper->AddHandler(&fOther);
		fLooper->AddHandler(&fLast);
	}

	// Handled after everything that was posted before.
	void Settle()
	{
		fLooper->PostMessage('last', &fLast);
		fLooper->Run();
		ASSERT_TRUE(WaitUntil([&] { return fLast.count == 1; }));
		ASSERT_TRUE(fLooper->Lock());
		fLooper->RemoveHandler(&fFirst);
		fLooper->RemoveHandler(&fOther);
		fLooper->RemoveHandler(&fLast);
		fLooper->Quit();
	}

	BLooper* fLooper = new BLooper;
	Counter fFirst, fOther, fLast;
};

} // namespace

TEST_F(Filters, RedirectDropAndPassByCode)
{
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	fFirst.AddFilter(new BMessageFilter('drop', Drop));
	fLooper->PostMessage('redi', &fFirst);
	fLooper->PostMessage('drop', &fFirst);
	fLooper->PostMessage('pass', &fFirst);
	Settle();
	EXPECT_EQ(1, fOther.count);
	EXPECT_EQ('redi', fOther.last);
	EXPECT_EQ(1, fFirst.count);
	EXPECT_EQ('pass', fFirst.last);
	EXPECT_EQ(2, gFilterRuns);
}

TEST_F(Filters, TheNewTargetsFiltersRunToo)
{
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	fOther.AddFilter(new BMessageFilter('redi', Drop));
	fLooper->PostMessage('redi', &fFirst);
	Settle();
	EXPECT_EQ(0, fFirst.count + fOther.count);
	EXPECT_EQ(2, gFilterRuns);
}

TEST_F(Filters, CommonFiltersSeeEverythingFirst)
{
	fLooper->AddCommonFilter(new BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, 'drop', Drop));
	fFirst.AddFilter(new BMessageFilter('drop', ToOther));
	fLooper->PostMessage('drop', &fFirst);
	Settle();
	EXPECT_EQ(0, fFirst.count + fOther.count);
	EXPECT_EQ(1, gFilterRuns);
}

TEST_F(Filters, ARedirectionSparesNoCommonFilter)
{
	fLooper->AddCommonFilter(new BMessageFilter('redi', ToOther));
	fLooper->AddCommonFilter(new BMessageFilter('redi', Drop));
	fLooper->PostMessage('redi', &fFirst);
	Settle();
	EXPECT_EQ(0, fFirst.count + fOther.count);
	EXPECT_EQ(2, gFilterRuns);
}

TEST_F(Filters, ATargetInAnotherLooperCancelsDelivery)
{
	Counter stranger;
	gOther = &stranger;
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	fLooper->PostMessage('redi', &fFirst);
	Settle();
	EXPECT_EQ(0, stranger.count + fFirst.count);
}

TEST_F(Filters, DroppedDeliveryIsToldApart)
{
	fFirst.AddFilter(new BMessageFilter(B_DROPPED_DELIVERY, B_ANY_SOURCE, 'data', Drop));
	BMessageFilter* removed = new BMessageFilter('data', Drop);
	fFirst.AddFilter(removed);
	EXPECT_TRUE(fFirst.RemoveFilter(removed));
	EXPECT_FALSE(fFirst.RemoveFilter(removed));
	delete removed;
	fLooper->PostMessage('data', &fFirst);
	Settle();
	EXPECT_EQ(1, fFirst.count);
	EXPECT_EQ(0, gFilterRuns);
}
