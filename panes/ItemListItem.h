// SPDX-License-Identifier: MIT

// ItemListItem: the row of one entry in the contents list. Reads status and type once, draws its
// cells from that and compares with other rows.

#pragma once

#include "panes/FileListItem.h"
#include "panes/Kind.h"

class ItemListItem : public FileListItem {
public:
	ItemListItem(); // the entry comes with SetRef()

	const char* KindText() const { return fKind->text.c_str(); }

	// -1, 0 or 1, as the list wants it. Other columns than those of the tables compare equal.
	static int CompareFiles(const CLVListItem* a, const CLVListItem* b, int32 column);

	// FileListItem
	void SetupRef(entry_ref* ref) override;
	void DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete) override;

private:
	void DrawText(BView* owner, BRect cell, const char* text);
	void DrawFileType(BView* owner, BRect cell);
	void DrawFileSize(BView* owner, BRect cell);
	void DrawPermissions(BView* owner, BRect cell);
	void DrawModificationDate(BView* owner, BRect cell);
	void DrawCreationDate(BView* owner, BRect cell);
	int32 SizeKey() const;

	static const ColourSettings sColours;

	KindRef fKind;
	// Of the entry itself, links not followed. All zero until it could be read.
	off_t fSize = 0;
	time_t fModified = 0;
	time_t fStatusChanged = 0;
	time_t fCreated = 0;
	mode_t fMode = 0;
};
