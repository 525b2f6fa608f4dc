// SPDX-License-Identifier: MIT

#include <interface/Bitmap.h>
#include <storage/Entry.h>
#include <storage/Node.h>
#include <storage/NodeInfo.h>

#include <desktop/Types.h>

#include "tests/support/TempTree.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <sys/xattr.h>

namespace {

BBitmap
Empty(int32 size = B_MINI_ICON, color_space space = B_CMAP8)
{
	return BBitmap(BRect(0, 0, size - 1, size - 1), space);
}

const void*
Pixels(const BBitmap& bitmap)
{
	return bitmap.Bits();
}

bool
SamePixels(const BBitmap& a, const BBitmap& b)
{
	return a.BitsLength() == b.BitsLength() &&
		(a.BitsLength() == 0 || memcmp(a.Bits(), b.Bits(), a.BitsLength()) == 0);
}

// The bitmap that all nodes with this icon share.
const void*
IconOf(const entry_ref& ref)
{
	BBitmap bitmap = Empty();
	EXPECT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, B_MINI_ICON), B_OK) << ref.name;
	EXPECT_FALSE(SamePixels(bitmap, Empty())) << ref.name;
	return Pixels(bitmap);
}

const void*
IconOf(const char* type)
{
	BBitmap bitmap = Empty();
	EXPECT_EQ(BMimeType(type).GetIcon(&bitmap, B_MINI_ICON), B_OK) << type;
	return Pixels(bitmap);
}

} // namespace

TEST(TypeIcon, BitmapsOfOneTypeShareTheirPixelsUntilWrittenTo)
{
	BBitmap first = Empty();
	BBitmap second = Empty();
	ASSERT_EQ(BMimeType("text/plain").GetIcon(&first, B_MINI_ICON), B_OK);
	ASSERT_EQ(BMimeType("Text/Plain").GetIcon(&second, B_MINI_ICON), B_OK);
	EXPECT_EQ(Pixels(first), Pixels(second));

	BBitmap before(first);
	memset(second.Bits(), 7, second.BitsLength());
	EXPECT_NE(Pixels(first), Pixels(second));
	EXPECT_TRUE(SamePixels(first, before));
	const uint8 dot = 9;
	first.SetBits(&dot, 1, 0, B_CMAP8);
	EXPECT_EQ(Pixels(before), IconOf("text/plain"));
	EXPECT_FALSE(SamePixels(first, before));
}

TEST(TypeIcon, OnlyBitmapsThatFitAreFilled)
{
	TempTree tree{{"file.txt", Text()}};
	const entry_ref ref = tree.Ref("file.txt");
	const BMimeType type("text/plain");
	for (icon_size size : {B_MINI_ICON, B_LARGE_ICON}) {
		for (color_space space : {B_CMAP8, B_RGB32, B_RGBA32}) {
			BBitmap bitmap = Empty(size, space);
			EXPECT_EQ(type.GetIcon(&bitmap, size), B_OK);
			EXPECT_FALSE(SamePixels(bitmap, Empty(size, space)));
			const BBitmap shared(bitmap);
			EXPECT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, size), B_OK);
			EXPECT_EQ(Pixels(bitmap), Pixels(shared));
		}
	}
	const struct {
		BRect bounds;
		color_space space;
		icon_size size;
	} wrong[] = {
		{BRect(0, 0, 15, 15), B_CMAP8, B_LARGE_ICON},
		{BRect(0, 0, 15, 14), B_CMAP8, B_MINI_ICON},
		{BRect(0, 0, 15, 15), B_GRAY1, B_MINI_ICON},
		{BRect(), B_CMAP8, B_MINI_ICON},
		{BRect(0, 0, 23, 23), B_CMAP8, static_cast<icon_size>(24)},
	};
	for (const auto& test : wrong) {
		BBitmap bitmap(test.bounds, test.space);
		EXPECT_EQ(type.GetIcon(&bitmap, test.size), B_BAD_VALUE);
		EXPECT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, test.size), B_BAD_VALUE);
		EXPECT_TRUE(SamePixels(bitmap, BBitmap(test.bounds, test.space)));
	}
}

TEST(TypeIcon, WhatIsNotThereLeavesTheBitmapAlone)
{
	TempTree tree{{"gone.txt", Text()}, {"broken", Link("none")}};
	const entry_ref gone = tree.Ref("gone.txt");
	tree.Remove("gone.txt");
	BBitmap bitmap = Empty();
	memset(bitmap.Bits(), 5, bitmap.BitsLength());
	const BBitmap before(bitmap);
	entry_ref target;
	ASSERT_EQ(BEntry(tree.Path("broken").c_str(), true).GetRef(&target), B_OK);
	for (const entry_ref& ref : {gone, target})
		EXPECT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, B_MINI_ICON), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BMimeType("no/such").GetIcon(&bitmap, B_MINI_ICON), B_ENTRY_NOT_FOUND);
	EXPECT_TRUE(SamePixels(bitmap, before));
}

