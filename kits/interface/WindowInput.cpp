// SPDX-License-Identifier: MIT

// From input messages to the hooks of views: who is under the pointer, who has the focus, what a
// shortcut takes away.

#include <interface/Window.h>

#include <app/AppDefs.h>
#include <app/Application.h>
#include <desktop/GuiThread.h>
#include <interface/Button.h>
#include <interface/Modal.h>
#include <interface/TextMessages.h>

#include "kits/app/LooperCore.h"
#include "kits/interface/Dragged.h"
#include "kits/interface/WindowSurface.h"

#include <algorithm>
#include <cstring>
#include <utility>

using BPrivate::DragNotice;

namespace {

bool
IsMouse(const BMessage& message)
{
	return message.what == B_MOUSE_DOWN || message.what == B_MOUSE_UP ||
		message.what == B_MOUSE_MOVED;
}

BPoint
WhereOf(const BMessage& message)
{
	BPoint where;
	message.FindPoint("where", &where);
	return where;
}

int32
Int32Of(const BMessage& message, const char* name)
{
	int32 value = 0;
	message.FindInt32(name, &value);
	return value;
}

// What Command with a key means in every window, or 0.
uint32
CommandOf(uint32 key)
{
	switch (key) {
		case 'z':
			return B_UNDO;
		case 'x':
			return B_CUT;
		case 'c':
			return B_COPY;
		case 'v':
			return B_PASTE;
		case 'a':
			return B_SELECT_ALL;
		case 'w': // the window
		case 'q': // the application
			return B_QUIT_REQUESTED;
	}
	return 0;
}

// The window's point in the view's coordinates.
BPoint
InView(const BView* view, BPoint where)
{
	return view->ConvertFromScreen(view->Window()->ConvertToScreen(where));
}

} // namespace

// Runs before any filter: the filters of the view that will get the message see it too.
BHandler*
BWindow::_Retarget(BMessage* message, BHandler* target)
{
	if (target != this)
		return target;
	switch (message->what) {
		case B_MOUSE_DOWN:
		case B_MOUSE_UP:
		case B_MOUSE_MOVED:
		case B_MOUSE_WHEEL_CHANGED:
			return _RetargetMouse(message);
		case BPrivate::kMsgDrop:
			if (auto* drop = dynamic_cast<DragNotice*>(message))
				return _RetargetDrop(*drop);
			return this;
		case B_KEY_DOWN:
		case B_KEY_UP:
		case BPrivate::kMsgComposing:
			return _RetargetKey(message);
		case B_WINDOW_RESIZED:
		case B_WINDOW_MOVED:
			return _NewerIsQueued(*message) ? nullptr : this;
		case B_QUIT_REQUESTED:
			if (message->HasBool("close box") && BPrivate::CloseBlockedBy(this)) {
				beep();
				return nullptr;
			}
			return this;
	}
	return target;
}

// Of several such messages only the last one tells the truth.
bool
BWindow::_NewerIsQueued(const BMessage& message) const
{
	bool found = false;
	_Core().Visit([&](const BMessage& other) { return found = other.what == message.what; });
	return found;
}

BHandler*
BWindow::_RetargetMouse(BMessage* message)
{
	// Who was pressed before the alert came must not stay pressed.
	if (BPrivate::InputBlockedBy(this))
		return message->what == B_MOUSE_UP ? fCaptureView : nullptr;
	BPoint where = WhereOf(*message);
	BView* view = message->HasBool("left") ? nullptr : FindView(where);
	if (message->what == B_MOUSE_MOVED && view == fMouseView) {
		// A move that says nothing new gives way to a later one of the same view.
		bool overtaken = false;
		_Core().Visit([&](const BMessage& next) {
			if (!IsMouse(next))
				return next.what == BPrivate::kMsgDrop; // the moves before it have led there
			overtaken = next.what == B_MOUSE_MOVED && !next.HasBool("left") &&
				FindView(WhereOf(next)) == view;
			return true;
		});
		if (overtaken)
			return nullptr;
	}
	if (view == nullptr)
		view = fCaptureView;
	return view != nullptr ? static_cast<BHandler*>(view) : this;
}

BHandler*
BWindow::_RetargetKey(BMessage* message)
{
	if (BPrivate::InputBlockedBy(this))
		return nullptr;
	BHandler* target = fFocus != nullptr ? static_cast<BHandler*>(fFocus) : this;
	return message->what == B_KEY_DOWN ? _TakeShortcut(message, target) : target;
}

