// SPDX-License-Identifier: MIT

#include <desktop/BuiltinIcons.h>
#include <desktop/GuiThread.h>
#include <desktop/IconTheme.h>
#include <desktop/Types.h>

#include "tests/support/Storm.h"
#include "tests/support/TempTree.h"

#include <QBuffer>
#include <QImage>
#include <gtest/gtest.h>

#include <set>

using namespace desktop;

namespace {

// A picture of one colour, as a file.
TempItem
Png(int width, int height, const QColor& color)
{
	WaitForDesktop(); // Qt finds no encoder safely while it starts
	QImage image(width, height, QImage::Format_ARGB32);
	image.fill(color);
	QBuffer buffer;
	buffer.open(QIODevice::WriteOnly);
	image.save(&buffer, "PNG");
	return Text(buffer.data().toStdString());
}

TempItem
Theme(const std::string& inherits, const std::string& folders)
{
	return Text("[Icon Theme]\nName=Test\nInherits=" + inherits + "\nDirectories=" + folders +
		"\n[16]\nSize=16\nType=Fixed\nContext=MimeTypes\n"
		"[22]\nSize=22\nType=Fixed\nContext=MimeTypes\n"
		"[48]\nSize=48\nType=Fixed\n"
		"[all]\nSize=64\nMinSize=20\nMaxSize=256\nType=Scalable\n"
		"[16@2]\nSize=16\nScale=2\nContext=MimeTypes\n"
		"[devices]\nSize=16\nContext=Devices\n");
}

// The colour in the middle of the icon that is found; none when there is no icon.
QColor
Found(const IconTheme& theme, const std::vector<std::string>& names, int32 size = 16)
{
	const QImage image = theme.Load(names, size, size);
	if (image.isNull())
		return {};
	EXPECT_EQ(image.size(), QSize(size, size));
	return image.pixelColor(size / 2, size / 2);
}

} // namespace

