// SPDX-License-Identifier: MIT

#include <interface/PopUpMenu.h>

#include <desktop/GuiThread.h>
#include <interface/MenuWindow.h>
#include <interface/Modal.h>
#include <interface/Region.h>
#include <kernel/DeferKill.h>

#include <cmath>

// Of the screen: what a menu that is wanted there has to keep inside.
static BRect
AreaFor(BPoint where, const BPrivate::MenuRows& rows)
{
	return BPrivate::ToRect(desktop::PopUpArea(static_cast<int32>(std::floor(where.x)),
		static_cast<int32>(std::floor(where.y)), rows.Width(),
		rows.Height() + 2 * BPrivate::kMenuEdge));
}

static void
Accept(BMenuItem* item, bool deliversMessage)
{
	if (item->Menu()->IsRadioMode())
		item->SetMarked(true);
	if (deliversMessage)
		item->Invoke();
}

BPopUpMenu::BPopUpMenu(const char* name, bool radioMode, bool labelFromMarked, menu_layout layout) :
	BMenu(name, layout)
{
	SetRadioMode(radioMode);
	if (labelFromMarked)
		SetLabelFromMarked(true);
}

BPopUpMenu::~BPopUpMenu()
{
	_Close();
}

BMenuItem*
BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, bool async)
{
	return Go(where, deliversMessage, openAnyway, BRect(), async);
}

BMenuItem*
BPopUpMenu::Go(BPoint where, bool deliversMessage, bool openAnyway, BRect clickToOpen, bool async)
{
	BPrivate::ModalCall call;
	const desktop::InputState input = desktop::CurrentInput();
	if (!openAnyway && input.buttons == 0 && !call.HandlesPress())
		return nullptr;
	_Close();
	auto rows = std::make_shared<BPrivate::MenuRows>(*this);
	if (rows->Count() == 0)
		return nullptr;
	call.EndCapture(); // first, since the hook may do anything
	auto session = std::make_shared<BPrivate::MenuSession>(call.Window());
	BPrivate::MenuTracker::Start start;
	start.where = where;
	start.screen = AreaFor(where, *rows);
	start.pointer = BPoint(input.x, input.y);
	start.held = input.buttons != 0;
	start.stays = openAnyway;
	start.clickToOpen = clickToOpen;
	start.when = system_time();

	if (!async)
		session->wakeWaiter = call.Waker();
	else
		session->whenChosen = [=](BMenuItem* item) { Accept(item, deliversMessage); };
	(new BPrivate::MenuMasterWindow(Name(), rows, start, session))->Open();
	if (async) {
		fSession = std::move(session);
		return nullptr;
	}
	// A thread that is killed while it waits leaves no menu behind.
	struct Closer {
		~Closer() { session.Close(); }
		BPrivate::MenuSession& session;
	} closer{*session};
	call.Wait(session->Done(), [&session] { session->Close(); });
	BMenuItem* chosen = session->Choice();
	if (chosen != nullptr)
		Accept(chosen, deliversMessage);
	return chosen;
}

void
BPopUpMenu::_Close()
{
	if (!fSession)
		return;
	const BPrivate::DeferKill noKill; // the destructor calls this
	fSession->Close();
	while (acquire_sem(fSession->Done()) == B_INTERRUPTED) {
	}
	fSession.reset();
}
