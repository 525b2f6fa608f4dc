// SPDX-License-Identifier: MIT

// The desktop's side of a NativeWindow. Internal to this folder; GUI thread.

#pragma once

#include <desktop/NativeWindow.h>

#include "Input.h"

#include <QBackingStore>
#include <QBasicTimer>
#include <QWindow>

namespace desktop {

// Keeps a copy of the last picture in its backing store, so that it can be shown again without
// asking the client.
class PeerWindow : public QWindow {
public:
	PeerWindow(WindowClient& client, const PixelRect& frame, const std::string& title,
		const NativeWindow::Options& options);
	~PeerWindow() override;

	void ShowFirst(const CanvasData& canvas, QWindow* parent);
	void Activate();
	void TakePicture(const CanvasData& canvas, const QRegion& region, const QRegion& inverted = {});
	void ResizeContent(const QSize& size);
	void SetTextInput(bool wanted, const QRect& caret);
	// Another program has the pointer, or had it: tells the client what it has missed.
	void TellRelease(const QPointF& screen);
	// What the window shows, in device pixels.
	QImage Picture();

	void ForgetButtons() { fHeldButtons = 0; }
	void ReleaseButtons(); // the client is told of a release, if a button is held
	// Of a pop-up: input that came to any of our windows.
	void TakePopUpInput(QEvent& event);
	void CloseByDesktop() { fClient.WindowCloseRequested(); }

protected:
	bool event(QEvent* event) override;
	void paintEvent(QPaintEvent* event) override;
	void timerEvent(QTimerEvent* event) override;
	void resizeEvent(QResizeEvent* event) override;
	void hideEvent(QHideEvent* event) override;
	void moveEvent(QMoveEvent* event) override;
	void mousePressEvent(QMouseEvent* event) override;
	void mouseReleaseEvent(QMouseEvent* event) override;
	void mouseMoveEvent(QMouseEvent* event) override;
	void wheelEvent(QWheelEvent* event) override;
	void keyPressEvent(QKeyEvent* event) override;
	void keyReleaseEvent(QKeyEvent* event) override;
	void focusInEvent(QFocusEvent* event) override;
	void focusOutEvent(QFocusEvent* event) override;

private:
	QWindow* WindowBehind() const;
	QImage* StoreImage();
	bool IsNewStore();
	void CopyPixels(const CanvasData& canvas, const QRegion& region);
	void InvertPixels(const QRegion& region);
	void FlushAll();
	void PadPicture();
	void TellSize();
	void TellModifiers();
	void TellMouse(MouseEvent::Kind kind, const QPointF& where, const QPointF& screen,
		uint32 buttons, uint32 button = 0, int32 clicks = 0);
	bool TakeDragEvent(QEvent& event);
	void TellDrag(DragEvent::Kind kind, const QPointF& where);
	void TellLostReleases(const QMouseEvent& event);
	void Key(QKeyEvent* event);
	void AnswerInputMethod(QInputMethodQueryEvent& query) const;
	void TellComposedText(const QInputMethodEvent& event);

	WindowClient& fClient;
	QBackingStore fStore;
	double fStoreScale = 0; // of the store's size
	qsizetype fStoreRowLength = 0;
	const bool fResizable;
	const bool fIsPopUp;
	QSize fToldSize;
	double fToldScale;
	QBasicTimer fLatePicture; // runs from a resize until its picture or too long a wait
	uint32 fToldModifiers = 0;
	uint32 fHeldButtons = 0;
	uint32 fReleasedByDrag = 0; // whose own release may still come
	ClickCounter fClicks;
	std::shared_ptr<const Content> fDragged; // of the drag over this window
	bool fTextInput = false;
	bool fComposing = false;
	QRect fCaret;
};

struct WindowPeer {
	// Made and deleted by jobs; left when the display was lost, since it could not be deleted.
	PeerWindow* window = nullptr;
};

struct NativeWindowAccess {
	static WindowPeer& Peer(NativeWindow& window);
};

} // namespace desktop
