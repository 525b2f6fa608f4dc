// SPDX-License-Identifier: MIT

// The program's message codes and field names, each declared here and nowhere else.

#pragma once

#include <app/AppDefs.h>

enum : uint32 {
	// Folder and root. Fields: kName_Folder; "source" pointer to the view that asks.
	kMSG_ChangeFolder = 'CFld', // a pane to the window
	kMSG_SetFolder = 'SFld',    // the window to the panes
	kMSG_SetRoot = 'StRt',      // root bar or tree to the window
	kMSG_RootChanged = 'RtCh',  // the root bar's field to the root bar
	kMSG_Null = 'Null',         // items of the root bar's menu: "Directory" string

	// Lists to their panes: "index", one for each row.
	kMSG_OutlineSelection = 'OSlc',
	kMSG_OutlineInvocation = 'OInv',
	kMSG_ItemInvocation = 'IInv',
	kMSG_ExpandSubItems = 'ExSI',
	kMSG_ExpandThisItem = 'ExTI', // "item" pointer to the row

	// Context menus.
	kMSG_Open = 'IOpn',
	kMSG_Rename = 'IRnm',
	kMSG_Delete = 'IDel',
	kMSG_CreateLink = 'ILnk',
	kMSG_Refresh = 'Rfsh',
	kMSG_ForceRefresh = 'FRfh',

	// A list to itself, behind the messages that wait.
	kMSG_ShowChanges = 'ShCh',
	kMSG_GoOnTransferring = 'GoOn',

	// The in-place editor: "view" pointer to it, "invoked" bool, "text" string.
	kMSG_TextEditInvoke = 'TE:i',
	kMSG_TextEditEscape = 'TE:e',

	// Drags and transfers. 'DATA' is the platform's B_SIMPLE_DATA too.
	kMSG_DragFile = 'DATA',
	kMSG_Link = 'Link',
	kMSG_Copy = 'Copy',
	kMSG_Move = 'Move',
	kMSG_Cancel = 'Cncl',
	kMSG_CopyComplete = 'CpDn', // "source" ref of the original, "target" string: path of the copy

	kMSG_ResizeEdges = 'RszE',

	// The mouse watchers: "where" point, "buttons", "modifiers".
	MW_MOUSE_DOWN = 'Mw-D',
	MW_MOUSE_UP = 'Mw-U',
	MW_MOUSE_MOVED = 'Mw-M',
	MW_MOUSE_DRAG = 'Mw-d',
	MW_MOUSE_POPUP = 'Mw-P',
	MW_MOUSE_CLICK = 'Mw-C',
};

constexpr const char* kName_Folder = "folder";
constexpr const char* kName_Refs = "refs";
constexpr const char* kName_DragFile = "refs";
constexpr const char* kName_DragButtons = "buttons";
constexpr const char* kName_DragDrop = "_drop_point_";
