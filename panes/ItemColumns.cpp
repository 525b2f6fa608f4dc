// SPDX-License-Identifier: MIT

#include "panes/ItemColumns.h"

#include "clv/CLVColumn.h"

const char* const gColumnNames[kColumnEntries] = {"", "Filename", "Kind", "Size", "Permissions",
	"Modified", "Created", "Extra Info", "Preferred App"};

const float gColumnWidths[kColumnEntries] = {18, 65, 52, 32, 30, 70, 70, 55, 60};

const uint32 gColumnFlags[kColumnEntries] = {CLV_COLUMN_NOT_RESIZABLE, CLV_COLUMN_SORTABLE,
	CLV_COLUMN_SORTABLE, CLV_COLUMN_SORTABLE, CLV_COLUMN_SORTABLE, CLV_COLUMN_SORTABLE,
	CLV_COLUMN_SORTABLE, 0, 0};
