// SPDX-License-Identifier: MIT

// Windows as other threads see them: each call becomes a job of the GUI thread.

#include <desktop/NativeWindow.h>

#include "CanvasData.h"
#include "Drag.h"
#include "PixelRegionAccess.h"
#include "WindowPeer.h"

#include <desktop/GuiThread.h>

namespace desktop {

WindowPeer&
NativeWindowAccess::Peer(NativeWindow& window)
{
	return *window.fPeer;
}

void
WindowClient::WindowComposing(const std::string&, size_t)
{}

NativeWindow::NativeWindow(WindowClient& client, const PixelRect& frame, const std::string& title,
	const Options& options) :
	fPeer(std::make_shared<WindowPeer>())
{
	// Not waited for: a program makes its first window while the desktop is still starting.
	PostGui([peer = fPeer, &client, frame, title, options] {
		peer->window = new PeerWindow(client, frame, title, options);
	});
}

NativeWindow::~NativeWindow()
{
	CallGui([this] {
		delete fPeer->window;
		fPeer->window = nullptr;
	});
}

void
NativeWindow::Show(const Canvas& canvas, NativeWindow* parent)
{
	fShown = CallGui([&] {
		fPeer->window->ShowFirst(
			*canvas.fData, parent != nullptr ? parent->fPeer->window : nullptr);
	});
}

void
NativeWindow::Hide()
{
	fShown = false;
	CallGui([this] {
		CancelDragOf(*fPeer->window);
		fPeer->window->hide();
	});
}

bool
NativeWindow::IsShown() const
{
	return fShown;
}

void
NativeWindow::Activate()
{
	PostGui([peer = fPeer] { peer->window->Activate(); });
}

void
NativeWindow::ForgetButtons()
{
	PostGui([peer = fPeer] { peer->window->ForgetButtons(); });
}

void
NativeWindow::SetTitle(const std::string& title)
{
	PostGui([peer = fPeer, title] { peer->window->setTitle(QString::fromUtf8(title.c_str())); });
}

void
NativeWindow::MoveTo(int32 x, int32 y)
{
	PostGui([peer = fPeer, x, y] { peer->window->setPosition(x, y); });
}

void
NativeWindow::ResizeTo(int32 width, int32 height)
{
	PostGui([peer = fPeer, width, height] { peer->window->ResizeContent({width, height}); });
}

void
NativeWindow::SetSizeLimits(int32 minWidth, int32 maxWidth, int32 minHeight, int32 maxHeight)
{
	PostGui(
		[peer = fPeer, minimum = QSize(minWidth, minHeight), maximum = QSize(maxWidth, maxHeight)] {
			peer->window->setMinimumSize(minimum);
			peer->window->setMaximumSize(maximum);
		});
}

void
NativeWindow::SetTextInput(bool wanted, const PixelRect& caret)
{
	PostGui(
		[peer = fPeer, wanted, where = ToQt(caret)] { peer->window->SetTextInput(wanted, where); });
}

void
NativeWindow::StartDrag(std::shared_ptr<const Content> content, const DragImage& image)
{
	PostGui(
		[peer = fPeer, content = std::move(content), image] { RunDrag(*peer, content, image); });
}

double
NativeWindow::Scale()
{
	double scale = 1;
	CallGui([&] { scale = fPeer->window->devicePixelRatio(); });
	return scale;
}

void
NativeWindow::Present(const Canvas& canvas, const PixelRegion& region, const PixelRegion& inverted)
{
	CallGui([&] {
		fPeer->window->TakePicture(
			*canvas.fData, PixelRegionAccess::Of(region), PixelRegionAccess::Of(inverted));
	});
}

} // namespace desktop
