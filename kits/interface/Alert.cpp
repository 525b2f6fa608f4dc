// SPDX-License-Identifier: MIT

#include <interface/Alert.h>

#include <app/AppDefs.h>
#include <app/Invoker.h>
#include <desktop/GuiThread.h>
#include <interface/AlertPanel.h>
#include <interface/Button.h>
#include <interface/Modal.h>
#include <interface/Screen.h>

#include <algorithm>
#include <cmath>

static constexpr uint32 kMsgButton = '_ALB';
static constexpr float kUsualWidth = 75;
static constexpr float kMinAlertWidth = 260;
static constexpr float kMargin = 10;
static constexpr float kButtonGap = 8;
static constexpr float kOffsetGap = 28;

// How it ended; lives as long as the alert or somebody who waits for it.
struct BAlert::Outcome {
	Outcome() : answered(create_sem(0, "alert")) {}
	~Outcome() { delete_sem(answered); }

	const sem_id answered;
	int32 which = -1;                 // written before the semaphore is released
	std::function<void()> wakeWaiter; // or none; set before the alert's loop starts
};

BAlert::BAlert(const char* title, const char* text, const char* button0, const char* button1,
	const char* button2, button_width width, alert_type type) :
	BAlert(title, text, button0, button1, button2, width, B_EVEN_SPACING, type)
{}

BAlert::BAlert(const char* title, const char* text, const char* button0, const char* button1,
	const char* button2, button_width width, button_spacing spacing, alert_type type) :
	BWindow(BRect(0, 0, kMinAlertWidth, 100), title, B_MODAL_WINDOW, B_NOT_RESIZABLE),
	fOutcome(std::make_shared<Outcome>())
{
	const char* const labels[3] = {button0, button1, button2};
	Build(text, labels, width, spacing, type);
}

BAlert::~BAlert()
{
	BPrivate::AlertGone(this);
	if (fAnswer) {
		fAnswer->AddInt32("which", fOutcome->which);
		fAnswerTarget.SendMessage(fAnswer.get());
	}
	release_sem(fOutcome->answered);
	if (fOutcome->wakeWaiter)
		fOutcome->wakeWaiter();
}

void
BAlert::Build(const char* text, const char* const labels[3], button_width width,
	button_spacing spacing, alert_type type)
{
	auto* panel = new BPrivate::AlertPanel(text, type);
	float buttonsWidth = AddButtons(panel, labels, width);
	if (spacing == B_OFFSET_SPACING && fButtons[1] != nullptr)
		buttonsWidth += kOffsetGap - kButtonGap;
	// The strip stays visible left of the buttons.
	const float strip = type == B_EMPTY_ALERT ? 0 : 3 * kMargin;
	const float windowWidth =
		std::max({kMinAlertWidth, panel->ContentWidth(), strip + buttonsWidth + 2 * kMargin});
	float buttonHeight = 0;
	if (fButtons[0] != nullptr)
		buttonHeight = fButtons[0]->Frame().Height();
	const float windowHeight = panel->ContentHeight() + 1.5f * kMargin + buttonHeight + kMargin;

	const float right = std::ceil(windowWidth);
	const float bottom = std::ceil(windowHeight);
	BRect screen = BScreen(this).Frame();
	ResizeTo(right, bottom);
	MoveTo(std::max(std::floor((screen.left + screen.right - right) / 2), screen.left),
		std::max(screen.top + std::floor((screen.Height() - bottom) / 3), screen.top));
	panel->ResizeTo(right, bottom);
	PlaceButtons(right, bottom, spacing);
	AddChild(panel);
}

