# SPDX-License-Identifier: MIT

# What mouse and keyboard do in the two panes.

import os
import unittest

from desktop import X11Test

ROW = 19  # pixels from one row to the next
TOP = 47  # of the rows, below the labels
FIRST, SECOND = (70, TOP + ROW + 9), (70, TOP + 2 * ROW + 9)  # folders below the root's row
TREE = (2, TOP, 150, 458)     # of the left pane, without its scroll bars
ITEMS = (176, TOP, 480, 458)  # of the right pane
SELECTED = (193, 122, 255)
KNOB = (216, 216, 216)  # of a scroll bar
WHEEL_UP, WHEEL_DOWN = 4, 5


def rows_with_text(items):
    return sum(1 for top in range(0, items.height - ROW, ROW)
               if len(items.part(0, top, items.width - 1, top + ROW - 1).colours()) > 1)


class Input(X11Test):
    def setUp(self):
        self.folder = self.new_folder(
            "Dir 1/a", "Dir 1/b", "Dir 2/", *(f"file{i:02}" for i in range(80)))
        self.korva = self.start(self.folder)
        self.before = self.korva.steady_picture()
        self.items = self.before.part(*ITEMS)

    def wait_for_items(self, condition, what):
        return self.korva.wait_for_picture(
            lambda now: condition(now.part(*ITEMS)), what).part(*ITEMS)

    def wait_for_change(self, before, what):
        self.wait_for_items(lambda now: now != before, what)
        return self.korva.steady_picture().part(*ITEMS)

    def test_folder_selected_on_the_left_fills_the_right(self):
        self.korva.click(*FIRST)
        two_rows = self.wait_for_items(lambda now: rows_with_text(now) == 2, "two entries")
        self.korva.click(*SECOND)
        self.wait_for_items(lambda now: rows_with_text(now) == 0, "an empty folder's empty pane")
        self.korva.click(*FIRST)
        self.wait_for_items(lambda now: now == two_rows, "the same two rows again")

    def test_wheel_scrolls_the_pane_under_the_pointer(self):
        self.korva.click(300, 200, WHEEL_DOWN, times=3)
        self.wait_for_change(self.items, "other rows")
        self.assertEqual(self.korva.picture().part(*TREE), self.before.part(*TREE))
        self.korva.click(300, 200, WHEEL_UP, times=10)
        self.wait_for_items(lambda now: now == self.items, "the first rows again")
        # All rows fit on the left: nothing to scroll.
        self.korva.click(50, 200, WHEEL_DOWN, times=3)
        self.assertEqual(self.korva.steady_picture(), self.before)

    def test_keys_move_selection_and_rows(self):
        self.display.press("Down")
        first = self.wait_for_change(self.items, "a selected row")
        self.display.press("End")
        last = self.wait_for_change(first, "the last rows")
        bottom = last.part(0, last.height - 2 * ROW, 80, last.height - 1)
        self.assertIn(SELECTED, bottom.colours(), "the last row is selected")
        self.display.press("Home")
        self.wait_for_items(lambda now: now == first, "the first rows again")
        self.display.press("Next")
        self.wait_for_items(lambda now: now not in (first, last), "a page on")
        self.display.press("Prior")
        self.wait_for_items(lambda now: now == first, "the first page again")

    def test_enter_opens_the_selected_folder(self):
        self.display.press("Down", "Return")
        self.wait_for_items(lambda now: rows_with_text(now) == 2, "two entries")

    def test_double_click_opens_a_folder(self):
        self.korva.click(210, TOP + ROW + 9, times=2)
        self.wait_for_items(lambda now: rows_with_text(now) == 0, "an empty folder's empty pane")

    def test_scroll_bar_scrolls(self):
        # The arrow at its foot, the space below the knob, and the knob itself.
        self.korva.click(493, 455)
        stepped = self.wait_for_change(self.items, "rows scrolled by the arrow")
        self.korva.click(493, 435)
        self.wait_for_change(stepped, "rows scrolled by a page")
        # A press that lasts on a busy machine scrolls by more than one.
        picture = self.korva.steady_picture()
        knob = [at for at in range(60, 440) if picture.at(493, at) == KNOB]
        x, y, *_ = self.korva.frame()
        self.display.do("xdotool", "mousemove", str(x + 493), str(y + knob[len(knob) // 2]),
                        "mousedown", "1",
                        "mousemove", str(x + 493), str(y + 100),
                        "mousemove", str(x + 493), str(y + 2), "mouseup", "1")
        self.display.put_pointer_away()
        self.wait_for_items(lambda now: now == self.items, "the first rows again")

    def test_folder_is_read_anew_when_it_is_selected(self):
        for name in ("a", "b"):
            os.unlink(os.path.join(self.folder, "Dir 1", name))
        self.korva.click(*FIRST)
        self.wait_for_items(lambda now: rows_with_text(now) == 0, "an empty pane")


if __name__ == "__main__":
    unittest.main()
