# SPDX-License-Identifier: MIT

# What mouse and keyboard do in the two panes.

import os
import unittest

from desktop import X11Test

ROW = 15  # pixels from one row to the next
TREE = (10, 27, 150, 470)   # rows of the left pane
ITEMS = (180, 27, 480, 470)  # rows of the right pane
WHEEL_UP, WHEEL_DOWN = 4, 5


def ink(picture, area):
    """The rows of pixels in an area that hold anything but white."""
    part = picture.part(*area)
    return [y for y in range(part.height)
            if part.data[4 * part.width * y:4 * part.width * (y + 1)].strip(b"\xff\x00\xff")]


class Input(X11Test):
    def setUp(self):
        self.folder = self.new_folder(
            "first/a", "first/b", "second/", *(f"file{i:02}" for i in range(80)))
        self.korva = self.start(self.folder)
        self.before = self.korva.steady_picture()

    def wait_for_items(self, condition, what):
        return self.korva.wait_for_picture(lambda now: condition(now.part(*ITEMS)), what)

    def assert_back(self):
        items = self.before.part(*ITEMS)
        self.wait_for_items(lambda now: now == items, "the rows as they were at first")

    def test_folder_selected_on_the_left_fills_the_right(self):
        full = len(ink(self.before, ITEMS))
        self.korva.click(30, 27 + ROW // 2)
        two_rows = self.wait_for_items(
            lambda now: 0 < len(ink(now, (0, 0, now.width - 1, now.height - 1))) < full / 4,
            "the two entries of the folder")
        self.korva.click(30, 27 + ROW + ROW // 2)
        self.wait_for_items(lambda now: len(now.colours()) == 1, "an empty folder's empty pane")
        self.korva.click(30, 27 + ROW // 2)
        self.wait_for_items(lambda now: now == two_rows.part(*ITEMS), "the same two rows again")

    def test_wheel_scrolls_the_pane_under_the_pointer(self):
        tree = self.before.part(*TREE)
        self.korva.click(300, 200, WHEEL_DOWN, times=3)
        self.wait_for_items(lambda now: now != self.before.part(*ITEMS), "other rows")
        self.assertEqual(self.korva.steady_picture().part(*TREE), tree)
        self.korva.click(300, 200, WHEEL_UP, times=10)
        self.assert_back()
        # All rows fit on the left: nothing to scroll.
        self.korva.click(50, 200, WHEEL_DOWN, times=3)
        self.assertEqual(self.korva.steady_picture(), self.before)

    def test_keys_move_selection_and_rows(self):
        self.display.press("Down")
        self.wait_for_items(lambda now: now != self.before.part(*ITEMS), "a selected row")
        selected = self.korva.steady_picture()
        self.display.press("End")
        self.wait_for_items(lambda now: now != selected.part(*ITEMS), "the last rows")
        last = self.korva.steady_picture().part(*ITEMS)
        self.assertNotEqual(last.part(0, 0, 280, 200), selected.part(*ITEMS).part(0, 0, 280, 200))
        self.display.press("Home")
        self.wait_for_items(lambda now: now == selected.part(*ITEMS), "the first rows again")
        self.display.press("Next")
        self.wait_for_items(lambda now: now not in (selected.part(*ITEMS), last), "a page on")
        self.display.press("Prior")
        self.wait_for_items(lambda now: now == selected.part(*ITEMS), "the first page again")

    def test_enter_opens_the_selected_folder(self):
        self.display.press("Down", "Return")
        full = len(ink(self.before, ITEMS))
        self.wait_for_items(
            lambda now: 0 < len(ink(now, (0, 0, now.width - 1, now.height - 1))) < full / 4,
            "the two entries of the first folder")

    def test_scroll_bar_scrolls(self):
        # The arrow at its foot, a page below the knob, and the knob itself.
        self.korva.click(493, 467)
        self.wait_for_items(lambda now: now != self.before.part(*ITEMS), "rows scrolled by the arrow")
        stepped = self.korva.steady_picture()
        self.korva.click(493, 440)
        self.wait_for_items(lambda now: now != stepped.part(*ITEMS), "rows scrolled by a page")
        x, y, *_ = self.korva.frame()
        self.display.do("xdotool", "mousemove", str(x + 493), str(y + 200), "mousedown", "1",
                        "mousemove", str(x + 493), str(y + 20), "mouseup", "1")
        self.display.move_pointer(0, 0)
        self.assert_back()

    def test_names_that_change_are_followed_when_shown_again(self):
        os.unlink(os.path.join(self.folder, "first", "a"))
        os.unlink(os.path.join(self.folder, "first", "b"))
        self.korva.click(30, 27 + ROW // 2)
        self.wait_for_items(lambda now: len(now.colours()) == 1, "an empty pane")


if __name__ == "__main__":
    unittest.main()
