# SPDX-License-Identifier: MIT

# Where the window and its parts are, and what becomes of them when it is resized.

import math
import unittest

from desktop import FRAME, X11Test

BAR_BOTTOM = 26  # of the root bar
BAR_WIDTH = 14   # of a scroll bar
ROWS_BOTTOM = FRAME[3] - BAR_WIDTH - 1
BAR = (232, 232, 232)
FACE = (216, 216, 216)
OUTLINE = (108, 108, 108)
WHITE = (255, 255, 255)

# The left pane takes a third of the first width; edges are rounded to whole pixels.
LEFT = (FRAME[2] - 1) / 3
PANE_RIGHT, BAR_LEFT, BAR_RIGHT, ITEMS_LEFT = (
    math.floor(edge + 0.5) for edge in (LEFT, LEFT + 1, LEFT + 6, LEFT + 7))


class Frame(X11Test):
    def setUp(self):
        folders = [f"folder{i}/" for i in range(3)]
        self.folder = self.new_folder(*folders, *(f"file{i:02}" for i in range(80)))

    def assert_parts_in_place(self, picture):
        right, bottom = picture.width - 1, picture.height - 1
        self.assertEqual(picture.part(0, 0, right, 3).colours(), {BAR})
        self.assertEqual(picture.part(right - 2, 0, right, BAR_BOTTOM).colours(), {BAR})
        self.assertEqual(picture.part(0, BAR_BOTTOM, right, BAR_BOTTOM).colours(), {BAR})
        self.assertNotIn(BAR, picture.part(0, BAR_BOTTOM + 1, right, BAR_BOTTOM + 1).colours())
        top = BAR_BOTTOM + 1
        for x in (BAR_LEFT, BAR_RIGHT):
            self.assertEqual(picture.part(x, top, x, bottom).colours(), {OUTLINE})
        for y in (top, bottom):
            self.assertEqual(picture.part(BAR_LEFT, y, BAR_RIGHT, y).colours(), {OUTLINE})
        face = picture.part(BAR_LEFT + 1, top + 1, BAR_RIGHT - 1, bottom - 1)
        self.assertEqual(face.colours(), {FACE})
        # The panes begin with the borders of their lists, right beside the splitter.
        for x in (PANE_RIGHT, ITEMS_LEFT):
            self.assertNotEqual(picture.part(x, top, x, bottom).colours(), {OUTLINE})
        for x in (2, ITEMS_LEFT + 2):
            self.assertIn(WHITE, picture.part(x, top + 2, x + 2, bottom - 2).colours())

    def test_window_comes_up_at_its_place_with_its_names(self):
        korva = self.start(self.folder)
        self.assertEqual(korva.frame(), FRAME)
        names = self.display.ask("xprop", "-id", korva.window(), "WM_CLASS", "WM_NAME", "_NET_WM_NAME")
        self.assertEqual(names.splitlines(), [
            'WM_CLASS(STRING) = "korva", "Korva"', 'WM_NAME(STRING) = "Korva"',
            '_NET_WM_NAME(UTF8_STRING) = "Korva"'])

    def test_four_areas_are_at_their_pixels(self):
        self.assert_parts_in_place(self.start(self.folder).steady_picture())

    def test_widening_grows_the_right_pane_and_the_root_bar_only(self):
        korva = self.start(self.folder)
        before = korva.steady_picture()
        korva.resize(701, 476)
        korva.wait_for_size(701, 476)
        after = korva.steady_picture()
        self.assert_parts_in_place(after)
        left_parts = (0, 0, BAR_RIGHT, 475)
        self.assertEqual(after.part(*left_parts), before.part(*left_parts))
        # The scroll bar has moved along with the right edge.
        self.assertEqual(after.part(701 - BAR_WIDTH, 27, 700, ROWS_BOTTOM),
                         before.part(501 - BAR_WIDTH, 27, 500, ROWS_BOTTOM))
        # Where it was there are rows now.
        self.assertIn(WHITE, after.part(501 - BAR_WIDTH, 47, 500, ROWS_BOTTOM).colours())

    def test_growing_taller_lengthens_panes_and_splitter(self):
        korva = self.start(self.folder)
        before = korva.steady_picture()
        korva.resize(501, 700)
        korva.wait_for_size(501, 700)
        after = korva.steady_picture()
        self.assert_parts_in_place(after)
        rows = (ITEMS_LEFT, 0, 501 - BAR_WIDTH - 1, ROWS_BOTTOM)
        self.assertEqual(after.part(*rows), before.part(*rows))
        self.assertGreater(len(after.part(ITEMS_LEFT + 4, 480, 400, 690).colours()), 1)

    def test_burst_of_resizes_leaves_nothing_stale_or_undrawn(self):
        direct = self.start(self.folder)
        first = direct.steady_picture()
        direct.resize(640, 560)
        direct.wait_for_size(640, 560)
        large = direct.steady_picture()
        direct.close()
        self.assert_ends_well(direct)

        korva = self.start(self.folder)
        korva.steady_picture()
        for round_ in range(3):
            for step in range(25):
                korva.resize(450 + 37 * step % 500, 300 + 53 * step % 450)
            korva.resize(640, 560)
            korva.wait_for_size(640, 560)
            korva.wait_for_picture(lambda now: now == large, f"the large picture, round {round_}")
        korva.resize(*FRAME[2:])
        korva.wait_for_size(*FRAME[2:])
        korva.wait_for_picture(lambda now: now == first, "the first picture again")

    def test_what_covered_the_window_leaves_no_trace(self):
        korva = self.start(self.folder)
        before = korva.steady_picture()
        other = self.start(self.new_folder())
        other.window()
        self.assertNotEqual(korva.steady_picture(), before)
        other.close()
        self.assert_ends_well(other)
        korva.wait_for_picture(lambda now: now == before, "the same picture as before")

    def test_smallest_window_does_no_harm(self):
        korva = self.start(self.folder)
        first = korva.steady_picture()
        korva.resize(1, 1)
        korva.steady_picture()
        self.assertNotEqual(korva.frame()[2:], FRAME[2:])
        korva.resize(*FRAME[2:])
        korva.wait_for_size(*FRAME[2:])
        korva.wait_for_picture(lambda now: now == first, "the first picture again")


if __name__ == "__main__":
    unittest.main()
