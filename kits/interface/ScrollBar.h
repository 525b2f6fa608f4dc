// SPDX-License-Identifier: MIT

// BScrollBar: two arrows and a thumb that move a view's contents along one axis.

#pragma once

#include <app/DelayedMessage.h>
#include <interface/ScrollBarLayout.h>
#include <interface/View.h>

// Aims at one view, and is that view's ScrollBar() on its axis; neither owns the other, and the
// link ends only when one of them is deleted or the bar gets another target.
class BScrollBar : public BView {
public:
	BScrollBar(
		BRect frame, const char* name, BView* target, float min, float max, orientation direction);
	~BScrollBar() override;

	// Limited to the range and rounded to whole units. A value that is in force already does
	// nothing, which ends the echo between bar and view.
	void SetValue(float value);
	float Value() const { return fValue; }
	void SetRange(float min, float max); // (0, 0): nothing to scroll, no thumb
	void GetRange(float* min, float* max) const;
	void SetSteps(float small, float large); // of an arrow, of the trough
	void GetSteps(float* small, float* large) const;
	void SetProportion(float proportion); // thumb to trough, 0..1
	float Proportion() const { return fProportion; }
	void SetTarget(BView* target);
	BView* Target() const { return fTarget; }
	orientation Orientation() const { return fOrientation; }

	// The value has changed; the base scrolls the target.
	virtual void ValueChanged(float value);

	// BView
	void Draw(BRect updateRect) override;
	void MouseDown(BPoint where) override;
	void MouseUp(BPoint where) override;
	void MouseMoved(BPoint where, uint32 transit, const BMessage* drag) override;
	void DetachedFromWindow() override;
	void MessageReceived(BMessage* message) override;

private:
	friend class BView;

	void _TargetGone() { fTarget = nullptr; }
	float _WheelDistance(float notches) const; // whole units

	bool IsVertical() const { return fOrientation == B_VERTICAL; }
	float Along(BPoint where) const;
	BPrivate::ScrollBarLayout Layout() const;
	BRect PartRect(int32 start, int32 length) const;
	void RedrawIfMoved(const BPrivate::ScrollBarLayout& before);
	void DrawArrowBox(bool more, const BPrivate::ScrollBarLayout& layout);
	void Step();
	void Repeat(int32 press);
	void EndPress();
	bool WheelMoved(BMessage* message);

	BView* fTarget = nullptr; // borrowed
	orientation fOrientation;
	float fMin;
	float fMax;
	float fValue = 0;
	float fSmallStep = 1;
	float fLargeStep = 10;
	float fProportion = 0;

	// The part that was pressed and is held; where the pointer is, where it took the thumb.
	BPrivate::ScrollBarPart fPressed = BPrivate::ScrollBarPart::kNone;
	BPoint fPointer;
	float fGrabOffset = 0;
	int32 fPressCount = 0; // tells a late repetition from one of the present press
	BPrivate::DelayedMessage fRepeat;
};