TEST(BuiltinIcons, EachIsDifferentFromTheOthers)
{
	constexpr int kIcons = int(BuiltinIcon::kUnknown) + 1;
	for (int32 size : {16, 32, 64}) {
		std::set<std::string> seen;
		for (int i = 0; i < kIcons; i++) {
			const QImage image = DrawBuiltinIcon(BuiltinIcon(i), size);
			ASSERT_EQ(image.size(), QSize(size, size));
			seen.emplace(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
			EXPECT_EQ(qAlpha(image.pixel(size / 2, size / 2)), 255) << i;
		}
		EXPECT_EQ(seen.size(), size_t(kIcons)) << size;
	}
}

TEST(IconTheme, TheNearestSizeIsTaken)
{
	TempTree tree{{"own/index.theme", Theme("", "16,22,48,all,16@2,devices,gone")},
		{"own/16/a.png", Png(16, 16, Qt::red)}, {"own/22/a.png", Png(22, 22, Qt::green)},
		{"own/48/a.png", Png(48, 48, Qt::blue)}, {"own/22/b.png", Png(22, 22, Qt::green)},
		{"own/48/b.png", Png(48, 48, Qt::blue)}, {"own/all/c.png", Png(64, 64, Qt::cyan)},
		{"own/48/c.png", Png(48, 48, Qt::blue)}, {"own/16@2/d.png", Png(32, 32, Qt::red)},
		{"own/devices/e.png", Png(16, 16, Qt::red)}, {"own/48/wide.png", Png(48, 12, Qt::blue)}};
	const IconTheme theme({tree.Path()}, "own");
	EXPECT_EQ(Found(theme, {"a"}), QColor(Qt::red));
	EXPECT_EQ(Found(theme, {"a"}, 32), QColor(Qt::green));
	EXPECT_EQ(Found(theme, {"b"}), QColor(Qt::green));
	EXPECT_EQ(Found(theme, {"b"}, 40), QColor(Qt::blue));
	EXPECT_EQ(Found(theme, {"c"}, 32), QColor(Qt::cyan));
	// Pictures for finer screens rather than none, but not those of other things.
	EXPECT_EQ(Found(theme, {"d"}), QColor(Qt::red));
	EXPECT_FALSE(theme.Has("e"));
	EXPECT_EQ(Found(theme, {"e"}), QColor());
	// Scaled to fit, in the middle.
	const QImage wide = theme.Load({"wide"}, 16, 16);
	EXPECT_EQ(wide.size(), QSize(16, 16));
	EXPECT_EQ(qAlpha(wide.pixel(8, 2)), 0);
	EXPECT_EQ(wide.pixelColor(8, 8), QColor(Qt::blue));
}

TEST(IconTheme, AFinerScreenTakesWhatWasDrawnForIt)
{
	const std::string folders = "[Icon Theme]\nDirectories=16,32,24,16@2\n"
								"[16]\nSize=16\nType=Fixed\n[32]\nSize=32\nType=Fixed\n"
								"[24]\nSize=24\nType=Fixed\n"
								"[16@2]\nSize=16\nScale=2\nType=Fixed\n";
	TempTree tree{{"own/index.theme", Text(folders)}, {"own/16/a.png", Png(16, 16, Qt::red)},
		{"own/32/a.png", Png(32, 32, Qt::green)}, {"own/24/a.png", Png(24, 24, Qt::cyan)},
		{"own/16@2/a.png", Png(32, 32, Qt::blue)}, {"own/32/b.png", Png(32, 32, Qt::green)}};
	const IconTheme theme({tree.Path()}, "own");
	auto colour = [&](const char* name, int32 size, int32 pixels) {
		const QImage image = theme.Load({name}, size, pixels);
		EXPECT_EQ(image.size(), QSize(pixels, pixels));
		return image.pixelColor(pixels / 2, pixels / 2);
	};
	EXPECT_EQ(colour("a", 16, 16), QColor(Qt::red));
	EXPECT_EQ(colour("a", 16, 32), QColor(Qt::blue));
	EXPECT_EQ(colour("a", 32, 32), QColor(Qt::green));
	EXPECT_EQ(colour("a", 16, 24), QColor(Qt::cyan));
	EXPECT_EQ(colour("b", 16, 32), QColor(Qt::green));
}

TEST(IconTheme, OwnPicturesComeBeforeInheritedOnes)
{
	TempTree tree{{"own/index.theme", Theme("parent,none", "16")},
		{"parent/index.theme", Theme("own,hicolor", "16")},
		{"hicolor/index.theme", Theme("", "16")}, {"own/16/general.png", Png(16, 16, Qt::red)},
		{"parent/16/special.png", Png(16, 16, Qt::green)},
		{"parent/16/other.png", Png(16, 16, Qt::green)},
		{"hicolor/16/other.png", Png(16, 16, Qt::blue)},
		{"hicolor/16/last.png", Png(16, 16, Qt::blue)}, {"own/16/broken.png", Text("no picture")},
		{"first/own/16/general.png", Png(16, 16, Qt::yellow)}};
	const IconTheme theme({tree.Path()}, "own");
	EXPECT_EQ(Found(theme, {"special", "general"}), QColor(Qt::red));
	EXPECT_EQ(Found(theme, {"special", "none"}), QColor(Qt::green));
	EXPECT_EQ(Found(theme, {"other"}), QColor(Qt::green));
	EXPECT_EQ(Found(theme, {"last"}), QColor(Qt::blue));
	EXPECT_EQ(Found(theme, {"none"}), QColor());
	EXPECT_EQ(Found(theme, {"broken", "last"}), QColor(Qt::blue));

	// What the user keeps at home replaces single pictures of the system's theme.
	const IconTheme both({tree.Path("first"), tree.Path()}, "own");
	EXPECT_EQ(Found(both, {"general"}), QColor(Qt::yellow));
	// A theme that is missing, or no theme's name, leaves the last one.
	for (const char* name : {"missing", "", "../own", "."})
		EXPECT_EQ(Found(IconTheme({tree.Path()}, name), {"last"}), QColor(Qt::blue)) << name;
}

TEST(Types, ThreadsMayAskAtOnce)
{
	std::string results[4];
	InThreads(4, [&results](int thread) {
		for (const char* name : {"a.txt", "b.jpg", "c.mp3", "d.zip", "e.html"}) {
			const std::string type = TypeByName(name);
			results[thread] += type + ": " + TypeDescription(type) + ", " +
				std::to_string(LoadTypeIcon(type, 16).pixels[100]) + "\n";
		}
	});
	for (const std::string& result : results)
		EXPECT_EQ(result, results[0]);
	EXPECT_EQ(TypeByName("nothing at all"), "");
	EXPECT_EQ(TypeByName(""), "");
}
