// SPDX-License-Identifier: MIT

#include "panes/FileListItem.h"

#include "app/Messages.h"
#include "clv/ColumnListView.h"
#include "support/DrawFun.h"

#include <app/Message.h>
#include <storage/Entry.h>
#include <storage/NodeInfo.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

constexpr float kLeastHeight = 18;
constexpr float kIconSide = B_MINI_ICON;
constexpr float kIconCell = 18; // the icon and the gap to the name
constexpr size_t kKeyBytes = sizeof(uint64);
constexpr const char* kBrokenLinkType = "application/x-vnd.Be-symlink";

// What an icon starts as; a copy of it costs no memory of its own.
const BBitmap&
NoIcon()
{
	static const BBitmap sNone(BRect(0, 0, kIconSide - 1, kIconSide - 1), B_CMAP8);
	return sNone;
}

int
Sign(int value)
{
	return (value > 0) - (value < 0);
}

} // namespace

FileListItem::FileListItem(entry_ref* ref) : fRef(ref), fIcon(NoIcon())
{
	NameChanged();
	FileListItem::SetupRef(ref);
}

void
FileListItem::SetRef(entry_ref* ref)
{
	if (ref != fRef.get())
		fRef.reset(ref);
	NameChanged();
	SetupRef(ref);
}

void
FileListItem::UpdateItem(entry_ref* ref)
{
	if (ref != nullptr) {
		if (fRef == nullptr)
			fRef = std::make_unique<entry_ref>();
		*fRef = *ref;
		NameChanged();
	}
	SetupRef(fRef.get());
}

void
FileListItem::SetupRef(entry_ref* ref)
{
	Entry entry;
	ReadEntry(ref, &entry);
}

bool
FileListItem::ReadEntry(const entry_ref* ref, Entry* entry)
{
	if (BEntry(ref).GetStat(&entry->status, &entry->creation) != B_OK)
		return false;
	fINode = static_cast<int64>(entry->status.st_ino);
	if (S_ISDIR(entry->status.st_mode))
		fIsFolder = true;
	entry->type[0] = '\0';
	if (S_ISLNK(entry->status.st_mode))
		ReadLinkTarget(ref);
	else
		BNodeInfo::GetTypeAndIcon(ref, entry->status, entry->type, &fIcon, B_MINI_ICON);
	return true;
}

// A link shows its target's icon and opens as its target does.
void
FileListItem::ReadLinkTarget(const entry_ref* ref)
{
	const BEntry target(ref, true);
	entry_ref targetRef;
	if (target.GetRef(&targetRef) != B_OK ||
		BNodeInfo::GetTrackerIcon(&targetRef, &fIcon, B_MINI_ICON) != B_OK)
		BMimeType(kBrokenLinkType).GetIcon(&fIcon, B_MINI_ICON);
	if (target.IsDirectory())
		fIsFolder = true;
}

void
FileListItem::GetRef(entry_ref& ref) const
{
	if (fRef != nullptr)
		ref = *fRef;
}

const char*
FileListItem::Name() const
{
	return fRef != nullptr && fRef->name != nullptr ? fRef->name : "";
}

void
FileListItem::NameChanged()
{
	fNameKey = 0;
	const char* name = Name();
	for (size_t i = 0; i < kKeyBytes; i++) {
		const int byte = *name != '\0' ? std::tolower(static_cast<unsigned char>(*name++)) : 0;
		fNameKey = fNameKey << 8 | static_cast<uint64>(byte);
	}
}

int
FileListItem::FilenameCmp(const CLVListItem* a, const CLVListItem* b, int32)
{
	const auto* left = static_cast<const FileListItem*>(a);
	const auto* right = static_cast<const FileListItem*>(b);
	if (left->fNameKey != right->fNameKey)
		return left->fNameKey < right->fNameKey ? -1 : 1;
	if ((left->fNameKey & 0xff) == 0)
		return 0; // both names end within the key
	return Sign(strcasecmp(left->Name() + kKeyBytes, right->Name() + kKeyBytes));
}

void
FileListItem::Update(BView* owner, const BFont* font)
{
	BListItem::Update(owner, font);
	SetHeight(std::max(kLeastHeight, Height()));
}

void
FileListItem::DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete)
{
	if (complete)
		owner->FillRect(cell, B_SOLID_LOW);
	if (column <= 0)
		return;
	cell.left += 1;
	DrawFileIcon(owner, cell, B_ALIGN_TOP);
	cell.left += kIconCell + 1;
	DrawFilename(owner, cell, B_ALIGN_TOP);
}

void
FileListItem::DrawFileIcon(BView* owner, BRect rect, vertical_alignment alignment)
{
	float top = rect.top + rect.Height() / 2 - kIconSide / 2;
	if (alignment == B_ALIGN_TOP)
		top = rect.top;
	else if (alignment == B_ALIGN_BOTTOM)
		top = rect.bottom - kIconSide;
	const drawing_mode mode = owner->DrawingMode();
	owner->SetDrawingMode(B_OP_OVER);
	owner->DrawBitmap(&fIcon, BPoint(rect.left, top));
	owner->SetDrawingMode(mode);
}

void
FileListItem::DrawFilename(BView* owner, BRect rect, vertical_alignment alignment)
{
	const rgb_color high = owner->HighColor();
	const rgb_color low = owner->LowColor();
	if (IsSelected()) {
		owner->SetHighColor(fColours->selectedText);
		owner->SetLowColor(fColours->selectedBackground);
	} else if (fDropHighlight) {
		owner->SetHighColor(fColours->dropText);
		owner->SetLowColor(fColours->dropBackground);
	} else {
		owner->SetHighColor(fColours->text);
		owner->SetLowColor(fColours->background);
	}
	// The box behind the name is all that shows a selection.
	NDrawFunction::DrawStringClipped(owner, Name(), rect, true, alignment, B_ALIGN_LEFT);
	owner->SetHighColor(high);
	owner->SetLowColor(low);
}

void
FileListItem::MouseOver(ColumnListView* owner, BPoint, uint32 transit, const BMessage* drag)
{
	if (!fIsFolder)
		return;
	if (drag == nullptr || !drag->HasRef(kName_Refs)) {
		if (fDropHighlight)
			SetDropHighlight(owner, false);
	} else if (transit == B_ENTERED_VIEW || transit == B_EXITED_VIEW) {
		SetDropHighlight(owner, transit == B_ENTERED_VIEW);
	}
}

void
FileListItem::SetDropHighlight(ColumnListView* list, bool highlighted)
{
	list->InvalidateItem(list->IndexOf(this));
	fDropHighlight = highlighted;
}
