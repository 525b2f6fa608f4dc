// SPDX-License-Identifier: MIT

// The tree of views, attaching, focus and the empty hooks.

#include <interface/View.h>

#include <app/AppDefs.h>
#include <desktop/GuiThread.h>
#include <interface/Control.h>
#include <interface/ScrollBar.h>
#include <interface/Window.h>

#include "kits/interface/WindowSurface.h"

#include <algorithm>
#include <cmath>
#include <cstring>

BView::State::State(const State& other)
{
	*this = other;
}

BView::State&
BView::State::operator=(const State& other)
{
	high = other.high;
	low = other.low;
	mode = other.mode;
	pen = other.pen;
	penSize = other.penSize;
	font = other.font;
	clip = other.clip ? std::make_unique<BRegion>(*other.clip) : nullptr;
	return *this;
}

BView::BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags) :
	BHandler(name), fFrame(frame), fResizingMode(resizingMode), fFlags(flags)
{}

BView::~BView()
{
	if (fParent != nullptr)
		RemoveSelf();
	while (!fChildren.empty()) {
		BView* child = fChildren.back();
		fChildren.pop_back();
		child->fParent = nullptr;
		delete child;
	}
	if (fHorizontalBar != nullptr)
		fHorizontalBar->_TargetGone();
	if (fVerticalBar != nullptr)
		fVerticalBar->_TargetGone();
}

void
BView::AddChild(BView* child, BView* before)
{
	if (child == nullptr || child->fParent != nullptr || child->fWindow != nullptr)
		return;
	auto place = std::find(fChildren.begin(), fChildren.end(), before);
	fChildren.insert(place, child);
	child->fParent = this;
	if (fWindow == nullptr) {
		child->SetNextHandler(this);
		return;
	}
	child->_Attach(fWindow);
	fWindow->fSurface->LayoutChanged();
	child->_LayoutChanged(desktop::PixelRegion(), true);
	child->_CallAttached();
	child->_CallAllAttached();
}

bool
BView::RemoveChild(BView* child)
{
	auto found = std::find(fChildren.begin(), fChildren.end(), child);
	if (found == fChildren.end())
		return false;
	if (fWindow != nullptr) {
		child->_CallDetached();
		child->_CallAllDetached();
		desktop::PixelRegion old;
		bool seen = child->_LayoutChanging(&old);
		child->_Detach();
		fChildren.erase(std::find(fChildren.begin(), fChildren.end(), child));
		fWindow->fSurface->LayoutChanged();
		if (seen) {
			fWindow->fSurface->AddDamage(old);
			fWindow->_WakeLoop();
		}
	} else
		fChildren.erase(found);
	child->fParent = nullptr;
	child->SetNextHandler(nullptr);
	return true;
}

bool
BView::RemoveSelf()
{
	return fParent != nullptr && fParent->RemoveChild(this);
}

BView*
BView::ChildAt(int32 index) const
{
	return index >= 0 && index < CountChildren() ? fChildren[index] : nullptr;
}

BView*
BView::NextSibling() const
{
	if (fParent == nullptr)
		return nullptr;
	const std::vector<BView*>& siblings = fParent->fChildren;
	auto next = std::find(siblings.begin(), siblings.end(), this) + 1;
	return next == siblings.end() ? nullptr : *next;
}

// The window's own top view is nobody's business.
BView*
BView::Parent() const
{
	return fWindow != nullptr && fParent == fWindow->fTop.get() ? nullptr : fParent;
}

BView*
BView::FindView(const char* name) const
{
	if (name == nullptr)
		return nullptr;
	if (Name() != nullptr && strcmp(Name(), name) == 0)
		return const_cast<BView*>(this);
	for (const BView* child : fChildren) {
		if (BView* found = child->FindView(name))
			return found;
	}
	return nullptr;
}

