# SPDX-License-Identifier: MIT

# Editing text under a real display, in the root bar's field: scripts, keys and mouse, undo, and
# the clipboard and the selection that are shared with other programs.

import os
import signal
import subprocess
import time
import unittest

from desktop import PATIENCE, X11Test, wait_until

FIELD = (46, 10, 152, 23)  # the inside of its box
TEXT_LEFT = 46
MIDDLE = 17
SELECTED = (180, 200, 240)
BLACK = (0, 0, 0)


class Text(X11Test):
    def setUp(self):
        self.folder = self.new_folder("inside/")
        self.korva = self.start(self.folder)
        self.korva.steady_picture()
        self.korva.click(120, MIDDLE)
        self.write("")

    def write(self, text):
        """In place of what is there."""
        self.display.press("ctrl+a", "BackSpace")
        if text:
            self.display.do("xdotool", "type", "--delay", "5", text)

    def keys_for(self, symbols):
        """The codes of keys that bear these characters, or keys of that name, from now on."""
        keymap = self.display.ask("setxkbmap", "-print").splitlines()
        at = next(i for i, line in enumerate(keymap) if "xkb_symbols" in line)
        names = [f"U{ord(each):04x}" if len(each) == 1 else each for each in symbols]
        keys = " ".join(f"key <AD{i:02}> {{ type = \"ONE_LEVEL\", [ {name} ] }};"
                        for i, name in enumerate(names, 1))
        keymap[at] = keymap[at].replace("};", keys + " };")
        subprocess.run(["xkbcomp", "-w", "0", "-", self.display.name], check=True,
                       env=self.display.env, input="\n".join(keymap).encode(), timeout=PATIENCE,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self.display.do, "setxkbmap", "us")
        return [str(23 + i) for i in range(1, len(names) + 1)]

    def copied(self, selection):
        """What another program would paste now."""
        return self.display.ask("xclip", "-o", "-selection", selection)

    def copy_elsewhere(self, text, selection):
        """Returns the program that holds the text for others."""
        process = subprocess.Popen(
            ["xclip", "-i", "-quiet", "-selection", selection], stdin=subprocess.PIPE,
            env=self.display.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        process.stdin.write(text.encode())
        process.stdin.close()
        wait_until(lambda: self.copied(selection) == text, f"'{text}' in the {selection}")
        return process

    def text(self):
        self.display.press("ctrl+a", "ctrl+c", "End")
        return self.copied("clipboard")

    def wait_for_text(self, text):
        wait_until(lambda: self.text() == text, f"the text '{text}'")

    def wait_for_selection(self, text):
        wait_until(lambda: self.copied("primary") == text, f"the selection '{text}'")

    def place_of(self, offset):
        """Where the character at the offset begins, found by what is selected there."""
        self.display.press("Home", *["shift+Right"] * offset)

        field = self.korva.steady_picture(rest=0.2).part(*FIELD)
        columns = [x for x in range(field.width) if field.at(x, 0) == SELECTED]
        self.display.press("Home")
        return TEXT_LEFT + len(columns)

    def test_text_of_any_script_is_typed_and_names_a_root(self):
        name = "жé日א한"
        os.makedirs(os.path.join(self.folder, name, "deep"))
        self.write(self.folder + "/")
        self.display.press(*self.keys_for(name))
        self.wait_for_text(self.folder + "/" + name)
        tree = (2, 50, 140, 200)
        before = self.korva.picture().part(*tree)
        self.display.press("Return")
        self.korva.wait_for_picture(lambda now: now.part(*tree) != before, "another tree")
        self.assertIsNone(self.korva.find_window("Error"))

    def test_dead_keys_compose(self):
        self.display.press(*self.keys_for(
            ["dead_acute", "e", "dead_diaeresis", "o", "Multi_key", "s", "s"]))
        self.wait_for_text("éöß")

    def test_commands_need_no_latin_layout(self):
        # By the codes of the keys, which bear Cyrillic letters then.
        self.write("abc")
        self.display.do("setxkbmap", "ru,us")
        self.addCleanup(self.display.do, "setxkbmap", "us")
        a, c, z, ze = "ctrl+38", "ctrl+54", "ctrl+52", "33"
        wait_until(lambda: "ru,us" in self.display.ask("setxkbmap", "-query"), "the layout")
        self.display.press(a, c)
        wait_until(lambda: self.copied("clipboard") == "abc", "the copy")
        self.display.press(ze, "End")
        self.display.press(a, c)
        wait_until(lambda: self.copied("clipboard") == "з", "Cyrillic text")
        self.display.press(z, a, c)
        wait_until(lambda: self.copied("clipboard") == "abc", "the text before")

    def test_mouse_selects_and_others_can_paste_it(self):
        self.write("one two six")
        self.wait_for_text("one two six")
        edges = [self.place_of(offset) for offset in (0, 3, 5, 10)]
        self.assertEqual(edges, sorted(set(edges)))
        # Dragging, from the right to the left.
        left, top, *_ = self.korva.frame()
        self.display.do("xdotool", "mousemove", str(left + edges[3]), str(top + MIDDLE),
                        "mousedown", "1", "mousemove", str(left + edges[1]),
                        str(top + MIDDLE), "mouseup", "1")
        self.display.put_pointer_away()
        self.wait_for_selection(" two si")
        self.korva.wait_for_picture(
            lambda now: SELECTED in now.part(*FIELD).colours(), "the selection")
        self.korva.click(edges[2], MIDDLE, times=2)
        self.wait_for_selection("two")
        self.korva.click(edges[2], MIDDLE, times=3)
        self.wait_for_selection("one two six")
        # By keys, word by word.
        self.display.press("End", "ctrl+shift+Left", "ctrl+shift+Left")
        self.wait_for_selection("two six")

    def test_undo_and_redo(self):
        self.write("first")
        self.display.press("Home")
        self.display.do("xdotool", "type", "--delay", "5", "2 ")
        self.wait_for_text("2 first")
        self.display.press("ctrl+z")
        self.wait_for_text("first")
        self.display.press("ctrl+shift+z")
        self.wait_for_text("2 first")
        self.display.press("alt+z", "alt+z")
        self.korva.wait_for_picture(
            lambda now: SELECTED not in now.part(*FIELD).colours(), "no selection")
        self.wait_for_text(self.copied("clipboard"))

    def test_clipboard_is_shared_with_other_programs(self):
        self.copy_elsewhere("/some\nwhere", "clipboard")
        self.display.press("ctrl+a", "ctrl+v")
        self.wait_for_text("/somewhere")
        self.display.press("ctrl+a", "ctrl+x", "shift+Insert", "ctrl+v")
        self.wait_for_text("/somewhere/somewhere")
        self.display.press("Home", "shift+Right", "shift+Right", "ctrl+Insert")
        wait_until(lambda: self.copied("clipboard") == "/s", "the copy")

    def test_middle_button_pastes_what_was_selected_elsewhere(self):
        self.write("AB")
        self.wait_for_text("AB")
        middle = self.place_of(1)
        holder = self.copy_elsewhere("/else\nwhere\n", "primary")
        self.korva.click(middle, MIDDLE, button=2)
        self.wait_for_text("A/elsewhereB")
        # A holder that does not answer holds nobody up for long, and counts as empty.
        self.write("CD")
        self.wait_for_text("CD")
        holder.kill()
        holder = self.copy_elsewhere("late", "primary")
        holder.send_signal(signal.SIGSTOP)
        self.korva.click(middle, MIDDLE, button=2)
        start = time.monotonic()
        self.display.press("End", "exclam")
        self.wait_for_text("CD!")
        self.assertLess(time.monotonic() - start, PATIENCE / 4)
        holder.send_signal(signal.SIGCONT)

    def test_long_lines_scroll_with_the_caret(self):
        self.write("l" * 120)
        self.display.press("Home")
        start = self.korva.steady_picture().part(*FIELD)
        self.display.do("xdotool", "type", "--delay", "5", "W")
        self.korva.wait_for_picture(lambda now: now.part(*FIELD) != start, "the letter")
        self.display.press("End", "M")
        self.korva.wait_for_picture(
            lambda now: self.caret(now.part(*FIELD)) > 80, "a caret at the right")
        self.display.press("Home")
        self.korva.wait_for_picture(
            lambda now: 0 <= self.caret(now.part(*FIELD)) < 3, "a caret at the left")

    @staticmethod
    def caret(field):
        """The column that is black from the top to the bottom of a line, or -1."""
        for x in range(field.width):
            if all(field.at(x, y) == BLACK for y in range(field.height)):
                return x
        return -1

    def test_caret_blinks_as_one_sharp_column(self):
        self.write("x")
        for _ in range(2):
            self.korva.wait_for_picture(
                lambda now: self.caret(now.part(*FIELD)) >= 0, "the caret")
            field = self.korva.wait_for_picture(
                lambda now: self.caret(now.part(*FIELD)) < 0, "no caret").part(*FIELD)
        column = max(x for x in range(field.width) for y in range(field.height)
                     if field.at(x, y) != (255, 255, 255))
        shown = self.korva.wait_for_picture(
            lambda now: self.caret(now.part(*FIELD)) >= 0, "the caret").part(*FIELD)
        black = self.caret(shown)
        self.assertIn(black - column, (0, 1, 2))
        for y in range(shown.height):
            self.assertEqual(shown.at(black + 1, y), (255, 255, 255))


if __name__ == "__main__":
    unittest.main()
