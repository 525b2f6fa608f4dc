# SPDX-License-Identifier: MIT

# The whole program on real folders, as somebody uses it for an afternoon: what the panes show is
# read from the screen, what became of the files from the disk.

import os
import unittest

from desktop import X11Test, wait_until

# Places in the window as it comes up.
ROW, TOP, ROWS = 19, 47, 20
TREE_ICON, TREE_RIGHT, INDENT = 22, 152, 20
NAME, KIND, PERMISSIONS, MODIFIED = 199, 260, 347, 378
ROOT = (120, 17)
WHITE = (255, 255, 255)
LIT = (108, 108, 108)
BOXES = {WHITE: "", (193, 122, 255): "selected", (0, 0, 0): "selected", LIT: "lit"}
NAMES = ["alpha", "beta", "deep", "gamma", "root", "a.txt", "b", "c", "dd", "e", "gg", "h",
         "Copy of b", "Link to b"]
# Their rows from the top; None is a line between.
ROW_MENU = ["Open", None, "Cut", "Copy", "Paste", "Paste Link", None, "Rename", "Delete", "Refresh"]
SPACE_MENU = ["Paste", "Paste Link", None, "Refresh", "About"]
DROP_MENU = ["Link", "Move", "Copy", None, "Cancel"]


def name_at(picture, left, top, right):
    """The shape of a name, whatever its colours; and what the box behind it says."""
    row = picture.part(left, top, right, top + ROW - 1)
    box = row.at(0, ROW // 2)
    text = 0 if box[1] > 110 else 255
    end = max(x for x in range(row.width) if row.at(x, ROW // 2) == box)
    points = [(x, y) for y in range(ROW) for x in range(end + 1) if row.at(0, y) == box
              and (row.at(x, y)[1] * 2 < box[1] + text) == (text == 0)]
    x0, y0 = min((x for x, _ in points), default=0), min((y for _, y in points), default=0)
    return frozenset((x - x0, y - y0) for x, y in points), BOXES.get(box, str(box))


class Browser(X11Test):
    looks = {}

    def setUp(self):
        if not self.looks:
            self.learn()
        self.addCleanup(self.display.do, "xdotool", "mouseup", "1", "mouseup", "3",
                        "keyup", "Shift_L", "keyup", "Super_L", "keyup", "Control_L", "keyup", "Alt_L")
        self.display.put_pointer_away()
        self.home = self.new_folder(".config/", ".local/share/applications/")
        self.root = os.path.join(self.new_folder(
            "root/alpha/deep/gg", "root/beta/", "root/b", "root/c", "root/dd"), "root")
        self.korva = self.open(self.root)
        self.wait_for_names("alpha", "b", "beta", "c", "dd")

    def open(self, folder):
        """What runs in here has a home, and so a trash, of its own."""
        return self.start(folder, env={"HOME": self.home})

    def learn(self):
        korva = self.start(self.new_folder(*NAMES))
        last = (NAME, TOP + (len(NAMES) - 1) * ROW, KIND)
        korva.wait_for_picture(lambda now: name_at(now, *last)[0], "the last row")
        picture = korva.steady_picture()
        for row, name in enumerate(sorted(NAMES, key=str.lower)):
            self.looks[name] = name_at(picture, NAME, TOP + row * ROW, KIND)[0]
        korva.end()

    def read(self, shape):
        name = min(self.looks, key=lambda each: len(self.looks[each] ^ shape))
        return name if len(self.looks[name] ^ shape) < 5 else "?"

    def items(self, state=None, korva=None):
        """The names on the right, from the top; only those of that state."""
        picture = (korva or self.korva).picture()
        found = [name_at(picture, NAME, TOP + row * ROW, KIND) for row in range(ROWS)]
        return [self.read(shape) for shape, box in found if shape and state in (None, box)]

    def tree(self, state=None):
        """The names on the left with a blank for each level."""
        picture, names = self.korva.picture(), []
        for row in range(ROWS):
            top = TOP + row * ROW
            level = next((level for level in range(5) if picture.at(
                TREE_ICON + 2 + level * INDENT, top + ROW // 2) != WHITE), None)
            if level is not None:
                left = TREE_ICON + (level + 1) * INDENT
                shape, box = name_at(picture, left, top, TREE_RIGHT)
                if state in (None, box):
                    names.append(level * " " + self.read(shape))
        return names

    def wait_for_names(self, *names, state=None, korva=None):
        expected = sorted(names, key=str.lower)
        try:
            wait_until(lambda: self.items(state, korva) == expected, f"{expected} on the right")
        except AssertionError as error:
            (korva or self.korva).picture().save_failure()
            raise AssertionError(f"{error}; there: {self.items(state, korva)}") from None

    def wait_for_tree(self, *names, state=None):
        try:
            wait_until(lambda: self.tree(state) == list(names), f"{names} on the left")
        except AssertionError as error:
            raise AssertionError(f"{error}; there: {self.tree(state)}") from None

    def wait_for_selected(self, *names):
        self.wait_for_names(*names, state="selected")

    def path(self, name):
        return os.path.join(self.root, name)

    def write(self, name, text):
        with open(self.path(name), "w") as file:
            file.write(text)

    def wait_for_disk(self, *names, folder=""):
        wait_until(lambda: sorted(os.listdir(self.path(folder))) == sorted(names),
                   f"{names} in '{folder}'")

    def place(self, name, korva=None):
        """Of a row on the right, in the window."""
        return NAME + 4, TOP + self.items(korva=korva).index(name) * ROW + ROW // 2

    def tree_place(self, name):
        names = self.tree()
        row = next(i for i, each in enumerate(names) if each.strip() == name)
        level = len(names[row]) - len(name)
        return TREE_ICON + INDENT * (level + 1) + 4, TOP + row * ROW + ROW // 2

    def click(self, name, keys=(), **options):
        for key in keys:
            self.display.do("xdotool", "keydown", key)
        self.korva.click(*self.place(name), **options)
        for key in keys:
            self.display.do("xdotool", "keyup", key)

    def choose(self, menu, rows, item):
        """From an open menu, with the mouse."""
        left, top, *_ = self.korva.frame(menu)
        above = sum(ROW if row else 8 for row in rows[:rows.index(item)])
        self.display.click(left + 20, top + 2 + above + ROW // 2)
        wait_until(lambda: self.korva.find_window(menu) is None, "the menu's end")

    def row_menu(self, name, item):
        self.click(name, button=3)
        self.choose("iContextMenu", ROW_MENU, item)

    def space_menu(self, item):
        self.korva.click(NAME, 400, button=3)
        self.choose("eContextMenu", SPACE_MENU, item)

    def drag(self, start, end, lights=True, button=1, keys=(), target=None, then=None):
        """From place to place, once the box of a name there is dark, to the drop."""
        target = target or self.korva

        def move(korva, x, y):
            left, top, *_ = korva.frame()
            self.display.do("xdotool", "mousemove", str(left + x), str(top + y))

        def is_lit():
            row = target.picture().part(end[0] - 5, end[1] - 9, end[0] + 20, end[1] + 9)
            return LIT in row.colours()
        move(self.korva, *start)
        # At one go: a press of the right button that rests for a quarter second opens a menu.
        left, top, *_ = self.korva.frame()
        self.display.do("xdotool", "mousedown", str(button), *(
            word for step in range(1, 6) for word in
            ("mousemove", str(left + start[0] + 3 * step), str(top + start[1] + step % 2))))
        steps = [0]

        def is_seen():
            steps[0] += 1
            move(target, end[0] + steps[0] % 3, end[1])
            return is_lit() if lights else steps[0] > 20
        wait_until(is_seen, "a sign from what is dragged over")
        for key in keys:
            self.display.do("xdotool", "keydown", key)
        move(target, *end)
        self.display.do("xdotool", "mouseup", str(button))
        self.display.put_pointer_away()
        if then:
            then()
        for key in keys:
            self.display.do("xdotool", "keyup", key)

    def test_panes_follow_each_other(self):
        self.wait_for_tree("root", " alpha", " beta")
        self.korva.click(*self.tree_place("alpha"))
        self.wait_for_names("deep")
        self.wait_for_tree(" alpha", state="selected")
        self.click("deep", times=2)
        self.wait_for_names("gg")
        self.wait_for_tree("root", " alpha", "  deep", " beta")
        self.wait_for_tree("  deep", state="selected")
        self.korva.click(*ROOT)
        self.display.press("ctrl+a")
        self.display.do("xdotool", "type", "--delay", "5", self.path("alpha"))
        self.display.press("Return")
        self.wait_for_tree("alpha", " deep")
        self.wait_for_names("deep")

    def test_changes_on_the_disk_are_seen(self):
        os.mkdir(self.path("gamma"))
        self.write("a.txt", "one")
        self.wait_for_names("a.txt", "alpha", "b", "beta", "c", "dd", "gamma")
        os.rename(self.path("a.txt"), self.path("e"))
        os.remove(self.path("b"))
        os.rename(self.path("c"), self.path("alpha/c"))
        os.rename(self.path("alpha/deep"), self.path("deep"))
        self.wait_for_names("alpha", "beta", "dd", "deep", "e", "gamma")
        before = self.korva.steady_picture().part(PERMISSIONS, TOP, MODIFIED - 2, 400)
        os.chmod(self.path("e"), 0o777)
        self.korva.wait_for_picture(
            lambda now: now.part(PERMISSIONS, TOP, MODIFIED - 2, 400) != before, "permissions")

    def test_files_are_opened_by_their_program(self):
        out = os.path.join(self.home, "out")
        self.write("../show", f'#!/bin/sh\necho "$@" >>{out}.part; mv {out}.part {out}\n')
        os.chmod(self.path("../show"), 0o755)
        with open(self.home + "/.local/share/applications/show.desktop", "w") as file:
            file.write("[Desktop Entry]\nType=Application\nName=Show\n"
                       f"Exec={self.path('../show')} %f\n")
        with open(self.home + "/.config/mimeapps.list", "w") as file:
            file.write("[Default Applications]\ntext/plain=show.desktop\n")
        self.write("b", "plain text")
        self.write("c", f'#!/bin/sh\necho ran >{out}.part; mv {out}.part {out}\n')
        os.chmod(self.path("c"), 0o755)

        def opened():
            wait_until(lambda: os.path.exists(out), "a program has run")
            with open(out) as file:
                text = file.read()
            os.remove(out)
            return text.strip()
        self.click("b", times=2)
        self.assertEqual(opened(), self.path("b"))
        self.row_menu("b", "Open")
        self.assertEqual(opened(), self.path("b"))
        self.click("c")
        self.wait_for_selected("c")
        self.display.press("Return")
        self.assertEqual(opened(), "ran")
        # Nobody opens this one.
        os.remove(self.path("dd"))
        os.mkfifo(self.path("h"))
        self.wait_for_names("alpha", "b", "beta", "c", "h")
        self.click("h", times=2)
        self.korva.window("Launch Failed")
        self.display.press("Return")
        wait_until(lambda: self.korva.find_window("Launch Failed") is None, "the alert's end")

    def test_rename(self):
        self.row_menu("b", "Rename")
        self.display.press("e", "Return")
        self.wait_for_disk("alpha", "beta", "c", "dd", "e")
        self.wait_for_names("alpha", "beta", "c", "dd", "e")
        self.row_menu("c", "Rename")
        self.display.press("h", "Escape")
        self.wait_for_names("alpha", "beta", "c", "dd", "e")

    def test_rubber_band_and_keys_select(self):
        left, top, *_ = self.korva.frame()
        x, y = self.place("dd")
        self.display.do("xdotool", "mousemove", str(left + x + 40), str(top + 400), "mousedown", "1",
                        "mousemove", str(left + x + 50), str(top + 350), "sleep", "0.1",
                        "mousemove", str(left + x), str(top + y - ROW), "sleep", "0.1", "mouseup", "1")
        self.display.put_pointer_away()
        self.wait_for_selected("c", "dd")
        self.click("b")
        self.wait_for_selected("b")
        self.display.press("Down")
        self.wait_for_selected("beta")
        self.display.press("shift+Down")
        self.wait_for_selected("beta", "c")
        self.display.press("ctrl+a")
        self.wait_for_selected("alpha", "b", "beta", "c", "dd")
        self.display.press("Home")
        self.wait_for_selected("alpha")
        self.korva.click(NAME, 400)
        self.wait_for_selected()
        self.display.press("End", "shift+Up", "Delete")
        self.wait_for_disk("alpha", "b", "beta")
        self.wait_for_names("alpha", "b", "beta")
        trash = self.home + "/.local/share/Trash"
        self.assertEqual(sorted(os.listdir(trash + "/files")), ["c", "dd"])
        with open(trash + "/info/c.trashinfo") as file:
            self.assertIn("Path=" + self.path("c") + "\n", file.read())

    def test_drags_within_the_window(self):
        self.drag(self.place("b"), self.place("beta"))
        self.wait_for_disk("b", folder="beta")
        self.wait_for_names("alpha", "beta", "c", "dd")
        self.drag(self.place("c"), self.tree_place("alpha"))
        self.wait_for_disk("c", "deep", folder="alpha")
        self.wait_for_names("alpha", "beta", "dd")
        self.drag(self.place("dd"), self.place("beta"), keys=["Shift_L"])
        self.wait_for_disk("b", "dd", folder="beta")
        self.assertEqual(os.readlink(self.path("beta/dd")), self.path("dd"))
        # A folder, onto the root's field.
        self.drag(self.place("beta"), ROOT, lights=False)
        self.wait_for_names("b", "dd")
        self.wait_for_tree("beta")

    def test_cut_and_copy_are_pasted(self):
        self.write("b", "b")
        self.click("b")
        self.wait_for_selected("b")
        self.display.press("ctrl+c", "ctrl+v")
        self.wait_for_names("alpha", "b", "beta", "c", "Copy of b", "dd")
        self.space_menu("Paste Link")
        self.wait_for_names("alpha", "b", "beta", "c", "Copy of b", "dd", "Link to b")
        self.assertEqual(os.readlink(self.path("Link to b")), self.path("b"))
        # By keys into another folder, once.
        self.click("c")
        self.wait_for_selected("c")
        self.display.press("ctrl+x")
        self.click("beta", times=2)
        self.wait_for_names()
        self.display.press("ctrl+v", "ctrl+v")
        self.wait_for_names("c")
        self.wait_for_disk("c", folder="beta")
        # By the menus, back again.
        self.row_menu("c", "Cut")
        self.korva.click(*self.tree_place("root"))
        self.wait_for_names("alpha", "b", "beta", "Copy of b", "dd", "Link to b")
        self.space_menu("Paste")
        self.wait_for_names("alpha", "b", "beta", "c", "Copy of b", "dd", "Link to b")
        self.row_menu("dd", "Delete")
        self.wait_for_names("alpha", "b", "beta", "c", "Copy of b", "Link to b")
        self.wait_for_disk("dd", folder=self.home + "/.local/share/Trash/files")

    def test_keys_and_menu_say_what_a_drop_does(self):
        def menu(item):
            return lambda: self.choose("File", DROP_MENU, item)
        for name, button, keys, then in (
                ("b", 1, ["Super_L"], None), ("dd", 3, [], menu("Cancel")),
                ("b", 3, [], menu("Copy")), ("c", 1, ["Control_L"], menu("Link")),
                ("dd", 3, [], menu("Move"))):
            with self.subTest(name=name, button=button, keys=keys):
                self.drag(self.place(name), self.place("beta"), button=button, keys=keys, then=then)
        self.wait_for_disk("b", "c", "dd", folder="beta")
        self.wait_for_names("alpha", "b", "beta", "c")
        self.assertFalse(os.path.islink(self.path("beta/b")))
        self.assertTrue(os.path.islink(self.path("beta/c")))

    def test_files_are_dragged_to_another_window(self):
        other = self.open(self.path("beta"))
        self.display.do("xdotool", "windowmove", "--sync", other.window(), "600", "75")
        self.display.do("xdotool", "windowfocus", "--sync", self.korva.window())
        self.display.press("ctrl+a")
        self.wait_for_selected("alpha", "b", "beta", "c", "dd")
        self.click("b")
        self.click("dd", keys=["Shift_L"])
        self.wait_for_selected("b", "beta", "c", "dd")
        self.click("beta", keys=["Control_L"])
        self.wait_for_selected("b", "c", "dd")
        self.drag(self.place("c"), (NAME, 400), lights=False, target=other)
        self.wait_for_names("b", "c", "dd", korva=other)
        self.wait_for_names("alpha", "beta")
        self.wait_for_disk("b", "c", "dd", folder="beta")


if __name__ == "__main__":
    unittest.main()
