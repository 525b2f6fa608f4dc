// SPDX-License-Identifier: MIT

// The fields of a BMessage: names in order of addition, each with one type and its items.
//
// Cost: an empty set allocates nothing, a field with one item of up to FieldItem::kInline bytes
//   one block. Copies share what does not fit inline: stored items never change, they are replaced.
// Thread: none of its own; several threads may read at once.

#pragma once

#include <support/SupportDefs.h>

#include <list>
#include <memory>
#include <string>
#include <variant>
#include <vector>

class BMessage;
class BMessenger;

namespace BPrivate {

// One value: bytes, or an object that is not plain bytes.
class FieldItem {
public:
	static constexpr size_t kInline = 22;

	// Copies the bytes. A zero byte follows the copy, so that text need not bring its own.
	FieldItem(const void* bytes, size_t length);
	explicit FieldItem(std::shared_ptr<const BMessage> message) : fValue(std::move(message)) {}
	explicit FieldItem(std::shared_ptr<const BMessenger> messenger) : fValue(std::move(messenger))
	{}

	// Aligned for any number; NULL when the item is an object. Good until the item is destroyed,
	// moved or replaced.
	const void* Bytes() const;
	size_t Length() const; // 0 for an object

	// NULL when the item is something else.
	std::shared_ptr<const BMessage> Message() const;
	std::shared_ptr<const BMessenger> Messenger() const;

private:
	struct InlineBytes {
		alignas(uint64) char data[kInline + 1];
		uint8 length;
	};
	struct SharedBytes {
		std::shared_ptr<const uint64[]> data;
		size_t length;
	};

	std::variant<InlineBytes, SharedBytes, std::shared_ptr<const BMessage>,
		std::shared_ptr<const BMessenger>>
		fValue;
};

// A field has at least one item, and most have no other.
struct Field {
	int32 Count() const { return static_cast<int32>(more.size()) + 1; }
	const FieldItem& At(int32 index) const { return index == 0 ? first : more[index - 1]; }

	std::string name;
	type_code type;
	FieldItem first;
	std::vector<FieldItem> more;
};

// In every function a NULL name gives B_BAD_VALUE, an unknown one B_NAME_NOT_FOUND, another type
// than the field's B_BAD_TYPE, an index outside of it B_BAD_INDEX.
class MessageFields {
public:
	bool IsEmpty() const { return fFields.empty(); }
	const std::list<Field>& All() const { return fFields; }

	status_t Find(const char* name, const Field** field) const;
	// B_ANY_TYPE fits every field.
	status_t Find(const char* name, type_code type, int32 index, const FieldItem** item) const;

	status_t Add(const char* name, type_code type, FieldItem item);
	void Append(Field field) { fFields.push_back(std::move(field)); } // no field has its name
	status_t Replace(const char* name, type_code type, int32 index, FieldItem item);
	status_t Remove(const char* name);
	status_t Remove(const char* name, int32 index); // with its last item the field goes
	void MakeEmpty() { fFields.clear(); }

private:
	std::list<Field>::iterator Locate(const char* name);

	// A list, because pointers into an item must survive changes to other fields.
	std::list<Field> fFields;
};

} // namespace BPrivate
