// SPDX-License-Identifier: MIT

// BMimeType: the name of a kind of data, and what the shared MIME database of the desktop says
// about it. Any thread, each object by one thread at a time.

#pragma once

#include <support/SupportDefs.h>

#include <string>

class BBitmap;

namespace BPrivate {
class TypeIcons;
}

// The side in pixels.
enum icon_size { B_LARGE_ICON = 32, B_MINI_ICON = 16 };

class BMimeType {
public:
	BMimeType() = default;
	explicit BMimeType(const char* type);

	// B_BAD_VALUE for a text that is no type's name; the object is then unset. Names are
	// "super/sub" or "super" alone, shorter than B_MIME_TYPE_LENGTH.
	status_t SetTo(const char* type);
	void Unset();
	status_t InitCheck() const { return fStatus; }

	const char* Type() const; // as it was set; NULL when unset
	// Without case.
	bool operator==(const BMimeType& other) const;
	bool operator==(const char* type) const;

	static bool IsValid(const char* type);

	// True when the database knows the type.
	bool IsInstalled() const;

	// In the user's language, B_MIME_TYPE_LENGTH bytes; the database has one description for both.
	// B_ENTRY_NOT_FOUND for a type that it does not know.
	status_t GetShortDescription(char* description) const;
	status_t GetLongDescription(char* description) const;

	// The bitmap then shares its pixels with all others of this icon. It must have just the size
	// asked for, in B_CMAP8, B_RGB32 or B_RGBA32: else B_BAD_VALUE. B_ENTRY_NOT_FOUND for a type
	// that the database does not know. Implemented in the interface kit.
	status_t GetIcon(BBitmap* bitmap, icon_size size) const;

private:
	friend class BPrivate::TypeIcons;

	std::string fType;
	std::string fKey; // in lower case
	status_t fStatus = B_NO_INIT;
};
