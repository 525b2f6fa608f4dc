// SPDX-License-Identifier: MIT

// ScrollViewCorner: the square between two scroll bars.

#pragma once

#include <interface/View.h>

class ScrollViewCorner : public BView {
public:
	ScrollViewCorner(float left, float top); // in the parent

	// BView
	void Draw(BRect updateRect) override;
};
