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

from desktop import KORVA, Display, Picture, Program, wait_until

ABOUT = os.environ.get("KORVA_ABOUT", "build/check/tests/about_program")
SOCKET = "wayland-test"
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
        start = whole.data.find(rows[0], length * top, length * (top + 1))
        if start < 0 or start % 4 != 0:
            continue
        if all(whole.data.startswith(row, start + length * y) for y, row in enumerate(rows)):
            return start % length // 4, top
    return None


TITLE = (550, 71)  # of the compositor's window
CORNER = ("1048", "830")  # its last pixels
# Of the alert's left edge.
STRIPE = Picture(bytes((184, 184, 184, 255)) * 30 * 20, 30, 20)


@unittest.skipIf(missing(), missing())
class Wayland(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = Display()
        cls.addClassCleanup(cls.display.close)
        cls.folder = os.path.join(cls.display.home, "shown")
        os.makedirs(os.path.join(cls.folder, "sub folder"))
        cls.on_x11 = {scale: cls.picture_on_x11(scale) for scale in ("1", "1.5")}

    @classmethod
    def picture_on_x11(cls, scale):
        """What the program shows on the X server itself."""
        korva = Program(cls.display, [KORVA, cls.folder], env={"QT_SCALE_FACTOR": scale})
        try:
            return korva.steady_picture()
        finally:
            korva.end()

    def setUp(self):
        settings = os.path.join(self.display.folder, "weston.ini")
        with open(settings, "w") as file:
            file.write(SETTINGS)
        with open(os.path.join(self.display.folder, "weston.log"), "wb") as log:
            self.compositor = subprocess.Popen(
                ["weston", "--backend=x11-backend.so", "--use-pixman", "--width=1000",
                 "--height=750", "--socket=" + SOCKET, "--config=" + settings],
                env=self.display.env, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.addCleanup(self.lose_compositor)
        wait_until(lambda: "Weston" in self.display.ask("xwininfo", "-root", "-tree"),
                   "the compositor's window")
        wait_until(lambda: os.path.exists(os.path.join(self.display.folder, SOCKET)), "its socket")
        wait_until(self.gives_compositor_the_keys, "the compositor's window active")
        # Its pointer out of the way, since that is part of the pictures.
        self.display.do("xdotool", "mousemove", *CORNER)

    def gives_compositor_the_keys(self):
        """Not every window that opens gets them: with a click on its title."""
        self.display.click(*TITLE)
        active = self.display.ask("xprop", "-root", "_NET_ACTIVE_WINDOW").rpartition(" ")[2].strip()
        # Asked for no window, it would wait for a click on one.
        return active != "0x0" and "Weston" in self.display.ask("xwininfo", "-id", active)

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
        korva = self.start(QT_SCALE_FACTOR=scale, **env)
        return korva, self.wait_for(self.on_x11[scale], "the picture that X11 shows", korva)

    def press_until(self, key, condition, what):
        """A window that is seen need not have the keys yet."""
        def answers():
            self.display.press(key)
            with contextlib.suppress(AssertionError):
                return wait_until(condition, what, 0.5)
        wait_until(answers, what)

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

    def point_at(self, x, y):
        """Returns when the compositor shows its pointer there."""
        before = self.display.picture().part(x, y, x + 8, y + 8)

        def is_there():
            # From outside: it has to see the pointer come in.
            self.display.put_pointer_away()
            self.display.do("xdotool", "mousemove", str(x), str(y))
            with contextlib.suppress(AssertionError):
                return wait_until(lambda: self.display.picture().part(
                    x, y, x + 8, y + 8) != before, "the pointer", 0.5)
        wait_until(is_there, "the pointer")

    def test_takes_the_pointer(self):
        _, (x, y) = self.start_and_find()
        left, top = x + 180, y + 30  # the only row of the right pane
        self.point_at(left + 200, top + 6)
        self.display.do("xdotool", "click", "1")
        wait_until(lambda: (184, 184, 184) in self.display.picture().part(
            left, top, left + 120, top + 11).colours(), "the row selected")

    def test_the_alert_is_answered_by_a_key(self):
        korva = self.start(ABOUT)
        x, y = self.wait_for(STRIPE, "the alert", korva)
        # It may have opened before the window did, which then has the keys.
        self.point_at(x + 5, y + 5)
        self.display.do("xdotool", "click", "1")
        self.press_until("Return", lambda: not find(STRIPE, self.display.picture()), "no alert")
        self.assertIsNone(korva.process.poll())

    def test_ends_when_the_compositor_goes_away(self):
        korva, _ = self.start_and_find()
        self.lose_compositor()
        self.assertEqual(korva.wait_for_end(2), 1, korva.errors())


if __name__ == "__main__":
    unittest.main()
