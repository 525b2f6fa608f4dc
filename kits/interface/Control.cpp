// SPDX-License-Identifier: MIT

#include <interface/Control.h>

#include <interface/Window.h>

BControl::BControl(BRect frame, const char* name, const char* label, BMessage* message,
	uint32 resizingMode, uint32 flags) :
	BView(frame, name, resizingMode, flags), fLabel(label != nullptr ? label : "")
{
	SetMessage(message);
}

status_t
BControl::Invoke(BMessage* message)
{
	if (message == nullptr)
		message = Message();
	if (message == nullptr)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddInt64("when", system_time());
	copy.AddPointer("source", this);
	copy.AddInt32("be:value", fValue);
	return BInvoker::Invoke(&copy);
}

void
BControl::SetEnabled(bool enabled)
{
	if (enabled == fEnabled)
		return;
	fEnabled = enabled;
	Invalidate();
}

void
BControl::SetLabel(const char* label)
{
	fLabel = label != nullptr ? label : "";
	Invalidate();
}

void
BControl::SetValue(int32 value)
{
	if (value == fValue)
		return;
	fValue = value;
	Invalidate();
}

void
BControl::AttachedToWindow()
{
	BView::AttachedToWindow();
	if (!HasTarget())
		SetTarget(Window());
	if (Parent() != nullptr) {
		SetViewColor(Parent()->ViewColor());
		SetLowColor(Parent()->ViewColor());
	}
}

void
BControl::MakeFocus(bool focus)
{
	BView::MakeFocus(focus);
	Invalidate();
}

void
BControl::WindowActivated(bool active)
{
	BView::WindowActivated(active);
	if (IsFocus())
		Invalidate();
}
