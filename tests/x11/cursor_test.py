# SPDX-License-Identifier: MIT

# Cursors of programs as the X server shows them.

import ctypes
import ctypes.util
import os
import unittest

from desktop import X11Test, wait_until

CURSOR = os.environ.get("KORVA_CURSOR", "build/check/release/tests/cursor_program")
BLACK, WHITE, CLEAR = 0xff000000, 0xffffffff, 0


class CursorImage(ctypes.Structure):
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short),
                ("width", ctypes.c_ushort), ("height", ctypes.c_ushort),
                ("hot_x", ctypes.c_ushort), ("hot_y", ctypes.c_ushort),
                ("serial", ctypes.c_ulong), ("pixels", ctypes.POINTER(ctypes.c_ulong))]


class Server:
    """What is under the pointer, asked from the X server."""

    def __init__(self, name):
        self._x11 = ctypes.CDLL("libX11.so.6")
        self._fixes = ctypes.CDLL("libXfixes.so.3")
        self._x11.XOpenDisplay.restype = ctypes.c_void_p
        self._fixes.XFixesGetCursorImage.restype = ctypes.POINTER(CursorImage)
        self._display = ctypes.c_void_p(self._x11.XOpenDisplay(name.encode()))

    def close(self):
        self._x11.XCloseDisplay(self._display)

    def cursor(self):
        """Hot spot and rows of 0xAARRGGBB."""
        image = self._fixes.XFixesGetCursorImage(self._display)
        shown = image.contents
        rows = [[shown.pixels[y * shown.width + x] & 0xffffffff for x in range(shown.width)]
                for y in range(shown.height)]
        hot = shown.hot_x, shown.hot_y
        self._x11.XFree(image)
        return hot, rows


def own_cursor():
    rows = [[BLACK if x in (0, 15) or y in (0, 15) else WHITE for x in range(16)]
            for y in range(16)]
    rows[8] = [CLEAR] * 16
    return (14, 13), rows


def enlarged(cursor, factor):
    (x, y), rows = cursor
    wide = [[pixel for pixel in row for _ in range(factor)] for row in rows]
    return (x * factor, y * factor), [row for row in wide for _ in range(factor)]


class Cursor(X11Test):
    def check(self, scale):
        server = Server(self.display.name)
        self.addCleanup(server.close)
        program = self.start(program=CURSOR, title="Cursor", env={"QT_SCALE_FACTOR": str(scale)})
        left, top, *_ = program.frame()
        self.display.do("xdotool", "mousemove", str(left + 100), str(top + 100))
        program.steady_picture()
        arrow = server.cursor()

        def press():
            self.display.do("xdotool", "click", "1")
        press()
        wait_until(lambda: server.cursor() != arrow, "the beam")
        (x, y), beam = server.cursor()
        self.assertEqual((x, y, len(beam)), (7 * scale, 7 * scale, 16 * scale))
        self.assertEqual(beam[y][x], BLACK)
        press()
        wait_until(lambda: server.cursor() == enlarged(own_cursor(), scale), "the own cursor")
        press()
        wait_until(lambda: server.cursor() == arrow, "the arrow again")

    def test_shows_what_the_program_set(self):
        self.check(1)

    def test_is_enlarged_with_its_hot_spot_on_a_fine_screen(self):
        self.check(2)


if __name__ == "__main__":
    unittest.main()
