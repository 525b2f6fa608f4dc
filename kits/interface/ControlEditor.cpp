// SPDX-License-Identifier: MIT

#include "kits/interface/ControlEditor.h"

#include <interface/TextControl.h>

namespace BPrivate {

// The control places it.
ControlEditor::ControlEditor(BTextControl& control) :
	BTextView(BRect(0, 0, 0, 0), nullptr, BRect(0, 0, 0, 0), B_FOLLOW_ALL_SIDES, B_WILL_DRAW),
	fControl(control)
{
	_SetSingleLine();
}

void
ControlEditor::SetCleanText(const char* text)
{
	SetText(text);
	fCleanText = Text();
}

void
ControlEditor::Commit()
{
	fCleanText = Text();
	fControl.Invoke();
}

void
ControlEditor::KeyDown(const char* bytes, int32 numBytes)
{
	if (numBytes == 1 && bytes[0] == B_ENTER) {
		if (!fControl.IsEnabled())
			return;
		Commit();
		SelectAll();
	} else if (numBytes == 1 && bytes[0] == B_TAB)
		BView::KeyDown(bytes, numBytes);
	else
		BTextView::KeyDown(bytes, numBytes);
}

// A control that does more at a press gets it wherever it lands.
void
ControlEditor::MouseDown(BPoint where)
{
	fControl.MouseDown(ConvertToParent(where));
}

void
ControlEditor::MakeFocus(bool focus)
{
	const bool had = IsFocus();
	BTextView::MakeFocus(focus);
	if (had == focus)
		return;
	fControl.Invalidate();
	if (!focus && Text() != fCleanText)
		Commit();
}

void
ControlEditor::_UserChanged()
{
	if (fControl.ModificationMessage() != nullptr)
		fControl.Invoke(fControl.ModificationMessage());
}

} // namespace BPrivate
