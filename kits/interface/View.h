// SPDX-License-Identifier: MIT

// BView: a rectangle of a window that draws itself and takes input, and the parent of others.
//
// Thread: a view in a window belongs to the window's looper; every call needs its lock, hooks run
// in its thread with the lock held. A view in no window needs no lock.
// Owners: a parent deletes its children, a window its views. RemoveChild() gives a view back.

#pragma once

#include <app/Handler.h>
#include <interface/Font.h>
#include <interface/InterfaceDefs.h>
#include <interface/Rect.h>
#include <interface/Region.h>

#include <memory>
#include <vector>

namespace desktop {
struct DragImage;
}

class BBitmap;
class BScrollBar;
class BScrollView;
class BWindow;

// One nibble for each edge of the view (top, left, bottom, right), naming the parent's side that
// the edge follows.
enum : uint32 {
	B_FOLLOW_NONE = 0,
	B_FOLLOW_LEFT = 0x0202,
	B_FOLLOW_RIGHT = 0x0404,
	B_FOLLOW_LEFT_RIGHT = 0x0204,
	B_FOLLOW_H_CENTER = 0x0505,
	B_FOLLOW_TOP = 0x1010,
	B_FOLLOW_BOTTOM = 0x3030,
	B_FOLLOW_TOP_BOTTOM = 0x1030,
	B_FOLLOW_V_CENTER = 0x5050,
	B_FOLLOW_ALL_SIDES = 0x1234,
	B_FOLLOW_ALL = B_FOLLOW_ALL_SIDES,
};

enum : uint32 {
	B_FULL_UPDATE_ON_RESIZE = 0x80000000,
	B_WILL_DRAW = 0x20000000,
	B_PULSE_NEEDED = 0x10000000,
	B_NAVIGABLE_JUMP = 0x08000000,
	B_FRAME_EVENTS = 0x04000000,
	B_NAVIGABLE = 0x02000000,
};

enum : uint32 { B_POINTER_EVENTS = 1, B_KEYBOARD_EVENTS = 2 };
enum : uint32 { B_NO_POINTER_HISTORY = 4 };
enum : uint32 { B_TRACK_WHOLE_RECT = 0, B_TRACK_RECT_CORNER = 1 };

class BView : public BHandler {
public:
	BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
	~BView() override;

	// Tree. AddChild refuses (does nothing) when the view has a parent already.
	void AddChild(BView* child, BView* before = nullptr);
	bool RemoveChild(BView* child);
	bool RemoveSelf();
	int32 CountChildren() const { return static_cast<int32>(fChildren.size()); }
	BView* ChildAt(int32 index) const;
	BView* NextSibling() const;
	BView* Parent() const;                   // null for a view directly in a window
	BView* FindView(const char* name) const; // this view or one below
	BWindow* Window() const { return fWindow; }

	virtual void AttachedToWindow(); // parent before children
	virtual void AllAttached();
	virtual void DetachedFromWindow(); // Window() still answers
	virtual void AllDetached();

	// Frame, in the parent's coordinates; Bounds' left top is the scroll offset.
	BRect Frame() const { return fFrame; }
	BRect Bounds() const;
	void MoveTo(BPoint leftTop);
	void MoveTo(float x, float y) { MoveTo(BPoint(x, y)); }
	void MoveBy(float dx, float dy);
	void ResizeTo(float width, float height);
	void ResizeBy(float dx, float dy);
	virtual void GetPreferredSize(float* width, float* height);
	virtual void ResizeToPreferred();
	virtual void FrameMoved(BPoint newLeftTop); // with B_FRAME_EVENTS, as a message of its own
	virtual void FrameResized(float width, float height); // likewise
	uint32 Flags() const { return fFlags; }
	bool IsHidden() const;
	void Hide(); // counts
	void Show();

	BPoint ConvertToParent(BPoint p) const;
	BPoint ConvertFromParent(BPoint p) const;
	BPoint ConvertToScreen(BPoint p) const;
	BPoint ConvertFromScreen(BPoint p) const;
	BRect ConvertToParent(BRect r) const;
	BRect ConvertFromParent(BRect r) const;
	BRect ConvertToScreen(BRect r) const;
	BRect ConvertFromScreen(BRect r) const;
	void ConvertToParent(BPoint* p) const { *p = ConvertToParent(*p); }
	void ConvertFromParent(BPoint* p) const { *p = ConvertFromParent(*p); }
	void ConvertToScreen(BPoint* p) const { *p = ConvertToScreen(*p); }
	void ConvertFromScreen(BPoint* p) const { *p = ConvertFromScreen(*p); }
	void ConvertToParent(BRect* r) const { *r = ConvertToParent(*r); }
	void ConvertFromParent(BRect* r) const { *r = ConvertFromParent(*r); }
	void ConvertToScreen(BRect* r) const { *r = ConvertToScreen(*r); }
	void ConvertFromScreen(BRect* r) const { *r = ConvertFromScreen(*r); }

