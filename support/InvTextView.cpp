// SPDX-License-Identifier: MIT

#include "support/InvTextView.h"

#include <app/Looper.h>

InvocableTextView::InvocableTextView(
	BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags) :
	BTextView(frame, name, textRect, resizingMode, flags | B_WILL_DRAW)
{}

void
InvocableTextView::SetInvocationMessage(BMessage* message)
{
	static_cast<void>(fInvocationMessage.release());
	fInvocationMessage.reset(message);
}

void
InvocableTextView::SetEscapeMessage(BMessage* message)
{
	static_cast<void>(fEscapeMessage.release());
	fEscapeMessage.reset(message);
}

void
InvocableTextView::AttachedToWindow()
{}

void
InvocableTextView::KeyDown(const char* bytes, int32 numBytes)
{
	for (int32 i = 0; i < numBytes; i++) {
		if (bytes[i] == B_ENTER) {
			Invoke();
			return;
		}
		if (bytes[i] == B_ESCAPE) {
			Escape();
			return;
		}
	}
	if (numBytes != 0)
		BTextView::KeyDown(bytes, numBytes);
}

void
InvocableTextView::Invoke()
{
	Post(fInvocationMessage.get(), true);
}

void
InvocableTextView::Escape()
{
	Post(fEscapeMessage.get(), false);
}

void
InvocableTextView::Post(const BMessage* message, bool invoked)
{
	if (message == nullptr || Looper() == nullptr)
		return;
	BMessage copy(*message);
	if (invoked)
		copy.AddString("text", Text());
	copy.AddBool("invoked", invoked);
	copy.AddPointer("view", this);
	Looper()->PostMessage(&copy, fTarget);
}

void
InvocableTextView::Draw(BRect update)
{
	BTextView::Draw(update);
	BRect edge = Frame();
	edge.OffsetTo(0, 0);
	SetLowColor(255, 255, 255);
	SetHighColor(0, 0, 0);
	StrokeRect(edge, B_MIXED_COLORS);
}
