// SPDX-License-Identifier: MIT

// FileListView: the list of files that both panes are built on. What a press of the mouse means
// (selecting, dragging, a menu, opening), the two context menus, renaming in place, the Delete key,
// what is dropped and pasted.
//
// Its rows are FileListItems, which it does not own. The pane above it gets what it does not
// handle, first of all kMSG_Refresh whenever something should be read again.
// Thread: the window's. While a menu is open the window repaints but handles nothing.

#pragma once

#include "clv/ColumnListView.h"
#include "clv/MouseDragOrPopupWatcher.h"
#include "panes/DropAim.h"
#include "xfer/PendingFiles.h"

#include <app/Message.h>
#include <storage/EntryRef.h>

#include <memory>
#include <optional>

class BMenuItem;
class BPopUpMenu;
class FileListItem;
class InvocableTextView;

class FileListView : public ColumnListView {
public:
	FileListView(BRect frame, BScrollView** container, const char* name, list_view_type type,
		bool hierarchical);
	~FileListView() override;

	// The folder whose entries are shown; borrowed, may be null. In the trash, deleting is for
	// good.
	void SetParentRef(entry_ref* ref);
	void SelectAll();
	// A drop or B_PASTE: begins to move, copy or link the files into the folder under a drop, or
	// else into the one that is shown.
	void RefsAdded(BMessage* message);
	// Ends renaming without a trace; for a pane whose rows become others.
	void CloseEditor();

	// For subclasses. The menus are built once; setting them up leaves in `ref` what a choice of
	// Paste or Paste Link then means.
	virtual void BuildItemContextMenu();
	virtual void BuildEmptyContextMenu();
	virtual void SetupItemContextMenu(FileListItem* item, entry_ref* ref);
	virtual void SetupEmptyContextMenu(entry_ref* ref);
	// Where Paste in a menu puts files, for a row or null; null forbids it.
	virtual entry_ref* GetParentRef(FileListItem* item);
	// Asks the pane to read again what changed in this folder; null means whatever is shown.
	virtual void RefreshFolder(const entry_ref* ref);
	virtual void InvokeItem(int32 index);
	virtual int8 GetPane(); // its code in drags
	// An editor has given the entry another name, which its row is to show.
	virtual void EntryRenamed(entry_ref& from, entry_ref& to);

	// BListView
	void MessageReceived(BMessage* message) override;
	void MouseDown(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void KeyDown(const char* bytes, int32 numBytes) override;
	void Draw(BRect updateRect) override;
	void ScrollTo(BPoint where) override;
	using ColumnListView::ScrollTo;
	void Pulse() override {}
	void SelectionChanged() override;
	bool InitiateDrag(BPoint where, int32 index, bool wasSelected) override;

protected:
	void RowsChanged() override;

private:
	FileListItem* RowAt(int32 index) const; // among the visible ones, or null
	FileListItem* RowAt(BPoint where) const;
	entry_ref RefAt(BPoint where) const;

	// The mouse
	void WatchPress(BPoint where, int32 buttons, mouse_watch_length length);
	void MouseClick(BPoint where, const BMessage& message);
	void MouseDrag(BPoint where, const BMessage& message);
	void SelectByRubberBand(BPoint where);
	void TrackerLaunch(BPoint where);
	void DragItem(FileListItem* row, const BMessage& message);

	// The menus
	void PopupMenu(BPoint where);
	void PopupItemMenu(FileListItem* row, BPoint where);
	void PopupEmptyMenu(BPoint where);
	void PasteFromMenu(const BMessage& chosen, const entry_ref& source, FileListItem* row);

	// Renaming
	void StartRename(FileListItem* row);
	BRect EditorFrame() const;
	void EditorDone(const BMessage& message);

	// Drops and pastes
	const entry_ref* DropFolderAt(BPoint where) const;
	void NoteDrag(BPoint where, bool isOver, const BMessage* move);
	void RowsMoved();
	void GoOnTransferring();

	std::unique_ptr<BPopUpMenu> fItemMenu;
	std::unique_ptr<BPopUpMenu> fEmptyMenu;
	BMenuItem* fItemPaste = nullptr; // the menus' items
	BMenuItem* fItemPasteLink = nullptr;
	BMenuItem* fEmptyPaste = nullptr;
	BMenuItem* fEmptyPasteLink = nullptr;
	std::optional<BPoint> fWatchedPress; // whose outcome a watcher will tell
	bool fDragPending = false;
	entry_ref* fParentRef = nullptr;
	bool fInTrash = false;
	InvocableTextView* fEditor = nullptr; // a child
	// Kept so that no new one is where messages still tell of it.
	std::unique_ptr<InvocableTextView> fPastEditor;

	NFileXFer::PendingFiles fPendingFiles;

	FileListItem* fEditedRow = nullptr; // while there is an editor
	FileListItem* fNextRow = nullptr;   // to be edited when it has ended; may be gone by then
	// Rows may be replaced at any time, so these are kept by what they show.
	int32 fPressedIndex = -1;
	entry_ref fPressed;    // where a drag begins
	entry_ref fWatchedRow; // at fWatchedPress
	DropAim fDropAim;
};

// Enables the two items when the clipboard holds a file that is there still, and stores it.
void TestClipboard(entry_ref* ref, BMenuItem* paste, BMenuItem* pasteLink);
