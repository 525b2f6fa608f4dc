#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

# Takes the pictures of the README from the running program, on a virtual display.
#
#   docs/take_pictures.py FOLDER
#
# FOLDER must not exist: it is filled with files to show, and removed at the end.

import os
import shutil
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../tests/x11"))
from desktop import KORVA, Display, Program  # noqa: E402

SIZE = (860, 460)
FILES = {
    "Documents/Letters/Letter to Anna.odt": 18_211, "Documents/Letters/Landlord.odt": 16_020,
    "Documents/Taxes/2025.pdf": 402_133, "Documents/budget.ods": 31_877,
    "Documents/notes.txt": 2_301, "Music/Nils/one.ogg": 4_112_400, "Music/Nils/two.ogg": 3_900_102,
    "Pictures/Oslo/IMG_0417.jpg": 2_811_300, "Pictures/Oslo/IMG_0418.jpg": 2_672_911,
    "Pictures/Oslo/IMG_0419.jpg": 3_002_745, "Pictures/cat.png": 301_552,
    "src/korva/main.cpp": 812, "src/korva/Makefile": 1_402, "src/site/index.html": 6_611,
    "src/site/style.css": 1_930, "src/README.md": 3_027, "backup.tar.gz": 48_221_007,
}

# Where things are in the window.
PANE = 173  # the right one's left edge
LABELS = 38
# Right edges of the columns behind the icons', and by how much they are widened.
EDGES = [(259, 70), (312, 60), (345, 20), (376, 25), (447, 40), (518, 40)]


def row(index):
    return 58 + 19 * index


def make_files(folder):
    now = time.time()
    for age, (name, size) in enumerate(FILES.items()):
        path = os.path.join(folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.truncate(size)
        os.utime(path, (now, now - age * 31_000))
    os.symlink("Pictures/Oslo", os.path.join(folder, "holiday"))


class Session:
    def __init__(self, display, folder):
        self.display = display
        self.korva = Program(display, [KORVA, folder])
        self.korva.window()
        self.korva.resize(*SIZE)
        self.korva.wait_for_size(*SIZE)
        self.korva.steady_picture()

    def save(self, name):
        """The window with its frame, and what hangs over it."""
        self.korva.steady_picture()
        left, top, width, height = self.korva.frame()
        around = self.display.ask("xprop", "-id", self.korva.window(), "_NET_FRAME_EXTENTS")
        sides = [int(number) for number in around.split("=")[1].split(",")]
        picture = self.display.picture().part(
            left - sides[0], top - sides[2], left + width + sides[1] - 1,
            top + height + sides[3] - 1)
        path = os.path.join(HERE, name)
        picture.save(path + ".ppm")
        subprocess.run(["convert", path + ".ppm", path], check=True)
        os.remove(path + ".ppm")
        print("saved", path)


    def drag(self, start, end):
        """In steps that the list can follow, which looks at the mouse 20 times a second."""
        left, top, *_ = self.korva.frame()
        points = [(left + x, top + y) for x, y in (start, end)]
        self.display.do("xdotool", "mousemove", *map(str, points[0]), "mousedown", "1",
                        "sleep", "0.15", "mousemove", *map(str, points[1]), "sleep", "0.15",
                        "mouseup", "1")
        self.display.put_pointer_away()
        self.korva.steady_picture()

    def widen_columns(self):
        """From the right, where the others' edges stay."""
        for x, wider in reversed(EDGES):
            self.drag((x, LABELS), (x + wider, LABELS))


def take(session):
    session.widen_columns()
    session.korva.click(PANE + 60, row(1))
    session.display.press("shift+Down", "shift+Down")
    session.save("korva.png")
    session.korva.click(80, row(1))  # the first one below the root
    session.korva.click(PANE + 60, row(1), button=3)
    session.save("menu.png")
    session.display.press("Escape")
    session.korva.click(100, 17, button=3)
    session.korva.window("directories")
    session.save("root.png")


def main():
    folder = sys.argv[1]
    os.mkdir(folder)
    display = Display((SIZE[0] + 100, SIZE[1] + 160))
    try:
        make_files(folder)
        session = Session(display, folder)
        take(session)
        session.korva.end()
    finally:
        display.close()
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
