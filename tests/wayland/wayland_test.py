# SPDX-License-Identifier: MIT

# The program on Wayland. The compositor draws into a window of a virtual X server, where its
# pixels can be read and input comes from.

import contextlib
import glob
import os
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../x11"))

from desktop import ABOUT, FRAME, KORVA, Display, Picture, Program, wait_until

SOCKET = "wayland-test"
LARGER = (FRAME[2] + 90, FRAME[3] + 70)
# Nothing but the programs' windows, and nothing that moves.
SETTINGS = """
[core]
idle-time=0
[shell]
panel-position=none
background-color=0xff204060
locking=false
animation=none
startup-animation=none
close-animation=none
focus-animation=none
"""


def missing():
    if shutil.which("weston") is None:
        return "there is no weston"
    plugin = "qt6/plugins/platforms/libqwayland*.so"
    if not glob.glob("/usr/lib*/" + plugin) and not glob.glob("/usr/lib/*/" + plugin):
        return "there is no Wayland plugin for Qt 6"
    return None


def find(part, whole):
    """Left and top of a picture in another one, or None."""
    rows = [part.data[4 * part.width * y:4 * part.width * (y + 1)] for y in range(part.height)]
    length = 4 * whole.width
    for top in range(whole.height - part.height + 1):
        start = length * top - 1
        while (start := whole.data.find(rows[0], start + 1, length * (top + 1))) >= 0:
            if start % 4 == 0 and all(
                    whole.data.startswith(row, start + length * y) for y, row in enumerate(rows)):
                return start % length // 4, top
    return None


SIZE = (1200, 1150)  # of the compositor's window
BESIDE = (SIZE[0] + 8, 0)  # on the X server's screen
# Of the alert's left edge.
STRIPE = Picture(bytes((184, 184, 184, 255)) * 30 * 20, 30, 20)


