// SPDX-License-Identifier: MIT

// What BMessage does with its fields: data, ownership, drops, and a random walk beside a plain
// model.

#include <app/AppDefs.h>
#include <app/Looper.h>
#include <app/Message.h>
#include <app/MessagePrivate.h>
#include <app/Messenger.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string
StringAt(const BMessage& message, const char* name, int32 index = 0)
{
	const char* text = nullptr;
	return message.FindString(name, index, &text) == B_OK ? text : "(none)";
}

std::string
DataAt(const BMessage& message, const char* name, type_code type, int32 index)
{
	const void* data = nullptr;
	ssize_t length = 0;
	if (message.FindData(name, type, index, &data, &length) != B_OK)
		return "(none)";
	return std::string(static_cast<const char*>(data), static_cast<size_t>(length));
}

} // namespace

TEST(Message, DataItemsKeepTheirOwnLengths)
{
	const std::vector<std::string> paths = {"/a", "", std::string(21, 'x'), std::string(22, 'y'),
		std::string(23, 'z'), std::string("zero\0in it", 10), std::string(100000, 'w')};
	BMessage message;
	for (const std::string& path : paths) {
		EXPECT_EQ(message.AddData("text/plain", B_MIME_TYPE, path.data(),
					  static_cast<ssize_t>(path.size()), true, static_cast<int32>(paths.size())),
			B_OK);
	}
	for (size_t i = 0; i < paths.size(); i++) {
		EXPECT_EQ(DataAt(message, "text/plain", B_MIME_TYPE, static_cast<int32>(i)), paths[i]);
		const void* data = nullptr;
		EXPECT_EQ(message.FindData("text/plain", B_ANY_TYPE, static_cast<int32>(i), &data, nullptr),
			B_OK);
		EXPECT_EQ(reinterpret_cast<uintptr_t>(data) % alignof(int64), 0u);
		// Readers that take it for text must find an end.
		EXPECT_EQ(static_cast<const char*>(data)[paths[i].size()], '\0');
	}
	EXPECT_EQ(message.ReplaceData("text/plain", B_MIME_TYPE, 1, "longer", 6), B_OK);
	EXPECT_EQ(DataAt(message, "text/plain", B_MIME_TYPE, 1), "longer");
	EXPECT_FALSE(message.HasData("text/plain", B_MIME_STRING_TYPE));

	const void* data = &message;
	ssize_t length = 99;
	EXPECT_EQ(message.FindData("text/plain", B_RAW_TYPE, &data, &length), B_BAD_TYPE);
	EXPECT_EQ(data, nullptr);
	EXPECT_EQ(length, 99);
}

TEST(Message, DataOfATypeIsReadByThatTypesFind)
{
	BMessage message;
	int32 number = 0x01020304;
	EXPECT_EQ(message.AddData("number", B_INT32_TYPE, &number, sizeof(number)), B_OK);
	EXPECT_EQ(message.AddData("number", B_INT32_TYPE, &number, 3), B_BAD_VALUE);
	EXPECT_EQ(message.ReplaceData("number", B_INT32_TYPE, &number, 5), B_BAD_VALUE);
	int32 read = 0;
	EXPECT_EQ(message.FindInt32("number", &read), B_OK);
	EXPECT_EQ(read, number);

	message.AddData("text", B_STRING_TYPE, "without end", 7);
	EXPECT_EQ(StringAt(message, "text"), "without");
	message.AddString("text", "four");
	EXPECT_EQ(DataAt(message, "text", B_STRING_TYPE, 1), std::string("four\0", 5));

	const uint8 two = 2;
	bool flag = false;
	message.AddData("flag", B_BOOL_TYPE, &two, 1);
	EXPECT_EQ(message.FindBool("flag", &flag), B_OK);
	EXPECT_TRUE(flag);

	// A reference travels as bytes; one that is cut short is none.
	entry_ref unnamed;
	message.AddRef("ref", &unnamed);
	std::string bytes = DataAt(message, "ref", B_REF_TYPE, 0);
	EXPECT_EQ(message.AddData("copy", B_REF_TYPE, bytes.data(), 16), B_OK);
	EXPECT_EQ(message.AddData("copy", B_REF_TYPE, bytes.data(), 15), B_BAD_VALUE);
	entry_ref copy(1, 2, "preset");
	EXPECT_EQ(message.FindRef("copy", &copy), B_OK);
	EXPECT_EQ(copy, unnamed);

	message.AddMessage("message", &message);
	const void* data = &message;
	EXPECT_EQ(message.FindData("message", B_ANY_TYPE, &data, nullptr), B_BAD_TYPE);
	EXPECT_EQ(message.AddData("message", B_MESSAGE_TYPE, "x", 1), B_BAD_TYPE);
	EXPECT_FALSE(message.HasData("message", B_MESSAGE_TYPE));
}

