// SPDX-License-Identifier: MIT

#include "kits/interface/WindowEvents.h"

#include <app/AppDefs.h>
#include <interface/TextMessages.h>

namespace BPrivate {

void
WindowEvents::WindowResized(int32 width, int32 height, double scale)
{
	auto message = std::make_unique<BMessage>(B_WINDOW_RESIZED);
	message->AddInt32("columns", width);
	message->AddInt32("rows", height);
	message->AddDouble("scale", scale);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowMoved(int32 x, int32 y)
{
	auto message = std::make_unique<BMessage>(B_WINDOW_MOVED);
	message->AddPoint("where", BPoint(static_cast<float>(x), static_cast<float>(y)));
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowCloseRequested()
{
	auto message = std::make_unique<BMessage>(B_QUIT_REQUESTED);
	message->AddBool("close box", true);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowActivated(bool active)
{
	auto message = std::make_unique<BMessage>(B_WINDOW_ACTIVATED);
	message->AddBool("active", active);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowMouse(const desktop::MouseEvent& event)
{
	using Kind = desktop::MouseEvent;
	uint32 what = event.kind == Kind::kDown ? B_MOUSE_DOWN
		: event.kind == Kind::kUp           ? B_MOUSE_UP
											: B_MOUSE_MOVED;
	auto message = std::make_unique<BMessage>(what);
	message->AddInt64("when", event.when);
	message->AddPoint("where", BPoint(event.x, event.y));
	message->AddInt32("buttons", static_cast<int32>(event.buttons));
	message->AddInt32("modifiers", static_cast<int32>(event.modifiers));
	if (event.kind == Kind::kDown)
		message->AddInt32("clicks", event.clicks);
	if (event.kind == Kind::kLeft)
		message->AddBool("left", true);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowWheel(const desktop::WheelEvent& event)
{
	auto message = std::make_unique<BMessage>(B_MOUSE_WHEEL_CHANGED);
	message->AddInt64("when", event.when);
	message->AddPoint("where", BPoint(event.x, event.y));
	message->AddInt32("buttons", static_cast<int32>(event.buttons));
	message->AddInt32("modifiers", static_cast<int32>(event.modifiers));
	message->AddFloat("be:wheel_delta_x", event.deltaX);
	message->AddFloat("be:wheel_delta_y", event.deltaY);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowKey(const desktop::KeyEvent& event)
{
	auto message = std::make_unique<BMessage>(event.down ? B_KEY_DOWN : B_KEY_UP);
	message->AddInt64("when", event.when);
	message->AddInt32("key", event.key);
	message->AddInt32("modifiers", static_cast<int32>(event.modifiers));
	message->AddInt32("raw_char", event.rawChar);
	for (char byte : event.bytes)
		message->AddInt8("byte", static_cast<int8>(byte));
	message->AddString("bytes", event.bytes.c_str());
	if (event.repeat)
		message->AddInt32("be:key_repeat", 1);
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowModifiers(uint32 modifiers, bigtime_t when)
{
	auto message = std::make_unique<BMessage>(B_MODIFIERS_CHANGED);
	message->AddInt64("when", when);
	message->AddInt32("modifiers", static_cast<int32>(modifiers));
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowDrag(const desktop::DragEvent& event)
{
	using Kind = desktop::DragEvent;
	if (fDragged == nullptr || !fDragged->Holds(event.content))
		fDragged = std::make_shared<Dragged>(event.content);
	const bool dropped = event.kind == Kind::kDropped;
	auto message = std::make_unique<DragNotice>(dropped ? kMsgDrop : B_MOUSE_MOVED, fDragged);
	message->AddInt64("when", event.mouse.when);
	message->AddPoint("where", BPoint(event.mouse.x, event.mouse.y));
	message->AddInt32("buttons", static_cast<int32>(event.mouse.buttons));
	message->AddInt32("modifiers", static_cast<int32>(event.mouse.modifiers));
	if (event.kind == Kind::kLeft)
		message->AddBool("left", true);
	if (event.kind != Kind::kMoved)
		fDragged = nullptr;
	fWindow.Post(std::move(message));
}

void
WindowEvents::WindowComposing(const std::string& text, size_t caret)
{
	auto message = std::make_unique<BMessage>(kMsgComposing);
	message->AddString("text", text.c_str());
	message->AddInt32("caret", static_cast<int32>(caret));
	fWindow.Post(std::move(message));
}

} // namespace BPrivate
