# SPDX-License-Identifier: MIT

# Menus with a real mouse and keyboard: who has them, and that all is as before when they close.

import os
import tempfile
import unittest

from desktop import BUILT, SCREEN, X11Test, wait_until

MENU = os.environ.get("KORVA_MENU", os.path.join(BUILT, "tests/menu_program"))
PLACE = (100, 120)  # on the screen, inside the window
FACE = (216, 216, 216)
CHOSEN = (184, 184, 184)
EDGE = 2
ROW = 19
SEPARATOR = 8
PRIMARY, SECONDARY = "1", "3"


def row(index):
    """The middle of a row, from the menu's left top corner; separators are rows 1 and 6."""
    heights = [SEPARATOR if i in (1, 6) else ROW for i in range(index)]
    return 40, EDGE + sum(heights) + ROW // 2


class Menu(X11Test):
    def launch(self, *arguments):
        self.output = tempfile.TemporaryFile()
        self.addCleanup(self.output.close)
        self.program = self.start(
            *arguments, program=MENU, title="Menu program", stdout=self.output)
        self.program.window()

    def setUp(self):
        self.mouse("mousemove", SCREEN[0] - 1, SCREEN[1] - 1)
        self.launch()
        self.wait_for("active")
        self.program.steady_picture()
        self.read = 0
        self.lines()

    def tearDown(self):
        for button in (PRIMARY, SECONDARY):
            self.mouse("mouseup", button)

    def all_lines(self):
        return os.pread(self.output.fileno(), 1 << 20, 0).decode().splitlines()

    def lines(self):
        """What it has said since the last time."""
        new = self.all_lines()[self.read:]
        self.read += len(new)
        return new

    def wait_for(self, line):
        wait_until(lambda: line in self.all_lines(), f"'{line}'")

    def wait_for_choice(self):
        """What was chosen, once the program says which buttons are held: none."""
        def find():
            rest = self.all_lines()[self.read:]
            ends = [i for i, line in enumerate(rest) if line.startswith("buttons")]
            return rest[:ends[0] + 1] if ends else None
        said = wait_until(find, "a choice")
        self.read += len(said)
        self.assertEqual(said[-1], "buttons 0")
        return said[-2]

    def mouse(self, *command):
        self.display.do("xdotool", *map(str, command))

    def menu_place(self):
        return self.program.frame("menu")[:2]

    def open(self, place=PLACE, release=True):
        """Returns where the menu is."""
        self.mouse("mousemove", *place, "mousedown", SECONDARY)
        self.program.window("menu")
        if release:
            self.mouse("mouseup", SECONDARY)
        self.program.steady_picture("menu", 0.1)
        return self.menu_place()

    def point(self, index):
        x, y = row(index)
        left, top = self.menu_place()
        self.mouse("mousemove", left + x, top + y)

    def wait_for_highlight(self, index, title="menu"):
        at = row(index)
        self.program.wait_for_picture(
            lambda now: now.at(now.width - 5, at[1]) == CHOSEN, f"row {index} highlighted", title)

    def assert_works(self):
        """The window gets clicks and keys as before, and nothing that came meanwhile."""
        self.assertEqual(self.lines(), [])
        self.display.click(PLACE[0] + 150, PLACE[1], 1)
        self.display.press("x")
        wait_until(lambda: len(self.all_lines()) >= self.read + 2, "a click and a key")
        self.assertEqual(self.lines(), ["pressed 1", "key x"])

    def test_held_button_drags_to_an_item(self):
        self.assertEqual(self.open(release=False), PLACE)
        self.point(2)
        self.wait_for_highlight(2)
        self.point(3)
        self.wait_for_highlight(3)
        self.mouse("mouseup", SECONDARY)
        self.assertEqual(self.wait_for_choice(), "chose Copy")
        self.assert_works()

    def test_held_button_released_elsewhere_chooses_nothing(self):
        self.open(release=False)
        self.point(2)
        self.mouse("mousemove", SCREEN[0] - 5, SCREEN[1] - 5)
        self.mouse("mouseup", SECONDARY)
        self.assertEqual(self.wait_for_choice(), "chose nothing")
        self.assert_works()

    def test_click_opens_and_click_chooses(self):
        self.open()
        self.point(5)
        self.mouse("click", PRIMARY)  # disabled
        self.point(7)
        self.wait_for_highlight(7)
        self.mouse("click", PRIMARY)
        self.assertEqual(self.wait_for_choice(), "chose Rename")
        self.assert_works()

    def test_mark_shows_what_was_chosen_last(self):
        self.open()
        unmarked = self.program.steady_picture("menu")
        self.point(2)
        self.mouse("click", PRIMARY)
        self.wait_for_choice()
        self.open()
        marked = self.program.steady_picture("menu")
        _, middle = row(2)
        mark = (4, middle - 8, 20, middle + 8)
        self.assertEqual(unmarked.part(*mark).colours(), {FACE})
        self.assertIn((0, 0, 0), marked.part(*mark).colours())
        _, middle = row(3)
        mark = (4, middle - 8, 20, middle + 8)
        self.assertEqual(marked.part(*mark), unmarked.part(*mark))
        self.display.press("Escape")
        self.wait_for_choice()

    def test_keys_choose(self):
        for keys, choice in ((("Down", "Down", "Return"), "Cut"),
                             (("Up", "Up", "space"), "Rename"),
                             (("p", "Return"), "Paste"),
                             (("m", "Right", "Down", "Return"), "About"),
                             (("Down", "Escape"), "nothing")):
            self.open()
            self.display.press(*keys)
            self.assertEqual(self.wait_for_choice(), "chose " + choice)
        self.assert_works()

    def test_press_outside_closes_and_is_swallowed(self):
        for place in ((PLACE[0] + 220, PLACE[1] + 5), (700, 700)):  # own window, desktop
            self.open()
            self.mouse("mousemove", *place, "mousedown", PRIMARY)
            self.assertEqual(self.wait_for_choice(), "chose nothing")
            self.mouse("mousemove_relative", 1, 1)
            self.mouse("mouseup", PRIMARY)
            self.assert_works()

    def test_stays_on_the_screen(self):
        self.display.do("xdotool", "windowmove", self.program.window(),
                        str(SCREEN[0] - 310), str(SCREEN[1] - 230))
        wait_until(lambda: self.program.frame()[0] > 700, "the window in the corner")
        x, y, *_ = self.program.frame()
        self.open((x + 280, y + 180))
        left, top, width, height = self.program.frame("menu")
        self.assertEqual((left + width, top + height), SCREEN)
        self.point(0)
        self.mouse("click", PRIMARY)
        self.assertEqual(self.wait_for_choice(), "chose Open")

    def test_submenu_opens_under_the_resting_pointer(self):
        self.open()
        self.point(8)
        left, top, width, _ = self.program.frame("menu")
        sub_left, sub_top, *_ = self.program.frame("submenu")
        self.assertEqual(sub_left, left + width - 2)
        self.mouse("mousemove", sub_left + 40, sub_top + row(0)[1])
        self.wait_for_highlight(0, "submenu")
        self.mouse("click", PRIMARY)
        self.assertEqual(self.wait_for_choice(), "chose Refresh")
        wait_until(lambda: self.program.find_window("submenu") is None, "no submenu")
        self.assert_works()

    def test_window_behind_repaints_and_stays_active(self):
        before = self.program.steady_picture()
        self.open()
        self.program.resize(400, 300)
        self.program.wait_for_size(400, 300)
        self.program.wait_for_picture(
            lambda now: now.at(now.width - 3, now.height - 3) not in ((232, 232, 232),
                                                                      before.at(297, 197)),
            "the new corner")
        self.assertIsNotNone(self.program.find_window("menu"))
        self.point(0)
        self.mouse("click", PRIMARY)
        self.assertEqual(self.wait_for_choice(), "chose Open")
        self.assert_works()

    def test_closes_with_its_window(self):
        self.open()
        self.program.close()
        self.program.wait_for_end()
        self.assertIn("chose nothing", self.lines())

    def test_opens_without_a_press(self):
        self.program.close()
        self.program.wait_for_end()
        self.read = 0
        self.launch("--open")
        self.program.steady_picture("menu")
        self.display.press("Down", "Return")
        self.assertEqual(self.wait_for_choice(), "chose Open")
        self.wait_for("active")  # which had to wait
        self.lines()
        self.assert_works()

    def test_gives_way_to_the_window_of_another_program(self):
        self.open()
        first, first_output = self.program, self.output
        self.launch("--open")  # it cannot have mouse and keys before the first menu has closed
        self.program.steady_picture("menu")
        wait_until(lambda: first.find_window("menu") is None, "the end of the first menu")
        self.read = 0
        self.display.press("Down", "Return")
        self.assertEqual(self.wait_for_choice(), "chose Open")
        said = os.pread(first_output.fileno(), 1 << 20, 0).decode().splitlines()
        self.assertEqual(said[-4:], ["open", "chose nothing", "buttons 0", "inactive"])

    def test_ends_with_the_program(self):
        self.open()
        self.program.process.terminate()
        self.assert_ends_well(self.program)
        self.assertIn("chose nothing", self.lines())


if __name__ == "__main__":
    unittest.main()
