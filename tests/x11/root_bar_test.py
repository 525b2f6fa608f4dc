# SPDX-License-Identifier: MIT

# The root bar under a real display: typing, its alerts, selections and the clipboard shared with
# other programs, the menu of folders, and the splitter.

import os
import subprocess
import unittest

from desktop import X11Test, wait_until

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

    def copied(self, selection):
        """What another program would paste now."""
        return self.display.ask("xclip", "-o", "-selection", selection)

    def copy_elsewhere(self, text, selection):
        # It stays and answers those who paste: its output must not be ours.
        subprocess.run(["xclip", "-i", "-selection", selection], input=text.encode(), check=True,
                       env=self.display.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       timeout=20)

    def field_text(self):
        self.display.press("ctrl+a", "ctrl+c")
        return self.copied("clipboard")

    def wait_for_text(self, text):
        wait_until(lambda: self.field_text() == text, f"the text '{text}'")

    def test_typed_folder_becomes_the_root(self):
        rows = self.first.part(*LEFT_ROWS)
        self.root_to(self.folder + "/inside")
        self.korva.wait_for_picture(lambda now: now.part(*LEFT_ROWS) != rows, "another tree")
        self.wait_for_text(self.folder + "/inside")

    def test_what_is_no_folder_is_refused(self):
        for wrong in (self.folder + "/nothing", self.folder + "/file"):
            self.root_to(wrong)
            self.korva.window("Error")
            self.korva.steady_picture("Error")
            self.display.press("Return")
            wait_until(lambda: self.korva.find_window("Error") is None, "the end of the alert")
            self.focus()
            self.wait_for_text(self.folder)

    def test_clipboard_is_shared_with_other_programs(self):
        self.focus()
        self.copy_elsewhere("/some\nwhere", "clipboard")
        self.display.press("ctrl+a", "ctrl+v")
        self.wait_for_text("/somewhere")
        self.display.press("End", "alt+z")
        self.display.press("ctrl+a", "alt+x")
        wait_until(lambda: self.copied("clipboard") not in ("", "/somewhere"), "the old text")

    def test_middle_button_pastes_what_was_selected_elsewhere(self):
        self.focus()
        self.copy_elsewhere("/elsewhere", "primary")
        self.korva.click(*BEHIND_TEXT, button=2)
        self.wait_for_text(self.folder + "/elsewhere")
        # And others paste what is selected here.
        self.display.press("End", "shift+Left", "shift+Left", "shift+Left")
        wait_until(lambda: self.copied("primary") == "ere", "our selection elsewhere")

    def test_menu_offers_the_folders_above(self):
        self.korva.click(*BEHIND_TEXT, button=3)
        self.korva.window("directories")
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

    def test_splitter_jumps_to_the_release(self):
        left, top, *_ = self.korva.frame()
        for x in (300, 120, 200):
            bar = self.bar()
            self.display.do("xdotool", "mousemove", str(left + bar), str(top + 300), "mousedown",
                            "1", "mousemove", str(left + x), str(top + 300), "sleep", "0.1",
                            "mouseup", "1")
            self.display.put_pointer_away()
            wait_until(lambda: abs(self.bar() - x) <= 1, f"the splitter at {x}")
        now = self.korva.steady_picture()
        edge = (now.width - 16, 30, now.width - 1, 470)
        self.assertEqual(now.part(*edge).colours(), self.first.part(*edge).colours())

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
