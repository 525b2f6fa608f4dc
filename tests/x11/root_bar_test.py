# SPDX-License-Identifier: MIT

# The root bar under a real display: typed roots, both alerts, the menu of folders; and the splitter.

import os
import random
import unittest

from cursor_test import Server
from desktop import X11Test, wait_until
from interchange_test import DRAG
from peers import Peer

WHITE = (255, 255, 255)
FIELD = (45, 9, 152, 24)  # the inside of its box
BEHIND_TEXT = (150, 17)
LEFT_ROWS = (2, 30, 140, 200)


class RootBar(X11Test):
    def setUp(self):
        self.folder = self.new_folder("inside/one/", "inside/two/", "file")
        self.korva = self.start(self.folder)
        self.first = self.korva.steady_picture()

    def focus(self):
        self.korva.click(*BEHIND_TEXT)

    def type(self, text):
        self.display.do("xdotool", "type", "--delay", "5", text)

    def root_to(self, path):
        self.focus()
        self.display.press("ctrl+a")
        self.type(path)
        self.display.press("Return")

    def field_text(self):
        self.display.press("ctrl+a", "ctrl+c")
        return self.display.ask("xclip", "-o", "-selection", "clipboard")

    def wait_for_text(self, text):
        wait_until(lambda: self.field_text() == text, f"the text '{text}'")

    def is_answered(self):
        if self.korva.find_window("Error") is None:
            return True
        self.display.press("Return")
        return False

    def test_typed_folder_becomes_the_root(self):
        rows = self.first.part(*LEFT_ROWS)
        self.root_to(self.folder + "/inside")
        self.korva.wait_for_picture(lambda now: now.part(*LEFT_ROWS) != rows, "another tree")
        self.wait_for_text(self.folder + "/inside")

    def test_what_is_no_folder_is_refused(self):
        alerts = []
        rows = self.first.part(*LEFT_ROWS)
        for wrong in (self.folder + "/nothing", self.folder + "/file"):
            self.root_to(wrong)
            self.korva.window("Error")
            alerts.append(self.korva.steady_picture("Error"))
            # The window that waits hands the keys back to the alert, and selects nothing later.
            self.korva.click(75, 70)
            wait_until(self.is_answered, "the end of the alert")
            self.assertEqual(self.korva.steady_picture().part(*LEFT_ROWS), rows)
            self.focus()
            self.wait_for_text(self.folder)
        self.assertNotEqual(*alerts)  # each says what is wrong

    def drag_onto_the_field(self, path, done):
        """From another program, until that is done."""
        peer = Peer(self.display, [DRAG], "other", "600", "100", path)
        self.addCleanup(peer.end)
        x, y, *_ = peer.frame()
        left, top, *_ = self.korva.frame()

        def move(x, y):
            self.display.do("xdotool", "mousemove", str(x), str(y))

        def drag():
            move(x + 20, y + 20)
            self.display.do("xdotool", "mousedown", "1")
            for step in range(4):
                move(x + 24 + 4 * step, y + 24)
            for step in range(10):  # whoever is dragged over must have time to see it
                move(left + BEHIND_TEXT[0] - step, top + BEHIND_TEXT[1])
            self.display.do("xdotool", "mouseup", "1")
            try:
                return wait_until(done, "the drop", 2)
            except AssertionError:
                return False
        wait_until(drag, f"a drop of {path}")
        peer.end()

    def test_dropped_folder_becomes_the_root_and_a_dropped_file_does_not(self):
        rows = self.first.part(*LEFT_ROWS)
        self.drag_onto_the_field(
            self.folder + "/inside", lambda: self.korva.picture().part(*LEFT_ROWS) != rows)
        self.focus()
        self.wait_for_text(self.folder + "/inside")
        self.drag_onto_the_field(
            self.folder + "/file", lambda: self.korva.find_window("Error"))
        wait_until(self.is_answered, "the end of the alert")
        self.focus()
        self.wait_for_text(self.folder + "/inside")

    def test_menu_offers_the_folders_above(self):
        server = Server(self.display.name)
        self.addCleanup(server.close)
        arrow = server.cursor()
        left, top, *_ = self.korva.frame()
        self.display.do("xdotool", "mousemove", str(left + BEHIND_TEXT[0]),
                        str(top + BEHIND_TEXT[1]))
        wait_until(lambda: server.cursor() != arrow, "the beam over the text")
        self.display.do("xdotool", "mousedown", "3")
        self.korva.window("directories")
        wait_until(lambda: server.cursor() == arrow, "the arrow over the menu")
        self.korva.steady_picture("directories", 0.1)  # it has taken the mouse
        self.display.do("xdotool", "mouseup", "3")
        self.korva.steady_picture("directories", 0.1)
        self.assertEqual(server.cursor(), arrow)
        self.display.press("Up", "Return")
        wait_until(lambda: self.korva.find_window("directories") is None, "the menu's end")
        self.focus()
        self.wait_for_text(os.path.dirname(self.folder))

    def test_field_shows_caret_and_selection(self):
        self.assertIn(WHITE, self.first.part(*FIELD).colours())
        self.focus()
        self.display.press("ctrl+a")
        self.korva.wait_for_picture(
            lambda now: (180, 200, 240) in now.part(*FIELD).colours(), "a selection")

    def test_fifty_drags_of_the_splitter_leave_the_right_edge_where_it_is(self):
        places = random.Random(50)
        left, top, *_ = self.korva.frame()
        first = bar = self.bar()
        for i in range(50):
            x = places.randrange(60, 440)
            # The place counts where the pointer is seen after the release: it waits there.
            self.display.do("xdotool", "mousemove", str(left + bar), str(top + 300), "mousedown",
                            "1", "mousemove", str(left + x), str(top + 300), "sleep", "0.06",
                            "mouseup", "1")
            wait_until(lambda: abs(self.bar() - x) <= 1, f"the splitter at {x}, drag {i}")
            bar = self.bar()
        self.display.put_pointer_away()
        now = self.korva.steady_picture()
        edges = [now.part(now.width - 14 - off, 80, now.width - 2 - off, 400) for off in (0, 1)]
        self.assertIn(self.first.part(now.width - 14, 80, now.width - 2, 400), edges)
        # Both panes meet the bar.
        self.assertEqual(now.part(bar - 16, 200, bar + 5, 400),
                         self.first.part(first - 16, 200, first + 5, 400))

    def test_the_cursor_alone_shows_a_drag_of_the_splitter(self):
        server = Server(self.display.name)
        self.addCleanup(server.close)
        left, top, *_ = self.korva.frame()

        def move(x):
            self.display.do("xdotool", "mousemove", str(left + x), str(top + 300))

        def wait_for(cursor):
            wait_until(lambda: server.cursor() == cursor, "the cursor")
        arrow, bar = server.cursor(), self.bar()
        move(bar)
        wait_until(lambda: server.cursor() != arrow, "the double arrow")
        double_arrow = server.cursor()
        self.assertEqual(double_arrow[0], (8, 5))
        move(bar + 50)
        wait_for(arrow)
        move(bar)
        wait_for(double_arrow)
        self.display.do("xdotool", "mousedown", "1")
        move(bar + 50)
        self.assertEqual(self.korva.steady_picture().part(*LEFT_ROWS), self.first.part(*LEFT_ROWS))
        self.assertEqual((self.bar(), server.cursor()), (bar, double_arrow))
        self.display.do("xdotool", "mouseup", "1")
        wait_until(lambda: abs(self.bar() - bar - 50) <= 1, "the splitter")
        move(bar + 100)
        wait_for(arrow)

    def bar(self):
        """The middle of the splitter: the middle of six columns between two dark ones."""
        picture = self.korva.picture()
        dark, face = (108, 108, 108), (216, 216, 216)
        row = [picture.at(x, 400) for x in range(picture.width)]
        for x in range(picture.width - 5):
            if row[x:x + 6] == [dark, face, face, face, face, dark]:
                return x + 2
        return -1


if __name__ == "__main__":
    unittest.main()
