// SPDX-License-Identifier: MIT

// MenuView: draws a pane of a menu.

#pragma once

#include <interface/MenuTracker.h>
#include <interface/View.h>

namespace BPrivate {

class MenuView : public BView {
public:
	explicit MenuView(const MenuPane& pane);

	const MenuPane& Pane() const { return fPane; }
	void SetPane(const MenuPane& pane); // of the same rows; repaints what has changed

	// BView
	void Draw(BRect updateRect) override;

private:
	BRect _RowFrame(int32 row) const;
	void _DrawRow(const MenuRow& row, BRect frame, bool highlighted);
	void _DrawSeparator(BRect frame);
	void _DrawMark(BRect frame, bool enabled);
	void _DrawStrips(BRect bounds);

	MenuPane fPane;
};

} // namespace BPrivate
