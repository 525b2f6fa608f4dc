# SPDX-License-Identifier: MIT

# The columns of the right pane and the arrows of the left one, used with a mouse.

import os
import unittest

from desktop import X11Test

ROW = 19
TOP = 47                   # of the rows, below the labels
LABEL_Y = 36
LEFT = 174                 # of the right pane
ITEMS = (LEFT, TOP, 485, 458)
TREE = (0, TOP, 152, 458)
BLACK = (0, 0, 0)
WHITE = (255, 255, 255)
# Where the columns begin, as they come up.
NAME, KIND, SIZE, PERMISSIONS = LEFT + 21, LEFT + 87, LEFT + 140, LEFT + 173


class ColumnList(X11Test):
    def setUp(self):
        # By name small, middle, tall; by size middle, small, tall.
        self.folder = self.new_folder("tree/inner/", "tree/inside/deeper/")
        for name, size in (("1small.txt", 2000), ("2middle.html", 10), ("3tall.c", 5000)):
            with open(os.path.join(self.folder, name), "wb") as file:
                file.write(b"x" * size)
        self.korva = self.start(self.folder)
        self.before = self.korva.steady_picture()

    def row(self, picture, index, left=NAME, right=SIZE - 2):
        top = TOP + index * ROW
        return picture.part(left, top, right, top + ROW - 1)

    def order_of(self, picture):
        """Each row's number in the first picture, where the rows are in the order of names."""
        first = [self.row(self.before, index).data for index in range(4)]
        now = [self.row(picture, index).data for index in range(4)]
        return [first.index(row) if row in first else None for row in now]

    def wait_for_order(self, *order):
        return self.korva.wait_for_picture(lambda now: self.order_of(now) == list(order), str(order))

    def is_underlined(self, picture, left, width):
        line = [y for y in range(TOP - 8, TOP) if all(
            picture.at(x, y) == BLACK for x in range(left + 9, left + 9 + width))]
        return bool(line)

    def drag(self, start, end):
        x, y, *_ = self.korva.frame()
        steps = [start + (end - start) * step // 5 for step in range(1, 6)]
        self.display.do("xdotool", "mousemove", str(x + start), str(y + LABEL_Y), "mousedown", "1")
        # The list looks at the mouse every 50 ms: it is moved until it has been seen.
        for step in steps:
            self.display.do("xdotool", "mousemove", str(x + step), str(y + LABEL_Y), "sleep", "0.06")

    def drop(self):
        self.display.do("xdotool", "mouseup", "1")
        self.display.put_pointer_away()

    def test_labels_sort_in_three_steps(self):
        self.assertEqual(self.order_of(self.before), [0, 1, 2, 3])
        self.assertTrue(self.is_underlined(self.before, NAME, 30))
        self.assertFalse(self.is_underlined(self.before, SIZE, 15))
        self.korva.click(NAME + 20, LABEL_Y)
        self.wait_for_order(3, 2, 1, 0)
        self.korva.click(SIZE + 10, LABEL_Y)
        # The folder comes before the files.
        by_size = self.wait_for_order(3, 1, 0, 2)
        self.assertTrue(self.is_underlined(by_size, SIZE, 15))
        self.assertFalse(self.is_underlined(by_size, NAME, 30))
        self.korva.click(SIZE + 10, LABEL_Y)
        self.wait_for_order(2, 0, 1, 3)
        self.korva.click(SIZE + 10, LABEL_Y)
        unsorted = self.korva.wait_for_picture(
            lambda now: not self.is_underlined(now, SIZE, 15), "no sort key")
        self.assertEqual(self.order_of(unsorted), [2, 0, 1, 3])

    def test_edge_is_dragged_to_make_a_column_wider(self):
        self.drag(KIND - 2, KIND + 38)
        self.drop()
        moved = self.before.part(KIND + 3, TOP, 440, 458)
        after = self.korva.wait_for_picture(
            lambda now: now.part(KIND + 43, TOP, 480, 458) == moved, "columns 40 pixels further on")
        # There is room for the whole of each name; it was not sorted meanwhile.
        self.assertTrue(self.is_underlined(after, NAME, 30))
        name = self.row(after, 1, NAME, KIND + 35)
        self.assertEqual(name.part(name.width - 10, 0, name.width - 1, ROW - 1).colours(), {WHITE})

    def test_label_is_dragged_to_move_its_column(self):
        size = self.row(self.before, 1, SIZE + 2, PERMISSIONS - 2)
        self.drag(SIZE + 10, KIND + 5)
        self.drop()
        after = self.korva.wait_for_picture(
            lambda now: self.row(now, 1, KIND + 2, KIND + PERMISSIONS - SIZE - 2) == size,
            "sizes where the kinds were")
        kinds = self.row(self.before, 1, KIND + 2, SIZE - 2)
        self.assertEqual(self.row(after, 1, KIND + 2 + PERMISSIONS - SIZE, PERMISSIONS - 2), kinds)

    def test_arrows_open_and_close_folders(self):
        def rows(picture):
            return sum(1 for index in range(8) if len(picture.part(
                0, TOP + index * ROW, 152, TOP + (index + 1) * ROW - 1).colours()) > 1)
        self.assertEqual(rows(self.before), 2)
        # A level deeper the arrow is 20 pixels further right.
        self.korva.click(32, TOP + ROW + 9)
        opened = self.korva.wait_for_picture(lambda now: rows(now) == 4, "two more rows")
        # The one of the two that has a folder in it has an arrow.
        arrow = (42, TOP + 3 * ROW, 62, TOP + 4 * ROW - 1)
        self.korva.wait_for_picture(
            lambda now: len(now.part(*arrow).colours()) > 1, "an arrow on the third level")
        self.assertEqual(opened.part(42, TOP + 2 * ROW, 60, TOP + 3 * ROW - 1).colours(), {WHITE})
        self.assertEqual(opened.part(*ITEMS), self.before.part(*ITEMS))
        self.korva.click(32, TOP + ROW + 9)
        self.korva.wait_for_picture(
            lambda now: now.part(*TREE) == self.before.part(*TREE), "the tree as it was")
        self.korva.click(12, TOP + 9)
        self.korva.wait_for_picture(lambda now: rows(now) == 1, "the root's row alone")

    def test_columns_narrower_than_their_text_cut_it_off(self):
        self.drag(KIND - 2, NAME - 60)
        self.drop()
        # Not below the least width, 20.
        kinds = self.before.part(KIND + 3, TOP, KIND + 50, TOP + 4 * ROW)
        self.korva.wait_for_picture(
            lambda now: now.part(KIND + 3 - 45, TOP, KIND + 50 - 45, TOP + 4 * ROW) == kinds,
            "a name column of 20 pixels")


if __name__ == "__main__":
    unittest.main()
