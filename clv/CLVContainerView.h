// SPDX-License-Identifier: MIT

// CLVContainerView: the scroll view that a column list makes around itself and its header.

#pragma once

#include <interface/ScrollView.h>

class ColumnListView;

class CLVContainerView : public BScrollView {
public:
	CLVContainerView(ColumnListView* list, uint32 resizingMode, uint32 flags, bool horizontal,
		bool vertical, border_style border);
	~CLVContainerView() override; // deletes the list, too, while that is inside

	// The list asks for it in its own destructor.
	bool IsBeingDestroyed() const { return fIsBeingDestroyed; }

private:
	bool fIsBeingDestroyed = false;
};
