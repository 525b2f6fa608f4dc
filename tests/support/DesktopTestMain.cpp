// SPDX-License-Identifier: MIT

// The main function of tests that need a desktop: it runs on the program's thread.

#include <gtest/gtest.h>

#include <cstdlib>

// Before the kits' own main function asks for a display: these tests need none, wherever they run.
[[maybe_unused]] static const int sOffscreen = setenv("QT_QPA_PLATFORM", "offscreen", 1);

int
main(int argc, char** argv)
{
	testing::InitGoogleTest(&argc, argv);
	return RUN_ALL_TESTS();
}
