// SPDX-License-Identifier: MIT

// BMessage: a code and named fields, each an array of items of one type.
//
// Errors, unless told otherwise: a NULL name, value or result pointer gives B_BAD_VALUE, an unknown
//   name B_NAME_NOT_FOUND, another type than the field's (int32 is not uint32) B_BAD_TYPE, an index
//   that the field does not have B_BAD_INDEX. A failed Find leaves its results as they were, but
//   sets the pointers of FindString, FindPointer and FindData to NULL.
// Owns all that is added: items are copies. FindString and FindData give pointers into the message
//   that stay good until that field changes or the message dies; changes to other fields and moving
//   the message as a whole do not harm them.
// Answering: the duty to answer belongs to the object that was delivered. Copies do not have it,
//   assignments leave it where it is, construction by move takes it along.
// Thread: one at a time, as for any value; several may read at once.
// Cost: a message without fields needs no memory besides itself, a field with one small item one
//   block. Names are searched one after the other: few fields, many items.

#pragma once

#include <app/AppDefs.h>
#include <app/MessageFields.h>
#include <interface/Rect.h>
#include <storage/EntryRef.h>
#include <support/TypeConstants.h>

#include <memory>

namespace BPrivate {
struct MessageAccess;
struct ReplySlot;
} // namespace BPrivate

class BMessage {
public:
	BMessage() = default;
	explicit BMessage(uint32 code) : what(code) {}
	BMessage(const BMessage& other);
	BMessage(BMessage&& other) noexcept;
	virtual ~BMessage(); // a sender that still waits for the answer gets B_NO_REPLY

	BMessage& operator=(const BMessage& other);
	BMessage& operator=(BMessage&& other) noexcept;

	bool IsEmpty() const { return fFields.IsEmpty(); }
	status_t GetInfo(const char* name, type_code* type, int32* count = nullptr) const;
	void PrintToStream() const; // to standard output

	status_t RemoveName(const char* name);
	status_t RemoveData(const char* name, int32 index = 0);
	void MakeEmpty(); // removes the fields; `what` stays

	// The message as bytes, for files and other programs on this machine: `what` and the fields,
	// those of nested messages too. Pointers become numbers. Messengers mean nothing outside of
	// this process: their fields are left out. That the message was dropped, and who waits for an
	// answer, is lost.
	// B_BAD_VALUE for messages nested deeper than 32 levels and for more than 2 GB.
	ssize_t FlattenedSize() const;
	// `size` is the buffer's and may be larger than needed; B_NO_MEMORY when it is too small.
	status_t Flatten(char* buffer, ssize_t size) const;
	// Replaces `what` and fields. B_BAD_VALUE for anything but an image made by Flatten(), which is
	// checked as a whole; the message is empty then, `what` 0. At most `size` bytes are read, and
	// memory is taken in proportion to them. The form without a size trusts the image to tell it.
	status_t Unflatten(const char* buffer);
	status_t Unflatten(const char* buffer, ssize_t size);

	// Delivery by drag and drop. Copies remember it too.
	bool WasDropped() const { return fDropped; }
	// In screen coordinates; (0, 0) when not dropped. `offset`: the pointer's position within the
	// dragged rectangle.
	BPoint DropPoint(BPoint* offset = nullptr) const;

	bool IsSourceWaiting() const;
	// B_BAD_REPLY when nobody waits and no address for answers is known, B_DUPLICATE_REPLY when the
	// waiting sender has its answer already. The reply is copied.
	status_t SendReply(BMessage* reply);
	status_t SendReply(uint32 code);

	// Add appends an item; the first one fixes the field's type.
	status_t AddBool(const char* name, bool value);
	status_t AddInt8(const char* name, int8 value);
	status_t AddInt16(const char* name, int16 value);
	status_t AddInt32(const char* name, int32 value);
	status_t AddInt64(const char* name, int64 value);
	status_t AddUInt32(const char* name, uint32 value);
	status_t AddUInt64(const char* name, uint64 value);
	status_t AddFloat(const char* name, float value);
	status_t AddDouble(const char* name, double value);
	status_t AddPoint(const char* name, BPoint value);
	status_t AddRect(const char* name, BRect value);
	status_t AddPointer(const char* name, const void* value);
	status_t AddString(const char* name, const char* value);
	status_t AddRef(const char* name, const entry_ref* value);
	status_t AddMessenger(const char* name, BMessenger value);
	status_t AddMessage(const char* name, const BMessage* value);
	// Bytes of any length, each item its own: `fixedSize` and `expectedItems` are hints.
	// B_BAD_VALUE for B_ANY_TYPE and for a length that the type cannot have; B_BAD_TYPE for
	// messages and messengers, which are not bytes. References are device, directory and the name
	// with its terminating zero.
	status_t AddData(const char* name, type_code type, const void* data, ssize_t length,
		bool fixedSize = true, int32 expectedItems = 1);

