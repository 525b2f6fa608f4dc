// SPDX-License-Identifier: MIT

// The fields of BMessage in every type: adding, finding, replacing, and their errors.

#include <app/Message.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

// Value number n of each type; -1 is what a variable holds before a Find.
template <typename T>
T
Sample(int n)
{
	if constexpr (std::is_same_v<T, bool>)
		return n % 2 != 0;
	else if constexpr (std::is_same_v<T, void*>) {
		static char targets[5];
		return &targets[n + 1];
	} else if constexpr (std::is_same_v<T, BPoint>)
		return BPoint(static_cast<float>(n), 0.5f);
	else if constexpr (std::is_same_v<T, BRect>)
		return BRect(static_cast<float>(n), 1, 2.5f, 1e9f);
	else if constexpr (std::is_same_v<T, entry_ref>)
		return entry_ref(0x100000005, 77, std::string(static_cast<size_t>(n) + 2, 'n').c_str());
	else if constexpr (std::is_same_v<T, BMessage>)
		return BMessage(static_cast<uint32>(n));
	else if constexpr (std::is_same_v<T, const char*>) {
		static const char* const kTexts[] = {"preset", "", "short", "a text beyond inline storage"};
		return kTexts[n + 1];
	} else
		// Beyond 32 bits where the type has them.
		return static_cast<T>(n * (sizeof(T) == 8 ? 0x700000000LL : 1) - 3);
}

template <typename T>
bool
Same(const T& a, const T& b)
{
	if constexpr (std::is_same_v<T, BMessage>)
		return a.what == b.what;
	else if constexpr (std::is_same_v<T, const char*>)
		return std::string(a) == b;
	else
		return a == b;
}

// References and messages are handed over by pointer.
template <typename T>
auto
Argument(const T& value)
{
	if constexpr (std::is_same_v<T, entry_ref> || std::is_same_v<T, BMessage>)
		return &value;
	else
		return value;
}

// What a failed Find must leave behind.
template <typename T>
bool
IsFailed(const T& value)
{
	if constexpr (std::is_same_v<T, void*> || std::is_same_v<T, const char*>)
		return value == nullptr;
	else
		return Same(value, Sample<T>(-1));
}

struct TypeCase {
	type_code type;
	std::function<status_t(BMessage&, const char*, int n)> add;
	// Checks that the result is sample n or, when it failed, as it has to be.
	std::function<status_t(const BMessage&, const char*, int32 index, int n)> find;
	std::function<status_t(BMessage&, const char*, int32 index, int n)> replace;
	std::function<bool(const BMessage&, const char*, int32 index)> has;
};

#define TYPE_CASE(Name, T, code)                                                                   \
	TypeCase                                                                                       \
	{                                                                                              \
		code,                                                                                      \
			[](BMessage& message, const char* name, int n) {                                       \
				T sample = Sample<T>(n);                                                           \
				return message.Add##Name(name, Argument(sample));                                  \
			},                                                                                     \
			[](const BMessage& message, const char* name, int32 index, int n) {                    \
				T value = Sample<T>(-1);                                                           \
				status_t status = message.Find##Name(name, index, &value);                         \
				EXPECT_TRUE(status == B_OK ? Same(value, Sample<T>(n)) : IsFailed(value));         \
				return status;                                                                     \
			},                                                                                     \
			[](BMessage& message, const char* name, int32 index, int n) {                          \
				T sample = Sample<T>(n);                                                           \
				return message.Replace##Name(name, index, Argument(sample));                       \
			},                                                                                     \
			[](const BMessage& message, const char* name, int32 index) {                           \
				return message.Has##Name(name, index);                                             \
			}                                                                                      \
	}

std::vector<TypeCase>
AllTypes()
{
	return {TYPE_CASE(Bool, bool, B_BOOL_TYPE), TYPE_CASE(Int8, int8, B_INT8_TYPE),
		TYPE_CASE(Int16, int16, B_INT16_TYPE), TYPE_CASE(Int32, int32, B_INT32_TYPE),
		TYPE_CASE(Int64, int64, B_INT64_TYPE), TYPE_CASE(UInt32, uint32, B_UINT32_TYPE),
		TYPE_CASE(UInt64, uint64, B_UINT64_TYPE), TYPE_CASE(Float, float, B_FLOAT_TYPE),
		TYPE_CASE(Double, double, B_DOUBLE_TYPE), TYPE_CASE(Point, BPoint, B_POINT_TYPE),
		TYPE_CASE(Rect, BRect, B_RECT_TYPE), TYPE_CASE(Pointer, void*, B_POINTER_TYPE),
		TYPE_CASE(String, const char*, B_STRING_TYPE), TYPE_CASE(Ref, entry_ref, B_REF_TYPE),
		TYPE_CASE(Message, BMessage, B_MESSAGE_TYPE)};
}

