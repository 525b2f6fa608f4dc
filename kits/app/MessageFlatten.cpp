// SPDX-License-Identifier: MIT

// A BMessage as bytes and back.
//
// An image is a head (ImageHead) and a body; a body is `what`, the number of fields, and for each
// field its type, the length of its name, the number of its items, the name, and for each item its
// length and bytes. The item of a message is a body again. Numbers are 32 bits in the machine's
// order; nothing is aligned.

#include <app/Message.h>
#include <app/MessagePrivate.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>

using BPrivate::Field;
using BPrivate::FieldItem;
using BPrivate::ImageHead;
using BPrivate::MessageAccess;
using BPrivate::MessageFields;

namespace {

// Changes with the format. Images of machines with another order of bytes differ in it too.
constexpr uint32 kMagic = 'KMf1';
constexpr int32 kMaxDepth = 32; // levels of messages, the outermost included
constexpr size_t kMaxSize = std::numeric_limits<int32>::max();

// Every change of a single byte changes the result: each step can be undone.
uint32
CheckOf(const char* bytes, size_t size)
{
	uint32 check = 0x811c9dc5;
	for (size_t i = 0; i < size; i++)
		check = (check ^ static_cast<unsigned char>(bytes[i])) * 0x01000193;
	return check;
}

// Writes when it has a buffer, else only counts.
class Writer {
public:
	explicit Writer(char* buffer) : fBuffer(buffer) {}

	void Bytes(const void* bytes, size_t length)
	{
		if (fBuffer != nullptr && length > 0)
			std::memcpy(fBuffer + fSize, bytes, length);
		fSize += length;
	}

	void Number(size_t number)
	{
		const uint32 value = static_cast<uint32>(number);
		Bytes(&value, sizeof(value));
	}

	size_t Size() const { return fSize; }

	// For a number that is known later: its place, to be given to SetNumber().
	size_t LeaveNumber()
	{
		Number(0);
		return fSize - sizeof(uint32);
	}

	void SetNumber(size_t place, size_t number)
	{
		const uint32 value = static_cast<uint32>(number);
		if (fBuffer != nullptr)
			std::memcpy(fBuffer + place, &value, sizeof(value));
	}

private:
	char* fBuffer;
	size_t fSize = 0;
};

bool WriteBody(Writer& writer, const BMessage& message, int32 depth);

bool
WriteItem(Writer& writer, const FieldItem& item, int32 depth)
{
	std::shared_ptr<const BMessage> message = item.Message();
	if (!message) {
		writer.Number(item.Length());
		writer.Bytes(item.Bytes(), item.Length());
		return true;
	}
	const size_t place = writer.LeaveNumber();
	const size_t start = writer.Size();
	if (!WriteBody(writer, *message, depth + 1))
		return false;
	writer.SetNumber(place, writer.Size() - start);
	return true;
}

// False when messages are nested too deep. One that gets too long is left off early: messages
// share what they hold, so that a small one may have an endless image.
bool
WriteBody(Writer& writer, const BMessage& message, int32 depth)
{
	if (depth > kMaxDepth)
		return false;
	writer.Number(message.what);
	const size_t countPlace = writer.LeaveNumber();
	size_t count = 0;
	for (const Field& field : MessageAccess::Fields(message).All()) {
		if (field.type == B_MESSENGER_TYPE)
			continue;
		count++;
		writer.Number(field.type);
		writer.Number(field.name.size());
		writer.Number(static_cast<size_t>(field.Count()));
		writer.Bytes(field.name.data(), field.name.size());
		for (int32 i = 0; i < field.Count(); i++) {
			if (!WriteItem(writer, field.At(i), depth) || writer.Size() > kMaxSize)
				return false;
		}
	}
	writer.SetNumber(countPlace, count);
	return true;
}

// Hands out the bytes of an image piece by piece, never one beyond its end.
class Reader {
public:
	Reader(const char* bytes, size_t size) : fNext(bytes), fLeft(size) {}

	size_t Left() const { return fLeft; }

	bool Number(uint32* number)
	{
		const char* bytes = nullptr;
		if (!Bytes(sizeof(*number), &bytes))
			return false;
		std::memcpy(number, bytes, sizeof(*number));
		return true;
	}