	// The short forms read item 0.
	status_t FindBool(const char* name, bool* value) const;
	status_t FindBool(const char* name, int32 index, bool* value) const;
	status_t FindInt8(const char* name, int8* value) const;
	status_t FindInt8(const char* name, int32 index, int8* value) const;
	status_t FindInt16(const char* name, int16* value) const;
	status_t FindInt16(const char* name, int32 index, int16* value) const;
	status_t FindInt32(const char* name, int32* value) const;
	status_t FindInt32(const char* name, int32 index, int32* value) const;
	status_t FindInt64(const char* name, int64* value) const;
	status_t FindInt64(const char* name, int32 index, int64* value) const;
	status_t FindUInt32(const char* name, uint32* value) const;
	status_t FindUInt32(const char* name, int32 index, uint32* value) const;
	status_t FindUInt64(const char* name, uint64* value) const;
	status_t FindUInt64(const char* name, int32 index, uint64* value) const;
	status_t FindFloat(const char* name, float* value) const;
	status_t FindFloat(const char* name, int32 index, float* value) const;
	status_t FindDouble(const char* name, double* value) const;
	status_t FindDouble(const char* name, int32 index, double* value) const;
	status_t FindPoint(const char* name, BPoint* value) const;
	status_t FindPoint(const char* name, int32 index, BPoint* value) const;
	status_t FindRect(const char* name, BRect* value) const;
	status_t FindRect(const char* name, int32 index, BRect* value) const;
	status_t FindPointer(const char* name, void** value) const;
	status_t FindPointer(const char* name, int32 index, void** value) const;
	status_t FindString(const char* name, const char** value) const;
	status_t FindString(const char* name, int32 index, const char** value) const;
	status_t FindRef(const char* name, entry_ref* value) const;
	status_t FindRef(const char* name, int32 index, entry_ref* value) const;
	status_t FindMessenger(const char* name, BMessenger* value) const;
	status_t FindMessenger(const char* name, int32 index, BMessenger* value) const;
	status_t FindMessage(const char* name, BMessage* value) const;
	status_t FindMessage(const char* name, int32 index, BMessage* value) const;
	// B_ANY_TYPE finds every type that is bytes. `length` may be NULL.
	status_t FindData(const char* name, type_code type, const void** data, ssize_t* length) const;
	status_t FindData(
		const char* name, type_code type, int32 index, const void** data, ssize_t* length) const;

	// The item must exist and be of that type: replacing never adds.
	status_t ReplaceBool(const char* name, bool value);
	status_t ReplaceBool(const char* name, int32 index, bool value);
	status_t ReplaceInt8(const char* name, int8 value);
	status_t ReplaceInt8(const char* name, int32 index, int8 value);
	status_t ReplaceInt16(const char* name, int16 value);
	status_t ReplaceInt16(const char* name, int32 index, int16 value);
	status_t ReplaceInt32(const char* name, int32 value);
	status_t ReplaceInt32(const char* name, int32 index, int32 value);
	status_t ReplaceInt64(const char* name, int64 value);
	status_t ReplaceInt64(const char* name, int32 index, int64 value);
	status_t ReplaceUInt32(const char* name, uint32 value);
	status_t ReplaceUInt32(const char* name, int32 index, uint32 value);
	status_t ReplaceUInt64(const char* name, uint64 value);
	status_t ReplaceUInt64(const char* name, int32 index, uint64 value);
	status_t ReplaceFloat(const char* name, float value);
	status_t ReplaceFloat(const char* name, int32 index, float value);
	status_t ReplaceDouble(const char* name, double value);
	status_t ReplaceDouble(const char* name, int32 index, double value);
	status_t ReplacePoint(const char* name, BPoint value);
	status_t ReplacePoint(const char* name, int32 index, BPoint value);
	status_t ReplaceRect(const char* name, BRect value);
	status_t ReplaceRect(const char* name, int32 index, BRect value);
	status_t ReplacePointer(const char* name, const void* value);
	status_t ReplacePointer(const char* name, int32 index, const void* value);
	status_t ReplaceString(const char* name, const char* value);
	status_t ReplaceString(const char* name, int32 index, const char* value);
	status_t ReplaceRef(const char* name, const entry_ref* value);
	status_t ReplaceRef(const char* name, int32 index, const entry_ref* value);
	status_t ReplaceMessenger(const char* name, BMessenger value);
	status_t ReplaceMessenger(const char* name, int32 index, BMessenger value);
	status_t ReplaceMessage(const char* name, const BMessage* value);
	status_t ReplaceMessage(const char* name, int32 index, const BMessage* value);
	status_t ReplaceData(const char* name, type_code type, const void* data, ssize_t length);
	status_t ReplaceData(
		const char* name, type_code type, int32 index, const void* data, ssize_t length);

	bool HasBool(const char* name, int32 index = 0) const;
	bool HasInt8(const char* name, int32 index = 0) const;
	bool HasInt16(const char* name, int32 index = 0) const;
	bool HasInt32(const char* name, int32 index = 0) const;
	bool HasInt64(const char* name, int32 index = 0) const;
	bool HasUInt32(const char* name, int32 index = 0) const;
	bool HasUInt64(const char* name, int32 index = 0) const;
	bool HasFloat(const char* name, int32 index = 0) const;
	bool HasDouble(const char* name, int32 index = 0) const;
	bool HasPoint(const char* name, int32 index = 0) const;
	bool HasRect(const char* name, int32 index = 0) const;
	bool HasPointer(const char* name, int32 index = 0) const;
	bool HasString(const char* name, int32 index = 0) const;
	bool HasRef(const char* name, int32 index = 0) const;
	bool HasMessenger(const char* name, int32 index = 0) const;
	bool HasMessage(const char* name, int32 index = 0) const;
	bool HasData(const char* name, type_code type, int32 index = 0) const;

	uint32 what = 0;

private:
	friend struct BPrivate::MessageAccess; // delivery, see MessagePrivate.h

	bool fDropped = false;
	bool fPrefersFocus = false; // for the looper's preferred handler, not for fTarget
	int64 fTarget = 0;          // token of the handler that it is for
	BPrivate::MessageFields fFields;
	std::shared_ptr<BPrivate::ReplySlot> fReply; // a sender that waits for the answer
	std::shared_ptr<BMessenger> fReplyTo;        // whom an answer goes to, or null
};
