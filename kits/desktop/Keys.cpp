// SPDX-License-Identifier: MIT

// Keys and modifier keys.

#include "Keys.h"

namespace desktop {

namespace {

// The X11 and Wayland bits of QKeyEvent::nativeModifiers().
constexpr uint32 kNativeCapsLock = 0x02;
constexpr uint32 kNativeNumLock = 0x10;

struct SidedKey {
	uint32 keySym;
	uint32 side;
	uint32 plain;
};

constexpr SidedKey kSidedKeys[] = {
	{0xffe1, B_LEFT_SHIFT_KEY, B_SHIFT_KEY},
	{0xffe2, B_RIGHT_SHIFT_KEY, B_SHIFT_KEY},
	{0xffe3, B_LEFT_CONTROL_KEY, B_CONTROL_KEY},
	{0xffe4, B_RIGHT_CONTROL_KEY, B_CONTROL_KEY},
	{0xffe7, B_LEFT_OPTION_KEY, B_OPTION_KEY}, // Meta
	{0xffe8, B_RIGHT_OPTION_KEY, B_OPTION_KEY},
	{0xffe9, B_LEFT_COMMAND_KEY, B_COMMAND_KEY}, // Alt
	{0xffea, B_RIGHT_COMMAND_KEY, B_COMMAND_KEY},
	{0xffeb, B_LEFT_OPTION_KEY, B_OPTION_KEY}, // Super
	{0xffec, B_RIGHT_OPTION_KEY, B_OPTION_KEY},
};

uint32
PlainBits(Qt::KeyboardModifiers modifiers)
{
	uint32 bits = 0;
	if (modifiers & Qt::ShiftModifier)
		bits |= B_SHIFT_KEY;
	if (modifiers & Qt::AltModifier)
		bits |= B_COMMAND_KEY;
	if (modifiers & Qt::ControlModifier)
		bits |= B_CONTROL_KEY;
	if (modifiers & Qt::MetaModifier)
		bits |= B_OPTION_KEY;
	return bits;
}

// The byte of a key without a printable character, or 0.
char
SpecialByte(int qtKey)
{
	if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F35)
		return B_FUNCTION_KEY;
	switch (qtKey) {
		case Qt::Key_Home:
			return B_HOME;
		case Qt::Key_End:
			return B_END;
		case Qt::Key_Insert:
			return B_INSERT;
		case Qt::Key_Backspace:
			return B_BACKSPACE;
		case Qt::Key_Tab:
		case Qt::Key_Backtab:
			return B_TAB;
		case Qt::Key_Return:
		case Qt::Key_Enter:
			return B_ENTER;
		case Qt::Key_PageUp:
			return B_PAGE_UP;
		case Qt::Key_PageDown:
			return B_PAGE_DOWN;
		case Qt::Key_Print:
		case Qt::Key_SysReq:
		case Qt::Key_Pause:
			return B_FUNCTION_KEY;
		case Qt::Key_Escape:
			return B_ESCAPE;
		case Qt::Key_Left:
			return B_LEFT_ARROW;
		case Qt::Key_Right:
			return B_RIGHT_ARROW;
		case Qt::Key_Up:
			return B_UP_ARROW;
		case Qt::Key_Down:
			return B_DOWN_ARROW;
		case Qt::Key_Delete:
			return B_DELETE;
		case Qt::Key_Space:
			return B_SPACE;
		default:
			return 0;
	}
}

// The key's own character in lower case, or a null one. Qt's code of a key with a Unicode
// character is that character in upper case.
QChar
PlainCharacter(int qtKey)
{
	return qtKey >= 0x20 && qtKey < 0x10000 ? QChar(qtKey).toLower() : QChar();
}

bool
IsPrintable(const QString& text)
{
	return !text.isEmpty() && (text[0].unicode() >= 0x20 && text[0].unicode() != 0x7f);
}

} // namespace