	// Drawing. Draw() gets the bounding box of what must be drawn, already erased with the view
	// colour. Outside Draw() everything below paints at once, erasing nothing.
	virtual void Draw(BRect updateRect);
	void Invalidate();
	void Invalidate(BRect rect);

	void SetViewColor(rgb_color color);
	void SetViewColor(uint8 r, uint8 g, uint8 b) { SetViewColor(rgb_color{r, g, b, 255}); }
	rgb_color ViewColor() const { return fViewColor; }
	void SetHighColor(rgb_color color) { fState.high = color; }
	void SetHighColor(uint8 r, uint8 g, uint8 b) { SetHighColor(rgb_color{r, g, b, 255}); }
	rgb_color HighColor() const { return fState.high; }
	void SetLowColor(rgb_color color) { fState.low = color; }
	void SetLowColor(uint8 r, uint8 g, uint8 b) { SetLowColor(rgb_color{r, g, b, 255}); }
	rgb_color LowColor() const { return fState.low; }
	void SetDrawingMode(drawing_mode mode) { fState.mode = mode; }
	drawing_mode DrawingMode() const { return fState.mode; }
	void SetPenSize(float size) { fState.penSize = size; }
	float PenSize() const { return fState.penSize; }
	void PushState();
	void PopState();

	void MovePenTo(BPoint p) { fState.pen = p; }
	void MovePenTo(float x, float y) { fState.pen.Set(x, y); }
	BPoint PenLocation() const { return fState.pen; }
	void StrokeLine(BPoint from, BPoint to, pattern shape = B_SOLID_HIGH); // with both ends
	void StrokeLine(BPoint to, pattern shape = B_SOLID_HIGH);
	void StrokeRect(BRect rect, pattern shape = B_SOLID_HIGH); // the outermost pixels inside
	void FillRect(BRect rect, pattern shape = B_SOLID_HIGH);
	void FillRegion(BRegion* region, pattern shape = B_SOLID_HIGH);
	void BeginLineArray(int32 maxCount); // lines above the count are dropped
	void AddLine(BPoint from, BPoint to, rgb_color color);
	void EndLineArray(); // draws them, with the clipping of this moment
	void DrawString(const char* text, BPoint baselineLeft); // moves the pen behind the text
	void DrawString(const char* text, int32 length, BPoint baselineLeft);
	void DrawString(const char* text) { DrawString(text, fState.pen); }
	void DrawBitmap(const BBitmap* bitmap, BPoint leftTop);
	void DrawBitmap(const BBitmap* bitmap, BRect dest);
	void DrawBitmap(const BBitmap* bitmap, BRect source, BRect dest); // scaled when sizes differ
	void DrawBitmapAsync(const BBitmap* bitmap, BPoint leftTop) { DrawBitmap(bitmap, leftTop); }
	void DrawBitmapAsync(const BBitmap* bitmap, BRect dest) { DrawBitmap(bitmap, dest); }
	void DrawBitmapAsync(const BBitmap* bitmap, BRect source, BRect dest)
	{
		DrawBitmap(bitmap, source, dest);
	}
	// Moves pixels; where the source was hidden or damaged the destination becomes damage.
	void CopyBits(BRect source, BRect dest);

	// Replaces the last such region; null removes it; ends with Draw(). Copied.
	void ConstrainClippingRegion(BRegion* region);
	// What drawing can reach now: the visible region, the damage inside Draw(), the region above.
	void GetClippingRegion(BRegion* region) const;

	void SetFont(const BFont* font, uint32 mask = B_FONT_ALL);
	void GetFont(BFont* font) const { *font = fState.font; }
	void GetFontHeight(font_height* height) const { fState.font.GetHeight(height); }
	float StringWidth(const char* text) const { return fState.font.StringWidth(text); }
	float StringWidth(const char* text, int32 length) const
	{
		return fState.font.StringWidth(text, length);
	}

	// Focus and keys.
	virtual void MakeFocus(bool focus = true);
	bool IsFocus() const;
	virtual void KeyDown(const char* bytes, int32 numBytes); // Tab steps through B_NAVIGABLE views
	virtual void KeyUp(const char* bytes, int32 numBytes);
	virtual void WindowActivated(bool active);
	virtual void Pulse(); // with B_PULSE_NEEDED

	// Mouse; points in view coordinates.
	virtual void MouseDown(BPoint where);
	virtual void MouseUp(BPoint where);
	virtual void MouseMoved(BPoint where, uint32 transit, const BMessage* drag);
	// In MouseDown(): moves and the release come here from anywhere, until the last release.
	status_t SetMouseEventMask(uint32 mask, uint32 options = 0);
	// checkQueue: takes the oldest mouse message off the window's queue, if there is one. Else,
	// and without: the live state. Any thread that holds the window's lock.
	void GetMouse(BPoint* where, uint32* buttons, bool checkQueue = true) const;
	// Shows an outline above everything in the view, which GetMouse() of this view moves along:
	// the whole of it, or its right bottom corner, which goes to the pointer even to negative
	// sizes. One in a window; it goes with the view.
	void BeginRectTracking(BRect rect, uint32 how = B_TRACK_WHOLE_RECT);
	void EndRectTracking();

