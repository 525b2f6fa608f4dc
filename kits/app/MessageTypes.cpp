// SPDX-License-Identifier: MIT

// The accessors of BMessage for each type of field.

#include <app/Message.h>
#include <app/MessagePrivate.h>
#include <app/Messenger.h>

#include <cstring>
#include <string>
#include <type_traits>

using BPrivate::FieldItem;
using BPrivate::MessageFields;

namespace {

template <typename T>
FieldItem
PlainItem(const T& value)
{
	static_assert(std::is_trivially_copyable_v<T>);
	return FieldItem(&value, sizeof(T));
}

template <typename T>
status_t
FindPlain(const MessageFields& fields, const char* name, type_code type, int32 index, T* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	const FieldItem* item = nullptr;
	status_t status = fields.Find(name, type, index, &item);
	if (status == B_OK)
		std::memcpy(static_cast<void*>(value), item->Bytes(), sizeof(T));
	return status;
}

FieldItem
StringItem(const char* value)
{
	return FieldItem(value, std::strlen(value) + 1);
}

// A reference as bytes: device, directory, and the name with its zero unless it has none.
constexpr size_t kRefHead = sizeof(uint64) + sizeof(uint64);

FieldItem
RefItem(const entry_ref& ref)
{
	const uint64 head[2] = {ref.device, ref.directory};
	std::string bytes(reinterpret_cast<const char*>(head), kRefHead);
	if (ref.name != nullptr)
		bytes.append(ref.name, std::strlen(ref.name) + 1);
	return FieldItem(bytes.data(), bytes.size());
}

status_t
ReadRef(const FieldItem& item, entry_ref* ref)
{
	uint64 head[2];
	std::memcpy(head, item.Bytes(), kRefHead);
	entry_ref read;
	read.device = head[0];
	read.directory = head[1];
	if (item.Length() > kRefHead) {
		status_t status = read.set_name(static_cast<const char*>(item.Bytes()) + kRefHead);
		if (status != B_OK)
			return status;
	}
	*ref = std::move(read);
	return B_OK;
}

} // namespace

status_t
BPrivate::CheckItem(type_code type, const void* data, ssize_t length)
{
	if (length < 0 || (data == nullptr && length > 0))
		return B_BAD_VALUE;
	size_t expected = 0;
	switch (type) {
		case B_ANY_TYPE:
			return B_BAD_VALUE;
		case B_MESSAGE_TYPE:
		case B_MESSENGER_TYPE:
			return B_BAD_TYPE;
		case B_REF_TYPE:
			return static_cast<size_t>(length) >= kRefHead ? B_OK : B_BAD_VALUE;
		case B_BOOL_TYPE:
		case B_INT8_TYPE:
			expected = sizeof(int8);
			break;
		case B_INT16_TYPE:
			expected = sizeof(int16);
			break;
		case B_INT32_TYPE:
		case B_UINT32_TYPE:
		case B_FLOAT_TYPE:
			expected = sizeof(int32);
			break;
		case B_INT64_TYPE:
		case B_UINT64_TYPE:
		case B_DOUBLE_TYPE:
			expected = sizeof(int64);
			break;
		case B_POINTER_TYPE:
			expected = sizeof(void*);
			break;
		case B_POINT_TYPE:
			expected = sizeof(BPoint);
			break;
		case B_RECT_TYPE:
			expected = sizeof(BRect);
			break;
		default:
			return B_OK;
	}
	return static_cast<size_t>(length) == expected ? B_OK : B_BAD_VALUE;
}

// Types cannot stand in parentheses, and a messenger is cheap to copy.
// NOLINTBEGIN(bugprone-macro-parentheses,performance-unnecessary-value-param)
#define SHORT_FORMS(Name, Result, Value, code)                                                     \
	status_t BMessage::Find##Name(const char* name, Result value) const                            \
	{                                                                                              \
		return Find##Name(name, 0, value);                                                         \
	}                                                                                              \
	status_t BMessage::Replace##Name(const char* name, Value value)                                \
	{                                                                                              \
		return Replace##Name(name, 0, value);                                                      \
	}                                                                                              \
	bool BMessage::Has##Name(const char* name, int32 index) const                                  \
	{                                                                                              \
		const FieldItem* item = nullptr;                                                           \
		return fFields.Find(name, code, index, &item) == B_OK;                                     \
	}

