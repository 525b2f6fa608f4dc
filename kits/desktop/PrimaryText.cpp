// SPDX-License-Identifier: MIT

// The selection that the middle button pastes.

#include <desktop/Text.h>

#include "ClipboardWatch.h"
#include "X11Selection.h"

#include <desktop/Clipboard.h>
#include <desktop/GuiThread.h>
#include <support/Errors.h>

#include <QClipboard>
#include <QGuiApplication>

namespace desktop {

// What this process selected last, byte by byte; GUI thread.
static std::string&
OwnText()
{
	static std::string* sText = new std::string;
	return *sText;
}

void
SetPrimaryText(std::string text)
{
	PostGui([text = std::move(text)] {
		OwnText() = text;
		QClipboard* clipboard = QGuiApplication::clipboard();
		if (clipboard->supportsSelection())
			clipboard->setText(QString::fromUtf8(text.c_str()), QClipboard::Selection);
	});
}

// Of another program, over a connection of our own: the GUI thread would wait too long for one
// that does not answer.
static bool
ReadFromOthers(X11Selection& selection, std::string* text)
{
	uint32 owner = 0;
	bool ours = false;
	if (selection.GetOwner(&owner, &ours) != B_OK || ours)
		return false;
	std::vector<std::string> formats;
	if (owner == 0 || selection.List(&formats) != B_OK ||
		selection.Read(format::kText, text) != B_OK)
		text->clear();
	return true;
}

std::string
PrimaryText()
{
	std::string text;
	// What was selected here before this call has been told to the display when it returns.
	if (!WaitForDesktop() || !CallGui([&] { text = OwnText(); }))
		return text;
	X11Selection* selection = PrimarySelection();
	if (selection != nullptr && ReadFromOthers(*selection, &text))
		return text;
	if (selection == nullptr) {
		CallGui([&] {
			const QClipboard* clipboard = QGuiApplication::clipboard();
			if (clipboard->supportsSelection() && !clipboard->ownsSelection())
				text = clipboard->text(QClipboard::Selection).toStdString();
		});
	}
	return text;
}

} // namespace desktop
