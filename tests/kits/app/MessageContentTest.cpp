// SPDX-License-Identifier: MIT

// What programs of these kits hand to each other in drags and by the clipboard.

#include "kits/app/MessageContent.h"

#include <support/Errors.h>

#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

using namespace BPrivate;
using namespace desktop::format;

namespace {

std::string
Flattened(const BMessage& message)
{
	std::string image(static_cast<size_t>(message.FlattenedSize()), '\0');
	message.Flatten(image.data(), static_cast<ssize_t>(image.size()));
	return image;
}

} // namespace

TEST(MessageContent, EveryFieldButPointersReachesAnotherProgram)
{
	TempTree tree{{"a/x", Text()}, {"b/y", Text()}};
	const entry_ref refs[] = {tree.Ref("a/x"), tree.Ref("b/y")};
	BMessage inner('innr');
	inner.AddString("text", "deep");
	BMessage message('DATA');
	message.AddRef("refs", &refs[0]);
	message.AddRef("refs", &refs[1]);
	message.AddData("text/plain", B_MIME_TYPE, "one", 4);
	message.AddInt32("buttons", 2);
	message.AddInt8("Pane", 'I');
	message.AddBool("Korva", true);
	message.AddPoint("point", BPoint(1, 2));
	message.AddMessage("inner", &inner);
	const std::string plain = Flattened(message);
	BMessage nested(inner);
	nested.AddPointer("view", &nested);
	message.AddPointer("view", &message);
	message.ReplaceMessage("inner", &nested);

	const MessageContent content(message, ContentUse::kDrag);
	BMessage read;
	ASSERT_TRUE(UnpackMessage(content.Bytes(kMessage), &read));
	EXPECT_EQ(plain, Flattened(read));
	EXPECT_EQ(plain.size(), Flattened(read).size());
}

TEST(MessageContent, IsAskedForOneFormatAndNotAgainWhenNobodyAnswers)
{
	TempTree tree{{"x", Text()}};
	const entry_ref ref = tree.Ref("x");
	BMessage message('DATA');
	message.AddRef("refs", &ref);
	const MessageContent content(message, ContentUse::kClipboard);
	std::vector<std::string> asked;
	status_t answer = B_OK;
	const FormatReader reader = [&](const std::string& format, std::string* bytes) {
		asked.push_back(format);
		*bytes = content.Bytes(format);
		return answer;
	};
	BMessage read;
	EXPECT_EQ(B_OK, ReadContent(content.Formats(), reader, ContentUse::kClipboard, &read));
	EXPECT_EQ(std::vector<std::string>({kMessage}), asked);
	EXPECT_TRUE(read.HasRef("refs"));
	asked.clear();
	answer = B_TIMED_OUT;
	EXPECT_EQ(B_TIMED_OUT, ReadContent(content.Formats(), reader, ContentUse::kClipboard, &read));
	EXPECT_EQ(std::vector<std::string>({kMessage}), asked);
	EXPECT_TRUE(read.IsEmpty());
}

// Numbers of devices and inodes mean something else on another machine.
TEST(MessageContent, AnotherMachinesImageIsNotTaken)
{
	TempTree tree{{"x", Text()}};
	const entry_ref ref = tree.Ref("x");
	BMessage message('DATA');
	message.AddRef("refs", &ref);
	const MessageContent content(message, ContentUse::kDrag);
	const std::string image = content.Bytes(kMessage);
	BMessage outer, read;
	ASSERT_EQ(B_OK, outer.Unflatten(image.data(), static_cast<ssize_t>(image.size())));
	ASSERT_EQ(B_OK, outer.ReplaceString("machine", "another"));
	const std::string foreign = Flattened(outer);
	EXPECT_FALSE(UnpackMessage(foreign, &read));
	const FormatReader reader = [&](const std::string& format, std::string* bytes) -> status_t {
		*bytes = format == kMessage ? foreign : content.Bytes(format);
		return B_OK;
	};
	ASSERT_EQ(B_OK, ReadContent(content.Formats(), reader, ContentUse::kDrag, &read));
	entry_ref found;
	ASSERT_EQ(B_OK, read.FindRef("refs", &found)) << "by its path";
	EXPECT_EQ(ref, found);
}
