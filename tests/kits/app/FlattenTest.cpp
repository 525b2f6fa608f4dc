// SPDX-License-Identifier: MIT

// Messages as bytes: what comes back, and what damaged bytes do.

#include <app/AppDefs.h>
#include <app/Looper.h>
#include <app/Message.h>
#include <app/MessagePrivate.h>
#include <app/Messenger.h>

#include "tests/support/Printed.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr int kMostNested = 32;

// Exactly as long as the image, so that the address sanitizer sees a read beyond it.
std::vector<char>
Flat(const BMessage& message)
{
	const ssize_t size = message.FlattenedSize();
	EXPECT_GT(size, 0);
	std::vector<char> image(static_cast<size_t>(size));
	EXPECT_EQ(B_OK, message.Flatten(image.data(), size));
	image.shrink_to_fit();
	return image;
}

status_t
Unflatten(const std::vector<char>& image, BMessage& message)
{
	return message.Unflatten(image.data(), static_cast<ssize_t>(image.size()));
}

// Codes, names, types and items, all in order.
std::string
Contents(const BMessage& message)
{
	return PrintedBy([&] { message.PrintToStream(); });
}

// One of everything that travels.
BMessage
Everything()
{
	BMessage message('ever');
	message.AddBool("bool", true);
	message.AddBool("bool", false);
	message.AddInt8("int8", -8);
	message.AddInt16("int16", -1616);
	message.AddInt32("int32", -323232);
	message.AddInt64("int64", -6464646464);
	message.AddUInt32("uint32", 0xffffffff);
	message.AddUInt64("uint64", 0xfffffffffffffffe);
	message.AddFloat("float", 0.5f);
	message.AddDouble("double", -1e300);
	message.AddPoint("point", BPoint(1, -2));
	message.AddRect("rect", BRect(1, 2, 3, 4));
	message.AddPointer("pointer", &kMostNested);
	message.AddString("string", "");
	message.AddString("string", "a text that is longer than what is stored inline");
	const entry_ref ref(0x100000001, 1ull << 40, "n\xff\nme");
	const entry_ref nameless;
	message.AddRef("ref", &ref);
	message.AddRef("ref", &nameless);
	message.AddData("raw", B_RAW_TYPE, "\0\1\2", 3);
	message.AddData("raw", B_RAW_TYPE, nullptr, 0);
	message.AddString("", "a field without a name");
	BMessage inner('innr');
	inner.AddString("name", "value");
	message.AddMessage("message", &inner);
	message.AddMessage("message", &message);
	return message;
}

BMessage
Nested(int levels)
{
	BMessage message(static_cast<uint32>(levels));
	if (levels > 1) {
		const BMessage inner = Nested(levels - 1);
		message.AddMessage("inner", &inner);
	}
	return message;
}

// A message that must not show through when unflattening fails.
BMessage
Filled()
{
	BMessage message('full');
	message.AddString("old", "value");
	return message;
}

void
ExpectRefused(const std::vector<char>& image)
{
	BMessage message = Filled();
	EXPECT_EQ(B_BAD_VALUE, Unflatten(image, message));
	EXPECT_TRUE(message.IsEmpty());
	EXPECT_EQ(0u, message.what);
}

// An image with a good head around any body.
std::vector<char>
Sealed(const std::vector<uint32>& numbers, const std::string& rest = {})
{
	std::vector<char> image(sizeof(BPrivate::ImageHead));
	auto bytes = reinterpret_cast<const char*>(numbers.data());
	std::copy_n(bytes, numbers.size() * sizeof(uint32), std::back_inserter(image));
	std::copy(rest.begin(), rest.end(), std::back_inserter(image));
	BPrivate::SealImage(image.data(), image.size());
	return image;
}

} // namespace

TEST(Flatten, EveryTypeComesBack)
{
	const BMessage message = Everything();
	BMessage read = Filled();
	ASSERT_EQ(B_OK, Unflatten(Flat(message), read));
	EXPECT_EQ(Contents(message), Contents(read));
	entry_ref ref;
	ASSERT_EQ(B_OK, read.FindRef("ref", 0, &ref));
	EXPECT_EQ(entry_ref(0x100000001, 1ull << 40, "n\xff\nme"), ref);
	ASSERT_EQ(B_OK, read.FindRef("ref", 1, &ref));
	EXPECT_EQ(nullptr, ref.name);
	// The image tells its own size, wherever it lies in memory and whatever follows.
	std::vector<char> image = Flat(message);
	image.insert(image.begin(), 'x');
	image.push_back('y');
	ASSERT_EQ(B_OK, read.Unflatten(image.data() + 1));
	EXPECT_EQ(Contents(message), Contents(read));
	ASSERT_EQ(B_OK, read.Unflatten(image.data() + 1, static_cast<ssize_t>(image.size() - 1)));
	EXPECT_EQ(Contents(message), Contents(read));
}

TEST(Flatten, WhatBelongsToThisProcessStaysHere)
{
	BLooper* looper = new BLooper;
	BMessage inner('innr');
	inner.AddMessenger("to", BMessenger(looper));
	BMessage message('mess');
	message.AddMessenger("to", BMessenger(looper));
	message.AddInt32("number", 1);
	message.AddMessage("inner", &inner);
	BPrivate::MessageAccess::SetDropped(message, true);

	BMessage read;
	BPrivate::MessageAccess::SetDropped(read, true);
	ASSERT_EQ(B_OK, Unflatten(Flat(message), read));
	EXPECT_EQ(B_NAME_NOT_FOUND, read.GetInfo("to", nullptr));
	EXPECT_TRUE(read.HasInt32("number"));
	ASSERT_EQ(B_OK, read.FindMessage("inner", &inner));
	EXPECT_TRUE(inner.IsEmpty());
	EXPECT_FALSE(read.WasDropped());
	looper->Quit();
}

