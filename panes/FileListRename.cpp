// SPDX-License-Identifier: MIT

// Renaming a row in place.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "support/InvTextView.h"

#include <interface/Window.h>
#include <storage/Entry.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr float kEditorIndent = 3;
constexpr float kTextIndent = 1.5f;
constexpr float kTextRise = 2.5f;

} // namespace

// Over the row's name.
BRect
FileListView::EditorFrame() const
{
	FileListView* list = const_cast<FileListView*>(this);
	BRect frame = list->ItemFrame(list->IndexOf(fEditedRow));
	const CLVColumn* icon = ColumnAt(0);
	const CLVColumn* name = ColumnAt(1);
	frame.left = (icon != nullptr ? icon->Width() : 0) + kEditorIndent;
	frame.right = frame.left + (name != nullptr ? name->Width() : 0) - 1;
	return frame;
}

void
FileListView::StartRename(FileListItem* row)
{
	if (fEditor != nullptr) {
		fEditor->Invoke();
		fNextRow = row; // once what was typed so far has become a name
		return;
	}
	fEditedRow = row;
	const BRect frame = EditorFrame(), seen = Bounds();
	const float top = std::min(std::max(seen.top, frame.bottom - seen.Height()), frame.top);
	ScrollTo(BPoint(frame.left < seen.left ? 0 : seen.left, top)); // else one would type unseen
	font_height height;
	GetFontHeight(&height);
	BRect text = frame;
	text.OffsetTo(0, 0);
	text.left += kTextIndent;
	text.right -= kTextIndent;
	text.bottom -= kTextRise;
	text.top = text.bottom - (height.ascent + height.descent + height.leading);

	fEditor = new InvocableTextView(frame, "editname", text, B_FOLLOW_ALL_SIDES, 0);
	AddChild(fEditor);
	fEditor->SetTarget(this);
	BMessage* invoke = new BMessage(kMSG_TextEditInvoke); // the editor's, as the next one
	invoke->AddRef(kName_Refs, row->GetRef());
	fEditor->SetInvocationMessage(invoke);
	BMessage* escape = new BMessage(kMSG_TextEditEscape);
	escape->AddRef(kName_Refs, row->GetRef());
	fEditor->SetEscapeMessage(escape);
	fEditor->DisallowChar('/');
	fEditor->SetText(row->Name());
	fEditor->MakeFocus(true);
	fEditor->SelectAll();
	fEditor->SetWordWrap(false);
}

// Two presses make the editor tell twice: the second time it is gone already.
void
FileListView::EditorDone(const BMessage& message)
{
	void* pointer;
	if (fEditor == nullptr || message.FindPointer("view", &pointer) != B_OK || pointer != fEditor)
		return;
	if (message.what == kMSG_TextEditInvoke) {
		entry_ref ref;
		const char* name;
		if (message.FindRef(kName_Refs, &ref) != B_OK || message.FindString("text", &name) != B_OK)
			return;
		entry_ref renamed(ref.device, ref.directory, name);
		if (name[0] != '\0' && BEntry(&ref, false).Rename(name, false) == B_OK)
			EntryRenamed(ref, renamed);
	}
	FileListItem* next = fNextRow;
	CloseEditor();
	if (next != nullptr && FullListHasItem(next) && IndexOf(next) >= 0) {
		StartRename(next); // all is read again when that one ends
		return;
	}
	std::printf("FLV::Refresh\n");
	RefreshFolder(nullptr);
}

void
FileListView::EntryRenamed(entry_ref& from, entry_ref& to)
{
	for (int32 i = 0; i < FullListCountItems(); i++) {
		FileListItem* row = dynamic_cast<FileListItem*>(FullListItemAt(i));
		if (row == nullptr || *row->GetRef() != from)
			continue;
		row->UpdateItem(&to);
		InvalidateItem(IndexOf(row));
	}
}

void
FileListView::CloseEditor()
{
	fNextRow = nullptr;
	if (fEditor == nullptr)
		return;
	const bool hadFocus = fEditor->IsFocus();
	RemoveChild(fEditor);
	fPastEditor.reset(fEditor);
	fEditor = nullptr;
	if (hadFocus)
		MakeFocus(true);
}

// The editor stays over its row, and goes when the row goes.
void
FileListView::RowsChanged()
{
	ColumnListView::RowsChanged();
	RowsMoved();
	if (fEditor == nullptr)
		return;
	if (!FullListHasItem(fEditedRow) || IndexOf(fEditedRow) < 0) {
		CloseEditor();
		return;
	}
	const BRect frame = EditorFrame();
	if (frame.LeftTop() != fEditor->Frame().LeftTop())
		fEditor->MoveTo(frame.LeftTop());
}
