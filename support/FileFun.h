// SPDX-License-Identifier: MIT

// Sizes and permissions of files as text.

#pragma once

#include <support/SupportDefs.h>

constexpr off_t kKilo = 0x400;
constexpr off_t kMeg = 0x100000;
constexpr off_t kGig = 0x40000000;

class NFileFunction {
public:
	// "512", "1.5k", "52k", "2.1M", "17G": bytes without a letter. At most 20 characters and the
	// terminating zero.
	static void MakeFileSizeString(char* buf, off_t size);

	// "rwx r-x r-x": 11 characters and the terminating zero.
	static void MakePermissionsString(char* buf, mode_t mode);
};