void
BWindow::DispatchMessage(BMessage* message, BHandler* target)
{
	if (message->WasDropped()) {
		// Whatever its code says: another program may have chosen it.
		if (const auto* drop = dynamic_cast<const DragNotice*>(message)) {
			_Drop(*drop, target);
			return;
		}
	}
	// Views are told apart from other handlers by their window.
	BView* view = dynamic_cast<BView*>(target);
	switch (message->what) {
		case B_MOUSE_DOWN:
			_MouseDown(message, view);
			break;
		case B_MOUSE_UP:
			_MouseUp(message, view);
			break;
		case B_MOUSE_MOVED:
			_MouseMoved(message, view);
			break;
		case B_KEY_DOWN:
			_KeyDown(message, view);
			break;
		case B_KEY_UP: {
			const char* bytes = nullptr;
			if (view != nullptr && message->FindString("bytes", &bytes) == B_OK)
				view->KeyUp(bytes, static_cast<int32>(strlen(bytes)));
			break;
		}
		case B_PULSE:
			if (target == this)
				_CallViews([](BView& each) {
					if ((each.Flags() & B_PULSE_NEEDED) != 0)
						each.Pulse();
				});
			break;
		case B_WINDOW_ACTIVATED: {
			bool active = fActive;
			if (target == this && message->FindBool("active", &active) == B_OK)
				_ActivationChanged(active);
			break;
		}
		case B_VIEW_MOVED:
		case B_VIEW_RESIZED:
			if (view != nullptr)
				view->_FrameEvent(message->what);
			break;
		default:
			if (target != this || !_OwnMessage(message))
				BLooper::DispatchMessage(message, target);
	}
}

void
BWindow::_MouseDown(BMessage* message, BView* target)
{
	if (target != nullptr)
		target->MouseDown(InView(target, WhereOf(*message)));
}

void
BWindow::_MouseUp(BMessage* message, BView* target)
{
	BPoint where = WhereOf(*message);
	BView* capture = fCaptureView;
	int64 token = capture != nullptr ? capture->_Token() : 0;
	if (Int32Of(*message, "buttons") == 0)
		fCaptureView = nullptr;
	if (target != nullptr)
		target->MouseUp(InView(target, where));
	// The first hook may have removed the other view.
	if (capture != nullptr && capture != target && _Core().handlers.count(token) != 0)
		capture->MouseUp(InView(capture, where));
}

// For a menu that takes the mouse over: the captor gets its release, and nobody another.
void
BWindow::_EndCapture()
{
	if (fSurface->IsOpen())
		fSurface->Native()->ForgetButtons();
	BView* capture = std::exchange(fCaptureView, nullptr);
	if (capture == nullptr)
		return;
	const desktop::InputState input = desktop::CurrentInput();
	capture->MouseUp(capture->ConvertFromScreen(BPoint(input.x, input.y)));
}

void
BWindow::_MouseMoved(BMessage* message, BView* target)
{
	BPoint where = WhereOf(*message);
	BView* capture = fCaptureView;
	const auto* notice = dynamic_cast<const DragNotice*>(message);
	const BMessage* drag = notice != nullptr ? &notice->DragMessage() : nullptr;
	BView* under = message->HasBool("left") ? nullptr : target;
	if (under != nullptr && under == capture && FindView(where) != under)
		under = nullptr; // the captor stands in for nobody
	// A drag that begins comes into the view where the pointer already is.
	const bool begins = !std::exchange(fMouseDrags, drag != nullptr) && drag != nullptr;
	uint32 transit = begins ? B_ENTERED_VIEW : B_INSIDE_VIEW;
	BView* left = fMouseView;
	if (under != left) {
		fMouseView = under;
		transit = B_ENTERED_VIEW;
		if (left != nullptr)
			left->MouseMoved(InView(left, where), B_EXITED_VIEW, drag);
	}
	if (under != nullptr && fMouseView == under)
		under->MouseMoved(InView(under, where), transit, drag);
	if (capture != nullptr && capture == fCaptureView && capture != under && capture != left)
		capture->MouseMoved(InView(capture, where), B_OUTSIDE_VIEW, drag);
}

// Takes the oldest mouse message off the queue, for a view that polls. A release still ends the
// capture.
bool
BWindow::_TakeMouseMessage(BPoint* where, uint32* buttons)
{
	std::unique_ptr<BMessage> message = _Core().TakeFirst(IsMouse);
	if (!message)
		return false;
	*where = WhereOf(*message);
	*buttons = static_cast<uint32>(Int32Of(*message, "buttons"));
	if (message->what == B_MOUSE_UP && *buttons == 0)
		fCaptureView = nullptr;
	return true;
}