#define PLAIN_TYPE(Name, Type, code)                                                               \
	status_t BMessage::Add##Name(const char* name, Type value)                                     \
	{                                                                                              \
		return fFields.Add(name, code, PlainItem(value));                                          \
	}                                                                                              \
	status_t BMessage::Find##Name(const char* name, int32 index, Type* value) const                \
	{                                                                                              \
		return FindPlain(fFields, name, code, index, value);                                       \
	}                                                                                              \
	status_t BMessage::Replace##Name(const char* name, int32 index, Type value)                    \
	{                                                                                              \
		return fFields.Replace(name, code, index, PlainItem(value));                               \
	}                                                                                              \
	SHORT_FORMS(Name, Type*, Type, code)

PLAIN_TYPE(Int8, int8, B_INT8_TYPE)
PLAIN_TYPE(Int16, int16, B_INT16_TYPE)
PLAIN_TYPE(Int32, int32, B_INT32_TYPE)
PLAIN_TYPE(Int64, int64, B_INT64_TYPE)
PLAIN_TYPE(UInt32, uint32, B_UINT32_TYPE)
PLAIN_TYPE(UInt64, uint64, B_UINT64_TYPE)
PLAIN_TYPE(Float, float, B_FLOAT_TYPE)
PLAIN_TYPE(Double, double, B_DOUBLE_TYPE)
PLAIN_TYPE(Point, BPoint, B_POINT_TYPE)
PLAIN_TYPE(Rect, BRect, B_RECT_TYPE)

SHORT_FORMS(Bool, bool*, bool, B_BOOL_TYPE)
SHORT_FORMS(Pointer, void**, const void*, B_POINTER_TYPE)
SHORT_FORMS(String, const char**, const char*, B_STRING_TYPE)
SHORT_FORMS(Ref, entry_ref*, const entry_ref*, B_REF_TYPE)
SHORT_FORMS(Messenger, BMessenger*, BMessenger, B_MESSENGER_TYPE)
SHORT_FORMS(Message, BMessage*, const BMessage*, B_MESSAGE_TYPE)

#undef PLAIN_TYPE
#undef SHORT_FORMS
// NOLINTEND(bugprone-macro-parentheses,performance-unnecessary-value-param)

status_t
BMessage::AddBool(const char* name, bool value)
{
	return fFields.Add(name, B_BOOL_TYPE, PlainItem(static_cast<uint8>(value)));
}

status_t
BMessage::FindBool(const char* name, int32 index, bool* value) const
{
	// Raw data may have put any byte there, and not every byte is a bool.
	uint8 byte = 0;
	if (value == nullptr)
		return B_BAD_VALUE;
	status_t status = FindPlain(fFields, name, B_BOOL_TYPE, index, &byte);
	if (status == B_OK)
		*value = byte != 0;
	return status;
}

status_t
BMessage::ReplaceBool(const char* name, int32 index, bool value)
{
	return fFields.Replace(name, B_BOOL_TYPE, index, PlainItem(static_cast<uint8>(value)));
}

status_t
BMessage::AddPointer(const char* name, const void* value)
{
	return fFields.Add(name, B_POINTER_TYPE, PlainItem(value));
}

status_t
BMessage::FindPointer(const char* name, int32 index, void** value) const
{
	status_t status = FindPlain(fFields, name, B_POINTER_TYPE, index, value);
	if (status != B_OK && value != nullptr)
		*value = nullptr;
	return status;
}

status_t
BMessage::ReplacePointer(const char* name, int32 index, const void* value)
{
	return fFields.Replace(name, B_POINTER_TYPE, index, PlainItem(value));
}

status_t
BMessage::AddString(const char* name, const char* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	return fFields.Add(name, B_STRING_TYPE, StringItem(value));
}

status_t
BMessage::FindString(const char* name, int32 index, const char** value) const
{
	if (value == nullptr)
		return B_BAD_VALUE;
	const FieldItem* item = nullptr;
	status_t status = fFields.Find(name, B_STRING_TYPE, index, &item);
	*value = status == B_OK ? static_cast<const char*>(item->Bytes()) : nullptr;
	return status;
}

status_t
BMessage::ReplaceString(const char* name, int32 index, const char* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	return fFields.Replace(name, B_STRING_TYPE, index, StringItem(value));
}

