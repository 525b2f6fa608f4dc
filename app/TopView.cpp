// SPDX-License-Identifier: MIT

#include "app/TopView.h"

#include <storage/Directory.h>
#include <storage/Path.h>

#include <cmath>

TopView::TopView(BRect frame, entry_ref* root) :
	BView(frame, "top", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, B_WILL_DRAW)
{
	BDirectory directory(root);
	BPath path(&directory, nullptr, false);
	if (path.InitCheck() == B_OK)
		fRootPath = path.Path();
}

void
TopView::SetRoot(entry_ref* ref)
{
	BPath path;
	if (BEntry(ref, false).GetPath(&path) != B_OK)
		return;
	fRootPath = path.Path();
	Invalidate();
}

void
TopView::AttachedToWindow()
{
	SetViewColor(232, 232, 232);
	SetLowColor(232, 232, 232);
}

void
TopView::Draw(BRect)
{
	font_height height;
	GetFontHeight(&height);
	float middle = Bounds().Height() / 2;
	float baseline = std::round(middle + (height.ascent - height.descent) / 2);
	DrawString("Root:", BPoint(8, baseline));
	DrawString(fRootPath.c_str(), BPoint(8 + StringWidth("Root:") + 6, baseline));
}
