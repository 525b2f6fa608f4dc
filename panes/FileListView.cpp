// SPDX-License-Identifier: MIT

// What presses, keys and messages mean. Menus, the editor and drags are in files of their own.

#include "panes/FileListView.h"

#include "app/Messages.h"
#include "panes/FileListItem.h"
#include "support/InvTextView.h"
#include "support/dprint.h"
#include "xfer/FileXFer.h"

#include <app/Messenger.h>
#include <app/Roster.h>
#include <interface/PopUpMenu.h>
#include <interface/Window.h>
#include <storage/Entry.h>
#include <storage/FindDirectory.h>
#include <storage/Path.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr uint32 kDebugLevel = 8;
constexpr int32 kNameColumn = 1; // up to here a press selects
constexpr bigtime_t kRubberBandInterval = 30000;
constexpr const char* kFileManager = "application/x-vnd.Be-TRAK";

int32
Buttons(const BMessage& message, int32 otherwise = 0)
{
	int32 buttons = otherwise;
	message.FindInt32("buttons", &buttons);
	return buttons;
}

bool
IsPrimary(int32 buttons)
{
	return (buttons & B_PRIMARY_MOUSE_BUTTON) != 0;
}

} // namespace

FileListView::FileListView(BRect frame, BScrollView** container, const char* name,
	list_view_type type, bool hierarchical) :
	ColumnListView(frame, container, name, B_FOLLOW_ALL_SIDES,
		B_WILL_DRAW | B_PULSE_NEEDED | B_FRAME_EVENTS | B_NAVIGABLE, type, hierarchical, true, true,
		B_FANCY_BORDER, be_plain_font)
{
	Debug.StdOut(kDebugLevel, "FileListView created: N:%s, T:%d, H:%d\n", name, type, hierarchical);
}

FileListView::~FileListView() = default;

void
FileListView::SetParentRef(entry_ref* ref)
{
	fParentRef = ref;
	RowsMoved(); // also of an empty folder by another
	BPath path;
	entry_ref trash;
	fInTrash = ref != nullptr && find_directory(B_TRASH_DIRECTORY, &path, false, nullptr) == B_OK &&
		get_ref_for_path(path.Path(), &trash) == B_OK && trash == *ref;
}

entry_ref*
FileListView::GetParentRef(FileListItem*)
{
	return fParentRef;
}

int8
FileListView::GetPane()
{
	return '?';
}

void
FileListView::SelectAll()
{
	Select(0, CountItems() - 1);
}

void
FileListView::SelectionChanged()
{
	Debug.StdOut(kDebugLevel, "SelectionChanged\n");
}

FileListItem*
FileListView::RowAt(int32 index) const
{
	return dynamic_cast<FileListItem*>(ItemAt(index));
}

FileListItem*
FileListView::RowAt(BPoint where) const
{
	return RowAt(BListView::IndexOf(where));
}

// Unset where no row is.
entry_ref
FileListView::RefAt(BPoint where) const
{
	const FileListItem* row = RowAt(where);
	return row != nullptr ? *row->GetRef() : entry_ref();
}

void
FileListView::RefreshFolder(const entry_ref* ref)
{
	if (ref != nullptr && (fParentRef == nullptr || *ref != *fParentRef))
		return;
	if (Looper() != nullptr)
		Looper()->PostMessage(kMSG_Refresh, Parent());
}

void
FileListView::InvokeItem(int32 index)
{
	std::printf("Invoke: %ld\n", static_cast<long>(index));
	BMessage invocation(InvocationCommand());
	invocation.AddInt32("index", index);
	Looper()->PostMessage(&invocation, this);
}

void
FileListView::MessageReceived(BMessage* message)
{
	BPoint where;
	switch (message->what) {
		case MW_MOUSE_DRAG:
		case MW_MOUSE_CLICK:
		case MW_MOUSE_POPUP:
			if (message->FindPoint("where", &where) != B_OK)
				break;
			// What came to the place of a pressed row meanwhile was not meant. A rubber band means
			// places, not rows.
			if (fWatchedPress &&
				!(message->what == MW_MOUSE_DRAG && IsPrimary(Buttons(*message))) &&
				RefAt(*fWatchedPress) != fWatchedRow) {
				fWatchedPress.reset();
				break;
			}
			// The watcher's first look may come late, when the pointer is over another row.
			where = fWatchedPress.value_or(where);
			fWatchedPress.reset();
			if (message->what == MW_MOUSE_DRAG)
				MouseDrag(where, *message);
			else if (message->what == MW_MOUSE_CLICK)
				MouseClick(where, *message);
			else
				PopupMenu(where);
			break;
		case kMSG_TextEditInvoke:
		case kMSG_TextEditEscape:
			EditorDone(*message);
			break;
		case kMSG_GoOnTransferring:
			GoOnTransferring();
			break;
		case kMSG_Refresh:
			std::printf("FLV::Refresh\n");
			RefreshFolder(nullptr);
			break;
		default:
			BListView::MessageReceived(message);
	}
}