// Makes the buttons in their sizes; returns the width that they take with even gaps.
float
BAlert::AddButtons(BView* panel, const char* const labels[3], button_width mode)
{
	int32 count = 0;
	float widest = 0;
	for (int32 i = 0; i < 3 && labels[i] != nullptr && labels[i][0] != '\0'; i++) {
		BMessage* message = new BMessage(kMsgButton); // the button owns it
		message->AddInt32("which", i);
		fButtons[i] = new BButton(
			BRect(0, 0, 0, 0), "button", labels[i], message, B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM);
		fButtons[i]->ResizeToPreferred();
		widest = std::max(widest, fButtons[i]->Frame().Width());
		panel->AddChild(fButtons[i]);
		count++;
	}
	float total = 0;
	for (int32 i = 0; i < count; i++) {
		float width = fButtons[i]->Frame().Width();
		if (mode == B_WIDTH_AS_USUAL)
			width = std::max(width, kUsualWidth);
		else if (mode == B_WIDTH_FROM_WIDEST)
			width = widest;
		fButtons[i]->ResizeTo(width, fButtons[i]->Frame().Height());
		total += width + (i > 0 ? kButtonGap : 0);
	}
	if (count > 0)
		fButtons[count - 1]->MakeDefault(true);
	return total;
}

void
BAlert::PlaceButtons(float right, float bottom, button_spacing spacing)
{
	float x = right - kMargin;
	for (int32 i = 2; i >= 0; i--) {
		if (fButtons[i] == nullptr)
			continue;
		BRect frame = fButtons[i]->Frame();
		x -= frame.Width();
		fButtons[i]->MoveTo(x, bottom - kMargin - frame.Height());
		x -= spacing == B_OFFSET_SPACING && i == 1 ? kOffsetGap : kButtonGap;
	}
}

void
BAlert::SetShortcut(int32 index, char key)
{
	if (index >= 0 && index < 3)
		fShortcuts[index] = key;
}

BButton*
BAlert::ButtonAt(int32 index) const
{
	return index >= 0 && index < 3 ? fButtons[index] : nullptr;
}

// Starts the loop and asks for the window. Afterwards the alert may be gone at any time.
bool
BAlert::Open(bool queues)
{
	// First, since the loop's end undoes it.
	BPrivate::AlertReady(this, BMessenger(this), queues);
	if (Run() < 0) {
		Quit();
		return false;
	}
	return true;
}

int32
BAlert::Go()
{
	// A thread that is killed while it waits leaves no question behind.
	struct Closer {
		~Closer() { alert.SendMessage(BPrivate::kMsgCloseAlert); }
		BMessenger alert;
	};
	const std::shared_ptr<Outcome> outcome = fOutcome;
	Closer closer{BMessenger(this)};
	BPrivate::ModalCall call;
	outcome->wakeWaiter = call.Waker();
	if (!Open(!call.IsOfLooper()))
		return outcome->which;
	call.Wait(outcome->answered, [&call] {
		// A window that is asked to quit waits for the answer. The application cannot be told
		// while its own thread waits: the answer is none.
		if (call.Window() == nullptr)
			BPrivate::CloseAllAlerts();
	});
	call.DropInput();
	return outcome->which;
}

status_t
BAlert::Go(BInvoker* invoker)
{
	if (invoker != nullptr && invoker->Message() != nullptr) {
		fAnswer = std::make_unique<BMessage>(*invoker->Message());
		fAnswerTarget = invoker->Messenger();
	}
	return Open(!BPrivate::ModalCall().IsOfLooper()) ? B_OK : B_ERROR;
}

void
BAlert::DispatchMessage(BMessage* message, BHandler* target)
{
	const char* bytes = nullptr;
	if (message->what == B_KEY_DOWN && message->FindString("bytes", &bytes) == B_OK &&
		bytes[0] != '\0' && bytes[1] == '\0') {
		for (int32 i = 0; i < 3; i++) {
			if (fButtons[i] != nullptr && fShortcuts[i] == bytes[0]) {
				fButtons[i]->Press();
				return;
			}
		}
	}
	BWindow::DispatchMessage(message, target);
}

void
BAlert::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMsgButton:
			message->FindInt32("which", &fOutcome->which);
			Quit();
			break;
		case BPrivate::kMsgShowAlert:
			if (desktop::CallGui([] {}))
				Show();
			else
				Quit(); // without a desktop nobody can answer
			break;
		case BPrivate::kMsgActivateAlert:
			if (!IsActive())
				Activate();
			break;
		case BPrivate::kMsgCloseAlert:
			Quit();
			break;
		default:
			BWindow::MessageReceived(message);
	}
}
