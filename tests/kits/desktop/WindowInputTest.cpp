// SPDX-License-Identifier: MIT

#include "WindowFixture.h"

using namespace desktop;

TEST_F(WindowTest, InputReachesTheClientInOrder)
{
	fUser.Move(10, 20);
	fUser.Press(10, 20);
	fUser.Press(10, 20, B_SECONDARY_MOUSE_BUTTON);
	fUser.Move(300, -5);
	fUser.Release(300, -5);
	fUser.Release(300, -5, B_SECONDARY_MOUSE_BUTTON);
	fUser.Wheel(4, 4, 0, 1);
	fUser.Wheel(4, 4, -2, -0.5f);
	fUser.Key("q");
	fUser.Leave();
	EXPECT_EQ(fClient.Take(),
		"moved 10,20 0; pressed 10,20 1; pressed 10,20 3; moved 300,-5 3; released 300,-5 2; "
		"released 300,-5 0; wheel 0,1; wheel -2,-0.5; key q; key up q; left 4,4 0");
}

TEST_F(WindowTest, CountsPressesCloseInTimeAndPlace)
{
	for (const int32 clicks : {1, 2, 3}) {
		fUser.Press(20, 20);
		EXPECT_EQ(fClient.LastMouse().clicks, clicks);
		fUser.Release(20, 20);
	}
	fUser.Press(30, 20);
	EXPECT_EQ(fClient.LastMouse().clicks, 1) << "another place";
	fUser.Release(30, 20);
	fUser.Press(30, 20, B_TERTIARY_MOUSE_BUTTON);
	EXPECT_EQ(fClient.LastMouse().clicks, 1) << "another button";
	EXPECT_EQ(fClient.LastMouse().button, uint32(B_TERTIARY_MOUSE_BUTTON));
	fUser.Release(30, 20, B_TERTIARY_MOUSE_BUTTON);
}

TEST_F(WindowTest, LiveInputFollowsTheEvents)
{
	fUser.Press(10, 20, B_SECONDARY_MOUSE_BUTTON, B_CONTROL_KEY);
	InputState input = CurrentInput();
	EXPECT_EQ(input.buttons, uint32(B_SECONDARY_MOUSE_BUTTON));
	EXPECT_EQ(input.modifiers, uint32(B_CONTROL_KEY));
	EXPECT_EQ(fClient.LastMouse().screenX, input.x);
	EXPECT_EQ(input.x, 60);
	EXPECT_EQ(input.y, 95);
	fUser.MoveOnScreen(5, 6);
	input = CurrentInput();
	EXPECT_EQ(input.x, 5);
	EXPECT_EQ(input.modifiers, 0u);
	fUser.Release(10, 20, B_SECONDARY_MOUSE_BUTTON);
	EXPECT_EQ(CurrentInput().buttons, 0u);
}

TEST_F(WindowTest, ReleasesThatWereLostAreMadeUpFor)
{
	fUser.Press(10, 20);
	fUser.Press(10, 20, B_SECONDARY_MOUSE_BUTTON);
	fClient.Take();
	fUser.LoseButtons();
	fUser.Move(12, 20);
	EXPECT_EQ(fClient.Take(), "released 12,20 2; released 12,20 0; moved 12,20 0");
	EXPECT_EQ(CurrentInput().buttons, 0u);
}

TEST_F(WindowTest, CloseAndActivationAreOnlyTold)
{
	fUser.Close();
	fUser.Deactivate();
	fUser.Activate();
	EXPECT_EQ(fClient.Take(), "close; inactive; active");
	EXPECT_TRUE(fWindow.IsShown());
	fUser.Click(3, 3);
	EXPECT_EQ(fClient.Take(), "moved 3,3 0; pressed 3,3 1; released 3,3 0");
}

TEST(WindowInput, ADestroyedClientHearsNothing)
{
	auto client = std::make_unique<TestClient>();
	TestClient other;
	NativeWindow stays(other, {0, 0, 99, 99}, "stays", {});
	Canvas canvas(100, 100, stays.Scale());
	stays.Show(canvas);
	{
		NativeWindow window(*client, {0, 0, 99, 99}, "goes", {});
		window.Show(canvas);
		InjectedUser user("goes");
		user.Activate();
		user.Press(5, 5);
	}
	client.reset(); // from here on the sanitizers watch
	InjectedUser user(stays);
	user.Activate();
	user.Move(6, 6);
	user.Key("x");
	user.Close();
	EXPECT_NE(other.Take().find("key x"), std::string::npos);
}