TEST(Message, FoundPointersSurviveChangesToOtherFields)
{
	BMessage message;
	message.AddString("short", "inline");
	message.AddString("long", std::string(1000, 'l').c_str());
	const char* texts[2] = {};
	ASSERT_EQ(message.FindString("short", &texts[0]), B_OK);
	ASSERT_EQ(message.FindString("long", &texts[1]), B_OK);
	for (int i = 0; i < 200; i++)
		message.AddInt32(("number " + std::to_string(i)).c_str(), i);
	for (int i = 0; i < 200; i += 2)
		message.RemoveName(("number " + std::to_string(i)).c_str());
	const BMessage moved(std::move(message));
	EXPECT_STREQ(texts[0], "inline");
	EXPECT_EQ(texts[1], std::string(1000, 'l'));
}

TEST(Message, AMessageCanHoldCopiesOfItself)
{
	BMessage message('self');
	message.AddString("text", "outer");
	EXPECT_EQ(message.AddMessage("me", &message), B_OK);
	EXPECT_EQ(message.AddMessage("me", &message), B_OK);
	message.ReplaceString("text", "changed");

	BMessage inner;
	EXPECT_EQ(message.FindMessage("me", 1, &inner), B_OK);
	EXPECT_EQ(StringAt(inner, "text"), "outer");
	EXPECT_TRUE(inner.HasMessage("me", 0));
	EXPECT_FALSE(inner.HasMessage("me", 1));

	EXPECT_EQ(message.ReplaceMessage("me", 1, &message), B_OK);
	// The message replaces itself by what it holds.
	EXPECT_EQ(message.FindMessage("me", 0, &message), B_OK);
	EXPECT_EQ(StringAt(message, "text"), "outer");
	EXPECT_FALSE(message.HasMessage("me"));

	BMessage& itself = message;
	message = itself;
	message = std::move(itself);
	EXPECT_EQ(StringAt(message, "text"), "outer");
}

TEST(Message, ValuesMayComeFromTheFieldThatTheyGoInto)
{
	BMessage message;
	const std::string longText(500, 't');
	message.AddString("text", "short");
	message.AddString("text", longText.c_str());
	for (int i = 0; i < 100; i++) {
		const char* text = nullptr;
		message.FindString("text", i, &text);
		message.AddString("text", text);
	}
	EXPECT_EQ(StringAt(message, "text", 100), "short");
	EXPECT_EQ(StringAt(message, "text", 101), longText);
	const char* text = nullptr;
	message.FindString("text", 1, &text);
	message.ReplaceString("text", 1, text + 499);
	EXPECT_EQ(StringAt(message, "text", 1), "t");
}

