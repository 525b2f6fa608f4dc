// SPDX-License-Identifier: MIT

#include "panes/FolderItem.h"

#include "app/Messages.h"
#include "support/dprint.h"

#include <interface/View.h>
#include <interface/Window.h>

static constexpr uint32 kDebugLevel = 4;

const ColourSettings FolderItem::sColours = {{0, 0, 0, 255}, {255, 255, 255, 255},
	{255, 255, 255, 255}, {0, 0, 0, 255}, {255, 255, 255, 255}, {108, 108, 108, 255}};

FolderItem::FolderItem(entry_ref* ref) : FileListItem(ref)
{
	SetColours(&sColours);
}

void
FolderItem::SetCount(int32 count)
{
	if (count != 0)
		SetSuperItem(true);
	fCount = count;
}

void
FolderItem::DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete)
{
	if (!fExpansionRequested) {
		fExpansionRequested = true;
		Debug.StdOut(kDebugLevel, "FolderItem:: Expand\n");
		BMessage request(kMSG_ExpandThisItem);
		request.AddPointer("item", this);
		owner->Window()->PostMessage(&request, owner->Parent()->Parent());
	}
	FileListItem::DrawItemColumn(owner, cell, column, complete);
}
