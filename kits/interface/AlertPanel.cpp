// SPDX-License-Identifier: MIT

#include <interface/AlertPanel.h>

#include <interface/Bitmap.h>
#include <interface/Look.h>

#include <algorithm>
#include <cmath>

static constexpr float kWrapWidth = 300;
static constexpr float kStripWidth = 30;
static constexpr float kIconLeft = 14;
static constexpr float kIconTop = 12;
static constexpr float kIconSize = 32;
static constexpr float kTextTop = 14;
static constexpr float kMargin = 16;
static constexpr int kTabSpaces = 8;

static float
MeasurePlain(const char* text, int32 length)
{
	return be_plain_font->StringWidth(text, length);
}

BPrivate::AlertPanel::AlertPanel(const char* text, alert_type type) :
	BView(BRect(0, 0, 0, 0), "panel", B_FOLLOW_ALL_SIDES, B_WILL_DRAW), fType(type)
{
	SetViewColor(kPanelColor);
	SetLowColor(kPanelColor);
	if (type != B_EMPTY_ALERT)
		fIcon = MakeAlertIcon(type);
	const float tabWidth = be_plain_font->StringWidth(" ") * kTabSpaces;
	fLines =
		BreakText(text != nullptr ? text : "", kWrapWidth, std::max(tabWidth, 1.0f), MeasurePlain);
	fTextWidth = std::ceil(WidestLine(fLines, MeasurePlain));
}

float
BPrivate::AlertPanel::TextLeft() const
{
	return fIcon ? kIconLeft + kIconSize + kMargin : kMargin;
}

float
BPrivate::AlertPanel::LineHeight() const
{
	font_height height;
	be_plain_font->GetHeight(&height);
	return std::ceil(height.ascent + height.descent + height.leading) + 1;
}

float
BPrivate::AlertPanel::ContentWidth() const
{
	return TextLeft() + fTextWidth + kMargin;
}

float
BPrivate::AlertPanel::ContentHeight() const
{
	float text = kTextTop + LineHeight() * static_cast<float>(fLines.size());
	return std::max(text, fIcon ? kIconTop + kIconSize : 0);
}

void
BPrivate::AlertPanel::Draw(BRect)
{
	BRect bounds = Bounds();
	if (fIcon) {
		SetHighColor(kSoftDarkEdge);
		FillRect(BRect(bounds.left, bounds.top, bounds.left + kStripWidth - 1, bounds.bottom));
		SetDrawingMode(B_OP_OVER);
		DrawBitmap(fIcon.get(), BPoint(kIconLeft, kIconTop));
		SetDrawingMode(B_OP_COPY);
	}
	SetHighColor(kTextColor);
	font_height height;
	be_plain_font->GetHeight(&height);
	float baseline = kTextTop + std::ceil(height.ascent);
	for (const TextLine& line : fLines) {
		for (const TextPiece& piece : line)
			DrawString(piece.text.c_str(), BPoint(TextLeft() + piece.x, baseline));
		baseline += LineHeight();
	}
}
