// SPDX-License-Identifier: MIT

#include <desktop/GuiThread.h>

#include "tests/support/Storm.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace desktop;

TEST(GuiThread, RunsTheJobsOfAThreadInOrder)
{
	std::vector<int> order;
	for (int i = 0; i < 300; i++) {
		if (i % 7 == 6)
			EXPECT_TRUE(CallGui([&order, i] { order.push_back(i); }));
		else
			EXPECT_TRUE(PostGui([&order, i] { order.push_back(i); }));
	}
	CallGui([] {});
	ASSERT_EQ(order.size(), 300u);
	for (int i = 0; i < 300; i++)
		EXPECT_EQ(order[size_t(i)], i);
}

TEST(GuiThread, ServesManyThreadsOneJobAtATime)
{
	int count = 0; // no lock: jobs never run side by side
	InThreads(4, [&count](int) {
		for (int i = 0; i < 500; i++) {
			CallGui([&count] { count++; });
			PostGui([&count] { count++; });
		}
		CallGui([] {});
	});
	EXPECT_EQ(count, 4000);
}

TEST(GuiThread, CallsFromAJobRunAtOnce)
{
	EXPECT_FALSE(OnGuiThread());
	std::string trace;
	CallGui([&trace] {
		EXPECT_TRUE(OnGuiThread());
		PostGui([&trace] { trace += "posted "; });
		CallGui([&trace] { trace += "inner "; });
		trace += "outer ";
	});
	CallGui([] {});
	EXPECT_EQ(trace, "inner outer posted ");
}