	// Dragging. The message is copied; what is shown with the pointer is the outline of `rect`, or
	// the bitmap (deleted here) with `offset` at the pointer. Begins with the buttons that are
	// held, and comes to nothing when none is. Returns at once; until the drag's end the views
	// under the pointer get MouseMoved() with the message. The drop reaches the view under it as
	// that message, with "_drop_point_" (on the screen) and "_drop_offset_" (see
	// BMessage::DropPoint), by its filters; whatever becomes of the drag, this window is told of
	// the release. Answers to the message go to `replyTo`.
	void DragMessage(BMessage* message, BRect rect, BHandler* replyTo = nullptr);
	void DragMessage(
		BMessage* message, BBitmap* bitmap, BPoint offset, BHandler* replyTo = nullptr);
	void DragMessage(BMessage* message, BBitmap* bitmap, drawing_mode mode, BPoint offset,
		BHandler* replyTo = nullptr);

	// Scrolling. The base moves the pixels and the scroll bars along.
	virtual void ScrollTo(BPoint leftTop);
	void ScrollTo(float x, float y) { ScrollTo(BPoint(x, y)); }
	void ScrollBy(float dx, float dy);
	BScrollBar* ScrollBar(orientation direction) const; // the bar aimed at this view, or null
	virtual void TargetedByScrollView(BScrollView* scrollView);

	void MessageReceived(BMessage* message) override;

private:
	friend class BWindow;
	friend class BScrollBar; // sets itself as fHorizontalBar / fVerticalBar
	friend class BListView;  // draws its rows from an origin nearby

	struct State {
		rgb_color high = {0, 0, 0, 255};
		rgb_color low = {255, 255, 255, 255};
		drawing_mode mode = B_OP_COPY;
		BPoint pen;
		float penSize = 1;
		BFont font;
		std::unique_ptr<BRegion> clip; // ConstrainClippingRegion, view coordinates
		State() = default;
		State(const State& other);
		State& operator=(const State& other);
	};
	struct Line {
		BPoint from;
		BPoint to;
		rgb_color color;
	};
	class Painter; // one drawing call: canvas, clip and offsets; see ViewDrawing.cpp

	void _SetFrame(BRect frame);
	void _ResizeChildren(float dx, float dy);
	bool _LayoutChanging(desktop::PixelRegion* old); // notes what is visible; false: nobody sees it
	void _LayoutChanged(const desktop::PixelRegion& old, bool moved);
	void _Attach(BWindow* window);
	void _CallAttached();
	void _CallAllAttached();
	void _CallDetached();
	void _CallAllDetached();
	void _Detach();
	void _Offset(double* x, double* y) const; // of the view's coordinate (0, 0) in the window
	desktop::PixelRect _PixelFrame() const;   // in the window, not cut by anything
	// In the window's pixels: what no parent and no sibling in front hides; without children.
	const desktop::PixelRegion& _VisibleRegion() const;
	const desktop::PixelRegion& _DrawableRegion() const;
	void _UpdateRegions() const;
	desktop::PixelRegion _ClipNow() const;
	void _Paint();
	void _ShiftPixels(const desktop::PixelRegion& dest, int32 dx, int32 dy);
	void _ScrollPixels(double dx, double dy);
	bool _WheelMoved(BMessage* message);
	void _CollectNavigable(std::vector<BView*>& views);
	void _FrameEvent(uint32 what);
	void _Drag(
		const BMessage& message, desktop::DragImage image, BPoint offset, const BHandler* replyTo);
	void _CollectTokens(std::vector<int64>& tokens) const; // of this view and all below
	void _ShowOutline(BRect rect) const;

	BRect fFrame;
	// Left top of Bounds(). Double, since float loses whole pixels far down a long list.
	double fOriginX = 0;
	double fOriginY = 0;
	uint32 fResizingMode;
	uint32 fFlags;
	int32 fHidden = 0;
	BWindow* fWindow = nullptr;
	BView* fParent = nullptr;
	std::vector<BView*> fChildren; // owned; later ones in front
	bool fAttachedCalled = false;
	bool fAllAttachedCalled = false;
	rgb_color fViewColor = {255, 255, 255, 255};
	State fState;
	std::vector<State> fStateStack;
	std::vector<Line> fLines;
	int32 fMaxLines = 0;
	BScrollBar* fHorizontalBar = nullptr; // borrowed
	BScrollBar* fVerticalBar = nullptr;   // borrowed
	bool fFrameMovedPending = false;
	bool fFrameResizedPending = false;
	mutable uint64 fRegionsOf = 0; // the layout that the two regions belong to
	mutable desktop::PixelRegion fVisible;
	mutable desktop::PixelRegion fDrawable;
};
