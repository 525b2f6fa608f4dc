// SPDX-License-Identifier: MIT

// The selection that the middle button pastes.

#include <desktop/Text.h>

#include <desktop/GuiThread.h>

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

void
RequestPrimaryText(std::function<void(const std::string&)> done)
{
	PostGui([done = std::move(done)] {
		QClipboard* clipboard = QGuiApplication::clipboard();
		if (!clipboard->supportsSelection() || clipboard->ownsSelection())
			done(OwnText());
		else
			done(clipboard->text(QClipboard::Selection).toStdString());
	});
}

} // namespace desktop
