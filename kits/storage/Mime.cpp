// SPDX-License-Identifier: MIT

#include <storage/Mime.h>

#include <desktop/Types.h>

#include <algorithm>
#include <cstring>

// Blanks, control characters, and what separates types from each other in other formats.
static constexpr const char* kRefused =
	" \x01\x02\x03\x04\x05\x06\x07\x08\t\n\x0b\x0c\r\x0e\x0f\x10\x11\x12\x13\x14\x15\x16\x17\x18"
	"\x19\x1a\x1b\x1c\x1d\x1e\x1f\x7f()<>@,;:\\\"[]?=";

// Of ASCII only, in every locale.
static char
LowerCase(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

BMimeType::BMimeType(const char* type)
{
	SetTo(type);
}

status_t
BMimeType::SetTo(const char* type)
{
	if (!IsValid(type)) {
		Unset();
		return fStatus = B_BAD_VALUE;
	}
	fType = type;
	fKey = fType;
	std::transform(fKey.begin(), fKey.end(), fKey.begin(), LowerCase);
	return fStatus = B_OK;
}

void
BMimeType::Unset()
{
	fType.clear();
	fKey.clear();
	fStatus = B_NO_INIT;
}

const char*
BMimeType::Type() const
{
	return fStatus == B_OK ? fType.c_str() : nullptr;
}

bool
BMimeType::operator==(const BMimeType& other) const
{
	return fKey == other.fKey;
}

bool
BMimeType::operator==(const char* type) const
{
	return type == nullptr ? fStatus != B_OK : *this == BMimeType(type);
}

bool
BMimeType::IsValid(const char* type)
{
	if (type == nullptr)
		return false;
	const size_t length = strcspn(type, kRefused);
	const char* slash = strchr(type, '/');
	if (type[length] != '\0' || length == 0 || length >= B_MIME_TYPE_LENGTH)
		return false;
	return slash == nullptr ||
		(slash != type && slash[1] != '\0' && strchr(slash + 1, '/') == nullptr);
}

bool
BMimeType::IsInstalled() const
{
	return fStatus == B_OK &&
		(fKey == desktop::kBrokenLinkType || !desktop::TypeDescription(fKey).empty());
}

status_t
BMimeType::GetShortDescription(char* description) const
{
	if (fStatus != B_OK)
		return fStatus;
	if (description == nullptr)
		return B_BAD_VALUE;
	const std::string text = desktop::TypeDescription(fKey);
	if (text.empty())
		return B_ENTRY_NOT_FOUND;
	size_t length = std::min<size_t>(text.size(), B_MIME_TYPE_LENGTH - 1);
	// Not in the middle of a character.
	while (length < text.size() && (text[length] & 0xc0) == 0x80)
		length--;
	memcpy(description, text.data(), length);
	description[length] = '\0';
	return B_OK;
}

status_t
BMimeType::GetLongDescription(char* description) const
{
	return GetShortDescription(description);
}
