// SPDX-License-Identifier: MIT

// The life of a window, its frame and children, and when it paints.

#include <interface/Window.h>

#include <app/AppDefs.h>
#include <interface/Button.h>
#include <interface/MenuSession.h>
#include <interface/Modal.h>

#include "kits/interface/WindowEvents.h"
#include "kits/interface/WindowSurface.h"

#include <cmath>

using BPrivate::RoundToPixel;
using desktop::PixelRect;
using desktop::PixelRegion;

namespace {

// Asks the window's own thread to make the desktop's window, so that the creator need not wait.
constexpr uint32 kMsgShow = '_SHW';
constexpr uint32 kMsgHide = '_HID';

void
CloseModalWindows()
{
	BPrivate::CloseAllAlerts();
	BPrivate::CloseOpenMenu();
}

desktop::WindowKind
KindOf(window_type type)
{
	if (type == BPrivate::kPopUpWindow)
		return desktop::WindowKind::kPopUp;
	return type == B_MODAL_WINDOW ? desktop::WindowKind::kDialog : desktop::WindowKind::kTitled;
}

PixelRect
FramePixels(const BRect& frame)
{
	return {RoundToPixel(frame.left), RoundToPixel(frame.top), RoundToPixel(frame.right),
		RoundToPixel(frame.bottom)};
}

} // namespace

BWindow::BWindow(BRect frame, const char* title, window_type type, uint32 flags, uint32) :
	BLooper(title, B_DISPLAY_PRIORITY),
	fFrame(frame),
	fToldFrame(frame),
	fTitle(title != nullptr ? title : ""),
	fType(type),
	fFlags(flags),
	fEvents(std::make_unique<BPrivate::WindowEvents>(_Core())),
	fSurface(std::make_unique<BPrivate::WindowSurface>()),
	fTop(std::make_unique<BView>(Bounds(), nullptr, B_FOLLOW_ALL_SIDES, 0))
{
	_Core().isWindow = true;
	BPrivate::SetQuitPreparation(CloseModalWindows);
	fTop->_Attach(this);
	fTop->fAttachedCalled = true;
}

BWindow::~BWindow()
{
	// A window that was never shown comes here without Quit().
	if (fTop->fWindow != nullptr) {
		fTop->_CallDetached();
		fTop->_CallAllDetached();
		fTop->_Detach();
	}
	fTop.reset();
	fSurface->Close();
}

void
BWindow::Quit()
{
	if (fMayShow) {
		fMayShow = false;
		BPrivate::CloseMenuOf(this);
		if (fSurface->Native() != nullptr)
			fSurface->Native()->Hide();
		fTop->_CallDetached();
		fTop->_CallAllDetached();
		fTop->_Detach();
	}
	BLooper::Quit();
}

void
BWindow::Show()
{
	bool first = Thread() < 0;
	if (++fShowLevel == 1)
		PostMessage(kMsgShow);
	if (first)
		Run();
}

void
BWindow::Hide()
{
	if (--fShowLevel == 0)
		PostMessage(kMsgHide);
}

void
BWindow::Activate(bool active)
{
	if (active && fSurface->IsOpen())
		fSurface->Native()->Activate();
}

// In the window's thread: the first picture is complete before the window appears.
void
BWindow::_Realize()
{
	if (fShowLevel <= 0 || !fMayShow)
		return;
	if (!fSurface->IsOpen()) {
		desktop::NativeWindow::Options options;
		options.kind = KindOf(fType);
		options.movable = (fFlags & B_NOT_MOVABLE) == 0;
		options.resizable = (fFlags & B_NOT_RESIZABLE) == 0;
		options.closable = (fFlags & B_NOT_CLOSABLE) == 0;
		fSurface->Open(*fEvents, FramePixels(fFrame), fTitle, options);
		_ApplySizeLimits();
	}
	if (fSurface->Native()->IsShown())
		return;
	UpdateIfNeeded();
	fSurface->Native()->Show(*fSurface->Canvas());
}

void
BWindow::AddChild(BView* child, BView* before)
{
	fTop->AddChild(child, before);
}

bool
BWindow::RemoveChild(BView* child)
{
	return fTop->RemoveChild(child);
}

int32
BWindow::CountChildren() const
{
	return fTop->CountChildren();
}

BView*
BWindow::ChildAt(int32 index) const
{
	return fTop->ChildAt(index);
}

