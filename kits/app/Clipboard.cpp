// SPDX-License-Identifier: MIT

#include <app/Clipboard.h>

#include <desktop/Clipboard.h>
#include <kernel/OS.h>

#include "kits/app/MessageContent.h"

using BPrivate::ContentUse;
using BPrivate::MessageContent;

namespace {

// A program that does not answer is not asked again before: else each menu would wait for it.
constexpr bigtime_t kRest = 5000000; // microseconds

} // namespace

// Never deleted: threads may ask as late as the process's last moment.
BClipboard* be_clipboard = new BClipboard("system");

BClipboard::BClipboard(const char* name) : fName(name) {}

bool
BClipboard::Lock()
{
	if (fLock.Lock() != B_OK)
		return false;
	if (fLock.Depth() > 1)
		return true;
	if (!_Load()) {
		fLock.Unlock();
		return false;
	}
	fData = fContents;
	return true;
}

void
BClipboard::Unlock()
{
	if (!fLock.IsLockedByCaller())
		return;
	if (fLock.Depth() == 1)
		fData = BMessage();
	fLock.Unlock();
}

bool
BClipboard::IsLocked() const
{
	return fLock.IsLockedByCaller();
}

// Makes fContents true. What is ours, and what has not changed since, needs no reading.
bool
BClipboard::_Load()
{
	using desktop::ClipboardLook;
	const ClipboardLook look = desktop::LookAtClipboard();
	if (look.owner == ClipboardLook::kUnreachable)
		return false;
	if (look.owner == ClipboardLook::kUs) {
		fChange = 0;
		return true;
	}
	if (look.owner == ClipboardLook::kNobody) {
		fContents = BMessage();
		fChange = 0;
		return true;
	}
	if (look.change == fChange && system_time() < fAskAgain)
		return true;
	fChange = look.change;
	fAskAgain = B_INFINITE_TIMEOUT;
	BMessage read;
	std::vector<std::string> formats;
	status_t status = desktop::ListClipboard(&formats);
	if (status == B_OK)
		status =
			BPrivate::ReadContent(formats, desktop::ReadClipboard, ContentUse::kClipboard, &read);
	if (status == B_TIMED_OUT)
		fAskAgain = system_time() + kRest;
	fContents = status == B_OK && !read.IsEmpty() ? std::move(read) : BMessage();
	return status != B_ERROR;
}

status_t
BClipboard::Clear()
{
	if (!IsLocked())
		return B_ERROR;
	fData = BMessage();
	return B_OK;
}

status_t
BClipboard::Commit()
{
	if (!IsLocked())
		return B_ERROR;
	std::shared_ptr<const MessageContent> content;
	if (!fData.IsEmpty())
		content = std::make_shared<MessageContent>(fData, ContentUse::kClipboard);
	if (!desktop::OfferClipboard(content))
		return B_ERROR;
	fContents = fData;
	return B_OK;
}

status_t
BClipboard::Revert()
{
	if (!IsLocked() || !_Load())
		return B_ERROR;
	fData = fContents;
	return B_OK;
}

BMessage*
BClipboard::Data() const
{
	return IsLocked() ? &fData : nullptr;
}
