// SPDX-License-Identifier: MIT

// BScreen: the screen that windows are placed on.

#pragma once

#include <interface/Rect.h>

class BWindow;

class BScreen {
public:
	explicit BScreen(BWindow* window = nullptr);

	BRect Frame() const; // logical pixels; waits until the desktop is up
};
