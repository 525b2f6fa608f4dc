// SPDX-License-Identifier: MIT

// Drags that begin in our windows. Internal to this folder; GUI thread.

#pragma once

#include <desktop/NativeWindow.h>

namespace desktop {

class PeerWindow;
struct WindowPeer;

// Returns at the drag's end; jobs and events are served meanwhile.
void RunDrag(const WindowPeer& source, const std::shared_ptr<const Content>& content,
	const DragImage& image);

bool IsDragging();

// For a window that goes away, or out of sight.
void CancelDragOf(const PeerWindow& window);

} // namespace desktop