// First every view of the subtree gets its window and looper, so that hooks find all of them at
// work; the hooks are called in a second walk.
void
BView::_Attach(BWindow* window)
{
	fWindow = window;
	fAttachedCalled = false;
	fAllAttachedCalled = false;
	window->AddHandler(this);
	BView* parent = Parent();
	SetNextHandler(parent != nullptr ? static_cast<BHandler*>(parent) : window);
	if ((fFlags & B_PULSE_NEEDED) != 0)
		window->fPulseViews++;
	for (BView* child : fChildren)
		child->_Attach(window);
}

// A hook may add children, which are attached and told by that very call.
void
BView::_CallAttached()
{
	if (fAttachedCalled)
		return;
	fAttachedCalled = true;
	AttachedToWindow();
	for (size_t i = 0; i < fChildren.size(); i++)
		fChildren[i]->_CallAttached();
}

void
BView::_CallAllAttached()
{
	if (fAllAttachedCalled)
		return;
	fAllAttachedCalled = true;
	AllAttached();
	for (size_t i = 0; i < fChildren.size(); i++)
		fChildren[i]->_CallAllAttached();
}

void
BView::_CallDetached()
{
	DetachedFromWindow();
	for (size_t i = 0; i < fChildren.size(); i++)
		fChildren[i]->_CallDetached();
}

void
BView::_CallAllDetached()
{
	AllDetached();
	for (size_t i = 0; i < fChildren.size(); i++)
		fChildren[i]->_CallAllDetached();
}

void
BView::_Detach()
{
	for (BView* child : fChildren)
		child->_Detach();
	if ((fFlags & B_PULSE_NEEDED) != 0)
		fWindow->fPulseViews--;
	fWindow->_ViewDetached(this);
	fWindow->RemoveHandler(this);
	if (fParent != nullptr)
		SetNextHandler(fParent);
	fWindow = nullptr;
	fFrameMovedPending = false;
	fFrameResizedPending = false;
	fRegionsOf = 0;
}

void
BView::MakeFocus(bool focus)
{
	if (fWindow == nullptr || focus == IsFocus())
		return;
	fWindow->_SetFocus(focus ? this : nullptr);
}

bool
BView::IsFocus() const
{
	return fWindow != nullptr && fWindow->fFocus == this;
}

void
BView::KeyDown(const char* bytes, int32 numBytes)
{
	if (fWindow == nullptr || numBytes != 1 || bytes[0] != B_TAB)
		return;
	int32 held = 0;
	if (BMessage* message = fWindow->CurrentMessage())
		message->FindInt32("modifiers", &held);
	fWindow->_NavigateFocus((held & B_SHIFT_KEY) != 0);
}

void
BView::_CollectNavigable(std::vector<BView*>& views)
{
	if (fHidden > 0)
		return;
	const BControl* control = dynamic_cast<const BControl*>(this);
	const size_t index = views.size();
	if ((fFlags & B_NAVIGABLE) != 0 && (control == nullptr || control->IsEnabled()))
		views.push_back(this);
	const size_t own = views.size();
	for (BView* child : fChildren)
		child->_CollectNavigable(views);
	// A pane that only holds others would be a stop where nothing happens.
	if (own > index && views.size() > own && control == nullptr)
		views.erase(views.begin() + static_cast<ptrdiff_t>(index));
}

void
BView::_CollectTokens(std::vector<int64>& tokens) const
{
	tokens.push_back(_Token());
	for (const BView* child : fChildren)
		child->_CollectTokens(tokens);
}

status_t
BView::SetMouseEventMask(uint32 mask, uint32)
{
	if (fWindow == nullptr)
		return B_ERROR;
	if ((mask & B_POINTER_EVENTS) != 0)
		fWindow->fCaptureView = this;
	else if (fWindow->fCaptureView == this)
		fWindow->fCaptureView = nullptr;
	return B_OK;
}