	bool Bytes(size_t length, const char** bytes)
	{
		if (length > fLeft)
			return false;
		*bytes = fNext;
		fNext += length;
		fLeft -= length;
		return true;
	}

private:
	const char* fNext;
	size_t fLeft;
};

bool ReadBody(Reader& reader, BMessage& message, int32 depth);

// The item's bytes as the type wants them; FieldItem has no empty state to fill.
std::optional<FieldItem>
ReadItem(Reader& reader, type_code type, int32 depth)
{
	uint32 length = 0;
	const char* bytes = nullptr;
	if (!reader.Number(&length) || !reader.Bytes(length, &bytes))
		return {};
	if (type == B_MESSAGE_TYPE) {
		auto message = std::make_shared<BMessage>();
		Reader body(bytes, length);
		if (!ReadBody(body, *message, depth + 1))
			return {};
		return FieldItem(std::shared_ptr<const BMessage>(std::move(message)));
	}
	if (BPrivate::CheckItem(type, bytes, static_cast<ssize_t>(length)) != B_OK)
		return {};
	return FieldItem(bytes, length);
}

bool
ReadField(Reader& reader, MessageFields& fields, std::set<std::string_view>& names, int32 depth)
{
	uint32 type = 0;
	uint32 nameLength = 0;
	uint32 count = 0;
	const char* bytes = nullptr;
	if (!reader.Number(&type) || !reader.Number(&nameLength) || !reader.Number(&count) ||
		!reader.Bytes(nameLength, &bytes))
		return false;
	const std::string_view name(bytes, nameLength);
	// A name twice, or one that nobody could ask for, is none of ours.
	if (name.find('\0') != std::string_view::npos || !names.insert(name).second)
		return false;
	if (count == 0 || count > reader.Left() / sizeof(uint32))
		return false;
	std::optional<FieldItem> item = ReadItem(reader, type, depth);
	if (!item)
		return false;
	Field field{std::string(name), type, std::move(*item), {}};
	for (uint32 i = 1; i < count; i++) {
		item = ReadItem(reader, type, depth);
		if (!item)
			return false;
		field.more.push_back(std::move(*item));
	}
	fields.Append(std::move(field));
	return true;
}

// The whole of the reader must be one body.
bool
ReadBody(Reader& reader, BMessage& message, int32 depth)
{
	uint32 count = 0;
	if (depth > kMaxDepth || !reader.Number(&message.what) || !reader.Number(&count))
		return false;
	std::set<std::string_view> names;
	for (uint32 i = 0; i < count; i++) {
		if (!ReadField(reader, MessageAccess::Fields(message), names, depth))
			return false;
	}
	return reader.Left() == 0;
}

// False when the bytes cannot be the head of an image.
bool
ReadHead(const char* buffer, ImageHead* head)
{
	std::memcpy(head, buffer, sizeof(*head));
	return head->magic == kMagic && head->size >= sizeof(*head) && head->size <= kMaxSize;
}

bool
ReadImage(const char* buffer, size_t size, BMessage& message)
{
	ImageHead head;
	if (size < sizeof(head) || !ReadHead(buffer, &head) || head.size > size)
		return false;
	constexpr size_t kChecked = offsetof(ImageHead, size);
	if (head.check != CheckOf(buffer + kChecked, head.size - kChecked))
		return false;
	Reader reader(buffer + sizeof(head), head.size - sizeof(head));
	return ReadBody(reader, message, 1);
}

} // namespace

void
BPrivate::SealImage(char* image, size_t size)
{
	ImageHead head = {kMagic, 0, static_cast<uint32>(size)};
	std::memcpy(image, &head, sizeof(head));
	constexpr size_t kChecked = offsetof(ImageHead, size);
	head.check = CheckOf(image + kChecked, size - kChecked);
	std::memcpy(image, &head, sizeof(head));
}

ssize_t
BMessage::FlattenedSize() const
{
	Writer counter(nullptr);
	if (!WriteBody(counter, *this, 1))
		return B_BAD_VALUE;
	const size_t size = sizeof(ImageHead) + counter.Size();
	if (size > kMaxSize)
		return B_BAD_VALUE;
	return static_cast<ssize_t>(size);
}

status_t
BMessage::Flatten(char* buffer, ssize_t size) const
{
	const ssize_t needed = FlattenedSize();
	if (needed < 0 || buffer == nullptr)
		return B_BAD_VALUE;
	if (size < needed)
		return B_NO_MEMORY;
	Writer writer(buffer + sizeof(ImageHead));
	WriteBody(writer, *this, 1);
	BPrivate::SealImage(buffer, static_cast<size_t>(needed));
	return B_OK;
}

status_t
BMessage::Unflatten(const char* buffer)
{
	ImageHead head = {};
	// What cannot be a head is refused below for its size.
	const bool isHead = buffer != nullptr && ReadHead(buffer, &head);
	return Unflatten(buffer, isHead ? static_cast<ssize_t>(head.size) : 0);
}

status_t
BMessage::Unflatten(const char* buffer, ssize_t size)
{
	// Into another message, since the buffer may lie in a field of this one.
	BMessage read;
	const bool good =
		buffer != nullptr && size > 0 && ReadImage(buffer, static_cast<size_t>(size), read);
	*this = good ? std::move(read) : BMessage();
	return good ? B_OK : B_BAD_VALUE;
}
