// SPDX-License-Identifier: MIT

// BWindow: a window of the desktop, and the looper in which its views live.
//
// A new window is hidden and locked by its creator; the first Show() starts its thread and gives
// that lock up. Never delete a window that was shown: Quit() it.

#pragma once

#include <app/Looper.h>
#include <app/Messenger.h>
#include <interface/View.h>

#include <functional>
#include <memory>
#include <optional>

enum window_type : uint32 { B_TITLED_WINDOW = 1, B_MODAL_WINDOW = 3 };
enum : uint32 { B_CURRENT_WORKSPACE = 0 };
enum : uint32 { B_NOT_MOVABLE = 0x1, B_NOT_RESIZABLE = 0x2, B_NOT_CLOSABLE = 0x20 };

class BButton;

namespace BPrivate {
constexpr window_type kPopUpWindow = window_type(0x100); // see desktop::WindowKind::kPopUp
class ModalCall;
class DragNotice;
class WindowEvents;
class WindowSurface;
} // namespace BPrivate

class BWindow : public BLooper {
public:
	// `frame` is the content on the screen; decorations lie outside.
	BWindow(BRect frame, const char* title, window_type type, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);

	void Quit() override; // needs the lock; deletes views and window

	void Show(); // Show and Hide count
	void Hide();
	bool IsHidden() const { return fShowLevel <= 0; }
	void Activate(bool active = true);
	bool IsActive() const { return fActive; }

	void AddChild(BView* child, BView* before = nullptr);
	bool RemoveChild(BView* child);
	int32 CountChildren() const;
	BView* ChildAt(int32 index) const;
	BView* FindView(const char* name) const;
	BView* FindView(BPoint where) const; // the deepest visible one; window coordinates
	BView* CurrentFocus() const { return fFocus; }

	BRect Bounds() const; // the frame moved to the origin
	BRect Frame() const;
	void MoveTo(BPoint leftTop);
	void MoveTo(float x, float y) { MoveTo(BPoint(x, y)); }
	void ResizeTo(float width, float height);
	void SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight);
	const char* Title() const { return fTitle.c_str(); }
	void SetTitle(const char* title);
	BPoint ConvertToScreen(BPoint p) const;
	BPoint ConvertFromScreen(BPoint p) const;

	void SetDefaultButton(BButton* button); // takes Enter wherever the focus is; null for none
	BButton* DefaultButton() const { return fDefaultButton; }
	// The message is owned from now on; null target: the window.
	void AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target = nullptr);

	void Flush(); // shows what was drawn so far
	void Sync();
	void UpdateIfNeeded();             // draws all damage and shows it, now
	void SetPulseRate(bigtime_t rate); // microseconds; 0 stops
	bigtime_t PulseRate() const { return fPulseRate; }

	// After a change of whatever origin, once for a burst of them.
	virtual void FrameMoved(BPoint leftTop);
	virtual void FrameResized(float width, float height);
	virtual void WindowActivated(bool active);
	void DispatchMessage(BMessage* message, BHandler* target) override;

protected:
	~BWindow() override;

	bigtime_t _NextWakeUp() override;
	void _AfterMessage() override;
	BHandler* _Retarget(BMessage* message, BHandler* target) override;

private:
	friend class BView;
	friend class BPrivate::ModalCall;
	friend class BTextView;

	struct Shortcut {
		uint32 key;
		uint32 modifiers;
		std::unique_ptr<BMessage> message;
		BMessenger target;
		int64 token; // of the target, alive or not; 0: the window
	};

	struct SizeLimits { // in pixels covered
		int32 minWidth, maxWidth, minHeight, maxHeight;
	};

	void _Realize(); // makes the desktop's window and shows it
	void _ApplySizeLimits();
	bool _SetSize(int32 columns, int32 rows, double scale);
	void _TellFrame();
	bool _OwnMessage(BMessage* message);
	void
	_ServeWhileBlocked(); // repaints and follows resizes while a hook waits for an alert or a menu
	void _ViewDetached(BView* view);
	void _SetFocus(BView* view);
	void _WakeLoop(); // after a change by a thread that is not the window's

	// Input; WindowInput.cpp
	void _EndCapture();
	BHandler* _RetargetMouse(BMessage* message);
	BHandler* _RetargetKey(BMessage* message);
	bool _NewerIsQueued(const BMessage& message) const;
	bool _TakeMouseMessage(BPoint* where, uint32* buttons);
	void _MouseDown(BMessage* message, BView* target);
	void _MouseUp(BMessage* message, BView* target);
	void _MouseMoved(BMessage* message, BView* target);
	BHandler* _RetargetDrop(BPrivate::DragNotice& drop);
	bool _DropButtons(uint32* buttons) const;
	void _Drop(const BPrivate::DragNotice& drop, BHandler* target);
	void _KeyDown(BMessage* message, BView* target);
	BHandler* _TakeShortcut(BMessage* message, BHandler* target);
	void _NavigateFocus(bool backward);
	void _SetTextInput(bool wanted, BRect caret); // whether keys may be composed to text
	void _ActivationChanged(bool active);
	void _CallViews(const std::function<void(BView&)>& hook);

	BRect fFrame;
	BRect fToldFrame; // what FrameMoved() and FrameResized() know of it
	std::string fTitle;
	window_type fType;
	uint32 fFlags;
	std::optional<SizeLimits> fSizeLimits; // none was set
	int32 fShowLevel = 0;
	bool fActive = false;
	bool fMayShow = true; // false once the window quits
	bigtime_t fPulseRate = 500000;
	bigtime_t fNextPulse = B_INFINITE_TIMEOUT;
	int32 fPulseViews = 0; // views in the window with B_PULSE_NEEDED

	std::unique_ptr<BPrivate::WindowEvents> fEvents;   // hears the desktop's window: outlives it
	std::unique_ptr<BPrivate::WindowSurface> fSurface; // the picture, and the desktop's window
	std::unique_ptr<BView> fTop;                       // covers the window and holds its children
	BView* fFocus = nullptr;
	BView* fMouseView = nullptr;        // under the pointer at the last move
	bool fMouseDrags = false;           // the last move came with a drag
	BView* fCaptureView = nullptr;      // asked for all mouse events until the release
	std::optional<uint32> fDropButtons; // while a drop is handled
	BButton* fDefaultButton = nullptr;
	std::vector<Shortcut> fShortcuts;
};
