// SPDX-License-Identifier: MIT

// AlertPanel: the contents of an alert but for its buttons: strip, icon and text.

#pragma once

#include <interface/Alert.h>
#include <interface/AlertText.h>
#include <interface/View.h>

namespace BPrivate {

class AlertPanel : public BView {
public:
	AlertPanel(const char* text, alert_type type);

	// What text and icon need.
	float ContentWidth() const;
	float ContentHeight() const;

	// BView
	void Draw(BRect updateRect) override;

private:
	float TextLeft() const;
	float LineHeight() const;

	alert_type fType;
	std::unique_ptr<BBitmap> fIcon; // none for B_EMPTY_ALERT
	std::vector<TextLine> fLines;
	float fTextWidth = 0;
};

// 32 by 32 pixels.
std::unique_ptr<BBitmap> MakeAlertIcon(alert_type type);

} // namespace BPrivate
