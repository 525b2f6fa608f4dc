// SPDX-License-Identifier: MIT

#include <desktop/Clipboard.h>

#include "ClipboardWatch.h"
#include "ContentMimeData.h"
#include "X11Selection.h"

#include <desktop/GuiThread.h>
#include <kernel/OS.h>
#include <support/Errors.h>

#include <QClipboard>
#include <QGuiApplication>

#include <atomic>
#include <mutex>
#include <xcb/xcb.h>

namespace desktop {

namespace {

// As told by Qt; a little late.
std::atomic<uint64> sToldChanges = 1;

// Set before jobs run; null when the display is not X11's.
X11Selection* sSelection = nullptr;
X11Selection* sPrimary = nullptr;

// Several notices may come for one change, and on X11 a look may see a new owner before the notice
// of it.
uint64
ChangeNumber(uint32 owner)
{
	static std::mutex sLock;
	static uint64 sNumber = 0;
	static std::pair<uint32, uint64> sLast;
	std::lock_guard lock(sLock);
	const std::pair<uint32, uint64> now(owner, sToldChanges.load());
	if (sNumber == 0 || sLast != now)
		sNumber++;
	sLast = now;
	return sNumber;
}

constexpr const char* kFormats[] = {
	format::kMessage, format::kCopiedFiles, format::kUriList, format::kCutSelection, format::kText};

ClipboardLook
LookByQt()
{
	const QMimeData* data = QGuiApplication::clipboard()->mimeData();
	ClipboardLook look{ClipboardLook::kOther, ChangeNumber(0)};
	if (data == nullptr || data->formats().isEmpty())
		look.owner = ClipboardLook::kNobody;
	else if (dynamic_cast<const ContentMimeData*>(data) != nullptr)
		look.owner = ClipboardLook::kUs;
	return look;
}

} // namespace

void
WatchClipboard()
{
	QObject::connect(QGuiApplication::clipboard(), &QClipboard::changed, [](QClipboard::Mode mode) {
		if (mode == QClipboard::Clipboard)
			sToldChanges++;
	});
	if (QGuiApplication::platformName() != QLatin1String("xcb"))
		return; // others may have a display of X11 too, which is not the one that is shown
	if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
		const uint32 windowBase = xcb_get_setup(x11->connection())->resource_id_base;
		sSelection = new X11Selection("CLIPBOARD", windowBase);
		sPrimary = new X11Selection("PRIMARY", windowBase);
	}
}

X11Selection*
PrimarySelection()
{
	return sPrimary;
}

bool
OfferClipboard(std::shared_ptr<const Content> content)
{
	return CallGui([&] {
		if (content != nullptr)
			QGuiApplication::clipboard()->setMimeData(new ContentMimeData(content));
		else
			QGuiApplication::clipboard()->clear();
	});
}

ClipboardLook
LookAtClipboard()
{
	ClipboardLook look;
	if (!WaitForDesktop())
		return look;
	if (sSelection == nullptr) {
		CallGui([&] { look = LookByQt(); });
		return look;
	}
	uint32 window = 0;
	bool ours = false;
	if (sSelection->GetOwner(&window, &ours) != B_OK)
		return look;
	if (sSelection->TakeLateAnswer())
		sToldChanges++; // of an owner that answers again
	look.change = ChangeNumber(window);
	look.owner = window == 0 ? ClipboardLook::kNobody
		: ours               ? ClipboardLook::kUs
							 : ClipboardLook::kOther;
	return look;
}

status_t
ListClipboard(std::vector<std::string>* formats)
{
	if (!WaitForDesktop())
		return B_ERROR;
	if (sSelection != nullptr)
		return sSelection->List(formats);
	formats->clear();
	const bool asked = CallGui([&] {
		const QMimeData* data = QGuiApplication::clipboard()->mimeData();
		for (const char* format : kFormats) {
			if (data != nullptr && HasFormat(*data, format))
				formats->push_back(format);
		}
	});
	return asked ? B_OK : B_ERROR;
}

status_t
ReadClipboard(const std::string& format, std::string* bytes)
{
	if (!WaitForDesktop())
		return B_ERROR;
	if (sSelection != nullptr)
		return sSelection->Read(format, bytes);
	status_t status = B_NAME_NOT_FOUND;
	const bool asked = CallGui([&] {
		const QMimeData* data = QGuiApplication::clipboard()->mimeData();
		if (data == nullptr || !HasFormat(*data, format.c_str()))
			return;
		const bigtime_t start = system_time();
		*bytes = BytesOf(*data, format.c_str());
		// Qt does not tell why there is nothing.
		const bool hangs = bytes->empty() && system_time() - start > kClipboardPatience / 2;
		status = hangs ? B_TIMED_OUT : B_OK;
	});
	return asked ? status : B_ERROR;
}

} // namespace desktop
