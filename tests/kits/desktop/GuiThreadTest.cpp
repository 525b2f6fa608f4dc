// SPDX-License-Identifier: MIT

#include <desktop/GuiThread.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
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
	std::vector<std::thread> threads;
	for (int i = 0; i < 4; i++) {
		threads.emplace_back([&count] {
			for (int j = 0; j < 500; j++) {
				CallGui([&count] { count++; });
				PostGui([&count] { count++; });
			}
			CallGui([] {});
		});
	}
	for (std::thread& thread : threads)
		thread.join();
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

TEST(GuiThread, DeletesAPostedJobOnceItRan)
{
	auto owned = std::make_shared<int>(1);
	const std::weak_ptr<int> watch = owned;
	PostGui([kept = std::move(owned)] {});
	CallGui([] {});
	EXPECT_TRUE(watch.expired());
}
