// SPDX-License-Identifier: MIT

// The columns of the contents list. Rows draw and compare by the index in these tables.

#pragma once

#include <support/SupportDefs.h>

constexpr int32 kColumnEntries = 9;
constexpr int32 kItemColumns = 7; // those that are shown; the others wait for a use
constexpr float kLeastColumnWidth = 20;

enum : int32 {
	kIconColumn,
	kNameColumn,
	kKindColumn,
	kSizeColumn,
	kPermissionsColumn,
	kModifiedColumn,
	kCreatedColumn,
};

extern const char* const gColumnNames[kColumnEntries];
extern const float gColumnWidths[kColumnEntries]; // in the beginning
extern const uint32 gColumnFlags[kColumnEntries];