// A message with three samples of every type; the fields are named "0", "1" ...
BMessage
FullMessage(const std::vector<TypeCase>& types)
{
	BMessage message('full');
	for (size_t i = 0; i < types.size(); i++) {
		for (int n = 0; n < 3; n++)
			EXPECT_EQ(types[i].add(message, std::to_string(i).c_str(), n), B_OK);
	}
	return message;
}

} // namespace

TEST(Message, EveryTypeKeepsItsValuesInOrder)
{
	std::vector<TypeCase> types = AllTypes();
	BMessage message = FullMessage(types);
	for (size_t i = 0; i < types.size(); i++) {
		SCOPED_TRACE(i);
		std::string name = std::to_string(i);
		int found = 0;
		while (types[i].find(message, name.c_str(), found, found) == B_OK)
			found++;
		EXPECT_EQ(found, 3);
		for (int32 index : {-1, 3, INT32_MIN, INT32_MAX}) {
			EXPECT_EQ(types[i].find(message, name.c_str(), index, 0), B_BAD_INDEX);
			EXPECT_EQ(types[i].replace(message, name.c_str(), index, 0), B_BAD_INDEX);
			EXPECT_FALSE(types[i].has(message, name.c_str(), index));
		}
		EXPECT_TRUE(types[i].has(message, name.c_str(), 2));

		type_code type = 0;
		int32 count = 0;
		EXPECT_EQ(message.GetInfo(name.c_str(), &type, &count), B_OK);
		EXPECT_EQ(type, types[i].type);
		EXPECT_EQ(count, 3);
	}
}

TEST(Message, ReplaceChangesOneItemAndNeverAdds)
{
	std::vector<TypeCase> types = AllTypes();
	BMessage message = FullMessage(types);
	for (size_t i = 0; i < types.size(); i++) {
		SCOPED_TRACE(i);
		std::string name = std::to_string(i);
		EXPECT_EQ(types[i].replace(message, name.c_str(), 2, 1), B_OK);
		EXPECT_EQ(types[i].replace(message, name.c_str(), 0, 2), B_OK);
		EXPECT_EQ(types[i].find(message, name.c_str(), 0, 2), B_OK);
		EXPECT_EQ(types[i].find(message, name.c_str(), 1, 1), B_OK);
		EXPECT_EQ(types[i].find(message, name.c_str(), 2, 1), B_OK);
		EXPECT_EQ(types[i].replace(message, "other", 0, 0), B_NAME_NOT_FOUND);
		EXPECT_EQ(message.GetInfo("other", nullptr), B_NAME_NOT_FOUND);
	}
}

TEST(Message, TypesAreNeverTakenForEachOther)
{
	std::vector<TypeCase> types = AllTypes();
	BMessage message = FullMessage(types);
	for (size_t i = 0; i < types.size(); i++) {
		for (size_t field = 0; field < types.size(); field++) {
			if (field == i)
				continue;
			SCOPED_TRACE(std::to_string(i) + " in " + std::to_string(field));
			std::string name = std::to_string(field);
			EXPECT_EQ(types[i].find(message, name.c_str(), 0, 0), B_BAD_TYPE);
			EXPECT_EQ(types[i].add(message, name.c_str(), 0), B_BAD_TYPE);
			EXPECT_EQ(types[i].replace(message, name.c_str(), 0, 0), B_BAD_TYPE);
			EXPECT_FALSE(types[i].has(message, name.c_str(), 0));
		}
		EXPECT_EQ(types[i].find(message, "other", 0, 0), B_NAME_NOT_FOUND);
	}
}

TEST(Message, NullArgumentsAreRefused)
{
	BMessage message;
	for (const TypeCase& type : AllTypes()) {
		EXPECT_EQ(type.add(message, nullptr, 0), B_BAD_VALUE);
		EXPECT_EQ(type.find(message, nullptr, 0, 0), B_BAD_VALUE);
		EXPECT_EQ(type.replace(message, nullptr, 0, 0), B_BAD_VALUE);
		EXPECT_FALSE(type.has(message, nullptr, 0));
	}
	EXPECT_EQ(message.AddString("s", nullptr), B_BAD_VALUE);
	EXPECT_EQ(message.AddRef("r", nullptr), B_BAD_VALUE);
	EXPECT_EQ(message.AddMessage("m", nullptr), B_BAD_VALUE);
	EXPECT_EQ(message.AddData("d", B_RAW_TYPE, nullptr, 1), B_BAD_VALUE);
	EXPECT_EQ(message.AddData("d", B_RAW_TYPE, "", -1), B_BAD_VALUE);
	EXPECT_EQ(message.AddData("d", B_ANY_TYPE, "", 1), B_BAD_VALUE);
	EXPECT_TRUE(message.IsEmpty());
}
