// SPDX-License-Identifier: MIT

#include "clv/CLVContainerView.h"

#include "clv/ColumnListView.h"

CLVContainerView::CLVContainerView(ColumnListView* list, uint32 resizingMode, uint32 flags,
	bool horizontal, bool vertical, border_style border) :
	BScrollView(nullptr, list, resizingMode, flags, horizontal, vertical, border)
{}

// The list goes here and not with the other children: once this destructor has ended it could no
// longer ask whether the container is being destroyed.
CLVContainerView::~CLVContainerView()
{
	fIsBeingDestroyed = true;
	for (int32 i = CountChildren() - 1; i >= 0; i--) {
		if (ColumnListView* list = dynamic_cast<ColumnListView*>(ChildAt(i))) {
			RemoveChild(list);
			delete list;
		}
	}
}