void
BView::GetMouse(BPoint* where, uint32* buttons, bool checkQueue) const
{
	BPoint inWindow;
	uint32 held = 0;
	// The release waits in the queue, behind the drop.
	const bool inDrop = fWindow != nullptr && fWindow->_DropButtons(&held);
	if (fWindow == nullptr || !checkQueue || inDrop ||
		!fWindow->_TakeMouseMessage(&inWindow, &held)) {
		desktop::InputState now = desktop::CurrentInput();
		inWindow = BPoint(now.x, now.y);
		if (fWindow != nullptr)
			inWindow = fWindow->ConvertFromScreen(inWindow);
		if (!inDrop)
			held = now.buttons;
	}
	double x = 0, y = 0;
	_Offset(&x, &y);
	const BPoint inView(static_cast<float>(inWindow.x - x), static_cast<float>(inWindow.y - y));
	if (where != nullptr)
		*where = inView;
	if (fWindow != nullptr && fWindow->fSurface->Tracking().view == this)
		_ShowOutline(fWindow->fSurface->Tracking().RectAt(inView));
	if (buttons != nullptr)
		*buttons = held;
}

void
BView::BeginRectTracking(BRect rect, uint32 how)
{
	if (fWindow == nullptr)
		return;
	BPoint pointer;
	EndRectTracking();
	GetMouse(&pointer, nullptr, false);
	fWindow->fSurface->Tracking() = {this, rect, how == B_TRACK_RECT_CORNER, pointer};
	_ShowOutline(rect);
}

void
BView::EndRectTracking()
{
	if (fWindow == nullptr || fWindow->fSurface->Tracking().view != this)
		return;
	fWindow->fSurface->EndTracking(this);
	fWindow->Flush();
}

// At once, since those who follow the mouse do not return to the window's loop.
void
BView::_ShowOutline(BRect rect) const
{
	double x = 0, y = 0;
	_Offset(&x, &y);
	const auto pixel = [](float position, double offset) {
		return static_cast<int32>(std::floor(double(position) + offset + 0.5));
	};
	const desktop::PixelRect whole = {pixel(std::min(rect.left, rect.right), x),
		pixel(std::min(rect.top, rect.bottom), y), pixel(std::max(rect.left, rect.right), x),
		pixel(std::max(rect.top, rect.bottom), y)};
	desktop::PixelRegion outline(whole);
	outline.Exclude(
		desktop::PixelRect{whole.left + 1, whole.top + 1, whole.right - 1, whole.bottom - 1});
	outline.IntersectWith(_VisibleRegion());
	if (fWindow->fSurface->SetOutline(outline))
		fWindow->Flush();
}

void
BView::MessageReceived(BMessage* message)
{
	if (message->what != B_MOUSE_WHEEL_CHANGED || !_WheelMoved(message))
		BHandler::MessageReceived(message);
}

// Changes that came while the message was under way are told with it.
void
BView::_FrameEvent(uint32 what)
{
	if (what == B_VIEW_MOVED && fFrameMovedPending) {
		fFrameMovedPending = false;
		FrameMoved(fFrame.LeftTop());
	} else if (what == B_VIEW_RESIZED && fFrameResizedPending) {
		fFrameResizedPending = false;
		FrameResized(fFrame.Width(), fFrame.Height());
	}
}

void
BView::AttachedToWindow()
{}

void
BView::AllAttached()
{}

void
BView::DetachedFromWindow()
{}

void
BView::AllDetached()
{}

void
BView::FrameMoved(BPoint)
{}

void
BView::FrameResized(float, float)
{}

void
BView::Draw(BRect)
{}

void
BView::KeyUp(const char*, int32)
{}

void
BView::WindowActivated(bool)
{}

void
BView::Pulse()
{}

void
BView::MouseDown(BPoint)
{}

void
BView::MouseUp(BPoint)
{}

void
BView::MouseMoved(BPoint, uint32, const BMessage*)
{}

void
BView::TargetedByScrollView(BScrollView*)
{}
