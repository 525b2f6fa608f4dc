// SPDX-License-Identifier: MIT

// The contents pane in a window, and what its list holds and shows.

#pragma once

#include "panes/ItemListItem.h"
#include "panes/ItemListView.h"
#include "panes/ItemView.h"

#include "tests/support/ListenedWindow.h"
#include "tests/support/TempTree.h"

#include <string>
#include <vector>

struct ItemListWindow {
	explicit ItemListWindow(const TempTree& tree, float columns = 500, float rows = 300) :
		root(tree.Ref(".")),
		pane(new ItemView(BRect(0, 0, columns - 1, rows - 1), &root)),
		window(columns, rows, pane),
		list(dynamic_cast<ItemListView*>(window->FindView("itemlist")))
	{}

	// With the window locked; then all is painted.
	template <typename Function>
	void Do(Function function)
	{
		window.Under([&] {
			function();
			return 0;
		});
		window.Settle();
	}
	std::vector<std::string> Names()
	{
		return window.Under([&] {
			std::vector<std::string> names;
			for (int32 i = 0; i < list->CountItems(); i++)
				names.push_back(list->RowAt(i)->Name());
			return names;
		});
	}
	// Of a row's cell in the window, without the pixels at its edges.
	BRect Cell(int32 row, int32 column)
	{
		return window.Under([&] {
			BRect frame = list->ItemFrame(row);
			frame.left = list->ColumnAt(column)->Begin();
			frame.right = list->ColumnAt(column)->End();
			frame = list->ConvertToScreen(frame).InsetByCopy(1, 1);
			return BRect(window->ConvertFromScreen(frame.LeftTop()),
				window->ConvertFromScreen(frame.RightBottom()));
		});
	}

	entry_ref root;
	ItemView* pane;
	ListenedWindow window;
	ItemListView* list;
};

// How many pixels of that colour, or, `equal` being false, of any other.
inline int
CountPixels(const InjectedUser::Picture& picture, BRect rect, uint32 colour, bool equal = true)
{
	int count = 0;
	for (int32 y = static_cast<int32>(rect.top); y <= static_cast<int32>(rect.bottom); y++) {
		for (int32 x = static_cast<int32>(rect.left); x <= static_cast<int32>(rect.right); x++)
			count += (picture.At(x, y) == colour) == equal;
	}
	return count;
}
