// SPDX-License-Identifier: MIT

// Holds the lock of a view's window for a scope. A view in no window needs none.

#pragma once

#include <app/Looper.h>
#include <interface/View.h>

class ViewLock {
public:
	explicit ViewLock(BView* view) : fLooper(view->LockLooper() ? view->Looper() : nullptr) {}
	~ViewLock()
	{
		if (fLooper != nullptr)
			fLooper->Unlock();
	}
	ViewLock(const ViewLock&) = delete;
	ViewLock& operator=(const ViewLock&) = delete;

private:
	BLooper* fLooper; // the view may leave its window meanwhile
};