@unittest.skipIf(missing(), missing())
class Wayland(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # Without a window manager, so that nothing comes between the compositor and its input.
        cls.display = Display((SIZE[0] + 16, SIZE[1]), manager=False)
        cls.addClassCleanup(cls.display.close)
        cls.folder = os.path.join(cls.display.folder, "shown")
        os.makedirs(os.path.join(cls.folder, "sub folder"))
        cls.look_at_x11()

    @classmethod
    def look_at_x11(cls):
        """What the program shows on an X server, by scale and size."""
        cls.on_x11 = {}
        display = Display(SIZE)
        try:
            for scale in ("1", "1.5", "2"):
                korva = Program(display, [KORVA, cls.folder], env={"QT_SCALE_FACTOR": scale})
                try:
                    cls.on_x11[scale] = korva.steady_picture()
                    if scale == "1":
                        korva.resize(*LARGER)
                        korva.wait_for_size(*LARGER)
                        cls.larger_on_x11 = korva.steady_picture()
                finally:
                    korva.end()
        finally:
            display.close()

    def start_compositor(self, scale=1):
        settings = os.path.join(self.display.folder, "weston.ini")
        with open(settings, "w") as file:
            file.write(SETTINGS)
        width, height = (side // scale for side in SIZE)
        with open(os.path.join(self.display.folder, "weston.log"), "wb") as log:
            self.compositor = subprocess.Popen(
                ["weston", "--backend=x11-backend.so", "--use-pixman", f"--width={width}",
                 f"--height={height}", f"--scale={scale}", "--socket=" + SOCKET,
                 "--config=" + settings],
                env=self.display.env, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.addCleanup(self.lose_compositor)
        wait_until(lambda: "Weston" in self.display.ask("xwininfo", "-root", "-tree"),
                   "the compositor's window")
        wait_until(lambda: os.path.exists(os.path.join(self.display.folder, SOCKET)), "its socket")
        self.bring_pointer_in(SIZE[0] - 1, SIZE[1] - 1)

    def bring_pointer_in(self, x, y):
        """From outside: until it has seen the pointer come in the compositor knows of none."""
        self.display.do("xdotool", "mousemove", *map(str, BESIDE))
        self.display.do("xdotool", "mousemove", str(x), str(y))

    def lose_compositor(self):
        self.compositor.kill()
        self.compositor.wait()
        for name in (SOCKET, SOCKET + ".lock"):
            with contextlib.suppress(FileNotFoundError):
                os.unlink(os.path.join(self.display.folder, name))

    def start(self, program=KORVA, **env):
        env = {"WAYLAND_DISPLAY": SOCKET, "QT_QPA_PLATFORM": "wayland", **env}
        started = Program(self.display, [program, self.folder], env=env)
        self.addCleanup(started.end)
        return started

    def wait_for(self, part, what, program):
        """Where the screen shows this picture."""
        def look():
            if program.process.poll() is not None:
                raise AssertionError(f"ended with {program.process.returncode}: {program.errors()}")
            return find(part, self.display.picture())
        try:
            return wait_until(look, what)
        except AssertionError:
            self.display.picture().save_failure()
            raise

    def start_and_find(self, scale="1", **env):
        """The program that shows what it shows on X11, and where its window's content is."""
        self.start_compositor()
        korva = self.start(QT_SCALE_FACTOR=scale, **env)
        return korva, self.wait_for(self.on_x11[scale], "the picture that X11 shows", korva)

    def press_until(self, key, condition, what):
        """A window that is seen need not have the keys yet."""
        def answers():
            self.display.press(key)
            with contextlib.suppress(AssertionError):
                return wait_until(condition, what, 0.5)
        wait_until(answers, what)

    def point_at(self, x, y):
        """Returns when the compositor shows its pointer there."""
        before = self.display.picture().part(x, y, x + 8, y + 8)

        def is_there():
            self.bring_pointer_in(x, y)
            with contextlib.suppress(AssertionError):
                return wait_until(lambda: self.display.picture().part(
                    x, y, x + 8, y + 8) != before, "the pointer", 0.5)
        try:
            wait_until(is_there, "the pointer")
        except AssertionError:
            self.display.picture().save_failure()
            raise

    def test_shows_what_it_shows_on_x11_and_ends_with_its_window(self):
        korva, _ = self.start_and_find()
        self.press_until("alt+w", lambda: korva.process.poll() is not None, "the end")
        self.assertEqual(korva.wait_for_end(), 0)
        self.assertEqual(korva.errors(), "")

    def test_shows_the_same_in_a_frame_of_its_own(self):
        # Without OpenGL there is no frame; the picture has to be there all the same.
        self.start_and_find(QT_WAYLAND_CLIENT_BUFFER_INTEGRATION="wayland-egl")

    def test_shows_the_same_at_a_scale_of_one_and_a_half(self):
        self.start_and_find("1.5")

    def test_shows_the_same_on_a_screen_of_twice_as_many_pixels(self):
        # Below the text, which Qt fits to the pixels when the screen and not the user scales.
        whole = self.on_x11["2"]
        part = whole.part(0, 180, whole.width - 1, whole.height - 1)
        self.start_compositor(scale=2)
        self.wait_for(part, "the picture that X11 shows", self.start())

    def test_follows_a_resize(self):
        korva, (x, y) = self.start_and_find()
        # With this key held the right button drags the nearest corner, wherever it is pressed.
        left, top = x + FRAME[2] - 20, y + FRAME[3] - 20
        self.point_at(left, top)
        self.display.do("xdotool", "keydown", "super", "mousedown", "3")
        for part in (1, 2, 3):
            self.display.do("xdotool", "mousemove", str(left + (LARGER[0] - FRAME[2]) * part // 3),
                            str(top + (LARGER[1] - FRAME[3]) * part // 3))
        self.display.do("xdotool", "mouseup", "3", "keyup", "super")
        self.bring_pointer_in(SIZE[0] - 1, SIZE[1] - 1)
        self.wait_for(self.larger_on_x11, "the larger picture", korva)

    def test_takes_the_pointer(self):
        _, (x, y) = self.start_and_find()
        left, top = x + 198, y + 50  # the name in the only row of the right pane
        self.point_at(left + 20, top + 8)
        self.display.do("xdotool", "click", "1")
        wait_until(lambda: (193, 122, 255) in self.display.picture().part(
            left, top, left + 64, top + 16).colours(), "the row selected")

    def test_the_alert_is_answered_by_a_key(self):
        self.start_compositor()
        korva = self.start(ABOUT)
        self.wait_for(STRIPE, "the alert", korva)
        # The window behind takes no input, and gives the keys back when it is clicked.
        window = self.on_x11["1"]
        corner = window.part(0, window.height - 40, 60, window.height - 1)
        x, y = self.wait_for(corner, "the window's corner", korva)
        self.display.do("xdotool", "mousemove", str(x + 30), str(y + 20), "click", "1")
        self.bring_pointer_in(SIZE[0] - 1, SIZE[1] - 1)
        self.wait_for(STRIPE, "the alert", korva)
        self.press_until("Return", lambda: not find(STRIPE, self.display.picture()), "no alert")
        self.assertIsNone(korva.process.poll())

    def test_ends_when_the_compositor_goes_away(self):
        korva, _ = self.start_and_find()
        self.lose_compositor()
        self.assertEqual(korva.wait_for_end(2), 1, korva.errors())


if __name__ == "__main__":
    unittest.main()
