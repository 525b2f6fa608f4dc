// SPDX-License-Identifier: MIT

// BAlert: a window with a short text and up to three buttons that waits for an answer.
//
// Heap only: it deletes itself when it was answered or closed. While it is open no other window of
// the program takes input. Alerts of threads that are no loopers come one after the other.

#pragma once

#include <interface/Window.h>

#include <string>

enum alert_type {
	B_EMPTY_ALERT = 0,
	B_INFO_ALERT = 1,
	B_IDEA_ALERT = 2,
	B_WARNING_ALERT = 3,
	B_STOP_ALERT = 4,
};

class BButton;
class BInvoker;

class BAlert : public BWindow {
public:
	// Button 0 is the leftmost one; the rightmost takes Enter.
	BAlert(const char* title, const char* text, const char* button0, const char* button1 = nullptr,
		const char* button2 = nullptr, button_width width = B_WIDTH_AS_USUAL,
		alert_type type = B_INFO_ALERT);
	BAlert(const char* title, const char* text, const char* button0, const char* button1,
		const char* button2, button_width width, button_spacing spacing,
		alert_type type = B_INFO_ALERT);

	// Another key for a button, a byte as in KeyDown(); none at first.
	void SetShortcut(int32 index, char key);
	BButton* ButtonAt(int32 index) const;

	// Waits and returns the button's index, or -1 when closed otherwise. Any thread; a window that
	// calls this in its own thread still repaints meanwhile.
	int32 Go();
	// Returns at once. The answer goes as int32 "which", in a copy of the invoker's message, to its
	// target; the invoker itself is not needed any more. Null tells nobody.
	status_t Go(BInvoker* invoker);

	// BWindow
	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;

protected:
	~BAlert() override;

private:
	struct Outcome;

	void Build(const char* text, const char* const labels[3], button_width width,
		button_spacing spacing, alert_type type);
	float AddButtons(BView* panel, const char* const labels[3], button_width width);
	void PlaceButtons(float right, float bottom, button_spacing spacing);
	bool Open(bool queues);

	BButton* fButtons[3] = {}; // views of the window
	char fShortcuts[3] = {};
	std::shared_ptr<Outcome> fOutcome; // shared with the thread that waits
	std::unique_ptr<BMessage> fAnswer; // what Go(invoker) sends
	BMessenger fAnswerTarget;
};
