// SPDX-License-Identifier: MIT

// The user in front of a list: keys go in as the desktop reports them, and their time ends when
// the screen shows what they did. Any thread but the GUI's; the window must not be locked.

#pragma once

#include <support/SupportDefs.h>

#include <functional>
#include <string>
#include <vector>

class User {
public:
	// Tops of the selected rows that the screen shows, in pixels.
	typedef std::vector<int> Rows;

	// Of a window that shows one selected row; `mark` (0xffRRGGBB) is what lies behind its name.
	// Ends the process when that is not seen.
	User(const char* title, uint32 mark);

	Rows Selected() const;

	// Milliseconds from a key (B_* byte) to rows that are as they must be after it; kNever when
	// they were not within that time. Looks a thousand times a second.
	double Press(char key, const std::function<bool(const Rows&)>& isShown) const;
	static constexpr double kNever = 2000;

private:
	void SendKey(char key) const;

	class QWindow* fWindow = nullptr;
	uint32 fMark;
};
