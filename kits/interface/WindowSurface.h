// SPDX-License-Identifier: MIT

// The picture of a window: the canvas that its views draw on, what of it is damaged and what was
// not shown yet, and the desktop's window that shows it.
//
// Thread: the holder of the window's lock. For the sources of this kit only.

#pragma once

#include <desktop/NativeWindow.h>
#include <interface/View.h>

#include <kernel/OS.h>

#include <optional>

namespace BPrivate {

class WindowSurface {
public:
	// Makes the desktop's window, hidden; waits for the desktop.
	void Open(desktop::WindowClient& client, const desktop::PixelRect& frame,
		const std::string& title, const desktop::NativeWindow::Options& options);
	void Close();
	bool IsOpen() const { return fNative != nullptr; }
	desktop::NativeWindow* Native() { return fNative.get(); }
	desktop::Canvas* Canvas() { return fCanvas.get(); }

	// Until the first call the picture has no pixels, and drawing goes nowhere.
	void SetSize(int32 columns, int32 rows, double scale);
	desktop::PixelRect Bounds() const;

	// Every change of the views' places makes a new layout; regions computed for an older one are
	// stale.
	uint64 Layout() const { return fLayout; }
	void LayoutChanged();

	void AddDamage(const desktop::PixelRegion& region);
	const desktop::PixelRegion& Damage() const { return fDamage; }
	// When what is damaged or not shown has to be on the screen at the latest, or
	// B_INFINITE_TIMEOUT; system_time().
	bigtime_t Deadline() const { return fDeadline; }

	// An update takes over all damage; drawing is limited to it until the end.
	bool BeginUpdate(); // false: nothing is damaged, or an update is under way
	void EndUpdate();
	bool IsUpdating() const { return fUpdate.has_value(); }
	const desktop::PixelRegion& UpdateRegion() const { return *fUpdate; }

	// Makes `view` the one whose clip the canvas has; false when it has it already.
	bool TakeClip(const BView* view);
	void ForgetClip() { fClipOf = nullptr; }

	// The outline that follows the pointer, above the picture. A view's, or nobody's.
	struct RectTracking {
		const BView* view = nullptr;
		BRect rect;
		bool corner = false; // only the right bottom moves
		BPoint start;        // the pointer's place for `rect`

		BRect RectAt(BPoint pointer) const;
	};
	RectTracking& Tracking() { return fTracking; }
	void EndTracking(const BView* view);
	bool SetOutline(const desktop::PixelRegion& outline); // its lines; false: as it was

	void AddDrawn(const desktop::PixelRegion& region); // to be shown
	void Show(); // hands everything that was drawn to the desktop

private:
	void _SetDeadline();

	std::unique_ptr<desktop::NativeWindow> fNative;
	std::unique_ptr<desktop::Canvas> fCanvas;
	desktop::PixelRegion fDamage;
	desktop::PixelRegion fDrawn;
	desktop::PixelRegion fOutline;
	RectTracking fTracking;
	std::optional<desktop::PixelRegion> fUpdate;
	bigtime_t fDeadline = B_INFINITE_TIMEOUT;
	uint64 fLayout = 1;
	const BView* fClipOf = nullptr;
};

} // namespace BPrivate