TEST(TypeIcon, NodesShowWhatTheyAre)
{
	TempTree tree{{"folder/x", Text()}, {"link", Link("folder")}, {"broken", Link("none")},
		{"a.txt", Text()}, {"b.txt", Text()}, {"c.png", Text()}, {"d.mp3", Text()},
		{"e.mp4", Text()}, {"f.zip", Text()}, {"noise", Text(std::string("\0\1\2\xfe", 4))}};
	EXPECT_EQ(IconOf(tree.Ref("a.txt")), IconOf(tree.Ref("b.txt")));
	EXPECT_EQ(IconOf(tree.Ref("a.txt")), IconOf("text/plain"));
	EXPECT_EQ(IconOf(tree.Ref("folder")), IconOf("inode/directory"));
	EXPECT_EQ(IconOf(tree.Ref("link")), IconOf("inode/symlink"));
	EXPECT_EQ(IconOf(tree.Ref("broken")), IconOf("application/x-vnd.Be-symlink"));
	entry_ref root;
	ASSERT_EQ(get_ref_for_path("/", &root), B_OK);
	EXPECT_EQ(IconOf(root), IconOf("inode/directory"));

	// They also look different.
	std::set<std::string> looks;
	for (const char* name :
		{"folder", "link", "a.txt", "c.png", "d.mp3", "e.mp4", "f.zip", "noise"})
		looks.emplace(static_cast<const char*>(IconOf(tree.Ref(name))), B_MINI_ICON * B_MINI_ICON);
	EXPECT_EQ(looks.size(), 8u);

	// The same by an open node.
	for (const char* name : {"folder", "link", "broken", "a.txt", "noise"}) {
		const entry_ref ref = tree.Ref(name);
		BNode node(&ref);
		BBitmap bitmap = Empty();
		EXPECT_EQ(BNodeInfo(&node).GetTrackerIcon(&bitmap, B_MINI_ICON), B_OK);
		EXPECT_EQ(Pixels(bitmap), IconOf(ref)) << name;
	}
}

TEST(TypeIcon, ANodesOwnIconComesFirst)
{
	TempTree tree{{"file.txt", Text()}};
	const std::string own(B_MINI_ICON * B_MINI_ICON, '\x12');
	auto set = [&](const char* name, const std::string& value) {
		return setxattr(tree.Path("file.txt").c_str(), name, value.data(), value.size(), 0) == 0;
	};
	if (!set("user.BEOS:TYPE", "text/x-no-such"))
		GTEST_SKIP() << "no attributes on the file system of " << tree.Path();
	const entry_ref ref = tree.Ref("file.txt");
	EXPECT_NE(IconOf(ref), nullptr); // of a type that nobody knows
	ASSERT_TRUE(set("user.BEOS:M:STD_ICON", own.substr(1)));
	BBitmap bitmap = Empty();
	ASSERT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, B_MINI_ICON), B_OK);
	EXPECT_NE(memcmp(Pixels(bitmap), own.data(), own.size()), 0);
	ASSERT_TRUE(set("user.BEOS:M:STD_ICON", own));
	ASSERT_EQ(BNodeInfo::GetTrackerIcon(&ref, &bitmap, B_MINI_ICON), B_OK);
	EXPECT_EQ(memcmp(Pixels(bitmap), own.data(), own.size()), 0);
}

TEST(TypeIcon, AFineScreenShowsAnIconOfAsManyPixels)
{
	BBitmap bitmap = Empty();
	ASSERT_EQ(BMimeType("text/plain").GetIcon(&bitmap, B_MINI_ICON), B_OK);
	for (double scale : {1.25, 1.5, 2.0, 3.0}) {
		const int32 side = static_cast<int32>(16 * scale);
		const desktop::IconPixels icon = desktop::LoadTypeIcon("text/plain", B_MINI_ICON, side);
		ASSERT_EQ(icon.size, side);
		desktop::Canvas canvas(16, 16, scale);
		canvas.DrawPicture(bitmap.Picture(), {0, 0, 15, 15}, {0, 0, 15, 15}, B_OP_COPY);
		int opaque = 0;
		for (int32 i = 0; i < side * side; i++) {
			const uint32 pixel = icon.pixels[static_cast<size_t>(i)];
			if (pixel >> 24 != 255)
				continue;
			opaque++;
			EXPECT_EQ(canvas.PixelAt(i % side, i / side), pixel) << scale;
		}
		EXPECT_GT(opaque, 100);
	}
}

TEST(TypeIcon, ANodesPreferredApplicationComesBeforeItsType)
{
	// One that this machine's theme has an icon for.
	const char* known = nullptr;
	for (const char* name : {"application/x-executable", "x-office/document", "image/x-generic",
			 "package/x-generic", "application/pdf"}) {
		if (known == nullptr && desktop::HasOwnIcon(name))
			known = name;
	}
	EXPECT_FALSE(desktop::HasOwnIcon("application/x-vnd.nobody-knows"));
	if (known == nullptr)
		GTEST_SKIP() << "no icon theme is installed";
	TempTree tree{{"file.txt", Text()}};
	const entry_ref ref = tree.Ref("file.txt");
	auto prefer = [&](const std::string& signature) {
		return setxattr(tree.Path("file.txt").c_str(), "user.BEOS:PREF_APP", signature.data(),
				   signature.size(), 0) == 0;
	};
	if (!prefer("application/x-vnd.nobody-knows"))
		GTEST_SKIP() << "no attributes on the file system of " << tree.Path();
	EXPECT_EQ(IconOf(ref), IconOf("text/plain"));
	ASSERT_TRUE(prefer(known));
	const void* preferred = IconOf(ref);
	EXPECT_NE(preferred, IconOf("text/plain"));
	if (BMimeType(known).IsInstalled()) {
		EXPECT_EQ(preferred, IconOf(known));
	}
	ASSERT_TRUE(prefer("no type's name"));
	EXPECT_EQ(IconOf(ref), IconOf("text/plain"));
}
