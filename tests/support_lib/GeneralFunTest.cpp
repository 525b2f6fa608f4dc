// SPDX-License-Identifier: MIT

#include "support/GeneralFun.h"

#include "tests/support/Storm.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

std::string
ErrorText(status_t code)
{
	char buf[256];
	EXPECT_EQ(NGeneralFunction::ErrorString(buf, code), static_cast<void*>(buf));
	return buf;
}

// As other static objects may: before main() and before the lock is made.
const std::string kEarlyText = ErrorText(B_BUSY);

} // namespace

TEST(ErrorString, NamesTheCodeAndQuotesTheSystem)
{
	EXPECT_EQ(ErrorText(B_ENTRY_NOT_FOUND),
		"B_ENTRY_NOT_FOUND (-2147459069) : No such file or directory");
	EXPECT_EQ(ErrorText(B_ERROR), std::string("B_ERROR (-1) : ") + strerror(B_ERROR));
	EXPECT_EQ(ErrorText(B_OK), "B_NO_ERROR (0) : Success");
	EXPECT_EQ(ErrorText(B_LAUNCH_FAILED_NO_RESOLVE_LINK).substr(0, 48),
		"B_LAUNCH_FAILED_NO_RESOLVE_LINK (-2147475447) : ");
	EXPECT_EQ(kEarlyText, ErrorText(B_BUSY));
}

TEST(ErrorString, UnknownCodesKeepTheirNumber)
{
	for (status_t code : std::vector<status_t>{12345, B_UNSUPPORTED + 1, INT_MAX}) {
		EXPECT_EQ(ErrorText(code),
			"Unknown Error Code (" + std::to_string(code) + ") : " + strerror(code));
	}
}

TEST(ErrorString, ThreadsDoNotMixTheirTexts)
{
	const status_t codes[] = {B_ENTRY_NOT_FOUND, B_DEVICE_FULL, 4711, -4711};
	InThreads(4, [&](int thread) {
		const std::string expected = ErrorText(codes[thread]);
		for (int i = 0; i < 2000; i++)
			ASSERT_EQ(ErrorText(codes[thread]), expected);
	});
}
