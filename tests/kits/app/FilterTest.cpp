// SPDX-License-Identifier: MIT

#include <app/Looper.h>
#include <app/MessageFilter.h>

#include "tests/support/Collector.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace {

Collector* gOther = nullptr;
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

// Three handlers of a looper. What is posted to the first one goes through the filters.
class Filters : public testing::Test {
protected:
	void SetUp() override
	{
		gFilterRuns = 0;
		gOther = &fOther;
		for (Collector* handler : {&fFirst, &fOther, &fLast})
			fLooper->AddHandler(handler);
	}

	// Posts these, and returns when they are through: how often each handler was reached, and a
	// filter run.
	std::vector<int> Counts(const std::vector<uint32>& codes)
	{
		for (uint32 code : codes)
			fLooper->PostMessage(code, &fFirst);
		fLooper->PostMessage('last', &fLast);
		fLooper->Run();
		EXPECT_TRUE(fLast.Gets(1));
		EXPECT_TRUE(fLooper->Lock());
		for (Collector* handler : {&fFirst, &fOther, &fLast})
			fLooper->RemoveHandler(handler);
		fLooper->Quit();
		return {static_cast<int>(fFirst.Codes().size()), static_cast<int>(fOther.Codes().size()),
			gFilterRuns};
	}

	BLooper* fLooper = new BLooper;
	Collector fFirst, fOther, fLast;
};

using Numbers = std::vector<int>;

} // namespace

TEST_F(Filters, RedirectDropAndPassByCode)
{
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	fFirst.AddFilter(new BMessageFilter('drop', Drop));
	EXPECT_EQ(Counts({'redi', 'drop', 'pass'}), (Numbers{1, 1, 2}));
	EXPECT_EQ(fOther.Codes(), std::vector<uint32>{'redi'});
	EXPECT_EQ(fFirst.Codes(), std::vector<uint32>{'pass'});
}

TEST_F(Filters, TheNewTargetsFiltersRunToo)
{
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	fOther.AddFilter(new BMessageFilter('redi', Drop));
	EXPECT_EQ(Counts({'redi'}), (Numbers{0, 0, 2}));
}

TEST_F(Filters, CommonFiltersSeeEverythingFirst)
{
	fLooper->AddCommonFilter(new BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, 'drop', Drop));
	fFirst.AddFilter(new BMessageFilter('drop', ToOther));
	EXPECT_EQ(Counts({'drop'}), (Numbers{0, 0, 1}));
}

TEST_F(Filters, ARedirectionSparesNoCommonFilter)
{
	fLooper->AddCommonFilter(new BMessageFilter('redi', ToOther));
	fLooper->AddCommonFilter(new BMessageFilter('redi', Drop));
	EXPECT_EQ(Counts({'redi'}), (Numbers{0, 0, 2}));
}

TEST_F(Filters, ATargetInAnotherLooperCancelsDelivery)
{
	Collector stranger;
	gOther = &stranger;
	fFirst.AddFilter(new BMessageFilter('redi', ToOther));
	EXPECT_EQ(Counts({'redi'}), (Numbers{0, 0, 1}));
	EXPECT_TRUE(stranger.Codes().empty());
}

TEST_F(Filters, DroppedDeliveryIsToldApart)
{
	fFirst.AddFilter(new BMessageFilter(B_DROPPED_DELIVERY, B_ANY_SOURCE, 'data', Drop));
	BMessageFilter* removed = new BMessageFilter('data', Drop);
	fFirst.AddFilter(removed);
	EXPECT_TRUE(fFirst.RemoveFilter(removed));
	EXPECT_FALSE(fFirst.RemoveFilter(removed));
	delete removed;
	EXPECT_EQ(Counts({'data'}), (Numbers{1, 0, 0}));
}