status_t
BMessage::AddRef(const char* name, const entry_ref* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	return fFields.Add(name, B_REF_TYPE, RefItem(*value));
}

status_t
BMessage::FindRef(const char* name, int32 index, entry_ref* value) const
{
	if (value == nullptr)
		return B_BAD_VALUE;
	const FieldItem* item = nullptr;
	status_t status = fFields.Find(name, B_REF_TYPE, index, &item);
	return status == B_OK ? ReadRef(*item, value) : status;
}

status_t
BMessage::ReplaceRef(const char* name, int32 index, const entry_ref* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	return fFields.Replace(name, B_REF_TYPE, index, RefItem(*value));
}

status_t
BMessage::AddMessenger(const char* name, BMessenger value)
{
	auto copy = std::make_shared<const BMessenger>(std::move(value));
	return fFields.Add(name, B_MESSENGER_TYPE, FieldItem(std::move(copy)));
}

status_t
BMessage::FindMessenger(const char* name, int32 index, BMessenger* value) const
{
	if (value == nullptr)
		return B_BAD_VALUE;
	const FieldItem* item = nullptr;
	status_t status = fFields.Find(name, B_MESSENGER_TYPE, index, &item);
	if (status == B_OK)
		*value = *item->Messenger();
	return status;
}

status_t
BMessage::ReplaceMessenger(const char* name, int32 index, BMessenger value)
{
	auto copy = std::make_shared<const BMessenger>(std::move(value));
	return fFields.Replace(name, B_MESSENGER_TYPE, index, FieldItem(std::move(copy)));
}

status_t
BMessage::AddMessage(const char* name, const BMessage* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	auto copy = std::make_shared<const BMessage>(*value);
	return fFields.Add(name, B_MESSAGE_TYPE, FieldItem(std::move(copy)));
}

status_t
BMessage::FindMessage(const char* name, int32 index, BMessage* value) const
{
	if (value == nullptr)
		return B_BAD_VALUE;
	const FieldItem* item = nullptr;
	status_t status = fFields.Find(name, B_MESSAGE_TYPE, index, &item);
	if (status == B_OK)
		*value = *item->Message();
	return status;
}

status_t
BMessage::ReplaceMessage(const char* name, int32 index, const BMessage* value)
{
	if (value == nullptr)
		return B_BAD_VALUE;
	auto copy = std::make_shared<const BMessage>(*value);
	return fFields.Replace(name, B_MESSAGE_TYPE, index, FieldItem(std::move(copy)));
}

status_t
BMessage::AddData(const char* name, type_code type, const void* data, ssize_t length,
	[[maybe_unused]] bool fixedSize, [[maybe_unused]] int32 expectedItems)
{
	status_t status = BPrivate::CheckItem(type, data, length);
	if (status != B_OK)
		return status;
	return fFields.Add(name, type, FieldItem(data, length));
}

status_t
BMessage::FindData(const char* name, type_code type, const void** data, ssize_t* length) const
{
	return FindData(name, type, 0, data, length);
}

status_t
BMessage::FindData(
	const char* name, type_code type, int32 index, const void** data, ssize_t* length) const
{
	if (data == nullptr)
		return B_BAD_VALUE;
	*data = nullptr;
	const FieldItem* item = nullptr;
	status_t status = fFields.Find(name, type, index, &item);
	if (status != B_OK)
		return status;
	if (item->Bytes() == nullptr)
		return B_BAD_TYPE;
	*data = item->Bytes();
	if (length != nullptr)
		*length = static_cast<ssize_t>(item->Length());
	return B_OK;
}

status_t
BMessage::ReplaceData(const char* name, type_code type, const void* data, ssize_t length)
{
	return ReplaceData(name, type, 0, data, length);
}

status_t
BMessage::ReplaceData(
	const char* name, type_code type, int32 index, const void* data, ssize_t length)
{
	status_t status = BPrivate::CheckItem(type, data, length);
	if (status != B_OK)
		return status;
	return fFields.Replace(name, type, index, FieldItem(data, length));
}

bool
BMessage::HasData(const char* name, type_code type, int32 index) const
{
	const FieldItem* item = nullptr;
	return fFields.Find(name, type, index, &item) == B_OK && item->Bytes() != nullptr;
}