TEST(Flatten, NestsToItsLimitAndNoDeeper)
{
	const BMessage deepest = Nested(kMostNested);
	BMessage read;
	ASSERT_EQ(B_OK, Unflatten(Flat(deepest), read));
	EXPECT_EQ(Contents(deepest), Contents(read));
	const BMessage tooDeep = Nested(kMostNested + 1);
	EXPECT_EQ(B_BAD_VALUE, tooDeep.FlattenedSize());
	char buffer[4096];
	EXPECT_EQ(B_BAD_VALUE, tooDeep.Flatten(buffer, sizeof(buffer)));

	// The deepest image within one more message.
	const std::vector<char> image = Flat(deepest);
	const std::string body(image.begin() + sizeof(BPrivate::ImageHead), image.end());
	ExpectRefused(Sealed({0, 1, B_MESSAGE_TYPE, 0, 1, static_cast<uint32>(body.size())}, body));

	// Each holds the one before twice: small in memory, endless as bytes.
	BMessage doubled('doub');
	doubled.AddString("text", std::string(1 << 20, 'x').c_str());
	for (int i = 0; i < kMostNested - 2; i++) {
		BMessage next('doub');
		next.AddMessage("half", &doubled);
		next.AddMessage("half", &doubled);
		doubled = std::move(next);
	}
	EXPECT_EQ(B_BAD_VALUE, doubled.FlattenedSize());
}

TEST(Flatten, ABufferMustBeThereAndHaveRoom)
{
	const BMessage message = Everything();
	const ssize_t size = message.FlattenedSize();
	std::vector<char> buffer(static_cast<size_t>(size));
	EXPECT_EQ(B_NO_MEMORY, message.Flatten(buffer.data(), size - 1));
	EXPECT_EQ(B_BAD_VALUE, message.Flatten(nullptr, size));
	BMessage read = Filled();
	EXPECT_EQ(B_BAD_VALUE, read.Unflatten(nullptr));
	EXPECT_TRUE(read.IsEmpty());
	EXPECT_EQ(B_BAD_VALUE, read.Unflatten(nullptr, 10));
	EXPECT_EQ(B_BAD_VALUE, read.Unflatten(buffer.data(), -1));
}

TEST(Flatten, AMessageMayBeMadeOfItsOwnField)
{
	const std::vector<char> image = Flat(Everything());
	BMessage message('hold');
	message.AddData("image", B_RAW_TYPE, image.data(), static_cast<ssize_t>(image.size()));
	const void* bytes = nullptr;
	ssize_t length = 0;
	ASSERT_EQ(B_OK, message.FindData("image", B_RAW_TYPE, &bytes, &length));
	ASSERT_EQ(B_OK, message.Unflatten(static_cast<const char*>(bytes), length));
	EXPECT_EQ(Contents(Everything()), Contents(message));
}

TEST(Flatten, EveryTruncationIsRefused)
{
	const std::vector<char> image = Flat(Everything());
	for (size_t size = 0; size < image.size(); size++) {
		SCOPED_TRACE(size);
		std::vector<char> cut(image.begin(), image.begin() + static_cast<ssize_t>(size));
		cut.shrink_to_fit();
		ExpectRefused(cut);
		// As a body that was made so: the check is right, so the fields have to be looked at.
		if (size < sizeof(BPrivate::ImageHead))
			continue;
		BPrivate::SealImage(cut.data(), cut.size());
		ExpectRefused(cut);
	}
}

TEST(Flatten, EveryFlippedByteIsNoticed)
{
	const BMessage message = Everything();
	std::vector<char> image = Flat(message);
	for (size_t i = 0; i < image.size(); i++) {
		for (int flip : {0x01, 0x80, 0xff}) {
			SCOPED_TRACE(i);
			const char before = image[i];
			image[i] = static_cast<char>(image[i] ^ flip);
			ExpectRefused(image);
			image[i] = before;
		}
	}
}

TEST(Flatten, LyingCountsAndLengthsAreRefused)
{
	ExpectRefused(Sealed({0}));
	ExpectRefused(Sealed({0, 0xffffffff}));                                  // fields
	ExpectRefused(Sealed({0, 1, B_RAW_TYPE, 0xffffffff, 1}));                // length of a name
	ExpectRefused(Sealed({0, 1, B_RAW_TYPE, 0, 0xffffffff, 0}));             // items
	ExpectRefused(Sealed({0, 1, B_RAW_TYPE, 0, 0}));                         // none
	ExpectRefused(Sealed({0, 1, B_RAW_TYPE, 0, 1, 0xffffffff}));             // length of an item
	ExpectRefused(Sealed({0, 1, B_INT32_TYPE, 0, 1, 2}, "ab"));              // not an int32's
	ExpectRefused(Sealed({0, 1, B_REF_TYPE, 0, 1, 8}, "12345678"));          // not a reference's
	ExpectRefused(Sealed({0, 1, B_MESSENGER_TYPE, 0, 1, 0}));                // none that travels
	ExpectRefused(Sealed({0, 1, B_ANY_TYPE, 0, 1, 0}));                      // no type
	ExpectRefused(Sealed({0, 0}, "more"));                                   // after the end
	ExpectRefused(Sealed({0, 1, B_RAW_TYPE, 4, 1, 0x00620061, 0}));          // zeros in a name
	ExpectRefused(Sealed({0, 2, B_RAW_TYPE, 0, 1, 0, B_RAW_TYPE, 0, 1, 0})); // a name twice
	BMessage read;
	EXPECT_EQ(B_OK, Unflatten(Sealed({0, 1, B_RAW_TYPE, 0, 1, 0}), read));
	EXPECT_TRUE(read.HasData("", B_RAW_TYPE));
}
