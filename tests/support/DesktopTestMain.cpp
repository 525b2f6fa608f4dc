// SPDX-License-Identifier: MIT

// The main function of tests that need a desktop: it runs on the program's thread.

#include <gtest/gtest.h>

int
main(int argc, char** argv)
{
	testing::InitGoogleTest(&argc, argv);
	return RUN_ALL_TESTS();
}
