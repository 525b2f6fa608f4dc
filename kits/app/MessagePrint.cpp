// SPDX-License-Identifier: MIT

// A BMessage as text for people who debug: one line for the code, one for each item.

#include <app/Message.h>
#include <app/MessagePrivate.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string>

using BPrivate::Field;
using BPrivate::FieldItem;

namespace {

template <typename... Args>
std::string
Format(const char* format, Args... args)
{
	char text[128];
	std::snprintf(text, sizeof(text), format, args...);
	return text;
}

// In quotes, control characters as numbers: a name may hold what upsets a terminal.
std::string
Quoted(const char* text)
{
	std::string quoted = "\"";
	for (; *text != '\0'; text++) {
		unsigned char byte = static_cast<unsigned char>(*text);
		if (byte < 0x20 || byte == 0x7f)
			quoted += Format("\\x%02x", byte);
		else
			quoted += *text;
	}
	return quoted + '"';
}

// 'DATA', or a number when that is not four letters.
std::string
CodeText(uint32 code)
{
	const unsigned char letters[4] = {static_cast<unsigned char>(code >> 24),
		static_cast<unsigned char>(code >> 16), static_cast<unsigned char>(code >> 8),
		static_cast<unsigned char>(code)};
	if (!std::all_of(letters, letters + 4, [](unsigned char c) { return c >= 0x20 && c < 0x7f; }))
		return Format("%" PRIu32, code);
	return Format("'%c%c%c%c'", letters[0], letters[1], letters[2], letters[3]);
}

std::string
DataText(const FieldItem& item)
{
	constexpr size_t kShown = 32;
	std::string text = Format("%zu bytes", item.Length());
	auto bytes = static_cast<const unsigned char*>(item.Bytes());
	for (size_t i = 0; i < std::min(item.Length(), kShown); i++)
		text += Format("%s%02x", i == 0 ? ": " : " ", bytes[i]);
	return item.Length() > kShown ? text + " ..." : text;
}

std::string
RefText(const BMessage& message, const char* name, int32 index)
{
	entry_ref ref;
	if (message.FindRef(name, index, &ref) != B_OK)
		return "unreadable";
	return Format("device %lld, directory %lld, ", static_cast<long long>(ref.device),
			   static_cast<long long>(ref.directory)) +
		(ref.name != nullptr ? Quoted(ref.name) : "no name");
}

template <typename T>
T
Plain(const FieldItem& item)
{
	T value;
	std::memcpy(static_cast<void*>(&value), item.Bytes(), sizeof(T));
	return value;
}

std::string
PointText(BPoint point)
{
	return Format("BPoint(%g, %g)", static_cast<double>(point.x), static_cast<double>(point.y));
}

std::string
RectText(BRect rect)
{
	return Format("BRect(%g, %g, %g, %g)", static_cast<double>(rect.left),
		static_cast<double>(rect.top), static_cast<double>(rect.right),
		static_cast<double>(rect.bottom));
}

std::string
ItemText(const BMessage& message, const Field& field, int32 index)
{
	const FieldItem& item = field.At(index);
	switch (field.type) {
		case B_BOOL_TYPE:
			return Plain<uint8>(item) != 0 ? "true" : "false";
		case B_INT8_TYPE:
			return std::to_string(Plain<int8>(item));
		case B_INT16_TYPE:
			return std::to_string(Plain<int16>(item));
		case B_INT32_TYPE:
			return std::to_string(Plain<int32>(item));
		case B_INT64_TYPE:
			return std::to_string(Plain<int64>(item));
		case B_UINT32_TYPE:
			return std::to_string(Plain<uint32>(item));
		case B_UINT64_TYPE:
			return std::to_string(Plain<uint64>(item));
		case B_FLOAT_TYPE:
			return Format("%g", static_cast<double>(Plain<float>(item)));
		case B_DOUBLE_TYPE:
			return Format("%g", Plain<double>(item));
		case B_POINT_TYPE:
			return PointText(Plain<BPoint>(item));
		case B_RECT_TYPE:
			return RectText(Plain<BRect>(item));
		case B_POINTER_TYPE:
			return Format("%p", Plain<void*>(item));
		case B_STRING_TYPE:
			return Quoted(static_cast<const char*>(item.Bytes()));
		case B_REF_TYPE:
			return RefText(message, field.name.c_str(), index);
		case B_MESSENGER_TYPE:
			return item.Messenger()->IsValid() ? "valid" : "not valid";
		default:
			return DataText(item);
	}
}

// `indent`: blanks before each line but the first, which the caller has begun.
void
Print(const BMessage& message, int indent)
{
	std::printf(
		"BMessage: what = %s (0x%" PRIx32 ")\n", CodeText(message.what).c_str(), message.what);
	indent += 4;
	for (const Field& field : BPrivate::MessageAccess::Fields(message).All()) {
		for (int32 index = 0; index < field.Count(); index++) {
			std::printf("%*s%s[%d] %s: ", indent, "", field.name.c_str(), index,
				CodeText(field.type).c_str());
			if (field.type == B_MESSAGE_TYPE)
				Print(*field.At(index).Message(), indent);
			else
				std::printf("%s\n", ItemText(message, field, index).c_str());
		}
	}
}

} // namespace

void
BMessage::PrintToStream() const
{
	Print(*this, 0);
}
