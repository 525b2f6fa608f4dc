// SPDX-License-Identifier: MIT

// FileListItem: the row of one entry in either pane: its reference, its icon, and whether a drag of
// files may be dropped on it.
//
// Reads the disk only when it is set up; drawing and comparing use what was read then.
// Small on purpose: a folder may have a million entries. The icon's pixels are shared by all rows
// that show the same one.

#pragma once

#include "clv/CLVListItem.h"
#include "panes/ColourSettings.h"

#include <interface/Bitmap.h>
#include <storage/EntryRef.h>
#include <storage/Mime.h>
#include <storage/Statable.h>

#include <memory>

class FileListItem : public CLVListItem {
public:
	// Takes the reference over; it may be null until SetRef().
	explicit FileListItem(entry_ref* ref);

	// Takes the reference over and reads the entry.
	virtual void SetRef(entry_ref* ref);
	// Reads the entry again, at another place if one is given: after a change of it or its name.
	virtual void UpdateItem(entry_ref* ref);
	// Reads the entry. What cannot be read stays as it is; nobody is told.
	virtual void SetupRef(entry_ref* ref);

	void GetRef(entry_ref& ref) const;
	entry_ref* GetRef() const { return fRef.get(); } // null before SetRef()
	const char* Name() const;                        // bytes as on the disk
	int64 GetINode() const { return fINode; }
	// A folder or a link to one. Stays true for good once it was.
	bool IsFolder() const { return fIsFolder; }

	void SetColours(const ColourSettings* colours) { fColours = colours; } // borrowed

	// By name without case; for any column.
	static int FilenameCmp(const CLVListItem* a, const CLVListItem* b, int32 column);

	// CLVListItem
	void Update(BView* owner, const BFont* font) override;
	void DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete) override;
	void MouseOver(
		ColumnListView* owner, BPoint where, uint32 transit, const BMessage* drag) override;

protected:
	struct Entry {
		struct stat status; // of the entry itself, links not followed
		time_t creation;
		char type[B_MIME_TYPE_LENGTH]; // empty when it has none
	};

	// What SetupRef() does. False when there is no such entry.
	bool ReadEntry(const entry_ref* ref, Entry* entry);

	// At the given side of the rectangle, starting at its left edge.
	void DrawFileIcon(BView* owner, BRect rect, vertical_alignment alignment);
	void DrawFilename(BView* owner, BRect rect, vertical_alignment alignment);

private:
	void ReadLinkTarget(const entry_ref* ref);
	void NameChanged();
	void SetDropHighlight(ColumnListView* list, bool highlighted);

	std::unique_ptr<entry_ref> fRef;
	int64 fINode = 0;
	uint64 fNameKey = 0; // the name's first eight bytes in lower case, the first one highest
	const ColourSettings* fColours = nullptr;
	BBitmap fIcon;
	bool fIsFolder = false;
	bool fDropHighlight = false;
};
