// SPDX-License-Identifier: MIT

// A one-field editor laid over a row, to edit its text in place: Enter and Escape tell the target,
// which removes the editor.

#pragma once

#include <app/Message.h>
#include <interface/TextView.h>

#include <memory>

// Posts copies of its messages to the target with "view" (pointer to the editor) and "invoked";
// on Enter also "text". Owns the messages, borrows the target.
class InvocableTextView : public BTextView {
public:
	InvocableTextView(
		BRect frame, const char* name, BRect textRect, uint32 resizingMode, uint32 flags);

	// Messages set before are left to their maker.
	void SetInvocationMessage(BMessage* message);
	void SetEscapeMessage(BMessage* message);
	void SetTarget(BHandler* target) { fTarget = target; }

	// BTextView
	void AttachedToWindow() override;
	void KeyDown(const char* bytes, int32 numBytes) override;
	void Draw(BRect update) override; // in a dotted frame, which tells it from the row below

	virtual void Invoke();
	virtual void Escape();

private:
	void Post(const BMessage* message, bool invoked);

	std::unique_ptr<BMessage> fInvocationMessage;
	std::unique_ptr<BMessage> fEscapeMessage;
	BHandler* fTarget = nullptr;
};
