// SPDX-License-Identifier: MIT

// The six colours of a row's name; one record for all rows of a class.

#pragma once

#include <interface/InterfaceDefs.h>

struct ColourSettings {
	rgb_color text;
	rgb_color background;
	rgb_color selectedText;
	rgb_color selectedBackground;
	rgb_color dropText;
	rgb_color dropBackground;
};