BView*
BWindow::FindView(const char* name) const
{
	return fTop->FindView(name);
}

BView*
BWindow::FindView(BPoint where) const
{
	int32 x = static_cast<int32>(std::floor(where.x));
	int32 y = static_cast<int32>(std::floor(where.y));
	const BView* found = fTop.get();
	if (!fTop->_PixelFrame().Contains(x, y))
		return nullptr;
	for (bool deeper = true; deeper;) {
		deeper = false;
		for (int32 i = found->CountChildren() - 1; i >= 0 && !deeper; i--) {
			const BView* child = found->fChildren[i];
			if (child->fHidden == 0 && child->_PixelFrame().Contains(x, y)) {
				found = child;
				deeper = true;
			}
		}
	}
	return found == fTop.get() ? nullptr : const_cast<BView*>(found);
}

// What the window knew of the view is forgotten before the view goes.
void
BWindow::_ViewDetached(BView* view)
{
	if (fFocus == view)
		fFocus = nullptr;
	if (fMouseView == view)
		fMouseView = nullptr;
	if (fCaptureView == view)
		fCaptureView = nullptr;
	if (fDefaultButton == view) // a button that is deleted gets no hook of its own any more
		fDefaultButton = nullptr;
	fSurface->ForgetClip();
	fSurface->EndTracking(view);
}

void
BWindow::_SetFocus(BView* view)
{
	BView* old = fFocus;
	if (old == view)
		return;
	if (view != nullptr && old != nullptr) {
		// The old view gives the focus up through its own hook, which may look at IsFocus().
		old->MakeFocus(false);
		if (fFocus == old)
			fFocus = nullptr;
	}
	fFocus = view;
	SetPreferredHandler(view);
}

BRect
BWindow::Bounds() const
{
	return BRect(0, 0, fFrame.Width(), fFrame.Height());
}

BRect
BWindow::Frame() const
{
	return fFrame;
}

void
BWindow::MoveTo(BPoint leftTop)
{
	const BPoint before = fFrame.LeftTop();
	fFrame.OffsetTo(std::floor(leftTop.x + 0.5f), std::floor(leftTop.y + 0.5f));
	if (fFrame.LeftTop() != before)
		PostMessage(B_WINDOW_MOVED);
	if (fSurface->IsOpen())
		fSurface->Native()->MoveTo(RoundToPixel(fFrame.left), RoundToPixel(fFrame.top));
}

void
BWindow::ResizeTo(float width, float height)
{
	int32 columns = RoundToPixel(std::floor(width)) + 1;
	int32 rows = RoundToPixel(std::floor(height)) + 1;
	const double scale = fSurface->IsOpen() ? fSurface->Canvas()->Scale() : 0;
	if (_SetSize(columns, rows, scale))
		PostMessage(B_WINDOW_RESIZED);
	if (fSurface->IsOpen())
		fSurface->Native()->ResizeTo(columns, rows);
}

void
BWindow::SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight)
{
	fSizeLimits = SizeLimits{RoundToPixel(minWidth) + 1, RoundToPixel(maxWidth) + 1,
		RoundToPixel(minHeight) + 1, RoundToPixel(maxHeight) + 1};
	_ApplySizeLimits();
}

void
BWindow::_ApplySizeLimits()
{
	if (fSizeLimits && fSurface->IsOpen()) {
		fSurface->Native()->SetSizeLimits(fSizeLimits->minWidth, fSizeLimits->maxWidth,
			fSizeLimits->minHeight, fSizeLimits->maxHeight);
	}
}

// Scale 0: the window has no picture yet. True when the size is another now.
bool
BWindow::_SetSize(int32 columns, int32 rows, double scale)
{
	float width = static_cast<float>(columns - 1);
	float height = static_cast<float>(rows - 1);
	bool resized = width != fFrame.Width() || height != fFrame.Height();
	if (!resized && (scale == 0 || scale == fSurface->Canvas()->Scale()))
		return false;
	fFrame.right = fFrame.left + width;
	fFrame.bottom = fFrame.top + height;
	if (scale != 0)
		fSurface->SetSize(columns, rows, scale);
	fTop->_SetFrame(Bounds());
	return resized;
}

// In the window's thread. The messages that come after the first of a burst find nothing to tell.
void
BWindow::_TellFrame()
{
	const BRect told = fToldFrame;
	fToldFrame = fFrame;
	if (told.LeftTop() != fFrame.LeftTop())
		FrameMoved(fFrame.LeftTop());
	if (told.Width() != fFrame.Width() || told.Height() != fFrame.Height())
		FrameResized(fFrame.Width(), fFrame.Height());
}

