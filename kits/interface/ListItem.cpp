// SPDX-License-Identifier: MIT

#include <interface/ListItem.h>

#include <interface/Look.h>
#include <interface/View.h>

#include <cmath>

static constexpr float kTextIndent = 4;
static constexpr float kLevelIndent = 12;

BListItem::BListItem(uint32 level, bool expanded) : fLevel(level), fExpanded(expanded) {}

void
BListItem::Update(BView* owner, const BFont* font)
{
	font_height height;
	font->GetHeight(&height);
	fWidth = owner->Bounds().Width();
	fHeight = std::ceil(height.ascent + height.descent + height.leading);
}

BStringItem::BStringItem(const char* text, uint32 level, bool expanded) :
	BListItem(level, expanded), fText(text != nullptr ? text : "")
{}

void
BStringItem::SetText(const char* text)
{
	fText = text != nullptr ? text : "";
}

void
BStringItem::Update(BView* owner, const BFont* font)
{
	BListItem::Update(owner, font);
	font_height height;
	font->GetHeight(&height);
	fBaseline = std::ceil(height.ascent + height.leading / 2);
}

void
BStringItem::DrawItem(BView* owner, BRect itemRect, bool complete)
{
	owner->PushState();
	rgb_color ground = IsSelected() ? BPrivate::kChosenColor : owner->ViewColor();
	if (IsSelected() || complete) {
		owner->SetHighColor(ground);
		owner->FillRect(itemRect);
	}
	owner->SetLowColor(ground);
	owner->SetHighColor(IsEnabled() ? BPrivate::kTextColor : BPrivate::kDisabledTextColor);
	float indent = kTextIndent + kLevelIndent * static_cast<float>(OutlineLevel());
	owner->DrawString(fText.c_str(), BPoint(itemRect.left + indent, itemRect.top + fBaseline));
	owner->PopState();
}