TEST(Message, MessengersAreValues)
{
	BLooper* looper = new BLooper("target");
	BMessage message;
	message.AddMessenger("to", BMessenger());
	message.AddMessenger("to", BMessenger(nullptr, looper));
	BMessage copy(message);
	message.ReplaceMessenger("to", 1, BMessenger());
	BMessenger found;
	EXPECT_EQ(copy.FindMessenger("to", 1, &found), B_OK);
	EXPECT_EQ(found, BMessenger(nullptr, looper));
	EXPECT_EQ(copy.FindMessenger("to", 2, &found), B_BAD_INDEX);
	EXPECT_EQ(message.FindMessenger("to", 1, &found), B_OK);
	EXPECT_EQ(found, BMessenger());
	looper->Quit();
}

// Strings of random lengths under a few names, checked against vectors after every step.
TEST(Message, RandomChangesAgreeWithAPlainModel)
{
	using Model = std::vector<std::pair<std::string, std::vector<std::string>>>;
	std::mt19937 random(20);
	Model model;
	BMessage message;
	for (int step = 0; step < 5000; step++) {
		std::string name(1, static_cast<char>('a' + random() % 6));
		std::string value(random() % 40, static_cast<char>('A' + step % 26));
		int32 index = static_cast<int32>(random() % 5);
		auto field = std::find_if(
			model.begin(), model.end(), [&](const auto& each) { return each.first == name; });
		bool exists = field != model.end();
		bool inRange = exists && index < static_cast<int32>(field->second.size());
		status_t expected = inRange ? B_OK : exists ? B_BAD_INDEX : B_NAME_NOT_FOUND;
		const unsigned what = random() % 8;
		if (what == 0) {
			EXPECT_EQ(message.ReplaceString(name.c_str(), index, value.c_str()), expected);
			if (inRange)
				field->second[index] = value;
		} else if (what < 3) {
			EXPECT_EQ(message.RemoveData(name.c_str(), index), expected);
			if (inRange)
				field->second.erase(field->second.begin() + index);
			if (exists && field->second.empty())
				model.erase(field);
		} else if (what == 3) {
			EXPECT_EQ(message.RemoveName(name.c_str()), exists ? B_OK : B_NAME_NOT_FOUND);
			if (exists)
				model.erase(field);
		} else if (what == 4) {
			message = step % 2 == 0 ? BMessage(message) : BMessage(std::move(message));
		} else {
			EXPECT_EQ(message.AddString(name.c_str(), value.c_str()), B_OK);
			if (exists)
				field->second.push_back(value);
			else
				model.push_back({name, {value}});
		}

		Model read;
		for (const BPrivate::Field& each : BPrivate::MessageAccess::Fields(message).All()) {
			read.push_back({each.name, {}});
			for (int32 i = 0; i < each.Count(); i++)
				read.back().second.push_back(StringAt(message, each.name.c_str(), i));
		}
		ASSERT_EQ(read, model) << "step " << step;
		ASSERT_EQ(message.IsEmpty(), model.empty());
	}
	message.what = 'keep';
	message.MakeEmpty();
	EXPECT_TRUE(message.IsEmpty());
	EXPECT_EQ(message.what, static_cast<uint32>('keep'));
}

TEST(Message, DropPointIsKnownToDroppedMessagesAndTheirCopies)
{
	BMessage message(B_SIMPLE_DATA);
	message.AddPoint("_drop_point_", BPoint(3, 4));
	message.AddPoint("_drop_offset_", BPoint(1, 2));
	BPoint offset(9, 9);
	EXPECT_FALSE(message.WasDropped());
	EXPECT_EQ(message.DropPoint(&offset), BPoint(0, 0));
	EXPECT_EQ(offset, BPoint(9, 9));
	BPrivate::MessageAccess::SetDropped(message, true);
	BMessage assigned;
	assigned = message;
	EXPECT_TRUE(BMessage(message).WasDropped());
	EXPECT_TRUE(assigned.WasDropped());
	EXPECT_EQ(assigned.DropPoint(&offset), BPoint(3, 4));
	EXPECT_EQ(offset, BPoint(1, 2));
}
