// SPDX-License-Identifier: MIT

#include <app/MessageFields.h>

#include <support/TypeConstants.h>

#include <algorithm>
#include <cstring>

namespace BPrivate {

FieldItem::FieldItem(const void* bytes, size_t length)
{
	if (length <= kInline) {
		InlineBytes value = {};
		if (length > 0)
			std::memcpy(value.data, bytes, length);
		value.length = static_cast<uint8>(length);
		fValue = value;
	} else {
		// Whole words keep the copy aligned; the last one has room for the zero byte.
		auto data = std::make_shared<uint64[]>(length / sizeof(uint64) + 1);
		std::memcpy(data.get(), bytes, length);
		fValue = SharedBytes{std::move(data), length};
	}
}

const void*
FieldItem::Bytes() const
{
	if (auto value = std::get_if<InlineBytes>(&fValue))
		return value->data;
	if (auto value = std::get_if<SharedBytes>(&fValue))
		return value->data.get();
	return nullptr;
}

size_t
FieldItem::Length() const
{
	if (auto value = std::get_if<InlineBytes>(&fValue))
		return value->length;
	if (auto value = std::get_if<SharedBytes>(&fValue))
		return value->length;
	return 0;
}

std::shared_ptr<const BMessage>
FieldItem::Message() const
{
	auto value = std::get_if<std::shared_ptr<const BMessage>>(&fValue);
	return value != nullptr ? *value : nullptr;
}

std::shared_ptr<const BMessenger>
FieldItem::Messenger() const
{
	auto value = std::get_if<std::shared_ptr<const BMessenger>>(&fValue);
	return value != nullptr ? *value : nullptr;
}

status_t
MessageFields::Find(const char* name, const Field** field) const
{
	if (name == nullptr)
		return B_BAD_VALUE;
	for (const Field& each : fFields) {
		if (each.name == name) {
			*field = &each;
			return B_OK;
		}
	}
	return B_NAME_NOT_FOUND;
}

status_t
MessageFields::Find(const char* name, type_code type, int32 index, const FieldItem** item) const
{
	const Field* field = nullptr;
	status_t status = Find(name, &field);
	if (status != B_OK)
		return status;
	if (type != field->type && type != B_ANY_TYPE)
		return B_BAD_TYPE;
	if (index < 0 || index >= field->Count())
		return B_BAD_INDEX;
	*item = &field->At(index);
	return B_OK;
}

status_t
MessageFields::Add(const char* name, type_code type, FieldItem item)
{
	if (name == nullptr)
		return B_BAD_VALUE;
	auto field = Locate(name);
	if (field == fFields.end()) {
		fFields.push_back(Field{name, type, std::move(item), {}});
		return B_OK;
	}
	if (field->type != type)
		return B_BAD_TYPE;
	field->more.push_back(std::move(item));
	return B_OK;
}

status_t
MessageFields::Replace(const char* name, type_code type, int32 index, FieldItem item)
{
	const FieldItem* found = nullptr;
	status_t status = Find(name, type, index, &found);
	if (status != B_OK)
		return status;
	auto field = Locate(name);
	(index == 0 ? field->first : field->more[index - 1]) = std::move(item);
	return B_OK;
}

status_t
MessageFields::Remove(const char* name)
{
	if (name == nullptr)
		return B_BAD_VALUE;
	auto field = Locate(name);
	if (field == fFields.end())
		return B_NAME_NOT_FOUND;
	fFields.erase(field);
	return B_OK;
}

status_t
MessageFields::Remove(const char* name, int32 index)
{
	const FieldItem* found = nullptr;
	status_t status = Find(name, B_ANY_TYPE, index, &found);
	if (status != B_OK)
		return status;
	auto field = Locate(name);
	if (field->more.empty()) {
		fFields.erase(field);
		return B_OK;
	}
	if (index == 0) {
		field->first = std::move(field->more.front());
		index = 1;
	}
	field->more.erase(field->more.begin() + (index - 1));
	return B_OK;
}

std::list<Field>::iterator
MessageFields::Locate(const char* name)
{
	return std::find_if(
		fFields.begin(), fFields.end(), [name](const Field& field) { return field.name == name; });
}

} // namespace BPrivate
