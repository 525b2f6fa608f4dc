// SPDX-License-Identifier: MIT

// What an action prints on the standard output.

#pragma once

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

template <typename Action>
std::string
PrintedBy(Action action)
{
	testing::internal::CaptureStdout();
	action();
	std::fflush(stdout);
	return testing::internal::GetCapturedStdout();
}