void
BWindow::SetTitle(const char* title)
{
	fTitle = title != nullptr ? title : "";
	if (fSurface->IsOpen())
		fSurface->Native()->SetTitle(fTitle);
}

BPoint
BWindow::ConvertToScreen(BPoint p) const
{
	return p + fFrame.LeftTop();
}

BPoint
BWindow::ConvertFromScreen(BPoint p) const
{
	return p - fFrame.LeftTop();
}

void
BWindow::SetDefaultButton(BButton* button)
{
	fDefaultButton = button;
}

void
BWindow::AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target)
{
	fShortcuts.push_back({key, modifiers, std::unique_ptr<BMessage>(message), BMessenger(target),
		target != nullptr ? target->_Token() : 0});
}

void
BWindow::Flush()
{
	fSurface->Show();
}

void
BWindow::Sync()
{
	fSurface->Show();
}

void
BWindow::UpdateIfNeeded()
{
	if (!fMayShow) // views are gone, and the lock may be had until the thread has ended
		return;
	if (fSurface->BeginUpdate()) {
		fTop->_Paint();
		fSurface->EndUpdate();
	}
	if (!fSurface->IsUpdating())
		fSurface->Show();
}

void
BWindow::SetPulseRate(bigtime_t rate)
{
	fPulseRate = rate;
	fNextPulse = B_INFINITE_TIMEOUT;
	_WakeLoop();
}

void
BWindow::_WakeLoop()
{
	if (Thread() != find_thread(nullptr))
		_Core().Wake();
}

bigtime_t
BWindow::_NextWakeUp()
{
	if (fPulseViews <= 0 || fPulseRate <= 0)
		fNextPulse = B_INFINITE_TIMEOUT;
	else if (fNextPulse == B_INFINITE_TIMEOUT)
		fNextPulse = system_time() + fPulseRate;
	return std::min(fNextPulse, fSurface->Deadline());
}

void
BWindow::_AfterMessage()
{
	bigtime_t now = system_time();
	if (now >= fNextPulse) {
		fNextPulse = now + fPulseRate; // those that were missed are not made up for
		PostMessage(B_PULSE);
	}
	if (fSurface->Deadline() != B_INFINITE_TIMEOUT &&
		(now >= fSurface->Deadline() || _Core().QueueIsEmpty()))
		UpdateIfNeeded();
}

void
BWindow::_ServeWhileBlocked()
{
	auto isResize = [](const BMessage& message) { return message.what == B_WINDOW_RESIZED; };
	while (std::unique_ptr<BMessage> message = _Core().TakeFirst(isResize))
		_OwnMessage(message.get());
	// A window that waits for an alert in a hook does not come to _ActivationChanged().
	bool active = false;
	_Core().Visit([&active](BMessage& message) {
		if (message.what == B_WINDOW_ACTIVATED)
			message.FindBool("active", &active);
		return false;
	});
	if (active && BPrivate::InputBlockedBy(this))
		BPrivate::ActivateAlert();
	UpdateIfNeeded();
}

// What the window does for itself, whatever its subclass makes of MessageReceived().
bool
BWindow::_OwnMessage(BMessage* message)
{
	switch (message->what) {
		case kMsgShow:
			_Realize();
			return true;
		case kMsgHide:
			if (fShowLevel <= 0 && fSurface->IsOpen())
				fSurface->Native()->Hide();
			return true;
		case B_WINDOW_RESIZED: {
			int32 columns = 0, rows = 0;
			double scale = 0;
			if (fSurface->IsOpen() && message->FindInt32("columns", &columns) == B_OK &&
				message->FindInt32("rows", &rows) == B_OK &&
				message->FindDouble("scale", &scale) == B_OK)
				_SetSize(columns, rows, scale);
			_TellFrame();
			return true;
		}
		case B_WINDOW_MOVED: {
			BPoint where;
			if (message->FindPoint("where", &where) == B_OK)
				fFrame.OffsetTo(where);
			_TellFrame();
			return true;
		}
	}
	return false;
}

void
BWindow::FrameMoved(BPoint)
{}

void
BWindow::FrameResized(float, float)
{}

void
BWindow::WindowActivated(bool)
{}
