// SPDX-License-Identifier: MIT

// Constants of the interface kit that several classes share.

#pragma once

#include <support/SupportDefs.h>

enum {
	B_PRIMARY_MOUSE_BUTTON = 1,
	B_SECONDARY_MOUSE_BUTTON = 2,
	B_TERTIARY_MOUSE_BUTTON = 4,
};

enum {
	B_SHIFT_KEY = 0x01,
	B_COMMAND_KEY = 0x02, // Alt
	B_CONTROL_KEY = 0x04,
	B_CAPS_LOCK = 0x08,
	B_SCROLL_LOCK = 0x10,
	B_NUM_LOCK = 0x20,
	B_OPTION_KEY = 0x40, // Super
	B_MENU_KEY = 0x80,
	B_LEFT_SHIFT_KEY = 0x0100,
	B_RIGHT_SHIFT_KEY = 0x0200,
	B_LEFT_COMMAND_KEY = 0x0400,
	B_RIGHT_COMMAND_KEY = 0x0800,
	B_LEFT_CONTROL_KEY = 0x1000,
	B_RIGHT_CONTROL_KEY = 0x2000,
	B_LEFT_OPTION_KEY = 0x4000,
	B_RIGHT_OPTION_KEY = 0x8000,
};

// The bytes that keys without a printable character send.
enum {
	B_HOME = 0x01,
	B_END = 0x04,
	B_INSERT = 0x05,
	B_BACKSPACE = 0x08,
	B_TAB = 0x09,
	B_ENTER = 0x0a,
	B_RETURN = 0x0a,
	B_PAGE_UP = 0x0b,
	B_PAGE_DOWN = 0x0c,
	B_FUNCTION_KEY = 0x10,
	B_ESCAPE = 0x1b,
	B_LEFT_ARROW = 0x1c,
	B_RIGHT_ARROW = 0x1d,
	B_UP_ARROW = 0x1e,
	B_DOWN_ARROW = 0x1f,
	B_SPACE = 0x20,
	B_DELETE = 0x7f,
};

// Where the pointer is, for MouseMoved().
enum {
	B_ENTERED_VIEW = 0,
	B_INSIDE_VIEW = 1,
	B_EXITED_VIEW = 2,
	B_OUTSIDE_VIEW = 3,
};

enum orientation { B_HORIZONTAL = 0, B_VERTICAL = 1 };
enum border_style { B_PLAIN_BORDER = 0, B_FANCY_BORDER = 1, B_NO_BORDER = 2 };
enum alignment { B_ALIGN_LEFT = 0, B_ALIGN_RIGHT = 1, B_ALIGN_CENTER = 2 };
enum vertical_alignment { B_ALIGN_TOP = 0x10, B_ALIGN_MIDDLE = 0x20, B_ALIGN_BOTTOM = 0x30 };
enum button_width { B_WIDTH_AS_USUAL = 0, B_WIDTH_FROM_WIDEST = 1, B_WIDTH_FROM_LABEL = 2 };
enum button_spacing { B_EVEN_SPACING = 0, B_OFFSET_SPACING = 1 };
enum drawing_mode { B_OP_COPY = 0, B_OP_OVER = 1, B_OP_ERASE = 2, B_OP_INVERT = 3 };
enum color_space { B_GRAY1 = 1, B_CMAP8 = 4, B_RGB32 = 8, B_RGBA32 = 0x2008 };

constexpr uint8 B_TRANSPARENT_MAGIC_CMAP8 = 0xff;

constexpr float B_V_SCROLL_BAR_WIDTH = 14.0f;
constexpr float B_H_SCROLL_BAR_HEIGHT = 14.0f;

struct rgb_color {
	uint8 red;
	uint8 green;
	uint8 blue;
	uint8 alpha = 255;

	bool operator==(const rgb_color& o) const
	{
		return red == o.red && green == o.green && blue == o.blue && alpha == o.alpha;
	}
	bool operator!=(const rgb_color& o) const { return !(*this == o); }
};

// The view colour that erases nothing.
constexpr rgb_color B_TRANSPARENT_COLOR = {119, 116, 119, 0};

// 8 by 8 pixels, one byte a row, leftmost pixel in the top bit; a set bit is the high colour.
struct pattern {
	uint8 data[8];

	bool operator==(const pattern& o) const
	{
		for (int i = 0; i < 8; i++) {
			if (data[i] != o.data[i])
				return false;
		}
		return true;
	}
};

constexpr pattern B_SOLID_HIGH = {{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}};
constexpr pattern B_SOLID_LOW = {{0, 0, 0, 0, 0, 0, 0, 0}};
constexpr pattern B_MIXED_COLORS = {{0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55}};

// The live modifier keys, buttons excluded. Any thread.
uint32 modifiers();

// The longest time between two clicks of a double click, in microseconds. B_OK, or B_BAD_VALUE.
status_t get_click_speed(bigtime_t* speed);

void beep();

rgb_color keyboard_navigation_color();

// 16 by 16 one-bit cursors: size 16, depth 1, hot spot row, hot spot column, 32 image bytes, 32
// mask bytes. The hand is the normal pointer: its address stands for the desktop's own arrow.
extern const unsigned char B_HAND_CURSOR[];
extern const unsigned char B_I_BEAM_CURSOR[];
