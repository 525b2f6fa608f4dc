// SPDX-License-Identifier: MIT

// BControl: a view with a label and a value that sends a message.

#pragma once

#include <app/Invoker.h>
#include <interface/View.h>

#include <string>

enum { B_CONTROL_OFF = 0, B_CONTROL_ON = 1 };

// Owns the message. Its target is the window, unless one was set before it is attached.
class BControl : public BView, public BInvoker {
public:
	BControl(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode, uint32 flags);

	// Sends a copy with "when", "source" and "be:value" added.
	status_t Invoke(BMessage* message = nullptr) override;

	virtual void SetEnabled(bool enabled);
	bool IsEnabled() const { return fEnabled; }
	virtual void SetLabel(const char* label);
	const char* Label() const { return fLabel.c_str(); }
	virtual void SetValue(int32 value);
	int32 Value() const { return fValue; }

	// BView
	void AttachedToWindow() override; // takes over the parent's colour
	void MakeFocus(bool focus = true) override;
	void WindowActivated(bool active) override;

private:
	std::string fLabel;
	int32 fValue = B_CONTROL_OFF;
	bool fEnabled = true;
};