void
BWindow::_KeyDown(BMessage* message, BView* target)
{
	const char* bytes = nullptr;
	if (message->FindString("bytes", &bytes) != B_OK || bytes[0] == '\0')
		return;
	if (bytes[0] == B_ENTER && bytes[1] == '\0' && fDefaultButton != nullptr &&
		fDefaultButton->IsEnabled()) {
		fDefaultButton->Invoke();
		return;
	}
	if (target != nullptr)
		target->KeyDown(bytes, static_cast<int32>(strlen(bytes)));
	else if (bytes[0] == B_TAB && bytes[1] == '\0')
		_NavigateFocus((Int32Of(*message, "modifiers") & B_SHIFT_KEY) != 0);
}

// Command and Control both make shortcuts. The key's message becomes the shortcut's in place, so
// that a key pressed right after it comes later. What no shortcut knows is swallowed, so that
// Control with a letter never reaches a view as that letter. Returns the message's target.
BHandler*
BWindow::_TakeShortcut(BMessage* message, BHandler* target)
{
	uint32 held = static_cast<uint32>(Int32Of(*message, "modifiers"));
	const char* bytes = nullptr;
	if ((held & (B_COMMAND_KEY | B_CONTROL_KEY)) == 0 ||
		message->FindString("bytes", &bytes) != B_OK || bytes[0] == '\0')
		return target;
	uint32 key = static_cast<uint32>(Int32Of(*message, "raw_char"));
	if (key >= 'A' && key <= 'Z')
		key += 'a' - 'A';
	constexpr uint32 kOthers = B_SHIFT_KEY | B_OPTION_KEY;
	for (const Shortcut& shortcut : fShortcuts) {
		if (shortcut.key != key || (shortcut.modifiers & kOthers) != (held & kOthers))
			continue;
		*message = *shortcut.message;
		if (shortcut.token == 0)
			return this;
		// Looked up here: a target in another looper could only be had with that one's lock.
		auto found = _Core().handlers.find(shortcut.token);
		if (found != _Core().handlers.end())
			return found->second;
		shortcut.target.SendMessage(message);
		return nullptr;
	}
	uint32 command = (held & kOthers) == 0 ? CommandOf(key) : 0;
	if (key == 'z' && (held & kOthers) == B_SHIFT_KEY)
		command = B_REDO;
	if (command == B_QUIT_REQUESTED) {
		*message = BMessage(command);
		if (key == 'w')
			return this;
		be_app_messenger.SendMessage(message);
		return nullptr;
	}
	if (command != 0) {
		*message = BMessage(command);
		return target;
	}
	bool isText = static_cast<unsigned char>(bytes[0]) > B_SPACE && bytes[0] != B_DELETE;
	return isText || (held & B_COMMAND_KEY) != 0 ? nullptr : target;
}

void
BWindow::_NavigateFocus(bool backward)
{
	std::vector<BView*> views;
	fTop->_CollectNavigable(views);
	if (views.empty())
		return;
	size_t count = views.size();
	// A control may have given the focus to a view inside it.
	auto current = views.end();
	for (BView* view = fFocus; view != nullptr && current == views.end(); view = view->fParent)
		current = std::find(views.begin(), views.end(), view);
	size_t next = backward ? count - 1 : 0;
	if (current != views.end())
		next = (current - views.begin() + (backward ? count - 1 : 1)) % count;
	views[next]->MakeFocus(true);
}

void
BWindow::_SetTextInput(bool wanted, BRect caret)
{
	if (fSurface->IsOpen())
		fSurface->Native()->SetTextInput(wanted, BPrivate::ToPixels(caret));
}

void
BWindow::_ActivationChanged(bool active)
{
	if (active == fActive)
		return;
	fActive = active;
	// A window manager may give the focus to the window behind an alert.
	if (active && BPrivate::InputBlockedBy(this))
		BPrivate::ActivateAlert();
	WindowActivated(active);
	_CallViews([active](BView& view) { view.WindowActivated(active); });
}

// Calls a hook of every view, parents first. It may remove and delete any of them.
void
BWindow::_CallViews(const std::function<void(BView&)>& hook)
{
	std::vector<int64> tokens;
	fTop->_CollectTokens(tokens);
	for (int64 token : tokens) {
		auto found = _Core().handlers.find(token);
		if (found == _Core().handlers.end())
			continue;
		if (BView* view = dynamic_cast<BView*>(found->second))
			hook(*view);
	}
}
