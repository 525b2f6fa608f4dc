// SPDX-License-Identifier: MIT

#include "support/SmartDate.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::tm
LocalTime(std::time_t seconds)
{
	std::tm local = {};
	localtime_r(&seconds, &local);
	return local;
}

std::string
Text(const std::tm& when, const char* format)
{
	char buf[128] = "";
	std::strftime(buf, sizeof(buf), format, &when);
	return buf;
}

// Midnight may pass between taking the day and asking for the text: then the check is repeated.
template <typename Check>
void
OnOneDay(Check check)
{
	for (;;) {
		std::tm before = LocalTime(std::time(nullptr));
		std::string failure = check(before);
		std::tm after = LocalTime(std::time(nullptr));
		if (before.tm_yday == after.tm_yday) {
			EXPECT_EQ(failure, "");
			return;
		}
	}
}

// Empty when a date `days` and `years` from today shows in that format.
std::string
Compare(const std::tm& today, int years, int days, const char* format)
{
	std::tm when = today;
	when.tm_year += years;
	when.tm_yday += days; // the day of the year alone decides
	when.tm_wday = 3;
	when.tm_mon = 1;
	when.tm_mday = 28;
	char buf[128];
	std::string text = SmartDate(&when, buf, sizeof(buf));
	std::string expected = Text(when, format);
	return text == expected ? "" : text + " instead of " + expected;
}

} // namespace

TEST(SmartDate, NearDaysOfThisYearHaveNames)
{
	const struct {
		int days;
		const char* format;
	} kCases[] = {{-365, "%X %b %d"}, {-5, "%X %b %d"}, {-4, "%X %A"}, {-3, "%X %A"}, {-2, "%X %A"},
		{-1, "%X Yesterday"}, {0, "%X Today"}, {1, "%X Tomorrow"}, {2, "%X %b %d"},
		{365, "%X %b %d"}};
	for (const auto& each : kCases) {
		SCOPED_TRACE(each.days);
		OnOneDay([&](const std::tm& today) { return Compare(today, 0, each.days, each.format); });
		for (int years : {-100, -1, 1, 100})
			OnOneDay([&](const std::tm& today) { return Compare(today, years, each.days, "%x"); });
	}
}

TEST(SmartDate, SecondsAreTakenAsLocalTime)
{
	OnOneDay([](const std::tm&) {
		std::time_t now = std::time(nullptr);
		char buf[128];
		std::string text = SmartDate(&now, buf, sizeof(buf));
		return text == Text(LocalTime(now), "%X Today") ? "" : text;
	});
	std::time_t epoch = 0;
	char buf[128];
	EXPECT_EQ(SmartDate(&epoch, buf, sizeof(buf)), Text(LocalTime(0), "%x"));
	EXPECT_EQ(SmartDate(&epoch, buf, sizeof(buf)), static_cast<void*>(buf));
}

TEST(SmartDate, ATextThatDoesNotFitIsEmpty)
{
	std::time_t epoch = 0;
	std::string whole = Text(LocalTime(0), "%x");
	char buf[128] = "untouched";
	SmartDate(&epoch, buf, 0);
	EXPECT_STREQ(buf, "untouched");
	SmartDate(&epoch, buf, static_cast<unsigned short>(whole.size()));
	EXPECT_STREQ(buf, "");
	SmartDate(&epoch, buf, static_cast<unsigned short>(whole.size() + 1));
	EXPECT_EQ(buf, whole);
}
