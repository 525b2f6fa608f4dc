// SPDX-License-Identifier: MIT

// Type codes of message fields and attributes.

#pragma once

#include <support/SupportDefs.h>

enum : type_code {
	B_ANY_TYPE = 'ANYT',
	B_BOOL_TYPE = 'BOOL',
	B_INT8_TYPE = 'BYTE',
	B_INT16_TYPE = 'SHRT',
	B_INT32_TYPE = 'LONG',
	B_INT64_TYPE = 'LLNG',
	B_UINT32_TYPE = 'ULNG',
	B_UINT64_TYPE = 'ULLG',
	B_FLOAT_TYPE = 'FLOT',
	B_DOUBLE_TYPE = 'DBLE',
	B_STRING_TYPE = 'CSTR',
	B_POINTER_TYPE = 'PNTR',
	B_POINT_TYPE = 'BPNT',
	B_RECT_TYPE = 'RECT',
	B_REF_TYPE = 'RREF',
	B_MESSAGE_TYPE = 'MSGG',
	B_MESSENGER_TYPE = 'MSNG',
	B_RAW_TYPE = 'RAWT',
	B_MIME_TYPE = 'MIME',        // data whose field name is a MIME type
	B_MIME_STRING_TYPE = 'MIMS', // a value that is a MIME type's name
	B_LARGE_ICON_TYPE = 'ICON',
	B_MINI_ICON_TYPE = 'MICN',
};
