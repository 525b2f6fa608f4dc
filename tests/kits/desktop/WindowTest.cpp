// SPDX-License-Identifier: MIT

#include "WindowFixture.h"

#include <chrono>
#include <thread>

using namespace desktop;

namespace {

constexpr uint32 kRed = 0xffff0000;
constexpr uint32 kBlue = 0xff0000ff;
constexpr uint32 kPadding = 0xffd8d8d8;

} // namespace

TEST_F(WindowTest, ShowsItsFirstPictureAtItsPlace)
{
	const InjectedUser::Picture picture = fUser.Snapshot();
	EXPECT_EQ(picture.width, 200);
	EXPECT_EQ(picture.height, 100);
	EXPECT_EQ(picture.At(0, 0), kRed);
	EXPECT_EQ(picture.At(199, 99), kRed);
	fUser.Move(0, 0);
	EXPECT_EQ(fClient.LastMouse().screenX, 50) << "the content's corner, not the frame's";
	EXPECT_EQ(fClient.LastMouse().screenY, 75);
}

TEST_F(WindowTest, PresentsTheRegionAndNothingElse)
{
	Paint(fCanvas, {0, 0, 255});
	PixelRegion region(PixelRect{10, 10, 19, 19});
	region.Include(PixelRect{190, 90, 500, 500});
	fWindow.Present(fCanvas, region);
	const InjectedUser::Picture picture = fUser.Snapshot();
	EXPECT_EQ(picture.At(10, 10), kBlue);
	EXPECT_EQ(picture.At(19, 19), kBlue);
	EXPECT_EQ(picture.At(20, 19), kRed);
	EXPECT_EQ(picture.At(199, 99), kBlue);
	EXPECT_EQ(picture.At(189, 99), kRed);
}

TEST_F(WindowTest, TellsItsNewSizeAndTakesThatPictureWhole)
{
	fUser.Resize(300, 50);
	EXPECT_EQ(fClient.Take(), "resized 300x50");
	fCanvas.Resize(300, 50, 1);
	Paint(fCanvas, {0, 0, 255});
	fWindow.Present(fCanvas, PixelRect{0, 0, 0, 0});
	const InjectedUser::Picture picture = fUser.Snapshot();
	EXPECT_EQ(picture.width, 300);
	EXPECT_EQ(picture.height, 50);
	EXPECT_EQ(picture.At(299, 49), kBlue);
	fWindow.ResizeTo(120, 110);
	fWindow.MoveTo(5, 6);
	fUser.Snapshot();
	EXPECT_EQ(fClient.Take(), "resized 120x110; at 5,6");
}

TEST_F(WindowTest, PadsThePictureOfAClientThatIsBusy)
{
	fUser.Resize(210, 100);
	const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
	while (fUser.Snapshot().width != 210 && std::chrono::steady_clock::now() < deadline)
		std::this_thread::yield();
	InjectedUser::Picture picture = fUser.Snapshot();
	EXPECT_EQ(picture.At(199, 50), kRed);
	EXPECT_EQ(picture.At(209, 50), kPadding);
	// A picture of the old size comes late.
	Paint(fCanvas, {0, 0, 255});
	fWindow.Present(fCanvas, PixelRect{0, 0, 199, 99});
	picture = fUser.Snapshot();
	EXPECT_EQ(picture.At(199, 50), kBlue);
	EXPECT_EQ(picture.At(209, 50), kPadding);
}

TEST(Window, ThatIsNotResizableKeepsItsSize)
{
	TestClient client;
	NativeWindow::Options options;
	options.resizable = false;
	NativeWindow window(client, {0, 0, 79, 59}, "fixed", options);
	Canvas canvas(80, 60, window.Scale());
	window.Show(canvas);
	InjectedUser user(window);
	user.Resize(100, 100);
	EXPECT_EQ(user.Snapshot().width, 80);
	window.ResizeTo(90, 60); // by the program
	user.Snapshot();
	EXPECT_NE(client.Take().find("resized 90x60"), std::string::npos);
}

TEST(Window, MayBeUsedBeforeItIsShown)
{
	TestClient client;
	NativeWindow window(client, {0, 0, 79, 59}, "early", {});
	window.SetTitle("later");
	window.MoveTo(3, 4);
	window.SetSizeLimits(10, 500, 10, 500);
	EXPECT_FALSE(window.IsShown());
	Canvas canvas(80, 60, window.Scale());
	window.Present(canvas, PixelRect{0, 0, 79, 59});
	window.Show(canvas);
	EXPECT_TRUE(window.IsShown());
	InjectedUser user("later");
	user.Click(1, 1);
	EXPECT_EQ(client.LastMouse().screenX, 4);
	window.Hide();
	EXPECT_FALSE(window.IsShown());
	window.Show(canvas);
	EXPECT_TRUE(window.IsShown());
}
