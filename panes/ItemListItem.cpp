// SPDX-License-Identifier: MIT

#include "panes/ItemListItem.h"

#include "panes/ItemColumns.h"
#include "support/DrawFun.h"
#include "support/FileFun.h"
#include "support/SmartDate.h"

#include <interface/View.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr float kCellIndent = 3.5f;
constexpr size_t kDateBytes = 256;

template <typename Number>
int
Compare(Number a, Number b)
{
	return (a > b) - (a < b);
}

} // namespace

const ColourSettings ItemListItem::sColours = {{0, 0, 0, 255}, {255, 255, 255, 255}, {0, 0, 0, 255},
	{193, 122, 255, 255}, {255, 255, 255, 255}, {108, 108, 108, 255}};

ItemListItem::ItemListItem() : FileListItem(nullptr), fKind(UnknownKind())
{
	SetColours(&sColours);
}

void
ItemListItem::SetupRef(entry_ref* ref)
{
	Entry entry;
	if (!ReadEntry(ref, &entry))
		return;
	fMode = entry.status.st_mode;
	fSize = entry.status.st_size;
	fModified = entry.status.st_mtime;
	fStatusChanged = entry.status.st_ctime;
	fCreated = entry.creation;
	fKind = KindOf(entry.type, entry.status);
}

void
ItemListItem::DrawItemColumn(BView* owner, BRect cell, int32 column, bool complete)
{
	const rgb_color low = owner->LowColor();
	if (complete)
		owner->FillRect(cell, B_SOLID_LOW);
	cell.left += kCellIndent;
	switch (column) {
		case kIconColumn:
			DrawFileIcon(owner, cell, B_ALIGN_MIDDLE);
			break;
		case kNameColumn:
			DrawFilename(owner, cell, B_ALIGN_MIDDLE);
			break;
		case kKindColumn:
			DrawFileType(owner, cell);
			break;
		case kSizeColumn:
			DrawFileSize(owner, cell);
			break;
		case kPermissionsColumn:
			DrawPermissions(owner, cell);
			break;
		case kModifiedColumn:
			DrawModificationDate(owner, cell);
			break;
		case kCreatedColumn:
			DrawCreationDate(owner, cell);
			break;
	}
	owner->SetLowColor(low);
}

void
ItemListItem::DrawText(BView* owner, BRect cell, const char* text)
{
	NDrawFunction::DrawStringClipped(owner, text, cell, false, B_ALIGN_MIDDLE, B_ALIGN_LEFT);
}

void
ItemListItem::DrawFileType(BView* owner, BRect cell)
{
	DrawText(owner, cell, KindText());
	if (!S_ISLNK(fMode))
		return;
	// A link shows by the line below its kind.
	const float end = std::min(cell.left + owner->StringWidth(KindText()), cell.right);
	owner->StrokeLine(BPoint(cell.left, cell.bottom - 1), BPoint(end, cell.bottom - 1));
}

void
ItemListItem::DrawFileSize(BView* owner, BRect cell)
{
	char text[32];
	if (S_ISDIR(fMode))
		strcpy(text, "[folder]");
	else if (S_ISLNK(fMode))
		strcpy(text, "[link]");
	else
		NFileFunction::MakeFileSizeString(text, fSize);
	DrawText(owner, cell, text);
}

void
ItemListItem::DrawPermissions(BView* owner, BRect cell)
{
	char text[12];
	NFileFunction::MakePermissionsString(text, fMode);
	BFont before;
	owner->GetFont(&before);
	owner->SetFont(be_fixed_font);
	DrawText(owner, cell, text);
	owner->SetFont(&before);
}

void
ItemListItem::DrawModificationDate(BView* owner, BRect cell)
{
	char text[kDateBytes];
	DrawText(owner, cell, SmartDate(&fModified, text, sizeof(text)));
}

void
ItemListItem::DrawCreationDate(BView* owner, BRect cell)
{
	char text[kDateBytes];
	DrawText(owner, cell, SmartDate(&fCreated, text, sizeof(text)));
}

// Folders come before links and links before files. Of a size only the low 32 bits count, as a
// signed number: 4 GiB sort like 0. That is meant.
int32
ItemListItem::SizeKey() const
{
	if (S_ISDIR(fMode))
		return -2;
	return S_ISLNK(fMode) ? -1 : static_cast<int32>(fSize);
}

int
ItemListItem::CompareFiles(const CLVListItem* a, const CLVListItem* b, int32 column)
{
	const auto* left = static_cast<const ItemListItem*>(a);
	const auto* right = static_cast<const ItemListItem*>(b);
	switch (column) {
		case kNameColumn:
			return FilenameCmp(a, b, column);
		case kKindColumn:
			if (left->fKind == right->fKind)
				return 0;
			return Compare(strcasecmp(left->KindText(), right->KindText()), 0);
		case kSizeColumn:
			return Compare(left->SizeKey(), right->SizeKey());
		case kPermissionsColumn:
			return Compare(left->fMode & 0777, right->fMode & 0777);
		case kModifiedColumn:
			return Compare(left->fModified, right->fModified);
		case kCreatedColumn:
			// Shows the creation, but sorts by the last change of the status. That is meant.
			return Compare(left->fStatusChanged, right->fStatusChanged);
		default:
			return 0;
	}
}
