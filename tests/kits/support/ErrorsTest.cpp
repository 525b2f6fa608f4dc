// SPDX-License-Identifier: MIT

// Status codes: their numbers, their texts, and error numbers that become status codes.

#include <support/Errors.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <string>

TEST(Errors, ErrorNumbersBecomeStatusCodes)
{
	EXPECT_EQ(B_OK, BPrivate::StatusFromErrno(0));
	EXPECT_EQ(B_ENTRY_NOT_FOUND, BPrivate::StatusFromErrno(ENOENT));
	EXPECT_EQ(B_NOT_ALLOWED, BPrivate::StatusFromErrno(EPERM));
	EXPECT_EQ(B_PERMISSION_DENIED, BPrivate::StatusFromErrno(EACCES));
	EXPECT_EQ(B_NO_MORE_FDS, BPrivate::StatusFromErrno(ENFILE));
	EXPECT_EQ(B_DEVICE_FULL, BPrivate::StatusFromErrno(EDQUOT));
	EXPECT_EQ(B_UNSUPPORTED, BPrivate::StatusFromErrno(ENOSYS));
	EXPECT_EQ(B_ERROR, BPrivate::StatusFromErrno(ECHILD));
}

TEST(Errors, TextsKnowBothKindsOfNumbers)
{
	std::string missing = strerror(ENOENT);
	EXPECT_EQ("No such file or directory", missing);
	EXPECT_EQ(missing, strerror(B_ENTRY_NOT_FOUND));
	EXPECT_EQ("Success", std::string(strerror(B_OK)));
	EXPECT_EQ(std::string(strerror(EMFILE)), strerror(B_NO_MORE_FDS));
	EXPECT_EQ("Unknown error 0x80005000", std::string(strerror(INT_MIN + 0x5000)));

	// Every code has a text of its own.
	const status_t last[][2] = {{B_NO_MEMORY, B_NOT_ALLOWED}, {B_BAD_SEM_ID, B_NO_MORE_SEMS},
		{B_BAD_THREAD_ID, B_NO_MORE_TEAMS}, {B_BAD_PORT_ID, B_NO_MORE_PORTS},
		{B_BAD_IMAGE_ID, B_NOT_AN_EXECUTABLE}, {B_BAD_REPLY, B_LAUNCH_FAILED_FILES_APP_NOT_FOUND},
		{B_FILE_ERROR, B_UNSUPPORTED}};
	for (auto [from, to] : last) {
		for (status_t code = from; code <= to; code++)
			EXPECT_NE(0u, std::string(strerror(code)).find("Unknown error")) << code - INT_MIN;
	}
}
