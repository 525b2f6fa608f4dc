// SPDX-License-Identifier: MIT

#include <app/Message.h>
#include <app/Messenger.h>

#include "tests/support/Printed.h"

TEST(MessagePrint, EachTypeIsReadable)
{
	BMessage message('SFld');
	message.AddInt8("int8", -128);
	message.AddInt16("int16", 300);
	message.AddInt32("int32", -7);
	message.AddInt32("int32", 8);
	message.AddInt64("int64", INT64_MIN);
	message.AddUInt32("uint32", UINT32_MAX);
	message.AddUInt64("uint64", UINT64_MAX);
	message.AddBool("bool", true);
	message.AddFloat("float", 0.25f);
	message.AddDouble("double", -1e300);
	message.AddPoint("point", BPoint(1, -0.5f));
	message.AddRect("rect", BRect(1, 2.5f, 3, 4));
	message.AddMessenger("messenger", BMessenger());
	message.AddData("raw", B_RAW_TYPE, "\x01\xff", 2);
	BMessage inner('in  ');
	inner.AddString("text", "hello");
	message.AddMessage("inner", &inner);
	EXPECT_EQ(PrintedBy([&] { message.PrintToStream(); }),
		"BMessage: what = 'SFld' (0x53466c64)\n"
		"    int8[0] 'BYTE': -128\n"
		"    int16[0] 'SHRT': 300\n"
		"    int32[0] 'LONG': -7\n"
		"    int32[1] 'LONG': 8\n"
		"    int64[0] 'LLNG': -9223372036854775808\n"
		"    uint32[0] 'ULNG': 4294967295\n"
		"    uint64[0] 'ULLG': 18446744073709551615\n"
		"    bool[0] 'BOOL': true\n"
		"    float[0] 'FLOT': 0.25\n"
		"    double[0] 'DBLE': -1e+300\n"
		"    point[0] 'BPNT': BPoint(1, -0.5)\n"
		"    rect[0] 'RECT': BRect(1, 2.5, 3, 4)\n"
		"    messenger[0] 'MSNG': not valid\n"
		"    raw[0] 'RAWT': 2 bytes: 01 ff\n"
		"    inner[0] 'MSGG': BMessage: what = 'in  ' (0x696e2020)\n"
		"        text[0] 'CSTR': \"hello\"\n");
}

TEST(MessagePrint, NamesCannotUpsetTheTerminal)
{
	BMessage message(7);
	entry_ref ref(5, 12, "line\nbreak\x1b[2J");
	message.AddRef("ref", &ref);
	ref = entry_ref();
	message.AddRef("ref", &ref);
	message.AddString("text", "caf\xc3\xa9\t");
	EXPECT_EQ(PrintedBy([&] { message.PrintToStream(); }),
		"BMessage: what = 7 (0x7)\n"
		"    ref[0] 'RREF': device 5, directory 12, \"line\\x0abreak\\x1b[2J\"\n"
		"    ref[1] 'RREF': device -1, directory -1, no name\n"
		"    text[0] 'CSTR': \"caf\xc3\xa9\\x09\"\n");
}