void
FileListView::MouseDown(BPoint where)
{
	Debug.StdOut(kDebugLevel, "MouseDown ( %f , %f )\n", double(where.x), double(where.y));
	if (fEditor != nullptr)
		fEditor->Invoke();
	const BMessage* press = Window()->CurrentMessage();
	const int32 buttons = press != nullptr ? Buttons(*press, B_PRIMARY_MOUSE_BUTTON) : 0;
	if ((modifiers() & B_COMMAND_KEY) != 0) {
		Debug.StdOut(kDebugLevel, "--> Popup!\n");
		PopupMenu(where);
		return;
	}
	int32 clicks = 1;
	if (press != nullptr)
		press->FindInt32("clicks", &clicks);
	Debug.StdOut(kDebugLevel, "%ld clicks\n", static_cast<long>(clicks));
	if (!IsPrimary(buttons)) {
		if (clicks > 1)
			TrackerLaunch(where);
		else
			WatchPress(where, buttons, MW_HALF_CLICK);
		return;
	}
	const int32 column = IndexOfColumn(where);
	const bool onName = RowAt(where) != nullptr && column >= 0 && column <= kNameColumn;
	if (clicks > 1 || onName)
		ColumnListView::MouseDown(where);
	else
		WatchPress(where, buttons, MW_TWO_CLICKS);
}

void
FileListView::WatchPress(BPoint where, int32 buttons, mouse_watch_length length)
{
	if (StartMouseDragOrPopupWatcher(this, buttons, length) >= 0) {
		fWatchedPress = where;
		fWatchedRow = RefAt(where);
	}
}

// The watcher tells the buttons that are held at the end; the press had those in "data".
void
FileListView::MouseClick(BPoint where, const BMessage& message)
{
	Debug.StdOut(kDebugLevel, "MouseClick( %f , %f )\n", double(where.x), double(where.y));
	int32 pressed = Buttons(message);
	message.FindInt32("data", &pressed);
	if (!IsPrimary(pressed))
		PopupMenu(where);
	else if (RowAt(where) == nullptr)
		DeselectAll();
}

// With a secondary button files are dragged from anywhere in their row.
void
FileListView::MouseDrag(BPoint where, const BMessage& message)
{
	Debug.StdOut(kDebugLevel, "MouseDrag( %f , %f )\n", double(where.x), double(where.y));
	if (IsPrimary(Buttons(message)))
		SelectByRubberBand(where);
	else if (FileListItem* row = RowAt(where))
		DragItem(row, message);
}

// Reads the mouse itself: the window handles nothing until the button is released.
void
FileListView::SelectByRubberBand(BPoint where)
{
	BPoint end = where;
	uint32 buttons;
	BeginRectTracking(BRect(where.x, where.y, where.x, where.y), B_TRACK_RECT_CORNER);
	for (GetMouse(&end, &buttons, false); buttons != 0; GetMouse(&end, &buttons, false))
		snooze(kRubberBandInterval);
	EndRectTracking();
	if (IsEmpty())
		return;
	const BRect first = ItemFrame(0);
	const float top = std::max(std::min(where.y, end.y), first.top);
	const float bottom = std::min(std::max(where.y, end.y), ItemFrame(CountItems() - 1).bottom);
	const float middle = (first.left + first.right) / 2;
	const int32 from = BListView::IndexOf(BPoint(middle, top));
	const int32 to = BListView::IndexOf(BPoint(middle, bottom));
	if (from < 0 || to < from)
		DeselectAll(); // beside all rows
	else
		Select(from, to);
}

// Opens the row in the desktop's file manager, if there is one.
void
FileListView::TrackerLaunch(BPoint where)
{
	const FileListItem* row = RowAt(where);
	if (row == nullptr || !be_roster->IsRunning(kFileManager))
		return;
	BMessage message(B_REFS_RECEIVED);
	message.AddRef(kName_Refs, row->GetRef());
	BMessenger(kFileManager).SendMessage(&message);
}

void
FileListView::MouseMoved(BPoint where, uint32 transit, const BMessage* drag)
{
	const BMessage* move = Window()->CurrentMessage();
	FileListItem* pressed = fDragPending ? RowAt(fPressedIndex) : nullptr;
	if (pressed != nullptr && *pressed->GetRef() == fPressed && move != nullptr &&
		move->HasInt32("buttons"))
		DragItem(pressed, *move);
	fDragPending = false;
	NoteDrag(where, drag != nullptr && transit != B_EXITED_VIEW, move);
	ColumnListView::MouseMoved(where, transit, drag);
}

// The pointer may have left the row that was pressed: what is dragged is that one.
bool
FileListView::InitiateDrag(BPoint, int32 index, bool wasSelected)
{
	const FileListItem* row = RowAt(index);
	fDragPending = row != nullptr;
	fPressedIndex = index;
	fPressed = row != nullptr ? *row->GetRef() : entry_ref();
	return wasSelected;
}

void
FileListView::KeyDown(const char* bytes, int32 numBytes)
{
	const char key = numBytes == 1 ? bytes[0] : '\0';
	Debug.StdOut(kDebugLevel, "KeyDown %d\n", key);
	if (key != B_DELETE) {
		BListView::KeyDown(bytes, numBytes);
		return;
	}
	int32 index;
	for (int32 i = 0; (index = CurrentSelection(i)) >= 0; i++) {
		if (const FileListItem* row = RowAt(index))
			NFileXFer::DeleteFile(row->GetRef(), !fInTrash);
	}
}