bool
IsModifierKey(int qtKey)
{
	switch (qtKey) {
		case Qt::Key_Shift:
		case Qt::Key_Control:
		case Qt::Key_Meta:
		case Qt::Key_Alt:
		case Qt::Key_AltGr:
		case Qt::Key_Super_L:
		case Qt::Key_Super_R:
		case Qt::Key_Hyper_L:
		case Qt::Key_Hyper_R:
		case Qt::Key_CapsLock:
		case Qt::Key_NumLock:
		case Qt::Key_ScrollLock:
		case Qt::Key_Menu:
		case Qt::Key_Mode_switch:
			return true;
		default:
			return false;
	}
}

std::string
KeyBytes(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text)
{
	if (const char special = SpecialByte(qtKey))
		return std::string(1, special);
	if (!(modifiers & Qt::ControlModifier))
		return IsPrintable(text) ? text.toStdString() : std::string();
	// Control turns the text of letters into control bytes, but leaves what AltGr composes.
	if (IsPrintable(text) && text[0].toUpper().unicode() != qtKey)
		return text.toStdString();
	const QChar plain = PlainCharacter(qtKey);
	return plain.isNull() ? std::string() : QString(plain).toStdString();
}

KeyEvent
TranslateKey(const QKeyEvent& event, uint32 modifiers, bigtime_t when)
{
	KeyEvent key;
	key.down = event.type() == QEvent::KeyPress;
	key.repeat = event.isAutoRepeat();
	key.key = int32(event.nativeScanCode());
	const char special = SpecialByte(event.key());
	key.rawChar = special != 0 ? special : PlainCharacter(event.key()).unicode();
	key.bytes = KeyBytes(event.key(), event.modifiers(), event.text());
	key.modifiers = modifiers;
	key.when = when;
	return key;
}

uint32
ModifierTracker::Key(const QKeyEvent& event)
{
	const bool down = event.type() == QEvent::KeyPress;
	fPlain = PlainBits(event.modifiers());
	for (const SidedKey& key : kSidedKeys) {
		if (key.keySym != event.nativeVirtualKey())
			continue;
		fSides = down ? fSides | key.side : fSides & ~key.side;
		// Qt takes the release of one of two for the release of both.
		const uint32 bothSides = key.plain == B_SHIFT_KEY ? B_LEFT_SHIFT_KEY | B_RIGHT_SHIFT_KEY
			: key.plain == B_CONTROL_KEY                  ? B_LEFT_CONTROL_KEY | B_RIGHT_CONTROL_KEY
			: key.plain == B_COMMAND_KEY                  ? B_LEFT_COMMAND_KEY | B_RIGHT_COMMAND_KEY
														  : B_LEFT_OPTION_KEY | B_RIGHT_OPTION_KEY;
		fPlain = (fSides & bothSides) != 0 ? fPlain | key.plain : fPlain & ~key.plain;
	}
	if (event.key() == Qt::Key_Menu)
		fMenu = down ? B_MENU_KEY : 0;
	if (event.key() == Qt::Key_ScrollLock && down && !event.isAutoRepeat())
		fScrollLock ^= B_SCROLL_LOCK;
	// The event carries the locks before the key: a lock key switches with its press.
	if (event.key() == Qt::Key_CapsLock || event.key() == Qt::Key_NumLock) {
		if (down && !event.isAutoRepeat())
			fLocks ^= event.key() == Qt::Key_CapsLock ? B_CAPS_LOCK : B_NUM_LOCK;
	} else {
		fLocks = (event.nativeModifiers() & kNativeCapsLock ? B_CAPS_LOCK : 0) |
			(event.nativeModifiers() & kNativeNumLock ? B_NUM_LOCK : 0);
	}
	return Mask();
}

uint32
ModifierTracker::Seen(Qt::KeyboardModifiers modifiers)
{
	fPlain = PlainBits(modifiers);
	for (const SidedKey& key : kSidedKeys) {
		if ((fPlain & key.plain) == 0)
			fSides &= ~key.side;
	}
	return Mask();
}

uint32
ModifierTracker::FocusLost()
{
	fPlain = 0;
	fSides = 0;
	fMenu = 0;
	return Mask();
}

} // namespace desktop
