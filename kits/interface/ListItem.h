// SPDX-License-Identifier: MIT

// BListItem: a row of a list, which measures and draws itself; and BStringItem, a row of text.

#pragma once

#include <interface/Rect.h>

#include <string>

class BFont;
class BView;

// Whoever made a row deletes it, after it left its list. Belongs to the list's window: its lock.
class BListItem {
public:
	explicit BListItem(uint32 level = 0, bool expanded = true);
	virtual ~BListItem() = default;

	// `itemRect` is erased already; `complete` asks the row to clear its own area first.
	virtual void DrawItem(BView* owner, BRect itemRect, bool complete = false) = 0;
	// The list is new, in a window or has another font. The base takes the owner's width and the
	// height of a line of that font.
	virtual void Update(BView* owner, const BFont* font);

	// A rectangle's height: the row covers one pixel more. A list reads it when the row is added,
	// attached or invalidated.
	float Height() const { return fHeight; }
	float Width() const { return fWidth; }
	void SetHeight(float height) { fHeight = height; }
	void SetWidth(float width) { fWidth = width; }

	// Flags only: to change the selection ask the list.
	bool IsSelected() const { return fSelected; }
	void Select() { fSelected = true; }
	void Deselect() { fSelected = false; }

	bool IsEnabled() const { return fEnabled; }
	void SetEnabled(bool enabled) { fEnabled = enabled; }
	bool IsExpanded() const { return fExpanded; }
	void SetExpanded(bool expanded) { fExpanded = expanded; }
	uint32 OutlineLevel() const { return fLevel; }

protected:
	void SetOutlineLevel(uint32 level) { fLevel = level; }

private:
	uint32 fLevel;
	float fHeight = 0;
	float fWidth = 0;
	bool fSelected = false;
	bool fEnabled = true;
	bool fExpanded;
};

class BStringItem : public BListItem {
public:
	explicit BStringItem(const char* text, uint32 level = 0, bool expanded = true);

	const char* Text() const { return fText.c_str(); }
	void SetText(const char* text);

	// BListItem
	void DrawItem(BView* owner, BRect itemRect, bool complete = false) override;
	void Update(BView* owner, const BFont* font) override;

private:
	std::string fText;
	float fBaseline = 0; // below the row's top
};
