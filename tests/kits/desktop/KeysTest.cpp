// SPDX-License-Identifier: MIT

#include "WindowFixture.h"

namespace {

std::string
BytesOf(const TestClient& client, InjectedUser& user, const std::string& bytes, uint32 modifiers)
{
	user.Key(bytes, modifiers);
	return client.LastKey().bytes;
}

} // namespace

TEST_F(WindowTest, KeysSendTheirByteOrTheirText)
{
	for (const char byte : {B_HOME, B_END, B_INSERT, B_BACKSPACE, B_TAB, B_ENTER, B_PAGE_UP,
			 B_PAGE_DOWN, B_FUNCTION_KEY, B_ESCAPE, B_LEFT_ARROW, B_RIGHT_ARROW, B_UP_ARROW,
			 B_DOWN_ARROW, B_DELETE, B_SPACE}) {
		const std::string bytes(1, byte);
		for (const int modifiers : {0, +B_SHIFT_KEY, +B_CONTROL_KEY, +B_COMMAND_KEY})
			EXPECT_EQ(BytesOf(fClient, fUser, bytes, uint32(modifiers)), bytes) << int(byte);
	}
	EXPECT_EQ(BytesOf(fClient, fUser, "a", 0), "a");
	EXPECT_EQ(BytesOf(fClient, fUser, "A", B_SHIFT_KEY), "A");
	EXPECT_EQ(fClient.LastKey().rawChar, 'a');
	EXPECT_EQ(BytesOf(fClient, fUser, "\xc3\xa9", 0), "\xc3\xa9");
	EXPECT_EQ(BytesOf(fClient, fUser, "x", B_COMMAND_KEY), "x");
}

TEST_F(WindowTest, ControlNeverMakesControlBytes)
{
	for (char letter = 'a'; letter <= 'z'; letter++) {
		const std::string bytes(1, letter);
		EXPECT_EQ(BytesOf(fClient, fUser, bytes, B_CONTROL_KEY), bytes);
		EXPECT_EQ(BytesOf(fClient, fUser, bytes, B_CONTROL_KEY | B_SHIFT_KEY), bytes);
	}
	EXPECT_EQ(BytesOf(fClient, fUser, "[", B_CONTROL_KEY), "[");
	EXPECT_EQ(fClient.LastKey().modifiers, uint32(B_CONTROL_KEY));
}

TEST_F(WindowTest, RepeatsAndReleasesAreTold)
{
	fUser.KeyDown("k");
	EXPECT_TRUE(fClient.LastKey().down);
	EXPECT_FALSE(fClient.LastKey().repeat);
	fUser.KeyDown("k", 0, true);
	EXPECT_TRUE(fClient.LastKey().repeat);
	fUser.KeyUp("k");
	EXPECT_FALSE(fClient.LastKey().down);
	EXPECT_EQ(fClient.LastKey().bytes, "k");
}

TEST_F(WindowTest, ModifierKeysAreToldApartAndSendNoKey)
{
	fUser.ModifierKey(B_LEFT_SHIFT_KEY, true);
	EXPECT_EQ(fClient.Take(), "modifiers 101");
	fUser.ModifierKey(B_RIGHT_SHIFT_KEY, true, B_SHIFT_KEY);
	EXPECT_EQ(fClient.Take(), "modifiers 301");
	fUser.ModifierKey(B_LEFT_SHIFT_KEY, false, B_SHIFT_KEY);
	EXPECT_EQ(fClient.Take(), "modifiers 201") << "the right one is still held";
	EXPECT_EQ(desktop::CurrentInput().modifiers, uint32(B_SHIFT_KEY | B_RIGHT_SHIFT_KEY));
	fUser.Move(5, 5); // without: the release was not seen
	EXPECT_EQ(fClient.Take(), "modifiers 0; moved 5,5 0");

	fUser.ModifierKey(B_RIGHT_COMMAND_KEY, true);
	EXPECT_EQ(fClient.Take(), "modifiers 802");
	fUser.Deactivate();
	EXPECT_EQ(fClient.Take(), "modifiers 0; inactive");
}

TEST_F(WindowTest, TheMenuKeyIsHeldAndScrollLockSwitches)
{
	fUser.ModifierKey(B_MENU_KEY, true);
	EXPECT_EQ(fClient.Take(), "modifiers 80");
	fUser.ModifierKey(B_MENU_KEY, false);
	EXPECT_EQ(fClient.Take(), "modifiers 0");
	fUser.ModifierKey(B_SCROLL_LOCK, true);
	fUser.ModifierKey(B_SCROLL_LOCK, false);
	EXPECT_EQ(fClient.Take(), "modifiers 10");
	fUser.Key("k");
	EXPECT_EQ(fClient.LastKey().modifiers, uint32(B_SCROLL_LOCK));
	fClient.Take();
	fUser.ModifierKey(B_SCROLL_LOCK, true);
	EXPECT_EQ(fClient.Take(), "modifiers 0");
}

TEST_F(WindowTest, ComposedTextArrivesAsAKeyWhereItIsWanted)
{
	EXPECT_FALSE(fUser.Compose("\xc3\xa9"));
	EXPECT_EQ(fClient.Take(), "");
	fWindow.SetTextInput(true, {10, 10, 11, 24});
	EXPECT_TRUE(fUser.Compose("\xe6\x97\xa5\xe6\x9c\xac"));
	EXPECT_EQ(fClient.Take(), "key \xe6\x97\xa5\xe6\x9c\xac");
	EXPECT_EQ(fClient.LastKey().rawChar, 0);
}
