// SPDX-License-Identifier: MIT

// Keys and modifier keys of the desktop as the kits know them. Internal to this folder.

#pragma once

#include <desktop/NativeWindow.h>

#include <QKeyEvent>

namespace desktop {

bool IsModifierKey(int qtKey);

// What a key sends: UTF-8 or one B_* key byte; empty for dead keys and the like. With Control
// held the plain letter in lower case, never a control byte.
std::string KeyBytes(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text);

KeyEvent TranslateKey(const QKeyEvent& event, uint32 modifiers, bigtime_t when);

// Follows which modifier keys are held, left and right ones apart, and the locks.
class ModifierTracker {
public:
	// Each returns the mask after the event.
	uint32 Key(const QKeyEvent& event);
	uint32 Seen(Qt::KeyboardModifiers modifiers); // told along with another event
	uint32 FocusLost();                           // releases will not be seen

private:
	uint32 Mask() const { return fPlain | fSides | fLocks | fScrollLock | fMenu; }

	uint32 fSides = 0; // the B_LEFT_ and B_RIGHT_ bits
	uint32 fLocks = 0;
	uint32 fScrollLock = 0; // no event carries it: counted from the presses
	uint32 fMenu = 0;
	uint32 fPlain = 0;
};

} // namespace desktop
